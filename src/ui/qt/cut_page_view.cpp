// What the Cut page shows when it is told.

#include <QAbstractButton>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <algorithm>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "app/status_text.h"
#include "ui/qt/axis_sliders.h"
#include "ui/qt/combos.h"
#include "ui/qt/cut_page.h"
#include "ui/qt/face_list.h"
#include "ui/qt/fields.h"
#include "ui/qt/preview_frame.h"
#include "ui/qt/printing.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/save_question.h"
#include "ui/qt/text_box.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

std::optional<fs::path> PathOr(const QString& answer) {
  if (answer.isEmpty()) return std::nullopt;
  return QStringToPath(answer);
}

QString PatternOf(const std::u16string& extension) {
  return QStringLiteral("*.") + ToQString(extension);
}

}  // namespace

void CutPage::ShowText(std::u16string_view text, TextChange change) {
  const ScopedFlag writing(shows_);
  text_->ShowText(text, change);
}

void CutPage::ShowControlText(ControlId id, std::u16string_view text) {
  const ScopedFlag writing(shows_);
  QWidget* control = controls_.at(id);
  const QString shown = ToQString(text);
  if (auto* edit = qobject_cast<QLineEdit*>(control)) {
    if (edit->text() != shown) edit->setText(shown);
  } else if (auto* button = qobject_cast<QAbstractButton*>(control)) {
    button->setText(shown);
    button->setAccessibleName(ToQString(WithoutMnemonic(text)));
    SetKey(button, *FindCutControl(id));
  } else {
    static_cast<Figure*>(control)->ShowText(shown);
  }
}

void CutPage::ShowChecked(ControlId id, bool checked) {
  const ScopedFlag writing(shows_);
  Find<QAbstractButton>(id)->setChecked(checked);
  if (id == ControlId::kMeasure) {
    preview_->SetPointer(checked ? Qt::CrossCursor : Qt::OpenHandCursor);
  }
}

void CutPage::ShowChoices(ControlId id, const std::vector<std::u16string>& items, size_t selected) {
  const ScopedFlag writing(shows_);
  Find<Choice>(id)->ShowItems(items, selected);
}

void CutPage::ShowColors(ControlId id, const std::vector<ColorChoice>& colors, size_t selected) {
  const ScopedFlag writing(shows_);
  Find<ColorCombo>(id)->ShowColors(colors, selected);
}

void CutPage::ShowMenuItems(ControlId id, const std::vector<MenuItem>& items) {
  auto* tool = qobject_cast<QToolButton*>(controls_.at(id));
  QMenu* menu = tool ? tool->menu() : Find<QPushButton>(id)->menu();
  menu->clear();
  const bool any_checked = std::ranges::any_of(items, &MenuItem::checked);
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i].separator_before) menu->addSeparator();
    QAction* action = menu->addAction(ToQString(items[i].text));
    action->setData(static_cast<uint>(i));
    action->setCheckable(any_checked);
    action->setChecked(items[i].checked);
    action->setEnabled(items[i].enabled);
  }
}

void CutPage::ShowFault(ControlId id, std::u16string_view why) {
  if (why.empty()) {
    faults_.erase(id);
  } else {
    faults_[id] = why;
  }
  const CutControlRow* row = FindCutControl(id);
  if (auto* edit = qobject_cast<QLineEdit*>(controls_.at(id))) {
    static_cast<Field*>(edit)->SetFault(!why.empty());
    edit->setAccessibleDescription(why.empty() ? Said(row->hint) : ToQString(why));
  }
  for (const PanelLine& line : lines_) {
    if (std::ranges::find(line.controls, id) == line.controls.end()) continue;
    QStringList reasons;
    for (const ControlId control : line.controls) {
      if (faults_.contains(control)) reasons.append(ToQString(faults_[control]));
    }
    ShowInk(line.fault, StatusKind::kFailure);
    line.fault->setText(reasons.join(QLatin1Char('\n')));
    line.fault->setVisible(!reasons.isEmpty());
  }
}

void CutPage::Enable(ControlId id, bool enabled) {
  controls_.at(id)->setEnabled(enabled);
  if (captions_.contains(id)) captions_[id]->setEnabled(enabled);
}

void CutPage::ShowControl(ControlId id, bool visible) {
  controls_.at(id)->setVisible(visible);
  if (captions_.contains(id)) captions_[id]->setVisible(visible);
  ShowTitles();
}

void CutPage::ShowFaceRows(const std::vector<FaceListRow>& rows, std::optional<size_t> selected) {
  faces_->ShowRows(rows, selected);
}

void CutPage::RepaintFaceRows() {
  faces_->viewport()->update();
}

void CutPage::ShowAxes(const std::vector<AxisRow>& axes) {
  axes_->Show(axes);
  axes_->setHidden(axes.empty());
  OrderTabs();
}

void CutPage::RepaintPreview() {
  preview_->Repaint();
}

double CutPage::PixelsPerMillimetre() const {
  // Screens that do not know their size say anything.
  constexpr double kCoarsest = 40, kFinest = 800, kUsual = 96;
  const double dots = screen()->physicalDotsPerInch();
  return (dots >= kCoarsest && dots <= kFinest ? dots : kUsual) / kMillimetresPerInch;
}

