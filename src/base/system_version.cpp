#include <tuple>

#include "base/profile_values.h"
#include "base/version_info.h"

namespace kerno {
namespace {

constexpr uint32_t Packed(uint32_t major, uint32_t minor, uint32_t service_pack) {
  return major << 16 | minor << 8 | service_pack;
}

// The versions that are asked for, newest first.
struct Version {
  uint32_t major;
  uint32_t minor;
  uint32_t service_pack;
};
constexpr Version kProbes[] = {{7, 0, 0}, {6, 5, 0}, {6, 4, 0}, {6, 3, 2}, {6, 3, 1},
                               {6, 3, 0}, {6, 2, 2}, {6, 2, 1}, {6, 2, 0}, {6, 1, 3},
                               {6, 1, 2}, {6, 1, 1}, {6, 1, 0}, {6, 0, 3}, {6, 0, 2},
                               {6, 0, 1}, {6, 0, 0}, {5, 3, 0}, {5, 2, 0}, {5, 1, 4},
                               {5, 1, 3}, {5, 1, 2}, {5, 1, 1}, {5, 1, 0}, {5, 0, 0}};

struct VersionName {
  uint32_t packed;
  std::u16string_view name;
};
constexpr VersionName kNames[] = {
    {Packed(5, 0, 0), u"Win 2K"},     {Packed(5, 1, 0), u"Win XP"},
    {Packed(5, 1, 1), u"Win XP SP1"}, {Packed(5, 1, 2), u"Win XP SP2"},
    {Packed(5, 1, 3), u"Win XP SP3"}, {Packed(6, 0, 0), u"Vista"},
    {Packed(6, 0, 1), u"Vista SP1"},  {Packed(6, 0, 2), u"Vista SP2"},
    {Packed(6, 1, 0), u"Win 7"},      {Packed(6, 1, 1), u"Win 7 SP1"},
    {Packed(6, 2, 0), u"Win 8"},      {Packed(6, 3, 0), u"Win 8.1"}};

// The first run of digits, cut to 16 bits.
uint32_t ServicePackNumber(std::u16string_view text) {
  const size_t start = text.find_first_of(u"0123456789");
  if (start == text.npos) return 0;
  text = text.substr(start, text.find_first_not_of(u"0123456789", start) - start);
  return static_cast<uint32_t>(Int64OfText(text)) & 0xFFFF;
}

// The name of a version that has none of its own.
std::u16string_view NameOfKind(uint32_t major, uint32_t minor) {
  if (major > 6) return u"Win ?";
  if (major == 6) {
    constexpr std::u16string_view kSix[] = {u"Vista", u"Win 7", u"Win 8", u"Win 8.1"};
    return minor > 3 ? u"Win 8.1 >" : kSix[minor];
  }
  if (major == 5) return minor > 1 ? u"Win XP >" : minor == 1 ? u"Win XP" : u"Win 2K";
  return {};
}

std::u16string_view NameOf(uint32_t packed) {
  for (const VersionName& known : kNames) {
    if (known.packed == packed) return known.name;
  }
  return NameOfKind(packed >> 16, packed >> 8 & 0xFF);
}

}  // namespace

uint32_t PackedSystemVersion(const SystemFacts& facts) {
  const auto system = std::tuple(facts.major, facts.minor, ServicePackNumber(facts.service_pack));
  for (const Version& probe : kProbes) {
    if (system >= std::tuple(probe.major, probe.minor, probe.service_pack)) {
      return Packed(probe.major, probe.minor, probe.service_pack);
    }
  }
  return 0;
}

std::u16string DescribeSystem(const SystemFacts& facts) {
  if (!facts.description.empty()) return facts.description;
  const uint32_t packed = PackedSystemVersion(facts);
  std::u16string text = Int64Text(packed >> 16) + u"." + Int64Text(packed >> 8 & 0xFF) + u"." +
                        Int64Text(packed & 0xFF);
  const std::u16string_view name = NameOf(packed);
  if (!name.empty()) text.append(u"  ").append(name);
  return text + u"  Build " + Int64Text(facts.build);
}

const std::u16string& SystemDescription() {
  static const std::u16string kDescription = DescribeSystem(ReadSystemFacts());
  return kDescription;
}

}  // namespace kerno
