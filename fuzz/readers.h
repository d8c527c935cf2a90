// Small readers of what the writers wrote: they know the structure of a format, and nothing of how
// its writer works. A file that breaks the structure ends the program.
#pragma once

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kerno::fuzz {

inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%d: does not hold\n", file, line);
  std::abort();
}

// What is in the files is finite: no "nan" and no "inf" counts as a number here.
inline void RequireNumber(std::string_view text, bool whole) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  Require(read.ec == std::errc() && read.ptr == text.data() + text.size() && std::isfinite(value));
  Require(!whole || text.find_first_of(".eE") == text.npos);
}

// ASCII DXF: lines by twos, a group code and its value; what is opened is closed; EOF ends it.
inline void CheckDxf(std::string_view file) {
  static const std::map<std::string_view, std::string_view> kClosers = {
      {"SECTION", "ENDSEC"}, {"TABLE", "ENDTAB"}, {"BLOCK", "ENDBLK"}, {"POLYLINE", "SEQEND"}};
  std::vector<std::string_view> open;
  bool ended = false;
  const auto line = [&] {
    const size_t end = file.find('\n');
    Require(end != file.npos);
    std::string_view text = file.substr(0, end);
    if (text.ends_with('\r')) text.remove_suffix(1);
    file.remove_prefix(end + 1);
    for (const char c : text) Require(static_cast<unsigned char>(c) >= ' ' && c != 0x7F);
    return text;
  };
  while (!file.empty()) {
    Require(!ended);
    const std::string_view code_text = line(), value = line();
    RequireNumber(code_text, true);
    const int code = std::atoi(std::string(code_text).c_str());
    const bool real =
        (code >= 10 && code < 60) || (code >= 140 && code < 148) || (code >= 210 && code < 240);
    const bool whole = (code >= 60 && code < 100) || (code >= 170 && code < 180);
    if (real || whole) RequireNumber(value, whole);
    if (code != 0) continue;
    if (!open.empty() && value == kClosers.at(open.back())) {
      open.pop_back();
    } else if (kClosers.contains(value)) {
      open.push_back(value);
    } else {
      Require(!value.starts_with("END") && value != "SEQEND");
      Require((value == "EOF") == open.empty());
      ended = value == "EOF";
    }
  }
  Require(ended);
}

// Well-formed XML, as an independent reader takes it; numbers in drawing attributes are finite.
inline void CheckXml(std::string_view file) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetStartElementHandler(parser, [](void*, const char*, const char** attributes) {
    for (; *attributes != nullptr; attributes += 2) {
      for (const char* name : {"points", "point", "x", "y", "x1", "y1", "x2", "y2", "cx", "cy", "r",
                               "d", "width", "height", "viewBox", "stroke-width"}) {
        if (std::strcmp(attributes[0], name) != 0) continue;
        Require(std::strstr(attributes[1], "nan") == nullptr);
        Require(std::strstr(attributes[1], "inf") == nullptr);
      }
    }
  });
  const auto done =
      XML_Parse(parser, file.data(), static_cast<int>(file.size()), XML_TRUE) == XML_STATUS_OK;
  XML_ParserFree(parser);
  Require(done);
}

inline uint32_t Little(std::string_view bytes, size_t at, int size = 4) {
  Require(at + static_cast<size_t>(size) <= bytes.size());
  uint32_t value = 0;
  for (int i = size; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
  }
  return value;
}

// An enhanced metafile: the chain of records ends with the file, in a record of type EOF, and the
// header counts bytes, records and handles as they are; records of points are as long as these.
inline void CheckEmf(std::string_view file) {
  constexpr uint32_t kHeader = 1, kEof = 14;
  constexpr uint32_t kMakes[] = {38, 39, 82, 95};  // pens, brushes, fonts
  uint32_t records = 0, type = 0, highest = 0;
  for (size_t at = 0; at < file.size(); ++records) {
    Require(type != kEof);
    type = Little(file, at);
    const uint32_t size = Little(file, at + 4);
    Require(size >= 8 && size % 4 == 0 && size <= file.size() - at);
    Require((type == kHeader) == (at == 0));
    for (const uint32_t makes : kMakes) {
      if (type == makes) highest = std::max(highest, Little(file, at + 8));
    }
    if (type == 37 && Little(file, at + 8) < 0x80000000) {  // a handle that was made
      Require(Little(file, at + 8) <= highest);
    }
    const uint32_t point = type >= 85 && type <= 87 ? 4 : type >= 2 && type <= 4 ? 8 : 0;
    if (point > 0) Require(size == 28 + point * Little(file, at + 24));
    if (type == kEof) Require(Little(file, at + size - 4) == size);
    at += size;
  }
  Require(type == kEof);
  Require(file.substr(40, 4) == " EMF" && Little(file, 48) == file.size());
  Require(Little(file, 52) == records && Little(file, 56, 2) > highest);
}

// A bitmap of 24 bits without compression.
inline void CheckBmp(std::string_view file) {
  Require(file.starts_with("BM") && Little(file, 2) == file.size() && Little(file, 10) == 54);
  Require(Little(file, 14) == 40 && Little(file, 28, 2) == 24 && Little(file, 30) == 0);
  const size_t row = (size_t{3} * Little(file, 18) + 3) / 4 * 4;
  Require(file.size() == 54 + row * Little(file, 22));
}

// A table: each line has as many fields as the first.
inline void CheckTable(std::string_view file) {
  size_t tabs = 0;
  for (bool first = true; !file.empty(); first = false) {
    const size_t end = file.find("\r\n");
    Require(end != file.npos);
    const std::string_view line = file.substr(0, end);
    const auto count = static_cast<size_t>(std::count(line.begin(), line.end(), '\t'));
    Require(first || count == tabs);
    tabs = count;
    file.remove_prefix(end + 2);
  }
  Require(tabs > 0);
}

}  // namespace kerno::fuzz
