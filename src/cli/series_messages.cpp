#include "cli/series_messages.h"

#include <cstdio>

#include "platform/console.h"

namespace kerno {
namespace {

constexpr size_t kMostWarnings = 100;
using Clock = std::chrono::steady_clock;

}  // namespace

SeriesMessages::SeriesMessages(bool quiet, uint64_t rows)
    : shows_progress_(!quiet && IsErrorTerminal()),
      rows_(rows),
      began_(Clock::now()),
      shown_(began_) {}

void SeriesMessages::Show(uint64_t row, const std::vector<Message>& messages) {
  if (messages.empty()) return;
  ClearLine();
  const std::string number = "row " + std::to_string(row);
  for (const Message& message : messages) {
    const std::string what = message.what.empty() ? number : number + ": " + message.what;
    if (!message.is_warning) {
      ReportError(what, message.why);
      continue;
    }
    std::string warning = message.what + ": " + message.why;
    if (told_.size() < kMostWarnings && told_.insert(std::move(warning)).second) {
      ReportWarning(what, message.why);
    } else {
      ++untold_;
    }
  }
}

void SeriesMessages::Show(const std::vector<Message>& messages) {
  if (messages.empty()) return;
  ClearLine();
  for (const Message& message : messages) {
    if (message.is_warning) {
      ReportWarning(message.what, message.why);
    } else {
      ReportError(message.what, message.why);
    }
  }
}

void SeriesMessages::ShowProgress(uint64_t done, uint64_t failed) {
  const auto now = Clock::now();
  if (!shows_progress_ || now - shown_ < std::chrono::seconds(1)) return;
  shown_ = now;
  ClearLine();
  const double seconds = std::chrono::duration<double>(now - began_).count();
  std::string line = std::to_string(done) + " of " + std::to_string(rows_) + " rows, " +
                     std::to_string(static_cast<uint64_t>(static_cast<double>(done) / seconds)) +
                     " a second";
  if (failed > 0) line += ", " + std::to_string(failed) + " failed";
  line_length_ = line.size();
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SeriesMessages::ClearLine() {
  if (line_length_ == 0) return;
  const std::string clear = "\r" + std::string(line_length_, ' ') + "\r";
  std::fwrite(clear.data(), 1, clear.size(), stderr);
  line_length_ = 0;
}

void SeriesMessages::Finish() {
  ClearLine();
  if (untold_ == 0) return;
  const bool is_one = untold_ == 1;
  ReportWarning("rows", std::to_string(untold_) + (is_one ? " more warning is like these"
                                                          : " more warnings are like these"));
}

}  // namespace kerno
