// The Cut page without a toolkit: its state and its rules. A view forwards what the user does and
// shows what it is told.
//
// The fields hold the texts of the options of `kerno cut`; what is made of them is what that
// command makes. After every change the drawing is made again and painted; a field that cannot be
// read is marked, and the last drawing stays.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/background.h"
#include "app/captions.h"
#include "app/cut_controls.h"
#include "app/cut_form.h"
#include "app/cut_memory.h"
#include "app/cut_preview.h"
#include "app/cut_series.h"
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
  // Keeps what the next run wants to know.
  [[nodiscard]] Status Keep();

  // The text that both ways of working share; lines end in U+000A.
  std::u16string text() const;
  void TakeText(std::u16string_view text);

  // Whether files are being written; `on_idle` is called when that is over.
  bool IsWriting() const { return writes_series_ || background_.IsBusy(); }
  std::function<void()> on_idle;
  // Says that the window closes when that is over.
  void TellClosing();

  // How long a change waits for its drawing before the window goes on without it. Milliseconds.
  int patience = 60;
  // How long a drag waits for its file, the same.
  int drag_patience = kProgressDelay;

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
  // The drawing in a file that another program may take: written into a folder of this run. Empty
  // where there is nothing to drag, or not yet; the reason is in the status.
  std::filesystem::path FileToDrag();

  // The sample of a row of faces, null while it is not made yet (RepaintFaceRows follows). Pixels
  // of the device.
  const BitmapSurface* FaceSample(size_t row, int width, int height, Color ink, Color paper);

  // State, for tests and for writing it out.
  const CutForm& form() const { return form_; }
  const CutPreview& preview() const { return preview_; }
  const CutDrawing* drawing() const { return made_.get(); }

 private:
  enum Link { kOpenFile, kShowFolder, kCopyPath };  // numbers of a status' links

  // What the status says of the drawing, and what was last done with it.
  struct Done {
    std::u16string text;
    StatusKind kind = StatusKind::kNormal;
    std::filesystem::path file;  // that was written: the links are about it
  };

  void ShowForm();
  void ShowField(ControlId field);
  void ShowSizeFields();
  void ShowFormatOfSave();
  void ShowMenus();
  void ShowMark(std::vector<FieldFault> faults);
  // A drawing on its way.
  struct Making {
    uint64_t number = 0;
    CutJob job;
    DrawingStyle style;
    CutDrawing made;
    Status status = Status::Ok();
    bool is_taken = false;
  };

  void Changed();
  void Rebuild();
  void TakeMade(Making* making);
  bool ReadForm(CutJob* job, DrawingStyle* style);
  bool FillFromRow(std::u16string* text, CutTexts* texts, std::vector<FieldFault>* faults);
  void CheckSheets(const CutTexts& texts, std::vector<FieldFault>* faults) const;
  void TakeDrawing(std::shared_ptr<const CutDrawing> made);
  void ShowPicture();
  void ShowStatus();
  void Tell(std::u16string text, StatusKind kind);
  void SayWritten(const std::filesystem::path& file);

  void ShowRows();
  void ShowPick();
  void PickFace(FacePick pick);
  void PickRow(size_t row);
  void PickFilter(size_t index);
  void OpenFont(const std::filesystem::path& file);
  bool WorkBetweenEvents();

  void OpenSeries(const std::filesystem::path& file);
  void CloseSeries();
  void StepTo(uint64_t row);
  void ShowSeries();
  void WriteSeries(std::optional<ExistingFiles> existing);
  void ShowSeriesProgress();
  void EndSeries();

  void ShowZoom();
  void ShowPointer(double x, double y);

  const Format& FormatOfSave() const;
  bool HasDrawing();
  std::u16string NameOfFile() const;
  std::u16string FirstLine() const;
  void ShowWriting();
  void Save(const Format& format);
  void Write(const Format& format, const std::filesystem::path& file);
  std::shared_future<Status> WriteBeside(const Format& format, const std::filesystem::path& file,
                                         std::function<void(const Status&)> done);
  void Written(const Status& status, const std::filesystem::path& file, const std::u16string& text);
  void CopySvg();
  void NoteText(const std::u16string& text);
  void PickPreset(size_t index);
  void SavePreset();
  void PickRecentText(size_t index);

  CutView& view_;
  CutServices& services_;
  CutMemory memory_;
  CutForm form_;
  std::u16string text_;
  bool has_text_ = false;    // it was taken from the window once
  bool has_sample_ = false;  // the text is the first start's
  std::vector<FieldFault> faults_;

  FaceCatalogue catalogue_;
  FaceSamples samples_{catalogue_};
  FaceFilter filter_;
  FaceRows rows_;
  std::optional<FacePick> pick_;

  CutJob job_;  // of the drawing
  DrawingStyle style_;
  std::shared_ptr<const CutDrawing> made_;
  std::u16string failure_;  // why there is no drawing of what stands in the fields
  Done done_;
  CutPreview preview_;
  std::optional<P2> grabbed_at_;
  bool measures_ = false;

  CutSeries series_;
  uint64_t row_ = 1;  // in the preview
  bool writes_series_ = false;
  std::filesystem::path series_folder_;

  std::u16string preset_;     // the one chosen last
  bool asks_ = false;         // a question stands
  bool has_all_ = false;      // only faces with all characters of the text
  uint32_t wrote_since_ = 0;  // by the clock's ticks
  std::u16string writes_;     // what is being written
  // A file that a drag did not wait for.
  struct LateDrag {
    std::filesystem::path file;
    std::shared_ptr<const CutDrawing> made;
    std::shared_future<Status> written;
  };
  LateDrag late_drag_;
  static bool HasFailed(const std::shared_future<Status>& written);
  Language said_in_ = Language::kEnglish;

  CutWorkshop workshop_;              // used by maker_ alone
  std::atomic<uint64_t> wanted_ = 0;  // the newest Making
  bool is_making_ = false;            // the preview shows an older one
  // Both end first: their work uses the rest.
  Background maker_;
  Background background_;
};

}  // namespace kerno
