#include "app/glyph_source.h"

#include <unordered_map>
#include <utility>

#include "app/face_choice.h"
#include "app/stroke_fonts.h"
#include "app/text_source.h"
#include "base/text.h"
#include "drawing/strokes.h"
#include "outline/font_details.h"
#include "outline/scripts.h"
#include "outline/shaping_font.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

constexpr double kSameStroke = 1e-6;  // of an em; strokes that lie closer count as one

// Circles that lean or are stretched are none.
bool KeepsCircles(const CutJob& job) {
  return job.slant == 0 && job.size.by != CutSize::By::kStretch;
}

class OutlineFonts final : public GlyphSource {
 public:
  Status Open(const CutJob& job) {
    for (size_t i = 0; i <= job.fallbacks.size(); ++i) {
      FontData data;
      std::u16string lacked;
      Status found = i == 0 ? FindFace(job.face, &data)
                            : FindFallback(job.fallbacks[i - 1], StyleOf(job.face), &data, &lacked);
      if (!found.ok()) return found;
      lacked_styles_.push_back(std::move(lacked));
      no_embedding_.push_back(ForbidsOutlines(data));
      if (Status opened = ShapingFont::Open(data, &fonts_.emplace_back()); !opened.ok()) {
        return opened;
      }
      choices_.push_back(fonts_.back().get());
    }
    return Status::Ok();
  }

  Status Check(std::u16string_view) const override { return Status::Ok(); }
  bool HoldsStrokes() const override { return false; }
  const std::u16string& Family() const override { return fonts_[0]->data().family; }
  double UnitsPerEm() const override { return fonts_[0]->units_per_em(); }
  double CapHeight() const override { return fonts_[0]->cap_height(); }

  TextBlock Set(std::u16string_view text, const BlockOptions& options) const override {
    return SetBlock(choices_, text, options);
  }
  const std::vector<Path>& PathsOf(size_t font, uint32_t glyph) const override {
    return fonts_[font]->Outline(glyph);
  }
  std::vector<CutFace> FacesOf(const TextBlock& block) const override {
    std::vector<CutFace> faces;
    for (size_t i = 0; i < fonts_.size(); ++i) {
      const FontData& data = fonts_[i]->data();
      faces.push_back({.family = data.family,
                       .style = data.style,
                       .file = data.path,
                       .variations = data.variations,
                       .characters = block.substituted[i],
                       .made_bold = data.make_bold,
                       .made_slanted = data.make_slanted,
                       .lacked_style = lacked_styles_[i],
                       .no_embedding = no_embedding_[i]});
      if (i == 0) faces[0].no_features = fonts_[0]->FeaturesWithoutRules();
    }
    return faces;
  }

 private:
  // The style that the first face is asked for, or that of a face named whole.
  std::u16string StyleOf(const FaceRequest& request) const {
    const FontData& first = fonts_[0]->data();
    constexpr int32_t kLeastBold = 650;
    const bool marked = first.weight >= kLeastBold || first.slanted;
    return request.style.empty() && marked ? first.style : request.style;
  }

  // In the style of the first one, where it has that; *lacked is the style where it has not.
  static Status FindFallback(const std::u16string& family, const std::u16string& style,
                             FontData* data, std::u16string* lacked) {
    Status found = FindFontData({.family = family, .style = style}, data);
    if (found.ok() || found.failure != Failure::kNotFound) return found;
    *lacked = style;
    found = FindFace({.family = family}, data);
    if (!found.ok()) found.what = u"--fallback";
    return found;
  }

  std::vector<std::u16string> lacked_styles_;
  std::vector<bool> no_embedding_;
  std::vector<std::unique_ptr<ShapingFont>> fonts_;
  std::vector<const ShapingFont*> choices_;
};

class Strokes final : public GlyphSource {
 public:
  Status Open(const CutJob& job) {
    if (job.offset != 0) {
      return Status::Error(Failure::kOther, u"offset",
                           u"strokes have no outside: an offset needs a font of outlines");
    }
    if (Status found = ChooseStrokeFont(job.stroke_font, &chosen_); !found.ok()) return found;
    keeps_circles_ = KeepsCircles(job);
    return Status::Ok();
  }

  // Names the first character of the text whose strokes cannot be read.
  Status Check(std::u16string_view text) const override {
    for (const ComposedCharacter& character : ComposedCharacters(text)) {
      const char32_t ch = character.ch;
      if (ch == U'\n' || ch == U'\r' || IsIgnorable(ch)) continue;
      const StrokeGlyph& glyph = chosen_.font.glyphs[chosen_.font.GlyphOf(ch)];
      if (glyph.bad_line == 0) continue;
      const std::string line = std::to_string(glyph.bad_line), code = CodeOf(ch);
      return Status::Error(
          Failure::kOther,
          PathText(chosen_.file) + u", line " + std::u16string(line.begin(), line.end()),
          std::u16string(code.begin(), code.end()) + u": " + glyph.fault);
    }
    return Status::Ok();
  }

  bool HoldsStrokes() const override { return true; }
  const std::u16string& Family() const override { return chosen_.font.family; }
  double UnitsPerEm() const override { return chosen_.font.units_per_em; }
  double CapHeight() const override { return chosen_.font.cap_height; }

  TextBlock Set(std::u16string_view text, const BlockOptions& options) const override {
    return SetStrokeBlock(chosen_.font, text, options);
  }
  const std::vector<Path>& PathsOf(size_t, uint32_t glyph) const override {
    const auto [kept, is_new] = drawn_.try_emplace(glyph);
    if (is_new) {
      kept->second =
          DrawnOnce(chosen_.font.glyphs[glyph].strokes, kSameStroke * chosen_.font.units_per_em);
      if (!keeps_circles_) {
        for (Path& path : kept->second) path = WithoutArcs(path);
      }
    }
    return kept->second;
  }
  std::vector<CutFace> FacesOf(const TextBlock&) const override {
    return {{.family = chosen_.font.family, .style = u"", .file = chosen_.file}};
  }

 private:
  ChosenStrokeFont chosen_;
  bool keeps_circles_ = true;
  mutable std::unordered_map<uint32_t, std::vector<Path>> drawn_;
};

template <class Source>
Status OpenAs(const CutJob& job, std::unique_ptr<GlyphSource>* source) {
  auto opened = std::make_unique<Source>();
  if (Status status = opened->Open(job); !status.ok()) return status;
  *source = std::move(opened);
  return Status::Ok();
}

}  // namespace

std::u16string GlyphSource::KeyOf(const CutJob& job) {
  std::u16string key;
  const auto add = [&key](std::u16string_view part) { key.append(part).push_back(u'\0'); };
  add(job.face.family);
  add(job.face.style);
  add(PathText(job.face.file));
  const std::string rest = (job.face.index ? std::to_string(*job.face.index) : "") + '\0' +
                           job.face.variations + '\0' + job.face.features;
  add(Utf8ToUtf16Lossy(rest));
  for (const std::u16string& family : job.fallbacks) add(family);
  if (job.stroke_font.empty()) return key;
  add(job.stroke_font);
  add(KeepsCircles(job) ? u"round" : u"");
  add(job.offset != 0 ? u"offset" : u"");
  return key;
}

Status GlyphSource::Open(const CutJob& job, std::unique_ptr<GlyphSource>* source) {
  return job.stroke_font.empty() ? OpenAs<OutlineFonts>(job, source) : OpenAs<Strokes>(job, source);
}

}  // namespace kerno
