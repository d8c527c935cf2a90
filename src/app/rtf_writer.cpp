#include "app/rtf_writer.h"

#include "base/number_text.h"
#include "base/text.h"

namespace kerno {
namespace {

void AppendControl(std::string* out, const char* word, int64_t number) {
  *out += word;
  AppendInteger(out, number);
}

// One UTF-16 unit of running text; line ends are the caller's.
void AppendUnit(std::string* out, char16_t unit) {
  if (unit == u'\t') {
    *out += "\\tab ";
  } else if (unit == u'\\' || unit == u'{' || unit == u'}') {
    *out += '\\';
    *out += static_cast<char>(unit);
  } else if (unit >= 0x20 && unit < 0x7F) {
    *out += static_cast<char>(unit);
  } else {
    AppendControl(out, "\\u", static_cast<int16_t>(unit));
    *out += "\\'3f";  // "?" in a form that readers cannot take for the start of a longer word
  }
}

// A name in the font table ends at ";", which has no escape there.
void AppendFontName(std::string* out, std::u16string_view face) {
  for (const char16_t unit : face) AppendUnit(out, unit == u';' ? u'_' : unit);
}

void AppendHeader(std::string* out, const RtfOptions& options) {
  *out += "{\\rtf1\\ansi\\ansicpg932\\uc1\\deff0{\\fonttbl{\\f0\\fnil\\fcharset128 ";
  AppendFontName(out, options.face);
  *out += ";}}\r\n{\\colortbl ;";
  AppendControl(out, "\\red", Red(options.color));
  AppendControl(out, "\\green", Green(options.color));
  AppendControl(out, "\\blue", Blue(options.color));
  *out += ";}\r\n\\pard\\cf1\\f0";
  AppendControl(out, "\\fs", options.half_points);
  *out += ' ';
}

}  // namespace

std::string RtfDocument(std::u16string_view text, const RtfOptions& options) {
  std::string out;
  out.reserve(text.size() * 8 + 256);
  AppendHeader(&out, options);
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'\r' && text[i] != u'\n') {
      AppendUnit(&out, text[i]);
      continue;
    }
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    out += "\\par\r\n";
  }
  out += "}\r\n";
  return out;
}

}  // namespace kerno
