#include "cli/series_messages.h"

#include <algorithm>
#include <cstdio>

#include "platform/console.h"

namespace kerno {
namespace {

constexpr size_t kMostWarnings = 100;
using Clock = std::chrono::steady_clock;

}  // namespace

void RowNumbers::Add(uint64_t row) {
  constexpr size_t kMostRanges = 40;
  if (!ranges_.empty() && row <= ranges_.back().second + 1 && left_out_ == 0) {
    ranges_.back().second = std::max(ranges_.back().second, row);
  } else if (ranges_.size() < kMostRanges) {
    ranges_.emplace_back(row, row);
  } else if (row != last_left_out_) {
    last_left_out_ = row;
    ++left_out_;
  }
}

std::string RowNumbers::Text() const {
  const bool is_one = ranges_.size() == 1 && ranges_[0].first == ranges_[0].second;
  std::string text = is_one ? "row" : "rows";
  for (const auto& [first, last] : ranges_) {
    text += (&first == &ranges_[0].first ? " " : ", ") + std::to_string(first);
    if (last > first) text += "-" + std::to_string(last);
  }
  if (left_out_ > 0) text += " and " + std::to_string(left_out_) + " more";
  return text;
}

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
    if (const auto known = told_.find(warning); known != told_.end()) {
      known->second.Add(row);
    } else if (told_.size() == kMostWarnings) {
      others_.Add(row);
    } else {
      order_.push_back(&told_.try_emplace(std::move(warning)).first->first);
      ReportWarning(what, message.why);
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
  for (const std::string* warning : order_) {
    const RowNumbers& rows = told_.at(*warning);
    if (!rows.IsEmpty()) ReportWarning(rows.Text(), *warning);
  }
  if (!others_.IsEmpty()) ReportWarning(others_.Text(), "other warnings, not told one by one");
}

}  // namespace kerno
