// The options that name a face.
#pragma once

#include <optional>

#include "app/face_texts.h"
#include "cli/command.h"

namespace kerno {

// Who draws the letters, and so, how a face can be named.
enum class FaceSource {
  kFont,    // the font's own outlines: by every option
  kSystem,  // the system's device context: by family, weight and slant; other options are refused
};
void AddFaceOptions(CLI::App& app, FaceSource source, FaceTexts* texts);

// The face of a command that has the system draw it.
class FaceOptions {
 public:
  void AddTo(CLI::App& app);

  // Checks the values; what is wrong is reported, a font's own option with a word on why.
  std::optional<FaceRequest> Read() const;

  // Whether the choice is left to the system.
  bool IsOpen() const { return texts_.IsOpen(); }

 private:
  bool IsRefused() const;

  CLI::App* app_ = nullptr;
  FaceTexts texts_;
};

}  // namespace kerno
