#include "app/font_face_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kerno {
namespace {

constexpr int kWindow = 1;  // any address serves as a handle

struct Rules {
  int true_type_only = 0;
  int exclude_vertical = 0;
  int only_vertical = 0;
  int use_pitch = 0;
  int pitch_mask = 0;
  int use_char_set = 0;
  int char_set = 1;
};

class RuledList : public FontFaceList {
 public:
  RuledList(WindowHandle window, const Rules& rules) : FontFaceList(window), rules_(rules) {}
  using FontFaceList::OnFamily;

 protected:
  int WantTrueTypeOnly() const override { return rules_.true_type_only; }
  int ExcludeVerticalFaces() const override { return rules_.exclude_vertical; }
  int OnlyVerticalFaces() const override { return rules_.only_vertical; }
  int UsePitchFilter() const override { return rules_.use_pitch; }
  int PitchMask() const override { return rules_.pitch_mask; }
  int UseCharSetFilter() const override { return rules_.use_char_set; }
  int CharSetWanted() const override { return rules_.char_set; }

 private:
  Rules rules_;
};

TEST(FontFaceList, RulesRejectFamilies) {
  const InstalledFace families[] = {{u"Sans", 0x22, 0, kTrueTypeFontType},
                                    {u"Gothic", 0x31, 128, kTrueTypeFontType},
                                    {u"@Gothic", 0x31, 128, kTrueTypeFontType},
                                    {u"Dots", 0x31, 0, kRasterFontType},
                                    {u"Plotter", 0x01, 255, 0}};
  struct Case {
    Rules rules;
    std::vector<std::u16string> accepted;
  };
  for (const auto& [rules, accepted] : {
           Case{{}, {u"Sans", u"Gothic", u"@Gothic", u"Dots", u"Plotter"}},
           Case{{.true_type_only = 1}, {u"Sans", u"Gothic", u"@Gothic"}},
           Case{{.exclude_vertical = 1}, {u"Sans", u"Gothic", u"Dots", u"Plotter"}},
           Case{{.only_vertical = 1}, {u"@Gothic"}},
           Case{{.use_pitch = 1, .pitch_mask = 0x30}, {u"Sans", u"Gothic", u"@Gothic", u"Dots"}},
           Case{{.use_pitch = 1}, {}},
           Case{{.pitch_mask = 0x02}, {u"Sans", u"Gothic", u"@Gothic", u"Dots", u"Plotter"}},
           Case{{.use_char_set = 1, .char_set = 128}, {u"Gothic", u"@Gothic"}},
           Case{{.true_type_only = -1, .use_pitch = 1, .pitch_mask = 2}, {u"Sans"}},
       }) {
    RuledList list(&kWindow, rules);
    for (const InstalledFace& family : families) EXPECT_EQ(list.OnFamily(family), 1);
    EXPECT_EQ(list.faces(), accepted);
  }
}

}  // namespace
}  // namespace kerno
