#include "outline/shaping_font.h"

#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <charconv>
#include <new>
#include <unordered_map>
#include <utility>

#include "base/text.h"
#include "outline/made_style.h"
#include "platform/memory_watch.h"

namespace kerno {
namespace {

// Collects what HarfBuzz draws; it closes every contour by a line where the font leaves a gap.
class PathPen {
 public:
  std::vector<Path> Take() {
    Finish();
    return std::move(paths_);
  }

  void MoveTo(P2 p) {
    Finish();
    path_.start = p;
  }
  void Add(SegmentKind kind, P2 end, P2 first = {}, P2 second = {}) {
    path_.segments.push_back({kind, end, first, second});
  }

 private:
  void Finish() {
    if (!path_.segments.empty()) paths_.push_back(std::move(path_));
    path_ = {};
  }

  std::vector<Path> paths_;
  Path path_;
};

PathPen& PenOf(void* data) {
  return *static_cast<PathPen*>(data);
}

hb_draw_funcs_t* MakeDrawFunctions() {
  hb_draw_funcs_t* functions = hb_draw_funcs_create();
  hb_draw_funcs_set_move_to_func(
      functions,
      [](hb_draw_funcs_t*, void* pen, hb_draw_state_t*, float x, float y, void*) {
        PenOf(pen).MoveTo({x, y});
      },
      nullptr, nullptr);
  hb_draw_funcs_set_line_to_func(
      functions,
      [](hb_draw_funcs_t*, void* pen, hb_draw_state_t*, float x, float y, void*) {
        PenOf(pen).Add(SegmentKind::kLine, {x, y});
      },
      nullptr, nullptr);
  hb_draw_funcs_set_quadratic_to_func(
      functions,
      [](hb_draw_funcs_t*, void* pen, hb_draw_state_t*, float x1, float y1, float x, float y,
         void*) {
        PenOf(pen).Add(SegmentKind::kQuadratic, {x, y}, {x1, y1});
      },
      nullptr, nullptr);
  hb_draw_funcs_set_cubic_to_func(
      functions,
      [](hb_draw_funcs_t*, void* pen, hb_draw_state_t*, float x1, float y1, float x2, float y2,
         float x, float y, void*) {
        PenOf(pen).Add(SegmentKind::kCubic, {x, y}, {x1, y1}, {x2, y2});
      },
      nullptr, nullptr);
  hb_draw_funcs_make_immutable(functions);
  return functions;
}

// The parts of a list with commas, without blanks around them; empty ones are left out.
std::vector<std::string> PartsOf(std::string_view list) {
  std::vector<std::string> parts;
  std::string part;
  for (const char c : std::string(list) + ",") {
    if (c != ',') {
      if (c != ' ' || !part.empty()) part.push_back(c);
      continue;
    }
    while (part.ends_with(' ')) part.pop_back();
    if (!part.empty()) parts.push_back(std::move(part));
    part.clear();
  }
  return parts;
}

// Reads each part of the list by one of HarfBuzz's readers.
template <class Read, class Item>
Status ReadList(std::string_view list, const char16_t* what, const char16_t* looks,
                const Read& read, std::vector<Item>* items) {
  for (const std::string& part : PartsOf(list)) {
    Item item;
    if (!read(part.data(), static_cast<int>(part.size()), &item)) {
      return Status::Error(
          Failure::kOther, what,
          u"\"" + Utf8ToUtf16Lossy(part) + u"\" cannot be read; it looks like " + looks);
    }
    items->push_back(item);
  }
  return Status::Ok();
}

Status ReadFeatures(std::string_view text, std::vector<hb_feature_t>* features) {
  return ReadList(text, u"features", u"liga=0 or ss01: a tag of four letters",
                  hb_feature_from_string, features);
}

Status ReadVariations(std::string_view text, std::vector<hb_variation_t>* variations) {
  return ReadList(text, u"variation", u"wght=650: the tag of an axis and a number",
                  hb_variation_from_string, variations);
}

std::string TagText(hb_tag_t tag) {
  char text[4];
  hb_tag_to_string(tag, text);
  return {text, sizeof text};
}

std::u16string NumberText(float number) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  return {digits, end};
}

std::vector<hb_ot_var_axis_info_t> AxesOf(hb_face_t* face) {
  unsigned count = hb_ot_var_get_axis_count(face);
  std::vector<hb_ot_var_axis_info_t> axes(count);
  hb_ot_var_get_axis_infos(face, 0, &count, axes.data());
  return axes;
}

// "wght 100 to 900, slnt -10 to 0".
std::u16string AxisList(const std::vector<hb_ot_var_axis_info_t>& axes) {
  std::u16string text;
  for (const hb_ot_var_axis_info_t& axis : axes) {
    text += (text.empty() ? u"" : u", ") + Utf8ToUtf16Lossy(TagText(axis.tag)) + u" " +
            NumberText(axis.min_value) + u" to " + NumberText(axis.max_value);
  }
  return text;
}

std::vector<hb_tag_t> FeatureTags(hb_face_t* face, hb_tag_t table) {
  unsigned count = hb_ot_layout_table_get_feature_tags(face, table, 0, nullptr, nullptr);
  std::vector<hb_tag_t> tags(count);
  hb_ot_layout_table_get_feature_tags(face, table, 0, &count, tags.data());
  tags.resize(count);
  return tags;
}

// Puts the font where its instance is and then where the request's variations are.
Status SetPlaces(const FontData& data, hb_font_t* font) {
  hb_face_t* face = hb_font_get_face(font);
  std::vector<hb_variation_t> variations;
  if (Status read = ReadVariations(data.variations, &variations); !read.ok()) return read;
  if (data.instance > 0) hb_font_set_var_named_instance(font, data.instance - 1);
  if (variations.empty()) return Status::Ok();
  const std::vector<hb_ot_var_axis_info_t> axes = AxesOf(face);
  if (axes.empty()) {
    return Status::Error(Failure::kNotFound, u"variation",
                         u"\"" + data.family + u"\" is no variable font: it has no axes");
  }
  std::vector<float> places;
  places.reserve(axes.size());
  for (const hb_ot_var_axis_info_t& axis : axes) places.push_back(axis.default_value);
  auto count = static_cast<unsigned>(places.size());
  if (data.instance > 0) {
    hb_ot_var_named_instance_get_design_coords(face, data.instance - 1, &count, places.data());
  }
  for (const hb_variation_t& wanted : variations) {
    const auto axis = std::ranges::find(axes, wanted.tag, &hb_ot_var_axis_info_t::tag);
    if (axis == axes.end() || !(wanted.value >= axis->min_value) ||
        !(wanted.value <= axis->max_value)) {
      return Status::Error(Failure::kNotFound, u"variation",
                           u"\"" + data.family + u"\" has no " +
                               Utf8ToUtf16Lossy(TagText(wanted.tag)) + u" " +
                               NumberText(wanted.value) + u"; its axes are " + AxisList(axes));
    }
    places[static_cast<size_t>(axis - axes.begin())] = wanted.value;
  }
  hb_font_set_var_coords_design(font, places.data(), static_cast<unsigned>(places.size()));
  return Status::Ok();
}

hb_direction_t DirectionOf(ShapeDirection direction) {
  switch (direction) {
    case ShapeDirection::kRightToLeft:
      return HB_DIRECTION_RTL;
    case ShapeDirection::kTopToBottom:
      return HB_DIRECTION_TTB;
    case ShapeDirection::kLeftToRight:
      break;
  }
  return HB_DIRECTION_LTR;
}

// Whether the characters before and after a place of the line may be joined by a stroke,
// or in a syllable.
bool JoinsAt(const ShapingRun& run, size_t place) {
  if (place == 0 || place >= run.line.size()) return false;
  constexpr char16_t kJoiner = 0x200D;
  const bool joiner = place > 1 && run.line[place - 1] == kJoiner;
  if (LinksLetters(run.line[place - (joiner ? 2 : 1)])) {
    return ScriptOf(run.line[place]) == run.script;
  }
  if (!IsCursive(run.script)) return false;
  const auto is_letter = [&](char16_t unit) {
    constexpr char16_t kTatweel = 0x0640;                  // lengthens a stroke
    const bool of_pair = unit >= 0xD800 && unit < 0xE000;  // those scripts' own, in such a run
    const Script script = ScriptOf(unit);
    return of_pair || script == run.script || script == kInheritedScript || unit == kTatweel;
  };
  return is_letter(run.line[place - 1]) && is_letter(run.line[place]);
}

}  // namespace

