#include "app/face_texts.h"

#include <algorithm>
#include <charconv>

#include "app/option_values.h"
#include "app/reports.h"
#include "base/text.h"
#include "outline/shaping_font.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

// Reports what a reader of a list says, under the option's name.
bool IsReadable(const char* option, const Status& read) {
  if (!read.ok()) ReportError(option, Utf16ToUtf8(read.why));
  return read.ok();
}

}  // namespace

// "FILE#2" is the font 2 of FILE unless there is a file of that name.
bool ReadFontFile(const std::string& value, FaceRequest* request) {
  if (!IsFileName("--font-file", value)) return false;
  request->file = PathArgument(value);
  const size_t mark = value.rfind('#');
  if (mark == value.npos || PathExists(request->file)) return true;
  const std::string_view digits = std::string_view(value).substr(mark + 1);
  if (digits.empty() || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) {
    return true;
  }
  uint32_t index = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), index);
  if (read.ec != std::errc()) {
    ReportError("--font-file", "\"" + std::string(digits) + "\" is too large an index");
    return false;
  }
  request->file = PathArgument(value.substr(0, mark));
  request->index = index;
  return IsFileName("--font-file", value.substr(0, mark));
}

void FaceTexts::ForEachText(
    const std::function<void(const char* option, std::string* value)>& visit) {
  visit("--face", &face);
  visit("--style", &style);
  visit("--font-file", &file);
  visit("--variation", &variations);
  visit("--features", &features);
}

std::optional<FaceRequest> ReadFace(const FaceTexts& texts, const GivenOptions& given) {
  FaceRequest request;
  const auto face = TextArgument("--face", texts.face);
  const auto style = face ? TextArgument("--style", texts.style) : std::nullopt;
  if (!style) return std::nullopt;
  if (given.contains("--font-file") && !ReadFontFile(texts.file, &request)) return std::nullopt;
  if (!IsReadable("--variation", CheckVariations(texts.variations)) ||
      !IsReadable("--features", CheckFeatures(texts.features))) {
    return std::nullopt;
  }
  request.family = *face;
  request.style = *style;
  request.variations = texts.variations;
  request.features = texts.features;
  return request;
}

}  // namespace kerno
