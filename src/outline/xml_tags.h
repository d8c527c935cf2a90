// The tags of an XML text in UTF-8, one after the other. Texts between tags, comments, instructions
// and declarations are passed over; entities of the file's own are not known.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kerno {

struct XmlTag {
  std::string_view name;              // without its prefix; empty at the end of the text
  bool begins = false, ends = false;  // both for a tag without content
  size_t line = 1;                    // at which it begins
  // As they stand; XmlText gives their meaning.
  std::vector<std::pair<std::string_view, std::string_view>> attributes;

  std::optional<std::string_view> Attribute(std::string_view wanted) const;
};

class XmlTags {
 public:
  explicit XmlTags(std::string_view text) : text_(text) {}

  // The next tag. False where there is no XML any more; tag->line tells where.
  [[nodiscard]] bool Next(XmlTag* tag);

 private:
  bool Skip(std::string_view start, std::string_view end);
  bool SkipDeclaration();
  void MoveTo(size_t at);
  bool ReadAttributes(XmlTag* tag);
  void SkipBlanks();
  std::string_view ReadName();

  std::string_view text_;
  size_t at_ = 0;
  size_t line_ = 1;
};

// An attribute's value with its character references resolved; those that mean nothing stay.
std::string XmlText(std::string_view raw);

}  // namespace kerno