Status CheckFeatures(std::string_view features) {
  std::vector<hb_feature_t> read;
  return ReadFeatures(features, &read);
}

Status CheckVariations(std::string_view variations) {
  std::vector<hb_variation_t> read;
  return ReadVariations(variations, &read);
}

struct ShapingFont::Handles {
  hb_blob_t* blob = nullptr;
  hb_face_t* face = nullptr;
  hb_font_t* font = nullptr;
  hb_buffer_t* buffer = nullptr;
  hb_draw_funcs_t* draw = nullptr;
  std::vector<hb_feature_t> features;
  std::unordered_map<uint32_t, std::vector<Path>> outlines;

  Handles() = default;
  ~Handles() {
    hb_draw_funcs_destroy(draw);
    hb_buffer_destroy(buffer);
    hb_font_destroy(font);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
  }
  Handles(const Handles&) = delete;
  Handles& operator=(const Handles&) = delete;
};

Status ShapingFont::Open(const FontData& data, std::unique_ptr<ShapingFont>* font) {
  const MemoryWatch watch;
  auto handles = std::make_unique<Handles>();
  const std::string_view bytes = data.file->bytes();
  handles->blob = hb_blob_create(bytes.data(), static_cast<unsigned>(bytes.size()),
                                 HB_MEMORY_MODE_READONLY, nullptr, nullptr);
  handles->face = hb_face_create(handles->blob, data.index);
  if (hb_face_get_glyph_count(handles->face) == 0) {
    watch.Check();
    return Status::Error(Failure::kOther, data.family, u"its file holds no font that can be read");
  }
  handles->font = hb_font_create(handles->face);
  if (Status set = SetPlaces(data, handles->font); !set.ok()) return set;
  if (Status read = ReadFeatures(data.features, &handles->features); !read.ok()) return read;
  if (data.make_slanted) hb_font_set_synthetic_slant(handles->font, static_cast<float>(kMadeSlant));
  handles->buffer = hb_buffer_create();
  handles->draw = MakeDrawFunctions();
  font->reset(new ShapingFont(data, std::move(handles)));
  watch.Check();
  return Status::Ok();
}

