// What a step of the installer came to.
#pragma once

#include <utility>

#include "platform/status.h"

namespace kerno {

// The numbers are those with which the installer and the uninstaller end.
enum class SetupOutcome {
  kDone = 0,
  kWrongUsage = 2,
  kInUse = 3,         // a program of the installation runs, or another process holds it
  kNotWritable = 5,   // the folder or a file in it cannot be changed
  kNotInstalled = 6,  // the folder has no list of installed files
  kPathLeft = 8,      // the search path stays as it is: it would become too long, or is no text
  kForeignFile = 9,   // a file that was not installed stands where one is to go
  kAlreadyThere = 10  // the search path had the folder before
};

// `status` names the thing and the reason exactly where the outcome is no kDone.
struct [[nodiscard]] SetupResult {
  SetupOutcome outcome = SetupOutcome::kDone;
  Status status;

  bool ok() const { return outcome == SetupOutcome::kDone; }
};

}  // namespace kerno
