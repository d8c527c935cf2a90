// The drawings of rows, one after the other. Each thread has its own, which stays warm.
#pragma once

#include "app/cut.h"
#include "app/cut_texts.h"
#include "app/series_job.h"
#include "app/series_plan.h"

namespace kerno {

// The options as they are read.
struct CutSetting {
  CutJob job;  // lacks its text
  DrawingStyle style;
};
[[nodiscard]] bool ReadSetting(const CutTexts& texts, const OutputList& outputs,
                               CutSetting* setting);

class RowMaker {
 public:
  // `shared` holds for all rows unless the plan has values of options to fill. The job and the plan
  // outlive this.
  RowMaker(const SeriesJob& job, const SeriesPlan& plan, CutSetting shared)
      : job_(job), plan_(plan), setting_(std::move(shared)) {}

  // Makes the drawing of a row; what is wrong is reported, and *made then stays as it is.
  bool Make(const RowValues& values, CutDrawing* made);

  // Those of the row that was made last, to write its drawing by.
  const CutSetting& setting() const { return setting_; }

 private:
  bool Fill(const RowValues& values);

  const SeriesJob& job_;
  const SeriesPlan& plan_;
  CutSetting setting_;
  CutWorkshop workshop_;
};

}  // namespace kerno
