#include "cli/console.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/text.h"
#include "platform/console.h"

namespace kerno {
namespace {

bool warnings_silenced = false;
bool print_failed = false;

// Controls of direction stand as their codes, so that none puts the rest of a line into another
// order. What is not UTF-8 stays as it is.
std::string WithPlainOrder(std::string_view line) {
  const auto text = Utf8ToUtf16(line);
  if (!text) return std::string(line);
  std::u16string plain;
  for (size_t at = 0; at < text->size();) {
    const char32_t ch = NextCharacter(*text, &at);
    if (IsDirectionControl(ch)) {
      plain += u"<" + Utf8ToUtf16Lossy(CodeOf(ch)) + u">";
    } else {
      AppendCharacter(&plain, ch);
    }
  }
  return Utf16ToUtf8(plain);
}

enum class LineEnds { kKept, kCoded };

// Names may hold anything; what would steer a terminal is shown as a code.
std::string Shown(std::string_view text, LineEnds ends) {
  const bool keeps_ends = ends == LineEnds::kKept;
  std::string shown;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    // In UTF-8, the controls from U+0080 to U+009F follow 0xC2.
    const bool is_second = i > 0 && static_cast<unsigned char>(text[i - 1]) == 0xC2 && byte < 0xA0;
    const bool kept_end = keeps_ends && (byte == '\n' || byte == '\t');
    if ((byte >= 0x20 && byte != 0x7F && !is_second) || kept_end) {
      shown.push_back(text[i]);
      continue;
    }
    if (is_second) shown.pop_back();
    char code[8];
    std::snprintf(code, sizeof code, "<%02X>", static_cast<unsigned>(byte));
    shown += code;
  }
  return WithPlainOrder(shown);
}

void WriteLine(std::string_view text) {
  const std::string line = Shown(text, LineEnds::kKept);
  std::fwrite(line.data(), 1, line.size(), stderr);
  if (!line.ends_with('\n')) std::fputc('\n', stderr);
}

void ShowReport(const Message& message) {
  if (message.is_warning && warnings_silenced) return;
  std::string line = message.is_warning ? "kerno: warning: " : "kerno: ";
  line += Shown(message.what, LineEnds::kCoded);
  if (!message.what.empty() && !message.why.empty()) line += ": ";
  line += Shown(message.why, LineEnds::kCoded);
  WriteLine(line);
}

bool PrintingFailed() {
  if (!print_failed) ReportError("standard output", std::strerror(errno));
  print_failed = true;
  return false;
}

}  // namespace

void ShowReports() {
  SetReporter(ShowReport);
}

void SilenceWarnings() {
  warnings_silenced = true;
}

bool Print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) return PrintingFailed();
  return true;
}

bool PrintLine(std::string_view line) {
  return Print(Shown(line, LineEnds::kCoded) + "\n");
}

std::string ShownName(std::u16string_view name) {
  return Shown(Utf16ToUtf8(name), LineEnds::kCoded);
}

std::string ShownAnswer(std::string_view bytes) {
  return IsOutputTerminal() ? Shown(bytes, LineEnds::kCoded) : std::string(bytes);
}

bool FinishPrinting() {
  if (std::fflush(stdout) != 0) return PrintingFailed();
  return !print_failed;
}

void AppendJsonString(std::string* out, std::u16string_view text) {
  out->push_back('"');
  std::u16string escaped;
  for (const char16_t unit : text) {
    if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0)) {  // what would steer a terminal
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
      escaped.append(escape, escape + 6);
      continue;
    }
    if (unit == u'"' || unit == u'\\') escaped.push_back(u'\\');
    escaped.push_back(unit);
  }
  *out += Utf16ToUtf8(escaped);
  out->push_back('"');
}

ConsoleNotices::ConsoleNotices() : before_(ReplaceNotices(this)), terminal_(IsErrorTerminal()) {}

ConsoleNotices::~ConsoleNotices() {
  EndBar();
  ReplaceNotices(before_);
}

void ConsoleNotices::Message(std::u16string_view text) {
  EndBar();
  if (!warnings_silenced) WriteLine("kerno: " + Utf16ToUtf8(text));
}

void ConsoleNotices::Trouble(std::u16string_view text) {
  EndBar();
  WriteLine("kerno: " + Shown(Utf16ToUtf8(text), LineEnds::kCoded));
}

void ConsoleNotices::ShowWait(std::u16string_view text) {
  EndBar();
  if (!warnings_silenced) WriteLine(Utf16ToUtf8(text));
}

Continue ConsoleNotices::Progress(std::u16string_view text, int64_t done, int64_t total) {
  if (!terminal_ || warnings_silenced || total <= 0) return Continue::kYes;
  constexpr int kBarLength = 40;
  const int percent = static_cast<int>(std::min(done, total) * 100 / total);
  if (percent == shown_percent_) return Continue::kYes;
  shown_percent_ = percent;
  const auto filled = static_cast<size_t>(percent * kBarLength / 100);
  std::string bar = "\r" + Utf16ToUtf8(text) + " [" + std::string(filled, '#') +
                    std::string(kBarLength - filled, ' ') + "] " + std::to_string(percent) + "%";
  std::fwrite(bar.data(), 1, bar.size(), stderr);
  if (done >= total) EndBar();
  return Continue::kYes;
}

void ConsoleNotices::EndBar() {
  if (shown_percent_ >= 0) std::fputc('\n', stderr);
  shown_percent_ = -1;
}

}  // namespace kerno
