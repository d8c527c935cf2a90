// A text with the options of a cut, the drawing that is made of them when it is first asked for,
// and what a caller may know of it.
//
// Coordinates are in the drawing's unit, y up. One thread at a time: `mutex` is for those who have
// several.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "api/outcome.h"
#include "app/cut_texts.h"

namespace kerno {

class Sign {
 public:
  std::mutex mutex;

  Outcome SetText(std::string_view utf8);
  // The option by its name, with the hyphens or without. A value changes nothing when this fails.
  Outcome Set(std::string_view option, std::string value);
  Outcome Unset(std::string_view option);

  // Nothing is done where nothing has changed since it was made.
  Outcome Make();

  // All of them make the drawing. What they fill is set on success only.
  Outcome Tell(KernoFacts* facts);
  Outcome TellPath(uint64_t path, KernoPath* about);
  Outcome Segments(uint64_t path, std::vector<KernoSegment>* segments);
  Outcome Points(uint64_t path, double tolerance, std::vector<KernoPoint>* points);
  Outcome LayerName(uint64_t layer, std::string* name);
  Outcome Warning(uint64_t warning, std::string* text);

  // `format` is empty where the file's extension tells it.
  Outcome Write(const std::string& file, const std::string& format);

 private:
  // A path where it stands.
  struct Placed {
    const ShapePath* path = nullptr;
    P2 at;
    size_t layer = 0;
  };
  Outcome Read(const WantsFormat& wants, std::vector<Message>* messages, DrawingStyle* style);
  Outcome MakeDrawing();
  void ListPaths(const DrawingStyle& style);
  // Makes the drawing; fails where it has no such path.
  Outcome CheckPath(uint64_t path);
  void Changed();

  std::u16string text_;
  CutTexts texts_;
  bool strict_ = false;

  bool is_made_ = false;
  CutJob job_;
  CutWorkshop workshop_;  // keeps fonts warm for the next text
  CutDrawing made_;
  std::vector<Placed> paths_;  // in made_
  std::vector<DrawingLayer> layers_;
  std::vector<std::string> warnings_;        // of the drawing
  std::vector<std::string> write_warnings_;  // of the last file
};

// The options of a sign as kerno_set takes them, each once.
std::vector<std::string> SignOptions();

}  // namespace kerno
