#include "export/xml_out.h"

#include "base/text.h"

namespace kerno {
namespace {

constexpr size_t kFlushSize = size_t{1} << 20;
constexpr size_t kIndent = 1;

bool IsAllowed(char32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  const bool surrogate = c >= 0xD800 && c < 0xE000;
  return !surrogate && c != 0xFFFE && c != 0xFFFF;
}

}  // namespace

XmlOut::XmlOut(FileReplacement* out) : out_(out) {
  buffer_.reserve(kFlushSize + kFlushSize / 4);
}

void XmlOut::Declaration() {
  buffer_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
}

void XmlOut::DocumentType(std::string_view text) {
  buffer_.append("<!DOCTYPE ").append(text).append(">\n");
}

void XmlOut::NewLine() {
  const bool line_ended = buffer_.empty() ? line_ended_ : buffer_.back() == '\n';
  if (!line_ended) buffer_.push_back('\n');
  buffer_.append(kIndent * open_.size(), ' ');
}

void XmlOut::CloseTag() {
  if (in_tag_) buffer_.push_back('>');
  in_tag_ = false;
}

void XmlOut::Comment(std::u16string_view text) {
  CloseTag();
  NewLine();
  std::u16string safe;
  for (size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, &at);
    if (c == '-' && !safe.empty() && safe.back() == '-') safe.push_back(' ');
    AppendCharacter(&safe, IsAllowed(c) ? c : 0xFFFD);
  }
  if (!safe.empty() && safe.back() == '-') safe.push_back(' ');
  buffer_.append("<!--").append(Utf16ToUtf8(safe)).append("-->\n");
}

void XmlOut::Begin(std::string_view name) {
  CloseTag();
  FlushLong();
  NewLine();
  buffer_.append("<").append(name);
  open_.emplace_back(name);
  in_tag_ = true;
  holds_text_ = false;
}

std::string* XmlOut::BeginAttribute(std::string_view name) {
  buffer_.append(" ").append(name).append("=\"");
  return &buffer_;
}

void XmlOut::Attribute(std::string_view name, std::string_view ascii) {
  BeginAttribute(name)->append(ascii);
  EndAttribute();
}

void XmlOut::Attribute(std::string_view name, std::u16string_view text) {
  BeginAttribute(name);
  AppendEscaped(text, true);
  EndAttribute();
}

void XmlOut::AppendEscaped(std::u16string_view text, bool in_attribute) {
  std::u16string escaped;
  for (size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, &at);
    if (c == '&') {
      escaped += u"&amp;";
    } else if (c == '<') {
      escaped += u"&lt;";
    } else if (c == '>') {
      escaped += u"&gt;";
    } else if (c == '"' && in_attribute) {
      escaped += u"&quot;";
    } else if (c == '\r') {
      escaped += u"&#13;";  // a reader takes a bare one for a line feed
    } else if (c == '\n' && in_attribute) {
      escaped += u"&#10;";
    } else if (c == '\t' && in_attribute) {
      escaped += u"&#9;";
    } else {
      AppendCharacter(&escaped, IsAllowed(c) ? c : 0xFFFD);
    }
  }
  buffer_ += Utf16ToUtf8(escaped);
}

void XmlOut::Text(std::u16string_view text) {
  CloseTag();
  AppendEscaped(text, false);
  holds_text_ = true;
}

void XmlOut::End() {
  const std::string name = std::move(open_.back());
  open_.pop_back();
  if (in_tag_) {
    buffer_ += "/>\n";
    in_tag_ = false;
  } else {
    if (!holds_text_) NewLine();
    buffer_.append("</").append(name).append(">\n");
  }
  holds_text_ = false;
}

void XmlOut::FlushLong() {
  if (buffer_.size() < kFlushSize) return;
  if (status_.ok()) status_ = out_->Write(buffer_);
  line_ended_ = buffer_.back() == '\n';
  buffer_.clear();
}

Status XmlOut::Finish() {
  if (status_.ok()) status_ = out_->Write(buffer_);
  buffer_.clear();
  return status_;
}

}  // namespace kerno
