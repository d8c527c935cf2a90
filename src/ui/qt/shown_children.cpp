#include "ui/qt/shown_children.h"

#include <QAccessibleWidget>
#include <QSplitter>
#include <QStackedWidget>
#include <QWidget>
#include <cstring>

namespace kerno {
namespace {

// A container whose hidden children are not there.
class ShownChildren final : public QAccessibleWidget {
 public:
  using QAccessibleWidget::QAccessibleWidget;

  int childCount() const override { return static_cast<int>(Children().size()); }
  QAccessibleInterface* child(int index) const override { return Children().value(index); }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const QList<QAccessibleInterface*> children = Children();
    for (int i = 0; i < children.size(); ++i) {
      if (children[i]->object() == child->object()) return i;
    }
    return -1;
  }

 private:
  // Those of a splitter from left to right or from top to bottom.
  QObjectList All() const {
    const auto* splitter = qobject_cast<QSplitter*>(widget());
    if (!splitter) return widget()->children();
    QObjectList all;
    for (int i = 0; i < splitter->count(); ++i) all += splitter->widget(i);
    return all;
  }
  QList<QAccessibleInterface*> Children() const {
    QList<QAccessibleInterface*> shown;
    for (QObject* object : All()) {
      auto* child = qobject_cast<QWidget*>(object);
      if (!child || child->isWindow() || child->isHidden()) continue;
      if (QAccessibleInterface* face = QAccessible::queryAccessibleInterface(child)) shown += face;
    }
    return shown;
  }
};

// Plain containers alone: what the toolkit knows better than that keeps its own interface.
QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
  auto* widget = qobject_cast<QWidget*>(object);
  if (!widget) return nullptr;
  const char* kind = widget->metaObject()->className();
  const bool is_plain = std::strcmp(kind, "QWidget") == 0 ||
                        std::strcmp(kind, "QStackedWidget") == 0 ||
                        std::strcmp(kind, "QSplitter") == 0;
  if (!is_plain) return nullptr;
  return new ShownChildren(widget,
                           widget->isWindow() ? QAccessible::Window : QAccessible::Grouping);
}

}  // namespace

void OfferShownChildrenOnly() {
  static const bool once = [] {
    QAccessible::installFactory(MakeInterface);
    return true;
  }();
  (void)once;
}

}  // namespace kerno
