// The drawings of rows, one after the other. Each thread has its own, which stays warm.
#pragma once

#include <optional>

#include "app/cut.h"
#include "cli/cut_options.h"
#include "cli/series_plan.h"

namespace kerno {

class RowMaker {
 public:
  // `options` have their job read unless the plan has values of options to fill; both outlive this.
  RowMaker(const CutOptions& options, const SeriesPlan& plan)
      : options_(options), plan_(plan), job_(options.job()) {}

  // Makes the drawing of a row; what is wrong is reported, and *made then stays as it is.
  bool Make(const RowValues& values, CutDrawing* made);

  // Those of the row that was made last, to write its drawing by.
  const CutOptions& options() const { return own_ ? *own_ : options_; }

 private:
  bool Fill(const RowValues& values);

  const CutOptions& options_;
  const SeriesPlan& plan_;
  std::optional<CutOptions> own_;  // of the row, where rows have their own
  CutJob job_;
  CutWorkshop workshop_;
};

}  // namespace kerno
