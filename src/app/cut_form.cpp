#include "app/cut_form.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "app/captions.h"
#include "app/cut_controls.h"
#include "app/lengths.h"
#include "app/reports.h"
#include "base/number_text.h"
#include "base/text.h"
#include "drawing/drawing.h"

namespace kerno {
namespace {

using Id = ControlId;

constexpr ChoiceRow kAlignments[] = {{"left", u"Left"}, {"centre", u"Centre"}, {"right", u"Right"}};
constexpr ChoiceRow kDirections[] = {
    {"auto", u"As the text"}, {"ltr", u"Left to right"}, {"rtl", u"Right to left"}};
constexpr ChoiceRow kSizes[] = {{"cap-height", u"Cap height"}, {"em", u"Em"},
                                {"width", u"Width"},           {"height", u"Height"},
                                {"box", u"Width and height"},  {"stretch", u"Stretched to both"}};
constexpr ChoiceRow kUnits[] = {{"mm", u"mm"}, {"in", u"in"}, {"pt", u"pt"}};
constexpr ChoiceRow kWelds[] = {
    {"text", u"All letters"}, {"glyph", u"Within letters"}, {"off", u"Nothing"}};
constexpr ChoiceRow kCurveForms[] = {{"arcs", u"Arcs"}, {"lines", u"Lines"}, {"curves", u"Curves"}};
constexpr ChoiceRow kOrders[] = {{"inside-first", u"Inside first"}, {"text", u"As the text"}};
constexpr ChoiceRow kLayerRules[] = {{"one", u"One for all"},
                                     {"glyph", u"Each letter"},
                                     {"line", u"Each line"},
                                     {"depth", u"Inside and outside"}};
constexpr ChoiceRow kLooks[] = {
    {"filled", u"Filled"}, {"lines", u"Cut lines"}, {"nodes", u"Nodes"}};

constexpr std::pair<Id, std::span<const ChoiceRow>> kChoices[] = {
    {Id::kAlign, kAlignments}, {Id::kDirection, kDirections}, {Id::kSizeBy, kSizes},
    {Id::kSizeUnit, kUnits},   {Id::kWeld, kWelds},           {Id::kCurves, kCurveForms},
    {Id::kOrder, kOrders},     {Id::kLayerRule, kLayerRules}, {Id::kLook, kLooks}};

constexpr const char16_t* kColors[] = {u"Red",  u"Yellow",  u"Green", u"Cyan",
                                       u"Blue", u"Magenta", u"Black"};

// A field by the name that it is kept under, and what stands in it at first.
struct FieldRow {
  Id id;
  const char* name;
  const char16_t* start;
  bool is_length = false;
};
constexpr FieldRow kFields[] = {
    {Id::kAlign, "--align", u"left"},
    {Id::kDirection, "--direction", u"auto"},
    {Id::kCutVertical, "--vertical", u"off"},
    {Id::kLineSpacing, "--line-spacing", u"1"},
    {Id::kLetterSpacing, "--letter-spacing", u"0", true},
    {Id::kSizeBy, "size-by", u"cap-height"},
    {Id::kSizeUnit, "unit", u"mm"},
    {Id::kSizeWidth, "width", u"100", true},
    {Id::kSizeHeight, "height", u"20", true},
    {Id::kAngle, "--angle", u"0"},
    {Id::kSlant, "--slant", u"0"},
    {Id::kMirror, "--mirror", u"off"},
    {Id::kWeld, "--weld", u"text"},
    {Id::kOffset, "--offset", u"0", true},
    {Id::kCurves, "--curves", u"arcs"},
    {Id::kTolerance, "--tolerance", u"0.01", true},
    {Id::kOrder, "--order", u"inside-first"},
    {Id::kCutColor, "--colour", u"1"},
    {Id::kLayerRule, "--layers", u"one"},
    {Id::kLayerName, "--layer", u"Cut"},
    {Id::kSeriesNames, "names", u""},
    {Id::kSheets, "sheets", u"off"},
    {Id::kSheetSize, "sheet", u"600x400", true},
    {Id::kSheetGap, "gap", u"2", true},
    {Id::kSheetMargin, "margin", u"5", true},
    {Id::kSheetFrame, "frame", u"", true},
    {Id::kSheetPack, "pack", u"off"},
    {Id::kSheetNumbers, "numbers", u"off"},
    {Id::kLook, "look", u"filled"},
    {Id::kGrid, "grid", u"off"},
};

constexpr const char* kFaceOptions[] = {"--face", "--style", "--variation", "--font-file",
                                        "--stroke-font"};

double MillimetresOf(std::u16string_view unit) {
  return unit == u"in" ? kMillimetresPerInch : unit == u"pt" ? kMillimetresPerInch / 72 : 1;
}

// As an option has it: with a point where people type a comma, in small letters, and in half width
// where an input method gives full.
std::string Pointed(std::u16string_view text) {
  std::u16string plain;
  for (char16_t c : text) {
    if (c >= u'\uFF01' && c <= u'\uFF5E') c = static_cast<char16_t>(c - u'\uFF01' + u'!');
    if (c == u'\u3000') c = u' ';
    plain += c == u',' ? u'.' : c == u'×' ? u'*' : c == u'−' ? u'-' : c;
  }
  // The names of a list's columns are as they are.
  return Utf16ToUtf8(plain.find(u'{') == plain.npos ? AsciiLower(plain) : plain);
}

bool IsOfView(ControlId field) {
  return field == Id::kLook || field == Id::kGrid;
}

bool EndsInUnit(std::string_view text) {
  while (text.ends_with(' ')) text.remove_suffix(1);
  return !text.empty() && text.back() >= 'a' && text.back() <= 'z';
}

}  // namespace

ControlId FieldOf(std::string_view option) {
  for (const CutControlRow& row : CutControls()) {
    if (row.option && option == row.option) return row.id;
  }
  constexpr std::pair<std::string_view, Id> kOfSheets[] = {{"--sheet", Id::kSheetSize},
                                                           {"--gap", Id::kSheetGap},
                                                           {"--margin", Id::kSheetMargin},
                                                           {"--frame", Id::kSheetFrame}};
  for (const auto& [name, field] : kOfSheets) {
    if (option == name) return field;
  }
  const bool of_face = option == "--face" || option == "--font-file" || option == "--stroke-font";
  return of_face ? Id::kFaceList : Id::kSizeHeight;
}

std::u16string ReasonOf(const Message& message) {
  return SayReason(Utf8ToUtf16Lossy(message.why));
}

std::span<const ChoiceRow> ChoicesOf(ControlId list) {
  for (const auto& [id, rows] : kChoices) {
    if (id == list) return rows;
  }
  return {};
}

std::span<const char16_t* const> CutColors() {
  return kColors;
}

CutForm::CutForm() {
  for (const FieldRow& row : kFields) fields_[row.id] = row.start;
}

const std::u16string& CutForm::Text(ControlId control) const {
  static const std::u16string kNone;
  const auto found = fields_.find(control);
  return found == fields_.end() ? kNone : found->second;
}

void CutForm::Set(ControlId control, std::u16string_view text) {
  if (const auto found = fields_.find(control); found != fields_.end()) found->second = text;
}

size_t CutForm::ChosenOf(ControlId list) const {
  const std::string word = Utf16ToUtf8(Text(list));
  const auto rows = ChoicesOf(list);
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].word == word) return i;
  }
  return 0;
}

