#include "cli/text_source.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "app/option_values.h"
#include "app/text_coding.h"
#include "app/text_source.h"
#include "base/text.h"
#include "base/text_file.h"
#include "cli/console.h"

namespace kerno {
namespace {

bool ReadStandardInput(std::string* bytes) {
  char chunk[65536];
  size_t count = 0;
  while ((count = std::fread(chunk, 1, sizeof chunk, stdin)) > 0) bytes->append(chunk, count);
  return std::ferror(stdin) == 0;
}

}  // namespace

void TextSource::AddTo(CLI::App& app) {
  app_ = &app;
  app.add_option("TEXT", positional_, "the text to set")->expected(1);
  app.add_option("--text", text_, "the text to set")->allow_extra_args(false)->type_name("TEXT");
  app.add_option("--text-file", file_,
                 "read the text from FILE (\"-\": standard input), UTF-8 or UTF-16 with a mark")
      ->type_name("FILE");
  app.add_option("--encoding", encoding_, "of that file, where it is another one or has no mark")
      ->type_name(CodingNames("|"));
}

// Without --encoding the bytes say themselves what they are, or are taken for what they can be.
bool TextSource::Decode(const std::string& bytes, const std::u16string& name,
                        std::u16string* text) const {
  const auto told = FindCoding(encoding_);
  Status read = told ? DecodeAs(*told, bytes, name, text) : DecodeText(bytes, name, text);
  if (read.ok() || told) {
    if (!read.ok()) ReportError(read);
    return read.ok();
  }
  const auto guessed = HasUtf16Mark(bytes) ? std::nullopt : GuessCoding(bytes);
  if (!guessed) {
    ReportError(Utf16ToUtf8(name), Utf16ToUtf8(read.why) + "; --encoding tells another encoding");
    return false;
  }
  if (app_->count("--strict") > 0) {
    ReportError(Utf16ToUtf8(name), Utf16ToUtf8(read.why) + "; name its encoding (--encoding " +
                                       CodingName(*guessed) + "?)");
    return false;
  }
  ReportWarning(Utf16ToUtf8(name), std::string("is taken for ") + CodingName(*guessed) +
                                       ", as it is not UTF-8 (--encoding tells another encoding)");
  read = DecodeAs(*guessed, bytes, name, text);
  return read.ok();
}

bool TextSource::ReadFileText(std::u16string* text) const {
  std::string bytes;
  if (file_ == "-") {
    if (ReadStandardInput(&bytes)) return Decode(bytes, u"standard input", text);
    ReportError("standard input", "cannot be read");
    return false;
  }
  const std::filesystem::path path = PathArgument(file_);
  if (const Status read = LoadBytes(path, &bytes); !read.ok()) {
    ReportError(read);
    return false;
  }
  return Decode(bytes, PathText(path), text);
}

bool TextSource::IsOfFile() const {
  return app_->count("--text-file") > 0;
}

bool TextSource::IsGiven() const {
  return IsOfFile() || !positional_.empty() || !text_.empty();
}

bool TextSource::ReadCoding(std::optional<TextCoding>* coding) const {
  *coding = FindCoding(encoding_);
  if (app_->count("--encoding") == 0 || *coding) return true;
  ReportChoice("--encoding", encoding_, CodingNames(", "));
  return false;
}

std::optional<std::u16string> TextSource::Read(ExitStatus* status) const {
  const bool from_file = IsOfFile();
  const size_t sources = positional_.size() + text_.size() + (from_file ? 1 : 0);
  if (sources != 1) {
    ReportError("text", sources == 0 ? "none is given (TEXT, --text or --text-file)"
                                     : "is given more than once");
    return std::nullopt;
  }
  if (app_->count("--encoding") > 0 && !from_file && !shares_encoding_) {
    ReportError("--encoding", "needs --text-file FILE");
    return std::nullopt;
  }
  std::u16string text;
  if (from_file) {
    if (!IsFileName("--text-file", file_)) return std::nullopt;
    std::optional<TextCoding> coding;
    if (!ReadCoding(&coding)) return std::nullopt;
    *status = kFailed;
    if (!ReadFileText(&text)) return std::nullopt;
  } else {
    const auto argument = TextArgument("text", positional_.empty() ? text_[0] : positional_[0]);
    if (!argument) return std::nullopt;
    text = *argument;
  }
  if (text.empty() || text[0] == 0) {
    *status = kWrongUsage;
    const bool piped = from_file && file_ == "-";
    ReportError(piped ? "standard input" : from_file ? file_ : "text", "holds no text");
    return std::nullopt;
  }
  return text;
}

}  // namespace kerno
