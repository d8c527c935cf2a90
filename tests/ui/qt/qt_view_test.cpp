// What the Qt window alone does.
#include "support/recording_view.h"
#include "support/temporary_folder.h"
#include "view_driver.h"

namespace kerno::test {
namespace {

class QtViewTest : public testing::Test {
 protected:
  void Compose(const char16_t* preedit, const char16_t* commit = u"") const {
    QInputMethodEvent event(ToQString(preedit), {});
    event.setCommitString(ToQString(commit));
    QApplication::sendEvent(view->Text(), &event);
  }
  FakeDialogServices services;
  std::unique_ptr<ViewDriver> view = std::make_unique<ViewDriver>(services);
};

TEST_F(QtViewTest, AnInputMethodComposesUndisturbed) {
  view->Type(ControlId::kText, u"A");
  Compose(u"にほ");
  const size_t rebuilds = services.context->created.size();
  EXPECT_EQ(1u, view->presenter().item_count());
  view->presenter().TextChanged(ControlId::kFace, u"DejaVu Serif");
  EXPECT_EQ(u"にほ", FromQString(view->Text()->textCursor().block().layout()->preeditAreaText()));
  EXPECT_EQ(rebuilds + 1, services.context->created.size());
  Compose(u"", u"BC");
  EXPECT_EQ(3u, view->presenter().item_count()) << "rebuilt on commit";
}

}  // namespace
}  // namespace kerno::test

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Nothing of the user's is read or written.
  const kerno::test::TemporaryFolder home;
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "TMP", "TMPDIR", "TEMP"}) {
    qputenv(variable, home.path().c_str());
  }
  testing::InitGoogleTest(&argc, argv);
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
