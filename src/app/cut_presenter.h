// The Cut page without a toolkit: its state and its rules. A view forwards what the user does and
// shows what it is told.
//
// The fields hold the texts of the options of `kerno cut`; what is made of them is what that
// command makes. After every change the drawing is made again and painted; a field that cannot be
// read is marked, and the last drawing stays.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/cut_controls.h"
#include "app/cut_memory.h"
#include "app/cut_preview.h"
#include "app/cut_texts.h"
#include "app/cut_view.h"
#include "app/face_catalogue.h"
#include "app/face_samples.h"

namespace kerno {

class CutServices;

class CutPresenter {
 public:
  // Both outlive the presenter.
  CutPresenter(CutView& view, CutServices& services);
  ~CutPresenter();
  CutPresenter(const CutPresenter&) = delete;
  CutPresenter& operator=(const CutPresenter&) = delete;

  // Fills the controls with what the last run left. Before the page is shown.
  void Open();
  // Lists the faces; once the page stands.
  void FillFaces();
  // What is kept for the next run.
  CutMemory Memory() const;

  // The text that both ways of working share; lines end in U+000A.
  const std::u16string& text() const { return text_; }
  void TakeText(std::u16string_view text);

  // Events of the controls.
  void TextChanged(ControlId field, std::u16string_view text);
  void Checked(ControlId box, bool checked);    // check boxes and toggles
  void Selected(ControlId list, size_t index);  // choices, colours, rows of faces
  void Picked(ControlId menu, size_t index);    // entries of a menu button
  void Pressed(ControlId button);
  void AxisMoved(size_t axis, double place);
  void FavouriteToggled(size_t row);
  void LinkFollowed(int number);
  void Dropped(const std::vector<std::filesystem::path>& files);
  void Cancelled();
  void Due();
  void Awake();
  // The language, the colours or the density of the screen are others.
  void ShowLooksAgain();

  // The preview: its frame in pixels, and what the user does in it.
  void PreviewResized(double width, double height, double density);
  void PreviewZoomed(double x, double y, double steps);
  void PreviewGrabbed(double x, double y);
  void PreviewPointedAt(double x, double y);
  void PreviewReleased();
  void PreviewDoubleClicked();
  bool PreviewKeyPressed(char16_t key);
  std::unique_ptr<BitmapSurface> PreviewPicture(Color paper);
  // A press with Ctrl, or on the ink with Alt, may become a drag out of the window.
  // The drawing in a file that another program may take: written into a folder of this run. Empty
  // where there is nothing to drag; the reason is in the status.
  std::filesystem::path FileToDrag();

  // The sample of a row of faces, null while it is not made yet (RepaintFaceRows follows). Pixels
  // of the device.
  const BitmapSurface* FaceSample(size_t row, int width, int height, Color ink, Color paper);

  // State, for tests and for writing it out.
  const CutTexts& texts() const { return texts_; }
  const CutPreview& preview() const { return preview_; }
  const CutDrawing* drawing() const { return made_.get(); }

 private:
  CutView& view_;
  CutServices& services_;
  CutTexts texts_;
  std::u16string text_;
  CutPreview preview_;
  std::shared_ptr<const CutDrawing> made_;
};

}  // namespace kerno
