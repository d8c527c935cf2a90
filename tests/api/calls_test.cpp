// Calls of the library as programs make them: wrong ones, from many threads, after a fork.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kerno.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace kerno::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class Folder {
 public:
  Folder() {
    std::string name = (fs::temp_directory_path() / "kerno-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~Folder() { fs::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  fs::path path_;
};

std::string BytesOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

KernoSign SignOf(const std::string& text) {
  const KernoSign sign = kerno_new();
  EXPECT_EQ(KERNO_OK, kerno_set_text(sign, text.c_str())) << kerno_message();
  EXPECT_EQ(KERNO_OK, kerno_set(sign, "face", "DejaVu Sans")) << kerno_message();
  return sign;
}

std::vector<double> CornersOf(KernoSign sign) {
  std::vector<double> corners;
  KernoFacts facts;
  EXPECT_EQ(KERNO_OK, kerno_facts(sign, &facts)) << kerno_message();
  for (uint64_t path = 0; path < facts.paths; ++path) {
    size_t count = 0;
    EXPECT_EQ(KERNO_OK, kerno_points(sign, path, 0, nullptr, 0, &count));
    std::vector<KernoPoint> points(count);
    EXPECT_EQ(KERNO_OK, kerno_points(sign, path, 0, points.data(), count, &count));
    for (const KernoPoint& point : points) corners.insert(corners.end(), {point.x, point.y});
  }
  return corners;
}

TEST(Calls, NumbersThatAreNoSignAreRecognised) {
  const KernoSign kept = SignOf("A"), freed = kerno_new();
  ASSERT_EQ(KERNO_OK, kerno_free(freed));
  ASSERT_EQ(KERNO_OK, kerno_free(0));
  const std::vector<std::pair<KernoSign, std::string>> numbers = {
      {freed, " was freed"},
      {0, "0 is none"},
      {1, " never was"},
      {2, " never was"},
      {kept + 1, " never was"},
      {std::numeric_limits<uint64_t>::max(), " never was"},
      {reinterpret_cast<uintptr_t>(&kept), " never was"}};
  KernoFacts facts;
  KernoPath path;
  KernoSegment segment;
  KernoPoint point;
  size_t count = 77;
  for (const auto& [number, why] : numbers) {
    SCOPED_TRACE(number);
    const KernoSign sign = number;
    const std::function<int()> calls[] = {
        [&] { return sign == 0 ? KERNO_BAD_CALL : kerno_free(sign); },
        [&] { return kerno_set_text(sign, "A"); },
        [&] { return kerno_set(sign, "em", "1"); },
        [&] { return kerno_unset(sign, "em"); },
        [&] { return kerno_make(sign); },
        [&] { return kerno_facts(sign, &facts); },
        [&] { return kerno_path(sign, 0, &path); },
        [&] { return kerno_segments(sign, 0, &segment, 1, &count); },
        [&] { return kerno_points(sign, 0, 0, &point, 1, &count); },
        [&] { return kerno_layer(sign, 0) ? KERNO_OK : KERNO_BAD_CALL; },
        [&] { return kerno_warning(sign, 0) ? KERNO_OK : KERNO_BAD_CALL; },
        [&] { return kerno_write(sign, "/nowhere/a.dxf", nullptr); }};
    for (const auto& call : calls) {
      EXPECT_EQ(KERNO_BAD_CALL, call());
      if (&call == calls && sign == 0) continue;
      EXPECT_THAT(kerno_message(), HasSubstr(why));
    }
  }
  EXPECT_EQ(77U, count);
  EXPECT_FALSE(CornersOf(kept).empty());
  kerno_free(kept);
}

TEST(Calls, WhatIsWrongIsToldAndTheSignLivesOn) {
  const Folder folder;
  const KernoSign sign = SignOf("Ag");
  const std::vector<double> before = CornersOf(sign);
  KernoPath path;
  KernoPoint point;
  size_t count = 0;
  const auto with = [&](const char* option, const char* value) {
    const int set = kerno_set(sign, option, value);
    const int made = set == KERNO_OK ? kerno_make(sign) : set;
    if (set == KERNO_OK) (void)kerno_unset(sign, option);
    return made;
  };
  const auto blank = [&] {
    (void)kerno_set_text(sign, " ");
    const int made = with("fit", "10mm");
    (void)kerno_set_text(sign, "Ag");
    return made;
  };
  const std::string missing = folder / "none/a.dxf", unknown = folder / "a.xyz";
  struct Row {
    int result;
    const char* message;
    std::function<int()> call;
  };
  const double nan = std::nan("");
  const Row rows[] = {
      {2, "text: is NULL", [&] { return kerno_set_text(sign, nullptr); }},
      {2, "text: is not UTF-8 (byte offset 1)", [&] { return kerno_set_text(sign, "a\xff"); }},
      {2, "text: is not UTF-8 (byte offset 0)",
       [&] { return kerno_set_text(sign, "\xed\xa0\x80"); }},
      {2, "option: is NULL", [&] { return kerno_set(sign, nullptr, "1"); }},
      {2, "value: is NULL", [&] { return kerno_set(sign, "em", nullptr); }},
      {2, "nearest is \"cap-height\"", [&] { return kerno_set(sign, "cap_height", "1"); }},
      {2, "\"output\": is no option", [&] { return kerno_set(sign, "output", "1"); }},
      {2, "\"\": is no option", [&] { return kerno_unset(sign, ""); }},
      {2, "--mirror: \"yes\" is neither", [&] { return kerno_set(sign, "mirror", "yes"); }},
      {2, "--em: \"big\"", [&] { return with("em", "big"); }},
      {2, "--em: \"\xef\xbf\xbd\"", [&] { return with("em", "\xff"); }},
      {2, "--stretch: needs --fit", [&] { return with("--stretch", "on"); }},
      {2, "--layer: is not UTF-8", [&] { return with("layer", "\xc3("); }},
      {3, "is not installed", [&] { return with("face", "No Such Face"); }},
      {3, "none.ttf", [&] { return with("font-file", (folder / "none.ttf").c_str()); }},
      {1, "fit: the text has no ink", [&] { return blank(); }},
      {2, "path: 99 is beyond the last one: there are 4 paths",
       [&] { return kerno_path(sign, 99, &path); }},
      {2, "about: is NULL", [&] { return kerno_path(sign, 0, nullptr); }},
      {2, "facts: is NULL", [&] { return kerno_facts(sign, nullptr); }},
      {2, "count: is NULL", [&] { return kerno_points(sign, 0, 0, &point, 1, nullptr); }},
      {2, "points: is NULL", [&] { return kerno_points(sign, 0, 0, nullptr, 1, &count); }},
      {2, "tolerance", [&] { return kerno_points(sign, 0, -1, &point, 1, &count); }},
      {2, "tolerance", [&] { return kerno_points(sign, 0, nan, &point, 1, &count); }},
      {2, "tolerance", [&] { return kerno_points(sign, 0, 1e-300, &point, 1, &count); }},
      {2, "segments: is NULL", [&] { return kerno_segments(sign, 0, nullptr, 1, &count); }},
      {2, "file: is NULL", [&] { return kerno_write(sign, nullptr, nullptr); }},
      {2, "the name is empty", [&] { return kerno_write(sign, "", nullptr); }},
      {2, "\"xyz\" is unknown", [&] { return kerno_write(sign, unknown.c_str(), nullptr); }},
      {2, "--format", [&] { return kerno_write(sign, unknown.c_str(), "xyz"); }},
      {1, "none/a.dxf", [&] { return kerno_write(sign, missing.c_str(), nullptr); }},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.result, row.call()) << row.message;
    EXPECT_THAT(kerno_message(), HasSubstr(row.message));
    ASSERT_EQ(KERNO_OK, kerno_set(sign, "face", "DejaVu Sans"));
  }
  EXPECT_EQ(0U, count);
  EXPECT_EQ(nullptr, kerno_layer(sign, 1));
  EXPECT_EQ(nullptr, kerno_warning(sign, 0));
  EXPECT_EQ(before, CornersOf(sign));
  kerno_free(sign);
}