void CutPage::ShowStatus(std::u16string_view text, StatusKind kind,
                         const std::vector<StatusLink>& links) {
  status_shown_ = {std::u16string(text), kind, links};
  ShowInk(status_, kind);  // links take their colour from it
  status_->Show(text, links);
  preview_->setAccessibleDescription(ToQString(text));
}

void CutPage::ShowInk(QLabel* label, StatusKind kind) const {
  QPalette colors = palette();
  const Color paper = FromQColor(colors.color(QPalette::Window));
  const Color normal = FromQColor(colors.color(QPalette::WindowText));
  colors.setColor(QPalette::WindowText, ToQColor(StatusInk(kind, normal, paper)));
  label->setPalette(colors);
}

// Labels that have inks of their own do not follow the desktop's colours.
void CutPage::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || !status_) return;
  for (const PanelLine& line : lines_) ShowInk(line.fault, StatusKind::kFailure);
  for (QWidget* const field : {controls_.at(ControlId::kFaceSearch), static_cast<QWidget*>(text_)})
    InkHint(field, *this);
  ShowInk(status_, status_shown_.kind);
  status_->Show(status_shown_.text, status_shown_.links);
  // Nor does what has a style sheet.
  QWidget* const menu = controls_.at(ControlId::kSaveMenu);
  const QString style = menu->styleSheet();
  menu->setStyleSheet(QString());
  menu->setStyleSheet(style);
}

std::optional<fs::path> CutPage::AskSave(const SaveQuestion& question) {
  return AskForFile(this, question);
}

std::optional<fs::path> CutPage::AskOpen(const OpenQuestion& question) {
  QStringList filters;
  for (const OpenQuestion::Kind& kind : question.kinds) {
    QStringList patterns;
    for (const std::u16string& extension : kind.extensions) patterns.append(PatternOf(extension));
    if (patterns.isEmpty()) patterns.append(QStringLiteral("*"));
    filters.append(
        QStringLiteral("%1 (%2)").arg(ToQString(kind.name), patterns.join(QLatin1Char(' '))));
  }
  return PathOr(QFileDialog::getOpenFileName(this, ToQString(question.title),
                                             PathToQString(question.folder),
                                             filters.join(QStringLiteral(";;"))));
}

std::optional<fs::path> CutPage::AskFolder(const fs::path& start) {
  return PathOr(
      QFileDialog::getExistingDirectory(this, Said(u"Folder of the files"), PathToQString(start)));
}

std::optional<std::u16string> CutPage::AskName(std::u16string_view title,
                                               std::u16string_view proposed) {
  bool accepted = false;
  const QString name = QInputDialog::getText(this, window()->windowTitle(), ToQString(title),
                                             QLineEdit::Normal, ToQString(proposed), &accepted);
  if (!accepted || name.trimmed().isEmpty()) return std::nullopt;
  return FromQString(name.trimmed());
}

std::optional<size_t> CutPage::AskWhich(std::u16string_view text,
                                        const std::vector<std::u16string>& buttons) {
  QMessageBox box(QMessageBox::Question, window()->windowTitle(), ToQString(text),
                  QMessageBox::NoButton, this);
  box.setTextFormat(Qt::PlainText);
  std::vector<const QAbstractButton*> answers;
  for (const std::u16string& button : buttons) {
    answers.push_back(box.addButton(ToQString(button), QMessageBox::AcceptRole));
  }
  box.setDefaultButton(box.addButton(Said(u"Cancel"), QMessageBox::RejectRole));
  box.exec();
  const auto answer = std::ranges::find(answers, box.clickedButton());
  if (answer == answers.end()) return std::nullopt;
  return static_cast<size_t>(answer - answers.begin());
}

void CutPage::CopyText(std::u16string_view text) {
  QGuiApplication::clipboard()->setText(ToQString(text));
}

void CutPage::CopySvg(std::string_view svg) {
  const QByteArray bytes(svg.data(), static_cast<qsizetype>(svg.size()));
  auto* offered = new QMimeData;
  offered->setData(QStringLiteral("image/svg+xml"), bytes);
  offered->setText(QString::fromUtf8(bytes));
  QGuiApplication::clipboard()->setMimeData(offered);
}

void CutPage::Print(const Drawing& drawing, std::u16string_view title) {
  PrintDrawing(this, drawing, title);
}

void CutPage::ShowProgress(std::u16string_view text, double part) {
  constexpr int kSteps = 1000;
  progress_->setVisible(part >= 0);
  if (part < 0) return;
  progress_text_->setText(ToQString(text));
  progress_bar_->setMaximum(kSteps);
  progress_bar_->setValue(static_cast<int>(std::min(part, 1.0) * kSteps));
}

void CutPage::WakeUp() {
  QMetaObject::invokeMethod(
      this, [this] { presenter_->Awake(); }, Qt::QueuedConnection);
}

void CutPage::CallWhenDue(int milliseconds) {
  due_.start(milliseconds);
}

}  // namespace kerno
