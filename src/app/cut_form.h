// What stands in the fields of the Cut page, and what it means.
//
// Fields hold what was typed. A length without a unit is in the page's unit, a comma is a decimal
// point, and sums are allowed: 20*2.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/controls.h"
#include "app/cut_memory.h"
#include "app/cut_texts.h"
#include "app/face_catalogue.h"
#include "app/reports.h"
#include "app/sheet_texts.h"

namespace kerno {

// A choice of a list: the word of the option, and its caption in English (a key of Say).
struct ChoiceRow {
  const char* word;
  const char16_t* caption;
};
// Those of a list; empty for a control that has none.
std::span<const ChoiceRow> ChoicesOf(ControlId list);

// The colours that paths are cut in, by AutoCAD's index from 1, captions in English.
std::span<const char16_t* const> CutColors();

// A field whose text cannot be used.
struct FieldFault {
  ControlId field = ControlId::kCutText;
  std::u16string why;
};

// The field that shows what is wrong with an option.
ControlId FieldOf(std::string_view option);

// What is wrong with an option, in the language of the window.
std::u16string ReasonOf(const Message& message);

// What is kept: all fields, or those of the drawing, without what the preview shows.
enum class StoredOf { kPage, kCut };

class CutForm {
 public:
  CutForm();

  // The text of a field, "on" or "off" of a box, the word of a choice.
  const std::u16string& Text(ControlId control) const;
  void Set(ControlId control, std::u16string_view text);
  bool IsOn(ControlId box) const { return Text(box) == u"on"; }
  void Turn(ControlId box, bool on) { Set(box, on ? u"on" : u"off"); }
  size_t ChosenOf(ControlId list) const;
  void Choose(ControlId list, size_t index);

  // Other lengths of the page are written in the new unit, so that they stay what they are.
  void ChangeUnit(size_t index);

  // The face as options of `kerno cut`.
  void SetFace(std::span<const FaceOption> options);
  std::vector<FaceOption> Face() const;
  bool IsOfStrokes() const;

  // Which fields the size is given by.
  bool HasWidth() const;
  bool HasHeight() const;

  // The options of `kerno cut` that the fields stand for.
  CutTexts Texts() const;
  // Checks every field. False where one is at fault: *faults says which and why, in the language of
  // the window; job and style are set on success only.
  [[nodiscard]] bool Read(CutJob* job, DrawingStyle* style, std::vector<FieldFault>* faults) const {
    return Read(Texts(), job, style, faults);
  }
  // The same of these texts, which a row of a series has filled.
  [[nodiscard]] bool Read(const CutTexts& filled, CutJob* job, DrawingStyle* style,
                          std::vector<FieldFault>* faults) const;

  // How the signs of a series go on sheets; nothing where they do not.
  std::optional<SheetTexts> Sheets() const;

  // What is kept by a name or between runs, without the text. Restore starts from the defaults.
  FormTexts Stored(StoredOf of) const;
  void Restore(const FormTexts& stored, StoredOf of);

 private:
  std::string LengthText(ControlId field) const;
  std::string SizeText() const;
  Message AsTyped(Message message, ControlId field) const;
  void CheckSize(std::vector<FieldFault>* faults) const;

  std::u16string InUnit(ControlId field, std::u16string_view text, double scale) const;

  // A length that was typed in another unit, and what stands for it now.
  struct Typed {
    std::u16string text, unit, shown;
  };

  std::map<ControlId, std::u16string> fields_;
  std::map<ControlId, Typed> typed_;
  std::map<std::string, std::u16string, std::less<>> face_;  // by option; none that is empty
};

}  // namespace kerno
