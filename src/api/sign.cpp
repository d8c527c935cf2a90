#include "api/sign.h"

#include <algorithm>
#include <cmath>

#include "app/cut_warnings.h"
#include "app/option_values.h"
#include "app/output_list.h"
#include "base/nearest_names.h"
#include "base/notices.h"
#include "base/text.h"
#include "drawing/flatten.h"
#include "drawing/segment.h"

namespace kerno {
namespace {

constexpr std::string_view kHyphens = "--", kStrict = "--strict";

std::string WithHyphens(std::string_view option) {
  const std::string_view hyphens = option.starts_with(kHyphens) ? "" : kHyphens;
  return std::string(hyphens).append(option);
}

bool IsFlag(std::string_view option) {
  bool is_flag = option == kStrict;
  CutTexts().ForEachFlag([&](const char* name, const bool*) { is_flag |= name == option; });
  return is_flag;
}

// Says that there is no such option, and which one may have been meant.
Outcome NoSuchOption(std::string_view option) {
  std::vector<std::u16string> names;
  for (const std::string& name : SignOptions()) names.push_back(Utf8ToUtf16Lossy(name));
  std::string why = "is no option of a sign";
  const std::string_view bare =
      option.starts_with(kHyphens) ? option.substr(kHyphens.size()) : option;
  const std::u16string wanted = Utf8ToUtf16Lossy(bare);
  for (const std::u16string& name : NearestNames(wanted, names, 1)) {
    const bool is_near = 2 * EditDistance(wanted, name) < name.size();
    if (is_near) why += "; the nearest is \"" + Utf16ToUtf8(name) + "\"";
  }
  return Outcome::Bad("\"" + std::string(option) + "\"", why);
}

std::string TooLarge(uint64_t number, size_t count, const char* one, const char* many) {
  return std::to_string(number) + " is beyond the last one: there " +
         (count == 1 ? "is " : "are ") + CountedText(count, one, many) + ", counted from 0";
}

KernoPoint PointOf(const P2& point) {
  return {point.x, point.y};
}

KernoSegment SegmentOf(const Piece& piece, const P2& at) {
  KernoSegment out = {};
  out.kind = KERNO_LINE;
  out.start = PointOf(piece.start + at);
  out.end = PointOf(piece.segment.end + at);
  if (piece.segment.kind == SegmentKind::kArc) {
    if (piece.segment.bulge == 0) return out;
    out.kind = KERNO_ARC;
    out.centre = PointOf(CentreOf(piece) + at);
    out.bulge = piece.segment.bulge;
  } else if (piece.segment.kind != SegmentKind::kLine) {
    const Segment cubic = AsCubic(piece);
    out.kind = KERNO_CUBIC;
    out.control1 = PointOf(cubic.first + at);
    out.control2 = PointOf(cubic.second + at);
  }
  return out;
}

// Keeps what the writers of files tell.
class KeptNotices final : public Notices {
 public:
  explicit KeptNotices(std::vector<std::string>* texts) : texts_(*texts) {}

  void Message(std::u16string_view text) override { texts_.push_back(Utf16ToUtf8(text)); }
  void ShowWait(std::u16string_view) override {}
  void ClearWait() override {}
  Continue Progress(std::u16string_view, int64_t, int64_t) override { return Continue::kYes; }

