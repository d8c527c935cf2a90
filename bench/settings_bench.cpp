// A store of 200 keys against plainly reading the bytes of its file.

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/profile_settings.h"
#include "base/profile_store.h"
#include "base/registry_access.h"
#include "base/settings_places.h"
#include "base/text.h"
#include "ratio.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kKeys = 200;

// A folder of its own with a file of 200 keys, as long as the process lives.
class Place {
 public:
  Place() {
    std::string name = (fs::temp_directory_path() / "kerno-bench-XXXXXX").native();
    folder_ = mkdtemp(name.data());
    setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
    (void)WriteUserString(u"Software\\Quenkit\\Quenkit", u"IniFullBase", PathText(folder_ / "ini"));
    for (int i = 0; i < kKeys; ++i) {
      ProfileStore store(kStoreName);
      static_cast<void>(store.WriteStr(u"Section" + Int64Text(i / 20), u"SomeKey" + Int64Text(i),
                                       u"value " + Int64Text(i)));
    }
    // With a stamp, as every file has that a dialog wrote to.
    static_cast<void>(IniStore(kStoreName).WriteInt(u"Section9", u"Last", 7));
  }
  ~Place() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;

  fs::path file() const { return folder_ / "ini/Quenkit.ini"; }

 private:
  fs::path folder_;
};

const Place& ThePlace() {
  static const Place place;
  return place;
}

void ReadPlainly(benchmark::State& state) {
  const fs::path file = ThePlace().file();
  for (auto _ : state) {
    std::ifstream in(file, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(in), {});
    benchmark::DoNotOptimize(bytes.data());
  }
}
BENCHMARK(ReadPlainly)->Name("settings_plain_read")->Unit(benchmark::kMicrosecond);

void ReadCached(benchmark::State& state) {
  ThePlace();
  IniStore store(kStoreName);
  for (auto _ : state) benchmark::DoNotOptimize(store.GetInt(u"Section9", u"Last", 0));
}
BENCHMARK(ReadCached)->Name("settings_cached_read");

void ReadCachedText(benchmark::State& state) {
  ThePlace();
  IniStore store(kStoreName);
  for (auto _ : state) benchmark::DoNotOptimize(store.GetStr(u"Section5", u"SomeKey110", u""));
}
BENCHMARK(ReadCachedText)->Name("settings_cached_text");

void OpenReadClose(benchmark::State& state) {
  ThePlace();
  for (auto _ : state) {
    IniStore store(kStoreName);
    if (store.GetInt(u"Section9", u"Last", 0) != 7) state.SkipWithError("not read");
  }
}
BENCHMARK(OpenReadClose)->Name("settings_open_read_close")->Unit(benchmark::kMicrosecond);

// As the other rooms read: each read looks whether the file has changed.
void ReadProgramSetting(benchmark::State& state) {
  ThePlace();
  ProfileSettings settings;
  for (auto _ : state) benchmark::DoNotOptimize(settings.GetInt(u"Parts", u"NotThere", -1));
}
BENCHMARK(ReadProgramSetting)->Name("settings_program_read");

const bool registered = [] {
  // A plain read takes about 13 us: the goals are 100 ns and 300 us.
  DeclareRatio("settings_cached_read", "settings_plain_read", 0.0077);
  DeclareRatio("settings_cached_text", "settings_plain_read", 0.0077);
  DeclareRatio("settings_program_read", "settings_plain_read", 1);
  DeclareRatio("settings_open_read_close", "settings_plain_read", 23);
  return true;
}();

}  // namespace
}  // namespace kerno
