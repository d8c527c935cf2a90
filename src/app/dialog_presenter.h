// The main window without a toolkit: its state, its rules, the rebuild and the outputs. A view
// forwards what the user does and shows what it is told.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "app/background.h"
#include "app/dialog_services.h"
#include "app/dialog_view.h"
#include "app/outputs.h"
#include "app/preview_model.h"
#include "base/notices.h"
#include "export/draw_parts.h"
#include "outline/glyph_contours.h"
#include "outline/typesetter.h"
#include "parts/parts.h"
#include "platform/drawing.h"

namespace kerno {

class CutPresenter;

// The text with every line end (CR LF, CR, LF, NEL, U+2028, U+2029) as U+000A and without NULs,
// which would end it early: what is pasted or dropped.
std::u16string LinesOf(std::u16string_view text);

// Every change of text, face, "@", height or colour sets the text again. Where that took long the
// last time, changes are gathered and set once the user pauses; outputs never wait for that.
class DialogPresenter final : private OutputNotifier, private Notices {
 public:
  // Both outlive the dialog. The dialog is the process's notices while it lives.
  DialogPresenter(DialogView& view, DialogServices& services);
  ~DialogPresenter() override;
  DialogPresenter(const DialogPresenter&) = delete;
  DialogPresenter& operator=(const DialogPresenter&) = delete;

  // The Cut page, which lives as long as the dialog; before Open. It is filled when it is first
  // chosen.
  void UseCut(CutPresenter* cut);

  // Fills the controls with what the last run left. Before the window is shown; FillFaces may
  // follow later.
  void Open();
  void FillFaces();

  // Keeps what the next run wants to know. False when that failed and was told: the window stays,
  // so that nothing typed is lost. The next call lets it go, unless something was changed.
  // While outputs are written it is false, too: the window closes when they are done.
  bool Close();

  // Keeps the same at once and in silence: the session or the process is about to end.
  void SaveNow();

  // The user changes between the two ways of working; the text goes along.
  void ChooseMode(WindowMode mode);
  WindowMode mode() const { return memory_.mode; }

  // Events of the controls. What a control has, it has by typing or by selection.
  void TextChanged(ControlId control, std::u16string_view text);
  void Checked(ControlId box, bool checked);
  void Selected(ControlId list, size_t index);
  void Stepped(ControlId up_down, int steps);
  void Pressed(ControlId button);
  // The system's colours or the screen's density are others.
  void ShowLooksAgain();
  void Chosen(MenuCommand command);
  void Dropped(const std::vector<std::filesystem::path>& files);
  void Due();
  void Awake();

  // Whether outputs are being written beside the window.
  bool IsWriting() const { return background_.IsBusy(); }

  // The preview: its frame in pixels, what the user does in it, and painting.
  void PreviewResized(double width, double height);
  void PreviewZoomed(double x, double y, double steps);
  void PreviewGrabbed(double x, double y);
  void PreviewPointedAt(double x, double y);
  void PreviewReleased();
  void PreviewDoubleClicked();
  // A character, or an arrow for its key. Whether it does something.
  bool PreviewKeyPressed(char16_t key);
  // The frame's picture with `density` pixels for each of the frame's, on paper of the colour given
  // or of one on which the text can be read. Null where nothing of that size can be made.
  std::unique_ptr<BitmapSurface> PreviewPicture(double density, Color paper);
  // Draws on a context that covers the frame. What is smaller than half a pixel of the context may
  // be left out.
  void PaintPreview(DrawingContext& dc, double density);

  // State, for tests and for writing it out.
  const TextContours& contours() const { return *contours_; }
  const PartsA& parts();
  size_t item_count() const { return item_count_; }
  const Outputs& outputs() const { return outputs_; }
  const PreviewModel& preview() const { return preview_; }

 private:
  // OutputNotifier
  void MetafileWritten(const std::filesystem::path& metafile, const Status& result) override;
  void FileWritten(const std::filesystem::path& file, const Status& result) override;
  // Notices
  void Message(std::u16string_view text) override;
  void Ask(std::u16string_view text, const std::function<void(int button)>& answered) override;
  void ShowWait(std::u16string_view text) override;
  void ClearWait() override;
  Continue KeepWaiting(std::u16string_view path, int attempts) override;
  Continue Progress(std::u16string_view text, int64_t done, int64_t total) override;