TEST(Calls, StrictIsAnErrorAndWarningsAreToldWithoutIt) {
  const KernoSign sign = SignOf("A\U0001F9FF");
  KernoFacts facts;
  ASSERT_EQ(KERNO_OK, kerno_facts(sign, &facts)) << kerno_message();
  ASSERT_EQ(1U, facts.warnings);
  EXPECT_THAT(kerno_warning(sign, 0), HasSubstr("no glyph in DejaVu Sans: \U0001F9FF (U+1F9FF)"));
  ASSERT_EQ(KERNO_OK, kerno_set(sign, "strict", "on"));
  EXPECT_EQ(KERNO_NO_FACE, kerno_make(sign));
  EXPECT_THAT(kerno_message(), HasSubstr("U+1F9FF"));
  kerno_free(sign);
}

std::string TextOf(int thread, int n) {
  return "Sign " + std::to_string(thread) + "-" + std::to_string(n % 10) + " \u00c4g";
}

TEST(Threads, SignsOfManyThreadsAreThoseOfOne) {
  constexpr int kThreads = 8, kSigns = 50;
  const Folder folder;
  const auto make = [&](int thread, int n, const std::string& file) {
    const KernoSign sign = SignOf(TextOf(thread, n));
    (void)kerno_set(sign, "fallback", n % 2 == 0 ? "IPAGothic" : "DejaVu Serif");
    EXPECT_EQ(KERNO_OK, kerno_write(sign, (folder / file).c_str(), n % 3 == 0 ? "bmp" : "dxf"))
        << kerno_message();
    std::vector<double> corners = CornersOf(sign);
    EXPECT_EQ(KERNO_BAD_CALL, kerno_set(sign, std::to_string(thread).c_str(), ""));
    EXPECT_THAT(kerno_message(), HasSubstr("\"" + std::to_string(thread) + "\""));
    EXPECT_EQ(KERNO_OK, kerno_free(sign));
    return corners;
  };
  setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  const auto name = [](int thread, int n) {
    return std::to_string(thread) + "-" + std::to_string(n);
  };
  std::vector<std::vector<std::vector<double>>> found(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int n = 0; n < kSigns; ++n) {
        found[static_cast<size_t>(thread)].push_back(make(thread, n, name(thread, n)));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int thread = 0; thread < kThreads; thread += 5) {
    for (int n = 0; n < kSigns; n += 11) {
      EXPECT_EQ(make(thread, n, "alone"),
                found[static_cast<size_t>(thread)][static_cast<size_t>(n)]);
      EXPECT_EQ(BytesOf(folder / "alone"), BytesOf(folder / name(thread, n)));
    }
  }
  unsetenv("SOURCE_DATE_EPOCH");
}

