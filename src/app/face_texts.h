// A face as the texts of the options that name it.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "platform/font_data.h"

namespace kerno {

// The options that were given a value, by name: what was not given has its default.
using GivenOptions = std::set<std::string, std::less<>>;

struct FaceTexts {
  std::string face, style, file, variations, features;

  // Calls `visit` with every value and its option, always in the same order.
  void ForEachText(const std::function<void(const char* option, std::string* value)>& visit);

  // Whether the choice is left to the system.
  bool IsOpen() const { return face.empty() && file.empty(); }
};

// Reads "FILE" or "FILE#2" of --font-file into `file` and `index`; what is wrong is reported.
[[nodiscard]] bool ReadFontFile(const std::string& value, FaceRequest* request);

// Checks the values; what is wrong is reported under the option's name.
std::optional<FaceRequest> ReadFace(const FaceTexts& texts, const GivenOptions& given);

}  // namespace kerno
