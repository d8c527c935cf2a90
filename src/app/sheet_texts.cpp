#include "app/sheet_texts.h"

#include <optional>
#include <utility>

#include "app/lengths.h"
#include "app/option_values.h"
#include "app/reports.h"

namespace kerno {
namespace {

std::optional<SheetSize> ReadSize(const char* option, const std::string& text, double per_unit) {
  const auto pair = ReadLengthPair(option, text);
  if (!pair) return std::nullopt;
  if (pair->width == 0 || pair->height == 0) {
    ReportError(option, "\"" + text + "\" needs both sides: WxH");
    return std::nullopt;
  }
  return SheetSize{pair->width / per_unit, pair->height / per_unit};
}

bool ReadDistance(const char* option, const std::string& text, double per_unit, double* value) {
  const auto read = ReadLength(option, text, LengthSign::kAny);
  if (!read) return false;
  if (*read < 0) {
    ReportError(option, "\"" + text + "\" is below 0");
    return false;
  }
  *value = *read / per_unit;
  return true;
}

bool GoTogether(const SheetTexts& texts, const GivenOptions& of_cut) {
  if (texts.IsGiven("--number-height") && !texts.numbers) {
    ReportError("--number-height", "needs --numbers");
    return false;
  }
  if (texts.pack && texts.IsGiven("--frame")) {
    ReportError("--pack", "goes not with --frame, whose places are alike");
    return false;
  }
  for (const char* option : {"--at", "--anchor"}) {
    if (!of_cut.contains(option)) continue;
    ReportError(option, "goes not with --sheet, which places the signs");
    return false;
  }
  return true;
}

}  // namespace

void SheetTexts::ForEachText(
    const std::function<void(const char* option, std::string* value)>& visit) {
  const std::pair<const char*, std::string*> values[] = {
      {"--sheet", &sheet},   {"--frame", &frame}, {"--corner", &corner},
      {"--margin", &margin}, {"--gap", &gap},     {"--number-height", &number_height},
      {"--copies", &copies}};
  for (const auto& [option, value] : values) visit(option, value);
}

void SheetTexts::ForEachFlag(const std::function<void(const char* option, bool* value)>& visit) {
  visit("--pack", &pack);
  visit("--numbers", &numbers);
  visit("--marks", &marks);
}

bool ReadSheets(const SheetTexts& texts, const GivenOptions& of_cut, LengthUnit unit,
                SheetOptions* options, int32_t* copies) {
  if (!GoTogether(texts, of_cut)) return false;
  const double per_unit = unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  SheetOptions read;
  const auto sheet = ReadSize("--sheet", texts.sheet, per_unit);
  if (!sheet) return false;
  read.sheet = *sheet;
  if (texts.IsGiven("--frame")) {
    read.frame = ReadSize("--frame", texts.frame, per_unit);
    if (!read.frame) return false;
  }
  if (!ReadDistance("--corner", texts.corner, per_unit, &read.corner) ||
      !ReadDistance("--margin", texts.margin, per_unit, &read.margin) ||
      !ReadDistance("--gap", texts.gap, per_unit, &read.gap) ||
      !ReadDistance("--number-height", texts.number_height, per_unit, &read.number_height)) {
    return false;
  }
  const auto count = WholeNumber("--copies", texts.copies, 1, 1000000);
  if (!count) return false;
  if (!texts.numbers) read.number_height = 0;
  read.pack = texts.pack;
  read.marks = texts.marks;
  if (const Status checked = SheetMaker(read, unit, {}).Check(); !checked.ok()) {
    ReportError(checked);
    return false;
  }
  *options = read;
  *copies = *count;
  return true;
}

}  // namespace kerno
