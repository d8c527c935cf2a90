#include "app/row_maker.h"

#include "app/reports.h"

namespace kerno {

bool ReadSetting(const CutTexts& texts, const OutputList& outputs, CutSetting* setting) {
  const auto wants = [&](std::string_view extension) { return HasFormat(outputs, extension); };
  return ReadCut(texts, wants, &setting->job, &setting->style);
}

bool RowMaker::Fill(const RowValues& values) {
  if (plan_.OptionsVary()) {
    CutTexts own = job_.texts;
    if (!plan_.FillOptions(values, &own) || !ReadSetting(own, job_.outputs, &setting_)) {
      return false;
    }
  }
  return plan_.FillText(values, &setting_.job.text);
}

bool RowMaker::Make(const RowValues& values, CutDrawing* made) {
  if (!Fill(values)) return false;
  const Status done = workshop_.Make(setting_.job, made);
  if (!done.ok()) ReportError(done);
  return done.ok();
}

}  // namespace kerno
