#include "outline/text_runs.h"

#include <algorithm>
#include <string>

#include "base/text.h"
#include "platform/vertical_orientation.h"

namespace kerno {
namespace {

bool IsJapanese(Script script) {
  return script == ScriptCode("Hani") || script == ScriptCode("Hira") ||
         script == ScriptCode("Kana");
}

bool IsDigit(char32_t ch) {
  return ch >= U'0' && ch <= U'9';
}

// The scripts of characters where those of neighbours have come in.
class ScriptFinder {
 public:
  ScriptFinder(std::u32string_view line, const std::vector<Bracket>& brackets)
      : line_(line), brackets_(brackets) {}

  std::vector<Script> Find() {
    scripts_.resize(line_.size(), kCommonScript);
    for (size_t i = 0; i < line_.size(); ++i) {
      const Script own = OwnOf(i);
      if (own == kCommonScript || own == kInheritedScript) {
        scripts_[i] = current_;
      } else {
        Enter(own, i);
      }
    }
    return std::move(scripts_);
  }

 private:
  struct Open {
    uint32_t pair;
    size_t at;
  };

  // A closing bracket has the script of the opening one.
  Script OwnOf(size_t i) {
    const Bracket bracket = brackets_[i];
    if (bracket.pair == 0) return ScriptOf(line_[i]);
    if (bracket.opens) {
      constexpr size_t kMostOpen = 64;  // so that a line of them takes no time
      if (open_.size() < kMostOpen) open_.push_back({bracket.pair, i});
      return kCommonScript;
    }
    const auto found = std::find_if(open_.rbegin(), open_.rend(),
                                    [&](const Open& open) { return open.pair == bracket.pair; });
    if (found == open_.rend()) return kCommonScript;
    const Script script = scripts_[found->at];
    open_.erase(found.base() - 1, open_.end());
    return script;
  }

  void Enter(Script own, size_t i) {
    if (current_ == kCommonScript) {
      std::fill(scripts_.begin(), scripts_.begin() + static_cast<ptrdiff_t>(i), own);
    }
    if (!(IsJapanese(own) && IsJapanese(current_))) current_ = own;
    scripts_[i] = current_;
  }

  std::u32string_view line_;
  const std::vector<Bracket>& brackets_;
  std::vector<Script> scripts_;
  std::vector<Open> open_;
  Script current_ = kCommonScript;
};

RunPose PoseOf(char32_t ch, const RunOptions& options) {
  switch (VerticalOrientationOf(ch)) {
    case VerticalOrientation::kUpright:
    case VerticalOrientation::kTransformedUpright:
      return RunPose::kUpright;
    case VerticalOrientation::kTransformedRotated:
      return options.has_vertical_form && options.has_vertical_form(ch) ? RunPose::kUpright
                                                                        : RunPose::kTurned;
    case VerticalOrientation::kRotated:
      break;
  }
  return RunPose::kTurned;
}

// Whether digits from `start` to `end` are a part of something longer: "1.5", "12:30", "5m", "A10".
bool IsPartOfMore(std::u32string_view line, size_t start, size_t end) {
  const auto at = [&](size_t place) { return place < line.size() ? line[place] : U' '; };
  const auto goes_on = [&](char32_t next, char32_t beyond) {
    const bool links = next == U'.' || next == U',' || next == U':' || next == U'/';
    return ScriptOf(next) == ScriptCode("Latn") || (links && IsDigit(beyond));
  };
  const char32_t before = start > 0 ? line[start - 1] : U' ';
  return goes_on(before, start > 1 ? line[start - 2] : U' ') || goes_on(at(end), at(end + 1));
}

std::vector<RunPose> PosesOf(std::u32string_view line, const RunOptions& options) {
  if (options.mode == WritingMode::kHorizontal) return {line.size(), RunPose::kInLine};
  std::vector<RunPose> poses;
  poses.reserve(line.size());
  while (poses.size() < line.size()) {
    const size_t i = poses.size();
    size_t end = i;
    while (end < line.size() && IsDigit(line[end])) ++end;
    if (end > i) {
      const bool is_short = end - i <= options.across_digits && !IsPartOfMore(line, i, end);
      poses.resize(end, is_short ? RunPose::kAcross : RunPose::kTurned);
    } else {
      poses.push_back(i > 0 && IsAttached(line[i]) ? poses.back() : PoseOf(line[i], options));
    }
  }
  return poses;
}

struct LevelRun {
  TextRun run;
  uint8_t level;
};

// Rule L2 of the bidirectional algorithm, of runs: from the highest level to the lowest odd one,
// what is of that level or above changes its order.
void PutInOrder(std::vector<LevelRun>* runs) {
  uint8_t highest = 0;
  for (const LevelRun& run : *runs) highest = std::max(highest, run.level);
  for (uint8_t level = highest; level > 0; --level) {
    for (auto first = runs->begin(); first != runs->end();) {
      const auto below = [&](const LevelRun& run) { return run.level < level; };
      first = std::find_if_not(first, runs->end(), below);
      const auto last = std::find_if(first, runs->end(), below);
      std::reverse(first, last);
      first = last;
    }
  }
}

}  // namespace

std::vector<TextRun> RunsOf(std::u16string_view text, const RunOptions& options) {
  std::u32string line;
  line.reserve(text.size());
  for (size_t at = 0; at < text.size();) line.push_back(NextCharacter(text, &at));
  const BidiLine bidi = LevelsOf(line, options.direction);
  const std::vector<Script> scripts = ScriptFinder(line, bidi.brackets).Find();
  const std::vector<RunPose> poses = PosesOf(line, options);
  std::vector<LevelRun> runs;
  size_t at = 0;
  for (size_t i = 0; i < line.size(); ++i) {
    const size_t units = line[i] > 0xFFFF ? 2 : 1;
    const bool goes_on = i > 0 && bidi.levels[i] == bidi.levels[i - 1] &&
                         scripts[i] == scripts[i - 1] && poses[i] == poses[i - 1];
    if (!goes_on) {
      runs.push_back({{at, 0, scripts[i], bidi.levels[i] % 2 == 1, poses[i]}, bidi.levels[i]});
    }
    runs.back().run.length += units;
    at += units;
  }
  PutInOrder(&runs);
  std::vector<TextRun> ordered;
  ordered.reserve(runs.size());
  for (const LevelRun& run : runs) ordered.push_back(run.run);
  return ordered;
}

}  // namespace kerno