TEST(Threads, OneSignIsUsedChangedAndFreedByMany) {
  for (int round = 0; round < 10; ++round) {
    const KernoSign sign = SignOf("Shared");
    std::atomic<int> wrong = 0, freed = 0;
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int thread = 0; thread < 8; ++thread) {
      threads.emplace_back([&, thread] {
        for (int n = 0; n < 20; ++n) {
          KernoFacts facts;
          const std::string text(static_cast<size_t>(1 + n % 5), static_cast<char>('A' + thread));
          if (kerno_facts(sign, &facts) == KERNO_OK && facts.paths == 0) ++wrong;
          (void)kerno_set_text(sign, text.c_str());
          if (n == 15 && kerno_free(sign) == KERNO_OK) ++freed;
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(1, freed);
  }
}

// What the system knows of the process.
struct Standing {
  std::string locale;
  std::vector<void (*)(int)> handlers;
  sigset_t blocked = {};
  size_t threads = 0, files = 0;
  mode_t mask = 0;
  fs::path folder = fs::current_path();
};

Standing StandingNow() {
  Standing now;
  now.locale = std::setlocale(LC_ALL, nullptr);
  for (int signal = 1; signal < NSIG; ++signal) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) == 0) now.handlers.push_back(action.sa_handler);
  }
  sigprocmask(SIG_BLOCK, nullptr, &now.blocked);
  const auto count = [](const char* folder) {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
  };
  now.threads = count("/proc/self/task");
  now.files = count("/proc/self/fd");
  now.mask = umask(0);
  umask(now.mask);
  return now;
}

TEST(Process, IsLeftAlone) {
  const Folder folder;
  const Standing before = StandingNow();
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  const KernoSign sign = SignOf("A_\U0001F9FF");
  EXPECT_EQ(KERNO_OK, kerno_set(sign, "at", "-5,-5"));
  EXPECT_EQ(KERNO_OK, kerno_set(sign, "layer", "a/b"));
  const std::string formats = kerno_formats();
  for (size_t at = 0; at < formats.size(); at = formats.find('\n', at) + 1) {
    const std::string format = formats.substr(at, formats.find('\n', at) - at);
    EXPECT_EQ(KERNO_OK, kerno_write(sign, (folder / format).c_str(), format.c_str()))
        << kerno_message();
    KernoFacts facts;
    EXPECT_EQ(KERNO_OK, kerno_facts(sign, &facts));
    std::string told;
    for (uint64_t n = 0; n < facts.warnings; ++n)
      told += std::string(kerno_warning(sign, n)) + "\n";
    EXPECT_EQ(format == "plt", told.find("reaches below 0") != told.npos) << told;
    EXPECT_EQ(format == "dxf", told.find("--layer: \"_\" stands in DXF") != told.npos) << told;
  }
  EXPECT_EQ(KERNO_BAD_CALL, kerno_set(sign, "nothing", ""));
  EXPECT_EQ(KERNO_OK, kerno_free(sign));
  EXPECT_EQ("", ::testing::internal::GetCapturedStdout());
  EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
  const Standing after = StandingNow();
  EXPECT_EQ(before.locale, after.locale);
  EXPECT_EQ(before.handlers, after.handlers);
  for (int signal = 1; signal < NSIG; ++signal) {
    EXPECT_EQ(sigismember(&before.blocked, signal), sigismember(&after.blocked, signal)) << signal;
  }
  EXPECT_EQ(before.threads, after.threads);
  EXPECT_LE(after.files, before.files + 1);  // the sanitizers' own, at most
  EXPECT_EQ(before.mask, after.mask);
  EXPECT_EQ(before.folder, after.folder);
}

TEST(Process, AChildGoesOnWithItsSigns) {
  const KernoSign sign = SignOf("Parent");
  const std::vector<double> before = CornersOf(sign);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    bool good = CornersOf(sign) == before && kerno_set_text(sign, "Child") == KERNO_OK &&
                CornersOf(sign) != before && kerno_free(sign) == KERNO_OK;
    const KernoSign other = SignOf("Parent");
    good = good && CornersOf(other) == before && kerno_free(other) == KERNO_OK;
    _exit(good ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  EXPECT_EQ(0, status);
  EXPECT_EQ(before, CornersOf(sign));
  EXPECT_EQ(KERNO_OK, kerno_free(sign));
}

}  // namespace
}  // namespace kerno::test
