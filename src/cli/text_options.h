// The options that every command shares which sets text.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/job.h"
#include "cli/command.h"
#include "cli/face_options.h"
#include "cli/text_source.h"

namespace kerno {

class TextOptions {
 public:
  void AddTo(CLI::App& app);

  // Checks the values, reads the text and settles the face. What is wrong is reported, and *status
  // says how the process ends.
  std::optional<Job> Resolve(ExitStatus* status);

  // Makes the job, or lays its text out alone (y up, not placed), and reports what the user should
  // know of it: missing glyphs, a substitute, contact in vertical text.
  enum class Placing { kPlaced, kUnplaced };
  std::optional<TypesetText> MakeAndReport(const Job& job, Placing placing,
                                           ExitStatus* status) const;

  // Tells of a licence that may forbid what was made to leave the program.
  static void ReportLicence(const Job& job, const TypesetText& set);

  // Whether finished coordinates are numbers; reports when a scale or a place took them out of
  // range.
  static bool CheckRange(const TextContours& contours);
  static bool CheckRange(const P2& size);

  bool quiet() const { return quiet_; }
  // Whether the face is left to the system.
  bool FaceIsOpen() const { return face_.IsOpen(); }

 private:
  static bool ReportRange();
  bool ReadNumbers(Job* job);
  ExitStatus ChooseFace(Job* job) const;
  ExitStatus ChooseStyle(std::u16string_view style, Job* job) const;

  TextSource source_;
  FaceOptions face_;
  CLI::App* app_ = nullptr;
  std::string line_ends_ = "crlf";
  std::string height_ = "100";
  std::string width_ = "0";
  std::string weight_ = "400";
  std::string pitch_ = "classic";
  std::string slant_ = "0";
  std::string angle_ = "0";
  std::string at_ = "0,0";
  std::string scale_ = "1";
  bool vertical_ = false;
  bool substitute_ = false;
  bool strict_ = false;
  bool quiet_ = false;
};

}  // namespace kerno
