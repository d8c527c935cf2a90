// What the command line says and prints: messages on standard error, results on standard output.
#pragma once

#include <string>
#include <string_view>

#include "app/reports.h"
#include "base/notices.h"

namespace kerno {

// From now on what is reported is a line on standard error: "kerno: what: why", or "kerno: warning:
// what: why".
void ShowReports();

// Lines of warnings are dropped from now on; errors are still reported.
void SilenceWarnings();

// Writes to standard output. False when that fails (a full disk, a closed pipe); reported once.
[[nodiscard]] bool Print(std::string_view text);
// A line for people: what would steer a terminal is shown as a code.
[[nodiscard]] bool PrintLine(std::string_view line);

// A name as such a line shows it, its line ends and tabs as codes, too.
std::string ShownName(std::u16string_view name);

// A path or a value that standard output gets as an answer: scripts as it is, a terminal as a name.
std::string ShownAnswer(std::string_view bytes);

// Flushes standard output; false, with a report, when anything printed did not arrive.
[[nodiscard]] bool FinishPrinting();

// Appends text as a JSON string with its quotes.
void AppendJsonString(std::string* out, std::u16string_view text);

// Shows the core's notices: messages and waits as lines on standard error, progress as a bar when
// that is a terminal.
class ConsoleNotices final : public Notices {
 public:
  ConsoleNotices();
  ~ConsoleNotices() override;
  ConsoleNotices(const ConsoleNotices&) = delete;
  ConsoleNotices& operator=(const ConsoleNotices&) = delete;

  void Message(std::u16string_view text) override;
  void Trouble(std::u16string_view text) override;
  void ShowWait(std::u16string_view text) override;
  void ClearWait() override {}
  Continue Progress(std::u16string_view text, int64_t done, int64_t total) override;

 private:
  void EndBar();

  Notices* before_;
  bool terminal_;
  int shown_percent_ = -1;
};

}  // namespace kerno