void CutForm::Choose(ControlId list, size_t index) {
  const auto rows = ChoicesOf(list);
  if (index < rows.size()) Set(list, Utf8ToUtf16Lossy(rows[index].word));
}

// The numbers of a length, or of a width and a height, times the scale; the text itself where it
// has a unit of its own or cannot be read.
std::u16string CutForm::InUnit(ControlId field, std::u16string_view text, double scale) const {
  const std::string pointed = Pointed(text);
  if (pointed.empty() || EndsInUnit(pointed)) return std::u16string(text);
  std::vector<Message> unread;
  const HeldMessages held(&unread);
  const auto rounded = [&](double value) {
    constexpr double kFinest = 1e5;  // of what is shown
    std::string shown;
    AppendShortest(&shown, std::round(value * scale * kFinest) / kFinest);
    return shown;
  };
  const bool is_pair = field == Id::kSheetSize || field == Id::kSheetFrame;
  if (const auto pair = is_pair ? ReadLengthPair("", pointed) : std::nullopt) {
    return Utf8ToUtf16Lossy(rounded(pair->width) + "x" + rounded(pair->height));
  }
  const auto length = is_pair ? std::nullopt : ReadLength("", pointed, LengthSign::kAny);
  return length ? Utf8ToUtf16Lossy(rounded(*length)) : std::u16string(text);
}

