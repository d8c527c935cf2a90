// The combo boxes of the main window.
#pragma once

#include <QAbstractSpinBox>
#include <QComboBox>
#include <functional>
#include <string>
#include <vector>

#include "app/color_choices.h"

namespace kerno {

class FaceSuggestions;

// Sizes the drop-down list by the room below the combo box in its window.
void SizeDropDown(QComboBox* combo);

// Texts with an edit. The selected row is that of the text in the edit, where there is one: the
// list opens there and the arrow keys go on from there.
class TextCombo : public QComboBox {
 public:
  explicit TextCombo(QWidget* parent = nullptr);

  // A red frame while the text cannot be used.
  void SetFault(bool at_fault);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool at_fault_ = false;
};

// Face names, each shown in its own face once that was loaded, which happens while the list stands
// open: opening waits for no font. Typing offers the names that hold what was typed.
class FaceCombo final : public TextCombo {
 public:
  explicit FaceCombo(QWidget* parent = nullptr);
  void ShowFaces(const std::vector<std::u16string>& faces);
  void showPopup() override;
  FaceSuggestions* suggestions() const { return suggestions_; }

 private:
  FaceSuggestions* suggestions_ = nullptr;
};

// Colours with swatches.
class ColorCombo final : public QComboBox {
 public:
  explicit ColorCombo(QWidget* parent = nullptr);
  void ShowColors(const std::vector<ColorChoice>& colors, size_t selected);

  // The selected colour.
  Color SelectedColor() const;
};

// The height as an edit with an up-down control. Takes any text, as the drop-down list does.
class HeightSpin final : public QAbstractSpinBox {
 public:
  explicit HeightSpin(QWidget* parent = nullptr);

  std::function<void(const QString&)> on_edited;
  std::function<void(int)> on_stepped;

  QLineEdit* edit() const { return lineEdit(); }
  void SetFault(bool at_fault);  // as TextCombo
  void stepBy(int steps) override;
  QSize sizeHint() const override;

 protected:
  StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
  void paintEvent(QPaintEvent* event) override;

 private:
  bool at_fault_ = false;
};

}  // namespace kerno
