#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/profile_values.h"
#include "base/settings_places.h"
#include "base/text.h"
#include "parts/ipx.h"
#include "platform/held_file.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::ReadBytes;
using test::RecordingNotices;
using test::TemporaryFolder;
using test::WriteBytes;
using namespace std::string_literals;

constexpr std::u16string_view kProgram = u"/opt/kerno/kerno";

std::string Fixture() {
  return ReadBytes(KERNO_TEST_DATA "/ipx/every-kind.ipx");
}

std::string Encoded(const PartsA& container, std::u16string_view program = kProgram) {
  std::string bytes;
  const Status status = EncodeIpx(container, program, u"test", [&](std::string_view piece) {
    bytes += piece;
    return Status::Ok();
  });
  EXPECT_TRUE(status.ok()) << Utf16ToUtf8(status.why);
  return bytes;
}

PartsA Decoded(std::string_view bytes) {
  PartsA container;
  EXPECT_TRUE(DecodeIpx(bytes, &container).ok());
  return container;
}

// Every element kind, every attribute, Japanese text and awkward numbers, none of the characters
// that are escaped.
PartsA EveryKind() {
  return Decoded(Fixture());
}

std::string Utf16Of(std::u16string_view text, bool big_endian) {
  std::string bytes = big_endian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += big_endian ? high : low;
    bytes += big_endian ? low : high;
  }
  return bytes;
}

// The file in every encoding that is read.
std::vector<std::string> InEveryEncoding(const PartsA& container) {
  const std::u16string text = ToText(container, kProgram);
  return {Encoded(container), Utf16Of(text, false), Utf16Of(text, true),
          "\xEF\xBB\xBF" + Utf16ToUtf8(text)};
}

TEST(IpxFile, ReadsWhatItWroteFromEveryEncoding) {
  const PartsA model = EveryKind();
  EXPECT_EQ(model.id, 7);
  ASSERT_EQ(model.parts.size(), 2u);
  const PartsElement& part = model.parts[0];
  EXPECT_EQ(std::pair(part.header_first, part.header_second), std::pair(3, -4));
  EXPECT_EQ(part.name + u"," + part.second_text, u"外形線 A'1,注記");
  EXPECT_EQ(std::tuple(part.placement.code, part.keeps_order, part.trailing), std::tuple(2, 1, -6));
  for (const std::string& file : InEveryEncoding(EveryKind())) {
    EXPECT_EQ(Encoded(Decoded(file)), Fixture()) << file.substr(0, 3);
  }
}

TEST(IpxFile, EncodingFollowsTheTexts) {
  const struct {
    const char* what;
    std::u16string text;
    bool utf16;
  } kCases[] = {
      {"Japanese", u"日本語ｱ①", false},
      {"another script", u"한", true},
      {"a lone surrogate", std::u16string(1, u'\xD83D'), true},
      {"a best fit that reads back as something else", u"é", true},
      {"NUL", u"a\0b"s, false},
  };
  for (const auto& c : kCases) {
    for (int place = 0; place < 6; ++place) {
      PartsA container = EveryKind();
      PartsElement& part = container.parts[1];
      if (place == 0) part.name = c.text;
      if (place == 1) part.texts.items.push_back({-1, c.text});
      if (place == 2) part.horizontal_texts.items.emplace_back().text = c.text;
      if (place == 3) part.vertical_texts.items.emplace_back().face_name = c.text;
      if (place == 4) part.more_texts.items.push_back({-1, c.text});
      const std::u16string program = place == 5 ? c.text : u"kerno";
      const std::string bytes = Encoded(container, program);
      EXPECT_EQ(bytes.substr(0, 2) == "\xFF\xFE", c.utf16) << c.what << place;
      EXPECT_EQ(ToText(Decoded(bytes), program), ToText(container, program)) << c.what << place;
    }
  }
}

TEST(IpxFile, LongFilesArePiecedTogether) {
  const TemporaryFolder folder;
  PartsA container = EveryKind();
  for (int i = 0; i < 7; ++i) {
    const auto half = container.parts;
    container.parts.insert(container.parts.end(), half.begin(), half.end());
  }
  // A line longer than any piece, and a text that the code page does not have.
  container.parts[100].texts.items.push_back({-1, std::u16string(700000, u'長')});
  for (const std::u16string name : {u"", u"한"}) {
    container.parts[200].name = name;
    const std::u16string text = ToText(container, kProgram);
    EXPECT_GT(text.size(), 850000u);
    for (const std::string& file : InEveryEncoding(container)) {
      WriteBytes(folder / "a.ipx", file);
      PartsA read;
      ASSERT_TRUE(ReadIpxFile(folder / "a.ipx", &read).ok());
      EXPECT_TRUE(ToText(read, kProgram) == text) << file.size();
    }
  }
}

TEST(IpxFile, TruncatedAnywhereIsStillRead) {
  for (const std::string& file : InEveryEncoding(EveryKind())) {
    size_t vertices = 0;
    for (size_t length = 0; length <= file.size(); ++length) {
      const PartsA read = Decoded(std::string_view(file).substr(0, length));
      ASSERT_LE(read.parts.size(), 2u) << length;
      const size_t now = read.parts.empty() ? 0 : read.parts[0].vertices.size();
      ASSERT_GE(now, vertices) << length;
      vertices = now;
    }
    EXPECT_EQ(vertices, 6u);
  }
}

