// Diagnostics for those who look after the program: the dump log, an hourly text file, and the
// per-run dump file that "Debug"/"DbgDump" turns on. Both lie in the folder "DbgDump" of the
// user's own temporary folder. Files there that the program made and that are older than ten days
// are deleted once per process.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kerno {

// Appends an entry, stamped with the time, to the file "<name>_MMDD_HH.txt" (UTF-16 little-endian
// with a mark). A file that cannot be opened is tried again for 10 s; after that the answer is
// false and the user is told, once for each file. While the same file stays so, later entries wait
// only for a process that holds it.
bool DumpText(std::u16string_view name, std::u16string_view text);

// Whoever writes into the per-run dump file. The first one of a process reads the switch and begins
// the file (code page 932); the others only count.
class DumpUser {
 public:
  // `name` stands before the lines of this user.
  explicit DumpUser(std::u16string_view name);
  ~DumpUser();
  DumpUser(const DumpUser&) = delete;
  DumpUser& operator=(const DumpUser&) = delete;

  // Without effect while the switch is off.
  void Write(std::u16string_view line);

  // How many there are in the process.
  static int Count();

 private:
  std::u16string name_;
};

// For the start of a program, after its settings are installed: makes the per-run dump file when
// "Debug"/"DbgDump" asks for one, and is a dump user for as long as it lives.
class RunDump {
 public:
  explicit RunDump(std::u16string_view program);

 private:
  std::optional<DumpUser> user_;
};

}  // namespace kerno
