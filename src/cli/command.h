// A command of the command line: name, description, options, run.
#pragma once

namespace CLI {
class App;
}

namespace kerno {

// What the process answers its caller.
enum ExitStatus {
  kDone = 0,
  kFailed = 1,  // something could not be written or read
  kWrongUsage = 2,
  kFaceTrouble = 3,  // the face is not installed, or in strict mode a character has no glyph
};

class Command {
 public:
  virtual ~Command() = default;

  virtual const char* Name() const = 0;
  virtual const char* Description() const = 0;

  // Declares options and arguments; their values are read by Run.
  virtual void AddOptions(CLI::App& app) = 0;

  virtual ExitStatus Run() = 0;
};

}  // namespace kerno
