// Writes an XML 1.0 document in UTF-8, element by element, into a file as it grows.
//
// Whatever text is given, the document is well-formed: markup is escaped, and what XML does not
// allow (control characters, lone surrogates, U+FFFE and U+FFFF) becomes U+FFFD.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_replacement.h"

namespace kerno {

class XmlOut {
 public:
  // `out` outlives the writer.
  explicit XmlOut(FileReplacement* out);

  void Declaration();
  void DocumentType(std::string_view text);  // what stands between "<!DOCTYPE " and ">"

  // A comment on a line of its own. Two hyphens in a row, or one at the end, would end it: a blank
  // goes between them, or after it.
  void Comment(std::u16string_view text);

  // An element, its attributes, then what it holds, then its end. One without content is closed in
  // its own tag.
  void Begin(std::string_view name);
  void Attribute(std::string_view name, std::string_view ascii);  // plain text that needs no escape
  void Attribute(std::string_view name, std::u16string_view text);
  void Text(std::u16string_view text);
  void End();

  // The value of an attribute written in place, for long lists of numbers: append to the string
  // between the two calls what needs no escape. FlushLong lets the file take what there is.
  std::string* BeginAttribute(std::string_view name);
  void EndAttribute() { buffer_.push_back('"'); }
  void FlushLong();

  // Writes what is left. The first failure of any write, if there was one.
  [[nodiscard]] Status Finish();

 private:
  void CloseTag();
  void NewLine();
  void AppendEscaped(std::u16string_view text, bool in_attribute);

  FileReplacement* out_;
  Status status_;
  std::string buffer_;
  std::vector<std::string> open_;
  bool line_ended_ = true;  // where the buffer is empty
  bool in_tag_ = false;
  bool holds_text_ = false;  // the innermost element: its end follows at once
};

}  // namespace kerno
