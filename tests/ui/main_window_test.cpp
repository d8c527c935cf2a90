// The Qt window as a user handles it, without a display.
#include "ui/qt/main_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>
#include <QUrl>

#include "app/system_services.h"
#include "support/recording_view.h"
#include "support/temporary_folder.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

class MainWindowTest : public testing::Test {
 protected:
  MainWindowTest() {
    services.folder = folder.path();
    services.memory.face = u"DejaVu Sans";
    open_folder_on_first_save = false;
  }
  void Show(DialogServices& used) {
    window = std::make_unique<MainWindow>(used);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::qWait(1);  // the faces are listed once the window stands
    text = Find<QTextEdit>(ControlId::kText);
  }
  template <class Control>
  Control* Find(ControlId id) const {
    Control* found = window->findChild<Control*>(ObjectName(id));
    EXPECT_TRUE(found) << static_cast<int>(id);
    return found;
  }
  void Compose(const char16_t* preedit, const char16_t* commit = u"") const {
    QInputMethodEvent event(ToQString(preedit), {});
    event.setCommitString(ToQString(commit));
    QApplication::sendEvent(text, &event);
  }

  test::TemporaryFolder folder;
  test::FakeDialogServices services;
  std::unique_ptr<MainWindow> window;
  QTextEdit* text = nullptr;
};

TEST_F(MainWindowTest, EveryControlIsThereAsItsRowSays) {
  Show(services);
  EXPECT_EQ("Kerno", window->windowTitle());
  EXPECT_EQ(text, QApplication::focusWidget()) << "the text box has the keyboard";
  for (const ControlRow& row : Controls()) {
    if (row.id == ControlId::kAboutVersion || row.id == ControlId::kAboutCopyright) continue;
    const auto* control = Find<QWidget>(row.id);
    ASSERT_TRUE(control);
    EXPECT_EQ(row.hidden, control->isHidden()) << static_cast<int>(row.id);
    if (qobject_cast<const QLabel*>(control) == nullptr) {
      EXPECT_FALSE(control->accessibleName().isEmpty()) << static_cast<int>(row.id);
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(control)) {
      EXPECT_EQ(row.caption, FromQString(button->text()));
    }
  }
}

