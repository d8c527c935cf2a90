// kerno-manual: writes the manual pages and the completions of the shells, out of the tables of the
// command line's own help.
//
// usage: kerno-manual SCRIPTS OUT DATE
//   SCRIPTS  where the functions of the completions are: kerno.bash.in, ...
//   OUT      the folder that gets all files
//   DATE     of the pages, YYYY-MM-DD

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/manual/completions.h"
#include "cli/manual/man_page.h"
#include "cli/program.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

bool WriteFile(const fs::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  if (!out) std::fprintf(stderr, "kerno-manual: %s: cannot be written\n", path.c_str());
  return static_cast<bool>(out);
}

// A script with the tables in their place.
bool WriteScript(const fs::path& from, const fs::path& to, const std::string& tables) {
  std::ostringstream read;
  read << std::ifstream(from, std::ios::binary).rdbuf();
  std::string text = read.str();
  const std::string mark = "@TABLES@\n";
  const size_t place = text.find(mark);
  if (place == text.npos) {
    std::fprintf(stderr, "kerno-manual: %s: has no place for the tables\n", from.c_str());
    return false;
  }
  return WriteFile(to, text.replace(place, mark.size(), tables));
}

bool WriteAll(const fs::path& scripts, const fs::path& out, const PageFrame& frame) {
  Program program;
  const CommandText text = Describe(program.app());
  bool written = WriteFile(out / "kerno.1", ProgramPage(text, frame)) &&
                 WriteFile(out / "kerno-desktop.1", DesktopPage(frame));
  for (const CommandText& command : text.inner) {
    written =
        written && WriteFile(out / ("kerno-" + command.name + ".1"), CommandPage(command, frame));
  }
  return written && WriteScript(scripts / "kerno.bash.in", out / "kerno.bash", BashTables(text)) &&
         WriteScript(scripts / "kerno.zsh.in", out / "_kerno", ZshTables(text)) &&
         WriteScript(scripts / "kerno.fish.in", out / "kerno.fish", FishTables(text));
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: kerno-manual SCRIPTS OUT DATE\n", stderr);
    return 2;
  }
  return kerno::WriteAll(argv[1], argv[2], {argv[3]}) ? 0 : 1;
}