  void ShowMode();
  void CloseWhenIdle();
  void TakeCutText();
  void LinesChanged(std::u16string_view text);
  void FaceChanged(std::u16string_view face);
  void HeightChanged(std::u16string_view text, ControlId shown_too);
  void PolyPolygonClicked(bool use);
  void FirstColorSelected(size_t index);
  void Changed();
  void Rebuild();
  void MakeContours();
  void ShowDrawing();
  void ShowTextFormat();
  void ShowColors();
  void ShowMenu();
  void ShowLanguage();
  void ShowHeightFault();
  void Remember();
  void ShowStatus(std::u16string text, StatusKind kind);
  std::u16string DescribeLicenceOf(const std::u16string& face);
  void LookAtLicence();
  void ShowStatusAgain();
  Extent3 DrawingBox();
  bool DrawsContours() const;
  const std::shared_ptr<const TextContours>& SeenContours(const Affine& fit);
  PictureNotes PaintParts(DrawingContext& dc, const Affine& fit);
  void PaintFigure(DrawingContext& dc, const Affine& fit);
  Color FirstColor() const;
  FaceForm Face() const;
  OutputSubject Subject() const;
  std::shared_ptr<const PartsA> Snapshot();
  OutputOptions Options() const;
  // What a piece of work came to, once it is done.
  struct WorkReport {
    std::vector<std::filesystem::path> written;
    std::u16string failures, messages;                     // a line each
    std::vector<std::function<void(int button)>> answers;  // to the messages that are asked
    std::filesystem::path base_path, folder;               // of the outputs
    bool replaced_another = false;
    bool is_empty = false;  // the drawing
  };
  using WorkDone = std::function<void(const WorkReport& report)>;
  void RunBeside(std::function<void()> work, WorkDone done);
  void WriteDrawing(const std::function<void(const PartsA& drawing)>& write, WorkDone done);
  void WaitForWriting();
  void WriteOutput(const Format& format);
  void SaveCopy();
  void CopySaved(const std::filesystem::path& file, const WorkReport& report);
  void Upload();
  bool ReportFailures(const WorkReport& report);
  void ReportOutputs(const WorkReport& report);
  void EndProgress();
  void SetOutputFolder(const std::filesystem::path& folder);
  bool DropOne(const std::filesystem::path& file);
  void DropText(const std::filesystem::path& file);
  void DropParts(const std::filesystem::path& file);
  void DropFont(const std::filesystem::path& file);

  DialogView& view_;
  DialogServices& services_;
  CutPresenter* cut_ = nullptr;
  bool cut_is_filled_ = false;
  Notices* notices_before_;
  std::unique_ptr<DeviceContext> measuring_;
  Typesetter typesetter_;
  Outputs outputs_;
  PreviewModel preview_;
  std::optional<P2> grabbed_at_;

  // The controls' contents; the persisting ones in `memory_`.
  DialogMemory memory_;
  bool told_unsaved_ = false;
  bool is_quiet_ = false;  // what is told was told before
  bool closes_ = false;    // once nothing is written any more
  std::u16string text_;    // lines by U+000A
  size_t first_color_ = 0;
  std::vector<ColorChoice> second_colors_;

  static std::shared_ptr<const TextContours> NoContours() {
    return std::make_shared<const TextContours>();
  }

  // The drawing.
  std::shared_ptr<const TextContours> contours_ = NoContours();  // y up
  Extent3 contours_box_;
  std::shared_ptr<const TextContours> seen_;  // contours_ without what cannot be seen
  std::shared_ptr<const TextContours> seen_of_;
  double seen_scale_ = 0;
  PartsA parts_;
  bool parts_are_stale_ = false;  // made of contours_ when they are asked for
  size_t item_count_ = 0;
  bool is_pending_ = false;  // changes wait for Due
  uint32_t last_cost_ = 0;   // milliseconds of the last rebuild
  std::u16string dropped_;   // the name of the parts file that is shown instead of the text
  std::u16string used_face_;
  struct {
    std::u16string face;
    std::optional<bool> forbids;  // nothing: not looked at yet
  } licence_;                     // of the face that was used last

  std::u16string shown_status_;
  StatusKind shown_status_kind_ = StatusKind::kNormal;
  std::u16string warnings_;  // of the drawing: they stand after every status
  std::u16string unseen_;    // what the preview cannot show of it, the same
  bool shows_progress_ = false;
  std::atomic<bool> window_waits_ = false;  // for the work: nobody can be asked
  bool asks_again_ = false;                 // the user is asked whether to try a file again
  std::filesystem::path folder_;            // of the outputs
  std::filesystem::path copy_folder_;       // of the last copy

  WorkReport* report_ = nullptr;  // of the piece under way: the worker's, like outputs_

  // What threads that write for others have told.
  bool IsWindowThread() const { return std::this_thread::get_id() == window_thread_; }
  const std::thread::id window_thread_ = std::this_thread::get_id();
  std::mutex strangers_;
  std::vector<std::u16string> told_by_strangers_;

  Background background_{[this] { view_.WakeUp(); }};  // ends before what its work uses
};

}  // namespace kerno