TEST(IpxFile, WildContentsAreRead) {
  const std::string part = Fixture().substr(Fixture().find("\r\n") + 2);
  const struct {
    std::string bytes;
    size_t parts;
  } kCases[] = {
      {"-1 0\r\n" + part, 0},
      {"1\r\n\r\n", 1},
      {"2147483648\r\n" + part, 55},
      {"1000000000000000000\r\n" + std::string(2 * 15015, '\n'), 1},
      {std::string(1000, '\0'), 0},
      {"\"1\" '5' ;\r\n" + part, 1},
      {"1 0 ;\r\n" + std::string(50000, '"') + "\r\n" + std::string(50000, '\''), 1},
      {"1 0 ;\r\n0 0 \"'\"'\"'\"' '\" \"''\"'\r\n", 1},
      {"1\r\n0 0\r\n0\r\n0\r\n0\r\n2 0\r\n-5 2147483647\r\n7 99\r\n", 1},
      {"\xFF\xFE", 0},
      {"1\r\n\x81\r\n\x82\x0D\x0A"s, 1},
  };
  for (const auto& c : kCases) {
    const PartsA read = Decoded(c.bytes);
    EXPECT_EQ(read.parts.size(), c.parts) << c.bytes.substr(0, 60);
  }
}

TEST(IpxFile, RefusesWhatTheFileCannotHold) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder / "a.ipx";
  for (const std::u16string bad : {u"a\r\nb", u"\" ' "}) {
    for (int place = 0; place < 4; ++place) {
      PartsA container = EveryKind();
      PartsElement& part = container.parts[1];
      if (place == 0) part.name = bad;
      if (place == 1) part.second_text = bad;
      if (place == 2) part.horizontal_texts.items.emplace_back().face_name = bad;
      if (place == 3) part.vertical_texts.items.emplace_back().face_name = bad;
      const Status status = WriteIpxFile(path, container, kProgram);
      EXPECT_FALSE(status.ok());
      EXPECT_EQ(status.what, PathText(path));
      EXPECT_NE(status.why.find(bad), status.why.npos) << Utf16ToUtf8(status.why);
    }
  }
  EXPECT_TRUE(folder.Names().empty());
}

TEST(IpxFile, NumbersThatAreNotFiniteAreWarnedOfOnce) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  PartsA container;
  container.parts.resize(2);
  for (PartsElement& part : container.parts) {
    part.vertices.Append({std::nan(""), kInfinity, -kInfinity});
  }
  const RecordingNotices notices;
  const std::string bytes = Encoded(container);
  EXPECT_EQ(notices.messages.size(), 1u);
  EXPECT_NE(bytes.find("\r\nnan inf -inf \r\n"), bytes.npos);
  EXPECT_EQ(Encoded(Decoded(bytes)), bytes);
}

TEST(IpxFile, ProgressIsToldAndCanBeStopped) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder / "a.ipx";
  const PartsA model = EveryKind();
  FakeSettings settings;
  RecordingNotices notices;
  PartsA read;
  const SettingsProcess process;
  settings.ints[{u"Message", u"DrawTiming"}] = 0;  // each step
  notices.steps.clear();
  ASSERT_TRUE(WriteIpxFile(path, model, kProgram).ok());
  ASSERT_TRUE(ReadIpxFile(path, &read).ok());
  std::u16string shown;
  for (const auto& step : notices.steps) {
    shown += step.text + Int64Text(step.done) + u"/" + Int64Text(step.total) + u" ";
  }
  EXPECT_EQ(shown,
            u"書き込み中．．．0/2 書き込み中．．．1/2 書き込み中．．．2/2 "
            u"読み込み中．．．0/2 読み込み中．．．1/2 読み込み中．．．2/2 ");
  const std::string before = ReadBytes(path);
  for (const int64_t step : {0, 1, 2}) {
    notices.stop_at = step;
    EXPECT_FALSE(WriteIpxFile(path, model, u"another").ok());
    read = model;
    EXPECT_FALSE(ReadIpxFile(path, &read).ok());
    EXPECT_TRUE(read.parts.empty());
    EXPECT_EQ(read.id, 0);
    EXPECT_EQ(ReadBytes(path), before);
  }
  EXPECT_EQ(folder.Names(), std::set<std::string>{"a.ipx"});
}

TEST(IpxFile, FilesThatCannotBeReadOrWritten) {
  const TemporaryFolder folder;
  PartsA read = EveryKind();
  WriteBytes(folder / "empty.ipx", "");
  const std::pair<std::filesystem::path, Failure> cases[] = {
      {folder / "missing.ipx", Failure::kNotFound},
      {folder / "empty.ipx", Failure::kOther},
      {folder.path(), Failure::kIsFolder},
  };
  for (const auto& [path, failure] : cases) {
    const Status status = ReadIpxFile(path, &read);
    EXPECT_EQ(status.failure, failure) << path;
    EXPECT_EQ(status.what, PathText(path));
    EXPECT_TRUE(read.parts.empty() && !status.why.empty());
  }
  EXPECT_EQ(WriteIpxFile(folder / "no/a.ipx", {}, kProgram).failure, Failure::kNotFound);
}

TEST(IpxFile, WaitsForAFileThatIsHeld) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder / "a.ipx";
  WriteBytes(path, "old");
  test::FakeClock clock;
  const RecordingNotices notices;
  Status status;
  const auto holder = HeldFile::Open(path, Deny::kAll, &status);
  ASSERT_TRUE(holder) << Utf16ToUtf8(status.why);
  PartsA read;
  EXPECT_EQ(ReadIpxFile(path, &read).failure, Failure::kSharingViolation);
  EXPECT_EQ(notices.waits,
            (std::vector<std::u16string>{u"FileWait OpenRead  " + PathText(path), u""}));
}

}  // namespace
}  // namespace kerno