 private:
  std::vector<std::string>& texts_;
};

void AppendWarnings(const std::vector<Message>& messages, std::vector<std::string>* warnings) {
  for (const Message& message : messages) {
    if (message.is_warning) warnings->push_back(LineOf(message));
  }
}

}  // namespace

std::vector<std::string> SignOptions() {
  std::vector<std::string> names;
  CutTexts texts;
  const auto add = [&](std::string_view option) {
    const std::string_view name = option.substr(kHyphens.size());
    if (std::ranges::find(names, name) == names.end()) names.emplace_back(name);
  };
  texts.ForEachText([&](const char* option, const std::string*) { add(option); });
  add("--fallback");
  texts.ForEachFlag([&](const char* option, const bool*) { add(option); });
  add(kStrict);
  return names;
}

void Sign::Changed() {
  is_made_ = false;
  paths_.clear();
  warnings_.clear();
  write_warnings_.clear();
}

Outcome Sign::SetText(std::string_view utf8) {
  std::vector<Message> messages;
  const HeldMessages held(&messages);
  auto text = TextArgument("text", utf8);
  if (!text) return Outcome::Of(messages, KERNO_BAD_CALL);
  Changed();
  text_ = std::move(*text);
  return Outcome::Ok();
}

Outcome Sign::Set(std::string_view option, std::string value) {
  const std::string name = WithHyphens(option);
  if (IsFlag(name)) {
    if (value != "on" && value != "off") {
      return Outcome::Bad(name, "\"" + value + "\" is neither \"on\" nor \"off\"");
    }
    if (value == "off") return Unset(option);
  }
  if (name == kStrict) {
    strict_ = true;
  } else if (!texts_.Set(name, std::move(value))) {
    return NoSuchOption(option);
  }
  Changed();
  return Outcome::Ok();
}

Outcome Sign::Unset(std::string_view option) {
  const std::string name = WithHyphens(option);
  const std::vector<std::string> known = SignOptions();
  if (std::ranges::find(known, std::string_view(name).substr(kHyphens.size())) == known.end()) {
    return NoSuchOption(option);
  }
  if (name == kStrict) {
    strict_ = false;
  } else {
    texts_.Unset(name);
  }
  Changed();
  return Outcome::Ok();
}

Outcome Sign::Read(const WantsFormat& wants, std::vector<Message>* messages, DrawingStyle* style) {
  const HeldMessages held(messages);
  CutJob job;
  if (!ReadCut(texts_, wants, &job, style)) return Outcome::Of(*messages, KERNO_BAD_CALL);
  job_ = std::move(job);
  job_.text = text_;
  return Outcome::Ok();
}

Outcome Sign::Make() {
  return is_made_ ? Outcome::Ok() : MakeDrawing();
}

Outcome Sign::MakeDrawing() {
  if (text_.empty()) return Outcome::Bad("text", "holds no text");
  std::vector<Message> messages;
  DrawingStyle style;
  const auto none = [](std::string_view) { return false; };
  if (Outcome read = Read(none, &messages, &style); !read.ok()) return read;
  if (const Status made = workshop_.Make(job_, &made_); !made.ok()) return Outcome::Of(made);
  const HeldMessages held(&messages);
  if (!ReportOnCut(made_, strict_)) return Outcome::Of(messages, KERNO_NO_FACE);
  ListPaths(style);
  warnings_.clear();
  AppendWarnings(messages, &warnings_);
  is_made_ = true;
  return Outcome::Ok();
}

// Layer after layer, as files have them.
void Sign::ListPaths(const DrawingStyle& style) {
  const Drawing& drawing = made_.drawing;
  const DrawingLayers layers(drawing, style);
  layers_ = layers.all();
  paths_.clear();
  for (size_t layer = 0; layer < layers_.size(); ++layer) {
    const auto [first, last] = layers.PlacedOn(layer);
    for (size_t n = first; n < last; ++n) {
      const PlacedShape& placed = drawing.placed[n];
      for (const ShapePath& path : drawing.shapes[placed.shape]) {
        if (path.path.segments.empty() || layers.Of(placed, n, path) != layer) continue;
        paths_.push_back({&path, placed.at, layer});
      }
    }
  }
}

Outcome Sign::CheckPath(uint64_t path) {
  if (Outcome made = Make(); !made.ok()) return made;
  if (path >= paths_.size()) {
    return Outcome::Bad("path", TooLarge(path, paths_.size(), "path", "paths"));
  }
  return Outcome::Ok();
}

Outcome Sign::Tell(KernoFacts* facts) {
  if (Outcome made = Make(); !made.ok()) return made;
  const DrawingFacts& known = made_.facts;
  const bool blank = !(made_.ink.min.x <= made_.ink.max.x);
  const Box2 box = blank ? Box2{{0, 0}, {0, 0}} : made_.ink;
  KernoFacts out = {};
  out.paths = paths_.size();
  out.closed = known.closed;
  out.lines = known.lines;
  out.arcs = known.arcs;
  out.curves = known.curves;
  out.layers = layers_.size();
  out.warnings = warnings_.size() + write_warnings_.size();
  out.length = known.length;
  out.left = box.min.x;
  out.bottom = box.min.y;
  out.right = box.max.x;
  out.top = box.max.y;
  out.unit = made_.drawing.unit == LengthUnit::kInch ? KERNO_INCH : KERNO_MILLIMETRE;
  *facts = out;
  return Outcome::Ok();
}

Outcome Sign::TellPath(uint64_t path, KernoPath* about) {
  if (Outcome known = CheckPath(path); !known.ok()) return known;
  const Placed& placed = paths_[path];
  KernoPath out = {};
  out.segments = PiecesOf(placed.path->path).size();
  out.closed = placed.path->path.closed ? 1 : 0;
  out.depth = static_cast<int32_t>(placed.path->depth);
  out.layer = static_cast<int32_t>(placed.layer);
  out.colour = layers_[placed.layer].color;
  *about = out;
  return Outcome::Ok();
}

Outcome Sign::Segments(uint64_t path, std::vector<KernoSegment>* segments) {
  if (Outcome known = CheckPath(path); !known.ok()) return known;
  const Placed& placed = paths_[path];
  segments->clear();
  for (const Piece& piece : PiecesOf(placed.path->path)) {
    segments->push_back(SegmentOf(piece, placed.at));
  }
  return Outcome::Ok();
}

Outcome Sign::Points(uint64_t path, double tolerance, std::vector<KernoPoint>* points) {
  if (!(tolerance >= 0 && std::isfinite(tolerance))) {
    return Outcome::Bad("tolerance", "must be a length, or 0 for that of the sign");
  }
  if (Outcome known = CheckPath(path); !known.ok()) return known;
  const Placed& placed = paths_[path];
  constexpr double kFinest = 1e-5;  // as of the option
  if (tolerance > 0 && tolerance < kFinest) {
    return Outcome::Bad("tolerance", "is finer than drawings are: at least 0.00001");
  }
  std::vector<P2> corners;
  FlattenPath(placed.path->path, tolerance == 0 ? job_.tolerance : tolerance, &corners);
  points->clear();
  for (const P2& corner : corners) points->push_back(PointOf(corner + placed.at));
  return Outcome::Ok();
}

Outcome Sign::LayerName(uint64_t layer, std::string* name) {
  if (Outcome made = Make(); !made.ok()) return made;
  if (layer >= layers_.size()) {
    return Outcome::Bad("layer", TooLarge(layer, layers_.size(), "layer", "layers"));
  }
  *name = Utf16ToUtf8(layers_[layer].name);
  return Outcome::Ok();
}

Outcome Sign::Warning(uint64_t warning, std::string* text) {
  if (Outcome made = Make(); !made.ok()) return made;
  const size_t count = warnings_.size() + write_warnings_.size();
  if (warning >= count) {
    return Outcome::Bad("warning", TooLarge(warning, count, "warning", "warnings"));
  }
  *text =
      warning < warnings_.size() ? warnings_[warning] : write_warnings_[warning - warnings_.size()];
  return Outcome::Ok();
}

Outcome Sign::Write(const std::string& file, const std::string& format) {
  std::vector<Message> messages;
  std::optional<OutputFile> output;
  {
    const HeldMessages held(&messages);
    output = ReadOutput(file, format);
  }
  if (!output) return Outcome::Of(messages, KERNO_BAD_CALL);
  DrawingStyle style;
  const auto wants = [&](std::string_view extension) {
    return output->format->extension == extension;
  };
  if (Outcome read = Read(wants, &messages, &style); !read.ok()) return read;
  if (Outcome made = Make(); !made.ok()) return made;
  write_warnings_.clear();
  AppendWarnings(messages, &write_warnings_);
  KeptNotices notices(&write_warnings_);
  const NoticesHere here(&notices);
  const Status written = WriteCut(job_, made_, style, *output->format, PathArgument(file));
  if (written.ok()) return Outcome::Ok();
  Outcome failed = Outcome::Of(written);
  if (failed.result != KERNO_NO_MEMORY) failed.result = KERNO_FAILED;
  return failed;
}

}  // namespace kerno
