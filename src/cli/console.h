// What the command line says and prints: messages on standard error, results on standard output.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/notices.h"
#include "platform/status.h"

namespace kerno {

// "kerno: what: why" on standard error.
void ReportError(std::string_view what, std::string_view why);
void ReportError(const Status& status);

// "kerno: warning: what: why".
void ReportWarning(std::string_view what, std::string_view why);

// What would have been reported.
struct Message {
  bool is_warning = false;
  std::string what, why;
};

// While it lives, what this thread reports is kept instead of shown.
class HeldMessages {
 public:
  explicit HeldMessages(std::vector<Message>* messages);
  ~HeldMessages();
  HeldMessages(const HeldMessages&) = delete;
  HeldMessages& operator=(const HeldMessages&) = delete;

 private:
  std::vector<Message>* before_;
};

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
