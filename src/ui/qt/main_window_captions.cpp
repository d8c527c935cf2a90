// The texts of the main window, set again when their language changes.

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QMenuBar>
#include <QTranslator>
#include <vector>

#include "app/captions.h"
#include "ui/qt/combos.h"
#include "ui/qt/cut_page.h"
#include "ui/qt/main_window.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/text_box.h"

namespace kerno {
namespace {

// What the toolkit itself shows (buttons of messages, menus of fields), by the same table where it
// has the text.
class CaptionTranslator final : public QTranslator {
 public:
  using QTranslator::QTranslator;
  bool isEmpty() const override { return false; }
  QString translate(const char* /*context*/, const char* source, const char* /*meaning*/,
                    int /*count*/) const override {
    const std::u16string english = QString::fromUtf8(source).toStdU16String();
    const std::u16string said = Say(english);
    return said == english ? QString() : ToQString(said);
  }
};

QString ToolkitTexts(Language language) {
  switch (language) {
    case Language::kJapanese:
      return QStringLiteral("qtbase_ja");
    case Language::kGerman:
      return QStringLiteral("qtbase_de");
    default:
      return {};
  }
}

// The table's texts come before the toolkit's own translations.
void TranslateToolkit() {
  static QTranslator toolkit;
  static CaptionTranslator captions;
  QCoreApplication::removeTranslator(&captions);
  QCoreApplication::removeTranslator(&toolkit);
  const QString name = ToolkitTexts(CurrentLanguage());
  if (name.isEmpty()) return;
  if (toolkit.load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(&toolkit);
  }
  QCoreApplication::installTranslator(&captions);
}

}  // namespace

void MainWindow::ShowCaptions() {
  TranslateToolkit();
  for (const ControlRow& row : Controls()) {
    const auto found = controls_.find(row.id);
    if (found == controls_.end()) continue;
    QWidget* const control = found->second;
    if (auto* button = qobject_cast<QAbstractButton*>(control)) {
      button->setText(Said(row.caption));  // takes the shortcut from the caption
      if (*row.shortcut) button->setShortcut(ToKeys(row.shortcut));
    } else if (row.kind == ControlKind::kLabel) {
      static_cast<QLabel*>(control)->setText(Said(row.caption));
      control->setAccessibleName(ToQString(WithoutMnemonic(Say(row.caption))));
    }
    if (row.kind != ControlKind::kLabel && row.kind != ControlKind::kStatus) {
      control->setAccessibleName(Said(row.name));
    }
    control->setToolTip(Said(row.hint));
    // The edit in a drop-down list has the keyboard for it, and is read out.
    if (auto* combo = qobject_cast<QComboBox*>(control); combo && combo->isEditable()) {
      combo->lineEdit()->setAccessibleName(Said(row.name));
    }
  }
  text_->setAccessibleDescription(Said(u"The text to convert. Ctrl+Tab types a tab."));
  for (const auto& [id, caption] :
       {std::pair(ControlId::kModeClassic, u"Classic"), std::pair(ControlId::kModeCut, u"Cut")}) {
    static_cast<QAbstractButton*>(controls_.at(id))->setText(Said(caption));
  }
  QWidget* const modes = controls_.at(ControlId::kModeClassic)->parentWidget();
  modes->setAccessibleName(Said(u"Way of working"));
  cut_page_->ShowCaptions();
  const QList<QAction*> columns = menu_->actions();
  qsizetype column = 0;
  for (const MenuColumn& menu : Menu()) {
    columns.at(column++)->setText(Said(menu.caption));
    for (const MenuRow& row : menu.rows) actions_.at(row.command)->setText(Said(row.caption));
  }
}

// The frame is that of the control in which the edit stands.
void MainWindow::ShowFault(ControlId id, std::u16string_view why) {
  QWidget* const control = controls_.at(id);
  std::vector<QWidget*> parts = {control};
  if (auto* combo = qobject_cast<QComboBox*>(control)) {
    static_cast<TextCombo*>(combo)->SetFault(!why.empty());
    parts.push_back(combo->lineEdit());
  } else {
    spin_->SetFault(!why.empty());
    parts.push_back(spin_);
  }
  const QString hint = why.empty() ? Said(kerno::Control(id).hint) : ToQString(why);
  for (QWidget* const part : parts) {
    part->setToolTip(hint);
    part->setAccessibleDescription(ToQString(why));
  }
}

}  // namespace kerno