TEST_F(MainWindowTest, TypingRebuildsAndUndoIsTheUsersOwn) {
  Show(services);
  QTest::keyClicks(text, "AB");
  EXPECT_EQ(2u, window->presenter().item_count());
  QTest::keyClick(text, Qt::Key_Left, Qt::ShiftModifier);
  Find<QComboBox>(ControlId::kFace)->setEditText("DejaVu Serif");
  EXPECT_EQ("DejaVu Serif", text->font().families().first());
  EXPECT_EQ("B", text->textCursor().selectedText()) << "the selection stays";
  Find<QComboBox>(ControlId::kFirstColor)->setCurrentIndex(6);
  EXPECT_EQ(QColor(Qt::red), text->palette().color(QPalette::Text));
  QTest::keyClick(text, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ("", text->toPlainText()) << "looks are nothing to undo";
  EXPECT_EQ(0u, window->presenter().item_count());
  QTest::keyClick(text, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ("AB", text->toPlainText());
}

TEST_F(MainWindowTest, AnInputMethodComposesUndisturbed) {
  Show(services);
  QTest::keyClicks(text, "A");
  Compose(u"にほ");
  const int formats = static_cast<int>(services.context->created.size());
  EXPECT_EQ(1u, window->presenter().item_count());
  window->presenter().FaceChanged(u"DejaVu Serif");
  EXPECT_EQ(u"にほ", FromQString(text->textCursor().block().layout()->preeditAreaText()));
  EXPECT_EQ(formats + 1, static_cast<int>(services.context->created.size()));
  Compose(u"", u"BC");
  EXPECT_EQ(3u, window->presenter().item_count()) << "rebuilt on commit";
  EXPECT_EQ("ABC", text->toPlainText());
}

TEST_F(MainWindowTest, PastedLinesAndNoBreakSpaces) {
  Show(services);
  QGuiApplication::clipboard()->setText("A\r\nB\rC\u2028D\u00A0");
  QTest::mouseClick(Find<QPushButton>(ControlId::kPaste), Qt::LeftButton);
  EXPECT_EQ(4, text->document()->blockCount());
  QTest::mouseClick(Find<QPushButton>(ControlId::kDxf), Qt::LeftButton);
  EXPECT_THAT(services.rtf, testing::HasSubstr("A\\par\r\nB\\par\r\nC\\par\r\nD\\u160"));
}

TEST_F(MainWindowTest, EnterPressesNoButton) {
  Show(services);
  for (const ControlId id : {ControlId::kHeightEdit, ControlId::kFace, ControlId::kHeightList}) {
    auto* field = Find<QWidget>(id);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(window->isVisible());
  }
  EXPECT_TRUE(services.log.empty());
}

TEST_F(MainWindowTest, HeightsStayInStepAndListsGoOnFromTheText) {
  Show(services);
  auto* list = Find<QComboBox>(ControlId::kHeightList);
  auto* edit = Find<QLineEdit>(ControlId::kHeightEdit);
  edit->setFocus();
  edit->selectAll();
  QTest::keyClicks(edit, "-12x");
  EXPECT_EQ("-12x", list->currentText());
  QTest::keyClick(edit, Qt::Key_Up);
  EXPECT_EQ("-11", list->currentText());
  EXPECT_EQ("-11", edit->text());
  list->setCurrentIndex(12);
  EXPECT_EQ("100", edit->text());
  list->lineEdit()->selectAll();
  QTest::keyClicks(list->lineEdit(), "77");
  EXPECT_EQ("77", edit->text());
  for (QLineEdit* typed : {edit, list->lineEdit()}) {
    typed->selectAll();
    QTest::keyClicks(typed, "25");
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ("30", edit->text()) << "the row after that of the text";
  }
  auto* face = Find<QComboBox>(ControlId::kFace);
  face->setEditText("Other");
  QTest::keyClick(face, Qt::Key_Up);
  EXPECT_EQ("Plain", face->currentText());
}

TEST_F(MainWindowTest, FilesDroppedOnTheTextBoxReachTheWindow) {
  Show(services);
  test::WriteBytes(folder / "a.txt", "AB\nC");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(PathToQString(folder / "a.txt"))});
  data.setText("file:///a.txt");
  QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(text->viewport(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(text->viewport(), &drop);
  QTest::qWait(1);
  EXPECT_EQ("AB\nC", text->toPlainText());
  EXPECT_EQ(3u, window->presenter().item_count());
  QTest::keyClick(text, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ("", text->toPlainText());
}

TEST_F(MainWindowTest, DropDownListsHaveTheRowsThatFit) {
  Show(services);
  for (const ControlId id : {ControlId::kHeightList, ControlId::kFace, ControlId::kFirstColor,
                             ControlId::kSecondColor}) {
    const auto* combo = Find<QComboBox>(id);
    const int top = combo->mapTo(window.get(), QPoint(0, 0)).y();
    EXPECT_EQ(DropDownRows(window->height(), top, combo->view()->sizeHintForRow(0)),
              combo->maxVisibleItems());
  }
}

// The middle of the preview's ink, by the real rasteriser.
TEST_F(MainWindowTest, TheHoleOfAnOIsOpenInTheFigure) {
  SystemServices real;
  Show(real);
  window->presenter().FaceChanged(u"DejaVu Sans");
  QTest::keyClicks(text, "O");
  auto* preview = Find<QWidget>(ControlId::kPreview);
  QImage picture;
  int dark = 0;
  // A slow machine's window gathers changes before it draws them.
  for (int tries = 0; tries < 100 && dark <= 20; ++tries) {
    QTest::qWait(tries == 0 ? 0 : 50);
    picture = preview->grab().toImage();
    const int middle = picture.rect().center().y();
    dark = 0;
    for (int x = 0; x < picture.width(); ++x) dark += picture.pixelColor(x, middle).value() < 64;
  }
  EXPECT_EQ(QColor(Qt::white), picture.pixelColor(picture.rect().center()));
  EXPECT_GT(dark, 20) << "the two stems";
}

TEST_F(MainWindowTest, NothingTypedBreaksIt) {
  SystemServices real;
  Show(real);
  auto* height = Find<QLineEdit>(ControlId::kHeightEdit);
  const auto type = [height](const char* number) {
    height->selectAll();
    QTest::keyClicks(height, number);
  };
  for (const char* letters : {"", "   ", "\t", "Ab"}) {
    text->setPlainText(letters);
    for (const char* number : {"0", "-1000", "10000", "-999999999999", "999999999999", "x"}) {
      type(number);
      window->grab();
      EXPECT_FALSE(Find<QLabel>(ControlId::kStatus)->text().isEmpty()) << number;
    }
  }
  type("100");
  for (const char* face : {"", "@", "@@", "No such face", "@No such face"}) {
    Find<QComboBox>(ControlId::kFace)->setEditText(face);
    EXPECT_EQ(window->presenter().contours().counts.size(), window->presenter().item_count());
  }
  Find<QComboBox>(ControlId::kFace)->setEditText("DejaVu Sans");
  EXPECT_EQ(4u, window->presenter().item_count()) << "and it still works";
}

TEST_F(MainWindowTest, DarkPalettesKeepEverythingLegible) {
  Show(services);
  services.failing = "export";
  QTest::mouseClick(Find<QPushButton>(ControlId::kDxf), Qt::LeftButton);
  QApplication::activeModalWidget()->close();
  const QPalette before = QApplication::palette();
  QPalette dark = before;
  dark.setColor(QPalette::Base, QColor(30, 30, 32));
  dark.setColor(QPalette::Window, QColor(45, 45, 48));
  QApplication::setPalette(dark);
  QTest::qWait(1);
  const QPalette status = Find<QLabel>(ControlId::kStatus)->palette();
  EXPECT_TRUE(Contrasts(FromQColor(status.color(QPalette::WindowText)),
                        FromQColor(status.color(QPalette::Window))));
  for (int i = 0; i < Find<QComboBox>(ControlId::kFirstColor)->count(); ++i) {
    Find<QComboBox>(ControlId::kFirstColor)->setCurrentIndex(i);
    EXPECT_TRUE(Contrasts(FromQColor(text->palette().color(QPalette::Text)),
                          FromQColor(text->palette().color(QPalette::Base))))
        << i;
  }
  QApplication::setPalette(before);
}

TEST_F(MainWindowTest, WhatCannotBeKeptHoldsTheWindowOnce) {
  Show(services);
  services.failing = "text";
  EXPECT_FALSE(window->close());
  ASSERT_TRUE(QApplication::activeModalWidget());
  QApplication::activeModalWidget()->close();
  EXPECT_TRUE(window->isVisible());
  EXPECT_TRUE(window->close());
  EXPECT_FALSE(QApplication::activeModalWidget());
}

TEST_F(MainWindowTest, F1ShowsTheVersion) {
  Show(services);
  QTest::keyClick(text, Qt::Key_F1);
  const auto* version = Find<QLabel>(ControlId::kAboutVersion);
  ASSERT_TRUE(version);
  EXPECT_EQ("Kerno   Version 1", version->text());
}

}  // namespace
}  // namespace kerno

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
