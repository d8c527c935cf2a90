// What the Qt window alone does.
#include <algorithm>
#include <set>

#include "support/recording_cut_view.h"
#include "support/recording_view.h"
#include "support/temporary_folder.h"
#include "ui/qt/combos.h"
#include "ui/qt/face_suggestions.h"
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
  void Show() {
    view.reset();
    view = std::make_unique<ViewDriver>(services, cut_services);
  }
  // All that assistive technology meets, the window itself left out.
  static void Collect(QAccessibleInterface* parent, std::vector<QAccessibleInterface*>* all) {
    for (int i = 0; i < parent->childCount(); ++i) {
      QAccessibleInterface* child = parent->child(i);
      all->push_back(child);
      if (child) Collect(child, all);
    }
  }

  FakeDialogServices services;
  FakeCutServices cut_services;
  std::unique_ptr<ViewDriver> view = std::make_unique<ViewDriver>(services, cut_services);
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

TEST_F(QtViewTest, OutputsStayInSightInSmallWindows) {
  const struct {
    ControlId mode;
    std::vector<ControlId> outputs;
  } pages[] = {{ControlId::kModeClassic, {ControlId::kDxf, ControlId::kDib, ControlId::kQuit}},
               {ControlId::kModeCut, {ControlId::kSave, ControlId::kSaveMenu, ControlId::kPrint}}};
  for (const QSize size : {QSize(784, 436), QSize(440, 300), QSize(1097, 580)}) {
    for (const auto& page : pages) {
      view->Click(page.mode);
      view->window.resize(size);
      ViewDriver::Settle();
      EXPECT_EQ(size, view->window.size());
      for (const ControlId id : page.outputs) {
        const auto* button = view->Find<QWidget>(id);
        const QPoint middle = button->mapTo(&view->window, button->rect().center());
        EXPECT_EQ(button, view->window.childAt(middle)) << static_cast<int>(id);
      }
    }
  }
}

TEST_F(QtViewTest, AssistiveTechnologyMeetsWhatIsShown) {
  view->Type(ControlId::kText, u"A");
  for (const ControlId mode : {ControlId::kModeClassic, ControlId::kModeCut}) {
    view->Click(mode);
    std::vector<QAccessibleInterface*> all;
    Collect(QAccessible::queryAccessibleInterface(&view->window), &all);
    std::set<QString> names;
    for (QAccessibleInterface* one : all) {
      ASSERT_TRUE(one && one->isValid());
      names.insert(one->text(QAccessible::Name));
      const auto* widget = qobject_cast<QWidget*>(one->object());
      const bool is_ours = widget && widget->objectName().toInt() > 0;
      EXPECT_TRUE(!is_ours || widget->isVisible()) << widget->objectName().toStdString();
      const bool is_edit = qobject_cast<const QLineEdit*>(widget) != nullptr;
      EXPECT_TRUE(!is_edit || !one->text(QAccessible::Name).isEmpty()) << "has the keyboard";
    }
    const bool is_classic = mode == ControlId::kModeClassic;
    EXPECT_EQ(is_classic, names.contains(QStringLiteral("Write DXF")));
    EXPECT_EQ(!is_classic, names.contains(QStringLiteral("Search faces")));
    EXPECT_EQ(is_classic, names.contains(QStringLiteral("Text colour: Black")));
    EXPECT_EQ(!is_classic, names.contains(QStringLiteral("What the preview shows: Filled")));
    EXPECT_FALSE(names.contains(QStringLiteral("Write IPL"))) << "never shown";
    EXPECT_EQ(is_classic, names.contains(ToQString(view->TextOf(ControlId::kStatus))));
  }
}

