#include "web/multipart.h"

#include <algorithm>
#include <bitset>

#include "base/text.h"

namespace kerno {
namespace {

constexpr std::string_view kDashes = "-----";
constexpr std::string_view kName = "UpFile__";
constexpr int kSecondsOfDay = 86400;
constexpr int kTimeDigits = 6;

// The boundaries that a file holds, by second of the day.
std::bitset<kSecondsOfDay> BoundariesIn(std::string_view file) {
  std::bitset<kSecondsOfDay> held;
  // The name's first letter is rarer in files than the hyphen.
  for (size_t at = 0; (at = file.find(kName, at)) != std::string_view::npos;) {
    const bool dashes = file.substr(0, at).ends_with(kDashes);
    at += kName.size();
    const std::string_view digits = file.substr(at, kTimeDigits);
    if (!dashes || digits.size() < kTimeDigits ||
        !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
      continue;
    }
    const auto pair = [&](size_t i) {
      return static_cast<size_t>((digits[i] - '0') * 10 + digits[i + 1] - '0');
    };
    if (pair(0) < 24 && pair(2) < 60 && pair(4) < 60) {
      held.set(pair(0) * 3600 + pair(2) * 60 + pair(4));
    }
  }
  return held;
}

void AppendTwoDigits(std::string* out, int number) {
  out->push_back(static_cast<char>('0' + number / 10));
  out->push_back(static_cast<char>('0' + number % 10));
}

}  // namespace

std::optional<std::string> ChooseBoundary(const LocalTime& now, std::string_view file) {
  const std::bitset<kSecondsOfDay> held = BoundariesIn(file);
  // A leap second counts as the one before.
  const int start = now.hour * 3600 + now.minute * 60 + std::min(now.second, 59);
  for (int i = 0; i < kSecondsOfDay; ++i) {
    const int second = (start + i) % kSecondsOfDay;
    if (held.test(static_cast<size_t>(second))) continue;
    std::string boundary(kDashes);
    boundary += kName;
    AppendTwoDigits(&boundary, second / 3600);
    AppendTwoDigits(&boundary, second / 60 % 60);
    AppendTwoDigits(&boundary, second % 60);
    return boundary;
  }
  return std::nullopt;
}

std::string HeaderFileName(std::u16string_view name) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string out;
  for (const char c : Utf16ToUtf8(name)) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || c == '"' || c == '\\') {
      out.push_back('%');
      out.push_back(kHex[byte >> 4]);
      out.push_back(kHex[byte & 15]);
    } else {
      out.push_back(c);
    }
  }
  return out;
}

std::string MultipartHead(std::string_view boundary, std::string_view field,
                          std::string_view header_name) {
  std::string head = "--";
  head.append(boundary).append("\r\nContent-Disposition: form-data; name=\"").append(field);
  head.append("\"; filename=\"").append(header_name);
  head.append("\"\r\nContent-Type: application/octet-stream\r\n\r\n");
  return head;
}

std::string MultipartTail(std::string_view boundary) {
  return "--" + std::string(boundary) + "--\r\n";
}

}  // namespace kerno
