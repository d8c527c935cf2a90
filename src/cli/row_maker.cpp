#include "cli/row_maker.h"

#include "cli/console.h"

namespace kerno {

bool RowMaker::Fill(const RowValues& values) {
  if (plan_.OptionsVary()) {
    own_ = options_;
    if (!plan_.FillOptions(values, &*own_) || !own_->ReadJob()) return false;
    job_ = own_->job();
  }
  return plan_.FillText(values, &job_.text);
}

bool RowMaker::Make(const RowValues& values, CutDrawing* made) {
  if (!Fill(values)) return false;
  const Status done = workshop_.Make(job_, made);
  if (!done.ok()) ReportError(done);
  return done.ok();
}

}  // namespace kerno
