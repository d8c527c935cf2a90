// Lists of face names, each shown in its own face.
#pragma once

#include <QLineEdit>
#include <QListView>
#include <QStringListModel>
#include <functional>

namespace kerno {

// Names in their own faces. A face is loaded while the list stands open: opening waits for no font.
QListView* MakeFaceList(QWidget* parent);

// Forgets which faces were loaded: there are others now.
void ForgetFaces(QAbstractItemView* list);

// The names that hold what is typed into an edit, in a list under it. The keyboard and the pointer
// stay with the window: a click elsewhere closes the list and does what it does.
class FaceSuggestions final : public QObject {
 public:
  FaceSuggestions(QLineEdit* edit, QWidget* under);
  ~FaceSuggestions() override;

  // Called with the name that the user goes to in the list.
  std::function<void(const QString&)> on_chosen;

  void SetFaces(const QStringList& faces);
  void Offer(const QString& typed);
  void Hide();
  QListView* list() const { return list_; }

  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  // A combo box has the keyboard for its edit.
  bool HasKeyboard(const QObject* object) const { return object == edit_ || object == under_; }
  bool TakesKey(int key);
  void GoTo(int row);
  void PlaceList();

  QLineEdit* edit_;
  QWidget* under_;
  QListView* list_;
  QStringListModel* names_;
  QStringList faces_;
};

}  // namespace kerno
