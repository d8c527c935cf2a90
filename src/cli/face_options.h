// The options that name a face.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "cli/command.h"
#include "platform/font_data.h"

namespace kerno {

// Reads "FILE" or "FILE#2" of --font-file into `file` and `index`; what is wrong is reported.
[[nodiscard]] bool ReadFontFile(const std::string& value, FaceRequest* request);

class FaceOptions {
 public:
  // Who draws the letters, and so, how a face can be named.
  enum class Source {
    kFont,    // the font's own outlines: by every option
    kSystem,  // the system's device context: by family, weight and slant; the other options are
              // refused with a word on why
  };
  void AddTo(CLI::App& app, Source source);

  // Calls `visit` with every value and its option, always in the same order.
  void ForEachText(const std::function<void(const char* option, std::string* value)>& visit);

  // Checks the values; what is wrong is reported.
  std::optional<FaceRequest> Read() const;

  // Whether the choice is left to the system.
  bool IsOpen() const { return face_.empty() && file_.empty(); }

 private:
  bool IsRefused() const;

  CLI::App* app_ = nullptr;
  Source source_ = Source::kFont;
  std::string face_, style_, file_, variations_, features_;
};

}  // namespace kerno