ShapingFont::ShapingFont(FontData data, std::unique_ptr<Handles> handles)
    : data_(std::move(data)), handles_(std::move(handles)) {
  units_per_em_ = hb_face_get_upem(handles_->face);
  if (data_.make_bold) bold_ = units_per_em_ * kBoldShare;
  MeasureCapitals();
  if (cap_height_ > 0) cap_height_ += 2 * bold_;
}

void ShapingFont::MeasureCapitals() {
  hb_position_t height = 0;
  if (hb_ot_metrics_get_position(handles_->font, HB_OT_METRICS_TAG_CAP_HEIGHT, &height) &&
      height > 0) {
    cap_height_ = height;
    return;
  }
  hb_codepoint_t glyph = 0;
  hb_glyph_extents_t ink{};
  if (hb_font_get_nominal_glyph(handles_->font, U'H', &glyph) &&
      hb_font_get_glyph_extents(handles_->font, glyph, &ink)) {
    cap_height_ = std::max(0, ink.y_bearing);
  }
}

ShapingFont::~ShapingFont() = default;

double ShapingFont::line_pitch(WritingMode mode) const {
  hb_font_extents_t extents{};
  if (mode == WritingMode::kVertical) {
    hb_font_get_v_extents(handles_->font, &extents);
  } else {
    hb_font_get_h_extents(handles_->font, &extents);
  }
  const double pitch = extents.ascender - extents.descender + extents.line_gap;
  return pitch > 0 ? pitch : units_per_em_;
}

std::vector<std::string> ShapingFont::FeaturesWithoutRules() const {
  std::vector<std::string> known = {"kern"};  // which has a table of its own in older fonts
  for (const hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
    for (const hb_tag_t tag : FeatureTags(handles_->face, table)) known.push_back(TagText(tag));
  }
  std::vector<std::string> without;
  for (const hb_feature_t& feature : handles_->features) {
    const std::string name = TagText(feature.tag);
    if (std::ranges::find(known, name) == known.end()) without.push_back(name);
  }
  return without;
}

