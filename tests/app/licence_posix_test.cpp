// What Classic says of a font whose licence may forbid to take its outlines.
#include <gtest/gtest.h>

#include "app/dialog_presenter.h"
#include "app/face_choice.h"
#include "base/text.h"
#include "support/font_files.h"
#include "support/recording_view.h"

namespace kerno::test {
namespace {

FontBytes WithPermissions(FontBytes font, uint32_t permissions) {
  PutBig(&font, TableOffset(font, "OS/2") + 8, 2, permissions);
  return font;
}

class RealFontServices final : public FakeDialogServices {
 public:
  std::unique_ptr<DeviceContext> CreateMeasuringContext() override {
    return kerno::CreateMeasuringContext();
  }
};

TEST(Licence, ClassicWarnsOfTheFaceThatItSets) {
  constexpr uint32_t kRestricted = 2;
  const std::filesystem::path regular = InstalledFontPath(u"DejaVu Sans");
  const FontBytes free = ReadFontFile(regular);
  const FontBytes bold = ReadFontFile(regular.parent_path() / "DejaVuSans-Bold.ttf");
  OnlyTheseFonts fonts;
  fonts.Install("free.ttf", free);
  fonts.Install("bold.ttf", WithPermissions(bold, kRestricted));
  fonts.Install("kept.ttf", WithPermissions(WithFamilyName(free, u"Kept"), kRestricted));
  EXPECT_FALSE(LicenceForbids(u"DejaVu Sans", {}));
  EXPECT_TRUE(LicenceForbids(u"DejaVu Sans", {.weight = 700})) << "of the style that is opened";
  EXPECT_FALSE(LicenceForbids(u"DejaVu Sans", {.weight = 550}));
  EXPECT_TRUE(LicenceForbids(u"@Kept", {.italic = true})) << "made of the upright one";
  EXPECT_FALSE(LicenceForbids(u"gone", {}));

  RealFontServices services;
  services.memory.face = u"DejaVu Sans";
  RecordingView view;
  DialogPresenter presenter(view, services);
  presenter.Open();
  presenter.TextChanged(ControlId::kText, u"A");
  presenter.Due();
  EXPECT_EQ(view.status.npos, view.status.find(u"embedding"));
  presenter.TextChanged(ControlId::kFace, u"Kept");
  EXPECT_EQ(view.status.npos, view.status.find(u"embedding")) << "typing does not wait for it";
  presenter.Due();
  EXPECT_NE(view.status.npos, view.status.find(u"Kept does not permit embedding: check what"));
  EXPECT_EQ(StatusKind::kWarning, view.status_kind);
  presenter.TextChanged(ControlId::kText, u"AB");
  EXPECT_NE(view.status.npos, view.status.find(u"embedding")) << "it is known";
  presenter.TextChanged(ControlId::kText, u"");
  EXPECT_EQ(view.status.npos, view.status.find(u"embedding")) << "nothing was taken";
}

}  // namespace
}  // namespace kerno::test
