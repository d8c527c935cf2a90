// The series of the Cut page, driven by lines on standard input whose words are parted by tabs; for
// tests that compare it with the command line and with other programs.
//
//   open FILE                                           ok ROWS COLUMN... | error WHY
//   row NUMBER                                          ok FIELD... (in hexadecimal) | error WHY
//   write EXISTING FILES TEXT NAMES FOLDER FORMATS OPTION=VALUE...
//                                                       END done failed files standing, and
//                                                       failures
// EXISTING is ask, keep or replace; after so many FILES the run is cancelled (0: never). TEXT may
// hold \n. Options of sheets put the rows on sheets.
#include <condition_variable>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "app/cut_series.h"
#include "base/text.h"
#include "platform/folder_path.h"

namespace {

using namespace kerno;

// Waits until what runs beside has something new.
class Bell {
 public:
  SeriesWake Wake() {
    return [this] {
      const std::lock_guard lock(mutex_);
      ++rings_;
      rung_.notify_all();
    };
  }
  void Wait() {
    std::unique_lock lock(mutex_);
    rung_.wait(lock, [this] { return rings_ > heard_; });
    heard_ = rings_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable rung_;
  int rings_ = 0, heard_ = 0;
};

std::vector<std::string> WordsOf(const std::string& line, char separator) {
  std::vector<std::string> words;
  std::stringstream stream(line);
  for (std::string word; std::getline(stream, word, separator);) words.push_back(word);
  return words;
}

void PrintError(const std::string& why) {
  std::cout << "error " << why << std::endl;
}

void Open(const std::string& file, CutSeries* series) {
  Bell bell;
  const Status opened = series->Open(file, bell.Wake());
  if (!opened.ok()) return PrintError(Utf16ToUtf8(opened.why));
  while (!series->all_counted()) bell.Wait();
  std::cout << "ok " << series->rows();
  for (const std::string& column : series->columns()) std::cout << ' ' << column;
  std::cout << std::endl;
  series->Close();  // the bell goes
  if (!series->Open(file, {}).ok()) std::abort();
  while (!series->all_counted()) {
  }
}

void ShowRow(uint64_t number, CutSeries* series) {
  SeriesRow row;
  std::vector<Message> told;
  const HeldMessages held(&told);
  if (!series->RowAt(number, &row)) return PrintError(told[0].why);
  if (!row.fault.empty()) return PrintError(Utf16ToUtf8(row.fault));
  std::cout << "ok";
  for (const std::string& field : row.fields) {
    std::cout << ' ';
    for (const char c : field)
      std::printf("%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
    std::fflush(stdout);
  }
  std::cout << std::endl;
}

void SetOption(const std::string& option, SeriesOrder* order) {
  const size_t equals = option.find('=');
  const std::string name = option.substr(0, equals);
  const std::string value = equals == option.npos ? "on" : option.substr(equals + 1);
  if (order->texts.Set(name, value)) return;
  if (!order->sheets) order->sheets.emplace();
  order->sheets->given.insert(name);
  order->sheets->ForEachText([&](const char* known, std::string* text) {
    if (name == known) *text = value;
  });
  order->sheets->ForEachFlag([&](const char* known, bool* flag) {
    if (name == known) *flag = true;
  });
}

void Write(const std::vector<std::string>& words, CutSeries* series) {
  SeriesOrder order;
  if (words[1] != "ask") {
    order.existing = words[1] == "keep" ? ExistingFiles::kKeep : ExistingFiles::kReplace;
  }
  const uint64_t most = std::stoull(words[2]);
  std::string text = words[3];
  for (size_t at = 0; (at = text.find("\\n", at)) != text.npos;) text.replace(at, 2, "\n");
  order.text = Utf8ToUtf16Lossy(text);
  order.names = words[4];
  order.folder = words[5];
  order.formats = WordsOf(words[6], ',');
  for (size_t i = 7; i < words.size(); ++i) SetOption(words[i], &order);
  Bell bell;
  if (!series->Start(order, bell.Wake())) return PrintError("runs already");
  while (series->progress().is_running) {
    bell.Wait();
    if (most > 0 && series->progress().files >= most) series->Cancel();
  }
  constexpr const char* kEnds[] = {"done", "failed", "usage", "face", "stand", "stopped"};
  const SeriesProgress end = series->progress();
  std::cout << kEnds[static_cast<size_t>(end.end)] << ' ' << end.done << ' ' << end.failed << ' '
            << end.files << ' ' << end.standing;
  for (const SeriesTrouble& trouble : end.failures) {
    std::cout << '\t' << trouble.row << ' ' << trouble.message.what << ": " << trouble.message.why;
  }
  std::cout << std::endl;
}

}  // namespace

int main() {
  CutSeries series;
  for (std::string line; std::getline(std::cin, line);) {
    const std::vector<std::string> words = WordsOf(line, '\t');
    if (words[0] == "open") Open(words[1], &series);
    if (words[0] == "row") ShowRow(std::stoull(words[1]), &series);
    if (words[0] == "write") Write(words, &series);
  }
  return 0;
}