// What was typed comes back with its unit, so that nothing is rounded twice.
void CutForm::ChangeUnit(size_t index) {
  if (index >= std::size(kUnits)) return;
  const std::u16string before = Text(Id::kSizeUnit);
  const std::u16string after = Utf8ToUtf16Lossy(kUnits[index].word);
  for (const FieldRow& row : kFields) {
    if (!row.is_length) continue;
    Typed typed = {Text(row.id), before, {}};
    const auto known = typed_.find(row.id);
    if (known != typed_.end() && known->second.shown == Text(row.id)) typed = known->second;
    const double scale = MillimetresOf(typed.unit) / MillimetresOf(after);
    typed.shown = typed.unit == after ? typed.text : InUnit(row.id, typed.text, scale);
    Set(row.id, typed.shown);
    typed_[row.id] = typed;
  }
  Set(Id::kSizeUnit, after);
}

void CutForm::SetFace(std::span<const FaceOption> options) {
  face_.clear();
  for (const auto& [option, value] : options) {
    if (!value.empty()) face_.emplace(option, value);
  }
}

std::vector<FaceOption> CutForm::Face() const {
  std::vector<FaceOption> options;
  for (const char* option : kFaceOptions) {
    const auto found = face_.find(option);
    options.emplace_back(option, found == face_.end() ? u"" : found->second);
  }
  return options;
}

bool CutForm::IsOfStrokes() const {
  return face_.contains("--stroke-font");
}

bool CutForm::HasWidth() const {
  const std::u16string& by = Text(Id::kSizeBy);
  return by == u"width" || by == u"box" || by == u"stretch";
}

bool CutForm::HasHeight() const {
  return Text(Id::kSizeBy) != u"width";
}

std::string CutForm::LengthText(ControlId field) const {
  std::string text = Pointed(Text(field));
  if (!EndsInUnit(text)) text += Utf16ToUtf8(Text(Id::kSizeUnit));
  return text;
}

std::string CutForm::SizeText() const {
  if (!HasWidth()) return "x" + LengthText(Id::kSizeHeight);
  if (!HasHeight()) return LengthText(Id::kSizeWidth);
  return LengthText(Id::kSizeWidth) + "x" + LengthText(Id::kSizeHeight);
}

CutTexts CutForm::Texts() const {
  CutTexts texts;
  for (const FieldRow& row : kFields) {
    const CutControlRow* control = FindCutControl(row.id);
    if (!control || !control->option || Text(row.id) == row.start) continue;
    const bool of_outlines = row.id == Id::kDirection || row.id == Id::kOffset;
    if (of_outlines && IsOfStrokes()) continue;
    const bool is_number = control->kind == ControlKind::kField && row.id != Id::kLayerName;
    texts.Set(row.name, row.is_length ? LengthText(row.id)
                        : is_number   ? Pointed(Text(row.id))
                                      : Utf16ToUtf8(Text(row.id)));
  }
  // Their bare numbers are in the page's unit, defaults too.
  if (Text(Id::kSizeUnit) != u"mm") texts.Set("--tolerance", LengthText(Id::kTolerance));
  if (Text(Id::kSizeUnit) == u"in") texts.Set("--unit", "in");
  const std::u16string& by = Text(Id::kSizeBy);
  if (by == u"cap-height" || by == u"em") {
    texts.Set("--" + Utf16ToUtf8(by), LengthText(Id::kSizeHeight));
  } else {
    texts.Set("--fit", SizeText());
    if (by == u"stretch") texts.Set("--stretch", "on");
  }
  for (const auto& [option, value] : face_) texts.Set(option, Utf16ToUtf8(value));
  return texts;
}

