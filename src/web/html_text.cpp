#include "web/html_text.h"

#include "base/text.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

struct Reference {
  char character;
  std::string_view html;
};

constexpr Reference kReferences[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"},
};

// Characters that may not stand in an HTML document.
bool IsForbidden(char32_t c) {
  const bool control = (c < 0x20 && c != '\t' && c != '\n') || (c >= 0x7F && c < 0xA0);
  const bool noncharacter = (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE;
  return control || noncharacter;
}

}  // namespace

std::string EscapeHtml(std::u16string_view text) {
  std::u16string clean;
  clean.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, &at);
    if (c == '\r') {  // any line end is one line feed
      if (at == text.size() || text[at] != u'\n') clean.push_back(u'\n');
    } else {
      AppendCharacter(&clean, IsForbidden(c) ? U'\xFFFD' : c);
    }
  }
  std::string html;
  html.reserve(clean.size() + clean.size() / 8);
  for (const char c : Utf16ToUtf8(clean)) {
    std::string_view as = {&c, 1};
    for (const Reference& reference : kReferences) {
      if (reference.character == c) as = reference.html;
    }
    html += as;
  }
  return html;
}

std::u16string UnescapeHtml(std::string_view html) {
  std::string text;
  for (size_t at = 0; at < html.size();) {
    char c = html[at];
    size_t length = 1;
    for (const Reference& reference : kReferences) {
      if (html.substr(at).starts_with(reference.html)) {
        c = reference.character;
        length = reference.html.size();
      }
    }
    text.push_back(c);
    at += length;
  }
  return Utf8ToUtf16Lossy(text);
}

std::string LinkTo(const std::filesystem::path& name) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string link = "./";
  for (const char c : PathBytes(name)) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                       c == '-' || c == '.' || c == '_' || c == '~';
    if (plain) {
      link.push_back(c);
    } else {
      link.push_back('%');
      link.push_back(kHex[byte >> 4]);
      link.push_back(kHex[byte & 15]);
    }
  }
  return link;
}

}  // namespace kerno
