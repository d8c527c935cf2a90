// Where a command takes its text from: an argument, an option, a file or standard input.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/text_coding.h"
#include "cli/command.h"

namespace kerno {

class TextSource {
 public:
  void AddTo(CLI::App& app);

  // The text, of which exactly one must be given. What is wrong is reported, and *status says how
  // the process ends.
  std::optional<std::u16string> Read(ExitStatus* status) const;

  // Whether a text is given at all, and by a file.
  bool IsGiven() const;
  bool IsOfFile() const;
  bool UsesStandardInput() const { return file_ == "-"; }

  // What --encoding tells, nothing where it does not. What is wrong is reported.
  bool ReadCoding(std::optional<TextCoding>* coding) const;
  // From now on --encoding tells of another file, too, and needs none of its own.
  void ShareEncoding() { shares_encoding_ = true; }

 private:
  bool ReadFileText(std::u16string* text) const;
  bool Decode(const std::string& bytes, const std::u16string& name, std::u16string* text) const;

  std::vector<std::string> positional_;
  std::vector<std::string> text_;
  std::string file_, encoding_;
  bool shares_encoding_ = false;
  CLI::App* app_ = nullptr;
};

}  // namespace kerno
