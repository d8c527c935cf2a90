// Speed as a ratio of two benchmarks of the same run.
#pragma once

#include <string>

namespace kerno {

// Asks for a line "subject / baseline" in the table at the end. Both are names of benchmarks as the
// benchmark library prints them ("layout/latin/1000"). `goal` is the most that the ratio should be;
// 0: the ratio is only told.
void DeclareRatio(const std::string& subject, const std::string& baseline, double goal);

}  // namespace kerno