// Reasons quote the text with its unit and its point: what was typed takes its place.
Message CutForm::AsTyped(Message message, ControlId field) const {
  for (const std::string& read : {LengthText(field), Pointed(Text(field))}) {
    const std::string quoted = "\"" + read + "\"";
    const size_t at = message.why.find(quoted);
    if (at == std::string::npos) continue;
    message.why.replace(at, quoted.size(), "\"" + Utf16ToUtf8(Text(field)) + "\"");
    break;
  }
  return message;
}

// The two sides of a size are one option: which of them is at fault is found here.
void CutForm::CheckSize(std::vector<FieldFault>* faults) const {
  const auto check = [&](Id field, bool is_used) {
    std::vector<Message> messages;
    const HeldMessages held(&messages);
    const bool is_of_rows = Text(field).find(u'{') != std::u16string::npos;
    if (!is_used || is_of_rows || ReadLength("", LengthText(field), LengthSign::kPositive)) return;
    if (!messages.empty()) faults->push_back({field, ReasonOf(AsTyped(messages.front(), field))});
  };
  check(Id::kSizeWidth, HasWidth());
  check(Id::kSizeHeight, HasHeight());
}

bool CutForm::Read(const CutTexts& filled, CutJob* job, DrawingStyle* style,
                   std::vector<FieldFault>* faults) const {
  faults->clear();
  CheckSize(faults);
  if (!faults->empty()) return false;
  std::vector<Message> messages;
  const HeldMessages held(&messages);
  const auto wants = [](std::string_view extension) { return extension == "dxf"; };
  if (ReadCut(filled, wants, job, style)) return true;
  for (const Message& message : messages) {
    if (message.is_warning) continue;
    const Id field = FieldOf(message.what);
    faults->push_back({field, ReasonOf(AsTyped(message, field))});
  }
  return false;
}

std::optional<SheetTexts> CutForm::Sheets() const {
  if (!IsOn(Id::kSheets)) return std::nullopt;
  SheetTexts sheets;
  const std::string unit = Utf16ToUtf8(Text(Id::kSizeUnit));
  const auto with_unit = [&](Id field) {
    std::string text = Pointed(Text(field));
    return text.empty() || EndsInUnit(text) ? text : text + unit;
  };
  const auto pair = [&](Id field) {
    std::string text = with_unit(field);
    std::ranges::replace(text, '*', 'x');  // 600×400
    return text;
  };
  sheets.sheet = pair(Id::kSheetSize);
  sheets.frame = pair(Id::kSheetFrame);
  sheets.gap = with_unit(Id::kSheetGap);
  sheets.margin = with_unit(Id::kSheetMargin);
  sheets.pack = IsOn(Id::kSheetPack);
  sheets.numbers = IsOn(Id::kSheetNumbers);
  sheets.given = {"--sheet", "--gap", "--margin"};
  if (!sheets.frame.empty()) sheets.given.emplace("--frame");
  if (sheets.pack) sheets.given.emplace("--pack");
  if (sheets.numbers) sheets.given.emplace("--numbers");
  return sheets;
}

FormTexts CutForm::Stored(StoredOf of) const {
  FormTexts stored;
  for (const FieldRow& row : kFields) {
    if (of == StoredOf::kCut && IsOfView(row.id)) continue;
    if (Text(row.id) != row.start) stored.emplace_back(row.name, Text(row.id));
  }
  for (const auto& [option, value] : face_) stored.emplace_back(option, value);
  return stored;
}

void CutForm::Restore(const FormTexts& stored, StoredOf of) {
  CutForm fresh;
  for (const FieldRow& row : kFields) {
    if (of == StoredOf::kCut && IsOfView(row.id)) fresh.Set(row.id, Text(row.id));
  }
  *this = fresh;
  for (const auto& [name, value] : stored) {
    const auto* const row = std::ranges::find_if(
        kFields, [&name = name](const FieldRow& field) { return name == field.name; });
    if (row != std::end(kFields)) {
      Set(row->id, value);
    } else if (std::ranges::find(kFaceOptions, name) != std::end(kFaceOptions)) {
      face_[name] = value;
    }
  }
}

}  // namespace kerno