double ShapingFont::middle() const {
  hb_font_extents_t extents{};
  hb_font_get_h_extents(handles_->font, &extents);
  return (extents.ascender + extents.descender) / 2.0;
}

std::vector<ShapedGlyph> ShapingFont::Shape(const ShapingRun& run) const {
  const MemoryWatch watch;
  hb_buffer_t* buffer = handles_->buffer;
  hb_buffer_reset(buffer);
  hb_buffer_set_flags(buffer, HB_BUFFER_FLAG_REMOVE_DEFAULT_IGNORABLES);
  hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(run.line.data()),
                      static_cast<int>(run.line.size()), static_cast<unsigned>(run.start),
                      static_cast<int>(run.length));
  hb_buffer_set_direction(buffer, DirectionOf(run.direction));
  hb_buffer_set_script(buffer, hb_script_from_iso15924_tag(run.script));
  hb_buffer_set_language(
      buffer, hb_language_from_string(run.language.data(), static_cast<int>(run.language.size())));
  const auto off = [](const char* feature) {
    return hb_feature_t{hb_tag_from_string(feature, -1), 0, HB_FEATURE_GLOBAL_START,
                        HB_FEATURE_GLOBAL_END};
  };
  std::vector<hb_feature_t> features;
  if (run.spacing != 0) features = {off("liga"), off("clig")};
  features.insert(features.end(), handles_->features.begin(), handles_->features.end());
  hb_shape(handles_->font, buffer, features.data(), static_cast<unsigned>(features.size()));

  watch.Check();
  if (!hb_buffer_allocation_successful(buffer)) throw std::bad_alloc();
  unsigned count = 0;
  const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
  const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
  const double added = run.spacing + 2 * bold_;  // bold letters keep the gaps of lighter ones
  const bool leftwards = run.direction == ShapeDirection::kRightToLeft;
  std::vector<ShapedGlyph> glyphs;
  glyphs.reserve(count);
  for (unsigned i = 0; i < count; ++i) {
    const hb_glyph_position_t& at = positions[i];
    ShapedGlyph glyph = {infos[i].codepoint,
                         infos[i].cluster,
                         {static_cast<double>(at.x_offset), static_cast<double>(at.y_offset)},
                         {static_cast<double>(at.x_advance), static_cast<double>(at.y_advance)}};
    const bool ends_cluster = i + 1 == count || infos[i + 1].cluster != infos[i].cluster;
    if (added != 0 && ends_cluster) {
      const size_t next = i + 1 < count ? infos[i + 1].cluster : run.start + run.length;
      if (!JoinsAt(run, leftwards ? infos[i].cluster : next)) {
        const bool down = run.direction == ShapeDirection::kTopToBottom;
        (down ? glyph.advance.y : glyph.advance.x) += down ? -added : added;
      }
    }
    glyphs.push_back(glyph);
  }
  return glyphs;
}

bool ShapingFont::HasGlyph(char32_t ch) const {
  const MemoryWatch watch;
  hb_codepoint_t glyph = 0;
  const bool has = hb_font_get_nominal_glyph(handles_->font, ch, &glyph) != 0;
  watch.Check();
  return has;
}

bool ShapingFont::HasVerticalForm(char32_t ch) const {
  std::u16string text;
  AppendCharacter(&text, ch);
  const std::vector<ShapedGlyph> shaped = Shape({.line = text,
                                                 .length = text.size(),
                                                 .direction = ShapeDirection::kTopToBottom,
                                                 .script = ScriptOf(ch)});
  hb_codepoint_t glyph = 0;
  return shaped.size() == 1 && hb_font_get_nominal_glyph(handles_->font, ch, &glyph) &&
         shaped[0].glyph != glyph;
}

const std::vector<Path>& ShapingFont::Outline(uint32_t glyph) const {
  const auto [kept, is_new] = handles_->outlines.try_emplace(glyph);
  if (is_new) {
    const MemoryWatch watch;
    PathPen pen;
    hb_font_get_glyph_shape(handles_->font, glyph, handles_->draw, &pen);
    watch.Check();
    kept->second = pen.Take();
    if (bold_ > 0) {
      constexpr double kFineness = 20000;  // to an em
      kept->second = Emboldened(kept->second, bold_, units_per_em_ / kFineness);
    }
  }
  return kept->second;
}

}  // namespace kerno
