#include "ui/qt/told_controls.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QLineEdit>

#include "ui/qt/preview_frame.h"

namespace kerno {
namespace {

// Of a drop-down list the toolkit tells what is chosen in the place of its name, and leaves the
// name to the caption before it: without one the list has no name.
class NamedCombo final : public QAccessibleWidget {
 public:
  explicit NamedCombo(QComboBox* combo)
      : QAccessibleWidget(combo, QAccessible::ComboBox), combo_(combo) {}

  int childCount() const override { return combo_->isEditable() ? 2 : 1; }
  QAccessibleInterface* child(int index) const override {
    if (index == 0) return QAccessible::queryAccessibleInterface(combo_->view());
    return index == 1 && combo_->isEditable()
               ? QAccessible::queryAccessibleInterface(combo_->lineEdit())
               : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    if (child->object() == combo_->view()) return 0;
    return combo_->isEditable() && child->object() == combo_->lineEdit() ? 1 : -1;
  }

  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Value) return combo_->currentText();
    if (kind != QAccessible::Name) return QAccessibleWidget::text(kind);
    QString chosen = combo_->currentText();
    const QString name = combo_->accessibleName();
    if (name.isEmpty() || !relations(QAccessible::Label).isEmpty()) return chosen;
    return name + QStringLiteral(": ") + chosen;
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = state.hasPopup = true;
    state.expanded = combo_->view()->isVisible();
    state.editable = combo_->isEditable();
    return state;
  }

  QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
  void doAction(const QString& action) override {
    if (action != showMenuAction() && action != pressAction()) return;
    if (combo_->view()->isVisible()) {
      combo_->hidePopup();
    } else {
      combo_->showPopup();
    }
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  QComboBox* combo_;
};

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
  if (auto* combo = qobject_cast<QComboBox*>(object)) return new NamedCombo(combo);
  if (auto* preview = dynamic_cast<PreviewFrame*>(object)) {
    return new QAccessibleWidget(preview, QAccessible::Graphic);
  }
  return nullptr;
}

}  // namespace

void TellMoreOfControls() {
  static const bool once = [] {
    QAccessible::installFactory(MakeInterface);
    return true;
  }();
  (void)once;
}

}  // namespace kerno