TEST_F(QtViewTest, CutIsReadAndWalkedThroughFromTopToBottom) {
  view->Click(ControlId::kModeCut);
  view->TypeOver(ControlId::kCutText, u"AV");
  ViewDriver::Wait();
  std::vector<QAccessibleInterface*> all;
  Collect(QAccessible::queryAccessibleInterface(&view->window), &all);
  std::vector<int> read;
  for (QAccessibleInterface* one : all) {
    const int id = one->object() ? one->object()->objectName().toInt() : 0;
    if (id > 0) read.push_back(id);
    if (id == static_cast<int>(ControlId::kTrueSize)) {
      EXPECT_TRUE(
          one->text(QAccessible::Name).contains(view->Find<QLabel>(ControlId::kTrueSize)->text()));
    }
    EXPECT_NE(static_cast<int>(ControlId::kAxes), id) << "there are none";
  }
  std::vector<int> table = {static_cast<int>(ControlId::kModeClassic),
                            static_cast<int>(ControlId::kModeCut)};
  for (const CutControlRow& row : CutControls()) {
    if (view->IsShown(row.id)) table.push_back(static_cast<int>(row.id));
  }
  EXPECT_EQ(table, read);
  // The Tab key, too; what it does not stop at is left out.
  view->Find<QWidget>(ControlId::kCutText)->setFocus();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(view->Find<QWidget>(ControlId::kModeCut)->parent(),
            QApplication::focusWidget()->parent());
  auto place = std::ranges::find(table, static_cast<int>(ControlId::kModeCut));
  for (int stops = 0; stops < 80; ++stops) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    const int id = QApplication::focusWidget()->objectName().toInt();
    if (id == table[0] || id == table[1]) break;
    place = std::find(place, table.end(), id);
    ASSERT_NE(table.end(), place) << "after " << stops << " stops: " << id;
  }
  EXPECT_EQ(static_cast<int>(ControlId::kSaveMenu), *place) << "the last stop";
}

TEST_F(QtViewTest, TheMenuKnowsWhereItIs) {
  const auto entry = [&](const char* caption) {
    for (QAction* action : view->window.findChildren<QAction*>()) {
      if (action->text() == QLatin1String(caption)) return action;
    }
    return static_cast<QAction*>(nullptr);
  };
  view->Click(ControlId::kModeCut);
  EXPECT_FALSE(entry("Contours as &lines")->isEnabled() ||
               entry("Save a copy &as...")->isEnabled());
  view->TypeOver(ControlId::kSizeHeight, u"35");
  view->Find<QWidget>(ControlId::kSizeHeight)->setFocus();
  entry("Select &all")->trigger();
  entry("&Copy")->trigger();
  EXPECT_EQ(QStringLiteral("35"), QGuiApplication::clipboard()->text());
  view->Click(ControlId::kModeClassic);
  EXPECT_TRUE(entry("Contours as &lines")->isEnabled());
}

TEST_F(QtViewTest, SuggestionsEatNoClickAndTheListOpensAtItsFace) {
  services.faces.clear();
  for (int i = 0; i < 1000; ++i)
    services.faces.push_back(FromQString(QStringLiteral("Face %1").arg(i)));
  Show();
  auto* combo = static_cast<FaceCombo*>(view->Find<QComboBox>(ControlId::kFace));
  QListView* offered = combo->suggestions()->list();
  view->TypeOver(ControlId::kFace, u"e 9");
  EXPECT_TRUE(offered->isVisible());
  view->Press(ControlId::kFace, UserKey::kDown);
  EXPECT_EQ(u"Face 9", view->TextOf(ControlId::kFace));
  const auto* vertical = view->Find<QWidget>(ControlId::kVertical);
  const QPoint at = vertical->mapTo(&view->window, QPoint(8, vertical->height() / 2));
  QTest::mouseClick(view->window.windowHandle(), Qt::LeftButton, {}, at);
  EXPECT_FALSE(offered->isVisible());
  EXPECT_TRUE(view->Find<QCheckBox>(ControlId::kVertical)->isChecked());
  view->TypeOver(ControlId::kFace, u"Face 900");
  combo->showPopup();
  const QRect row = combo->view()->visualRect(combo->view()->currentIndex());
  EXPECT_EQ(u"Face 900", FromQString(combo->view()->currentIndex().data().toString()));
  EXPECT_TRUE(combo->view()->viewport()->rect().contains(row));
  combo->hidePopup();
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
