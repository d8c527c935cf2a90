// A view that keeps what it was told, and services that record and fail on demand.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/dialog_presenter.h"
#include "app/dialog_services.h"
#include "app/dialog_view.h"
#include "base/text.h"
#include "support/fake_device_context.h"

namespace kerno::test {

class RecordingView final : public DialogView {
 public:
  std::u16string text, format_face, status;
  StatusKind status_kind = StatusKind::kNormal;
  std::vector<std::u16string> messages;
  std::map<ControlId, std::u16string> texts;
  std::map<ControlId, bool> checked, enabled;
  std::map<ControlId, std::pair<std::vector<ColorChoice>, size_t>> colors;
  std::map<MenuCommand, bool> menu;
  int due_calls = 0, progress_calls = 0;
  bool closed_progress = false;
  std::optional<std::filesystem::path> folder_answer, save_answer;
  SaveQuestion asked;
  int again_answers = 0;  // how often trying again is chosen
  std::function<void()> on_ask;
  Continue work_answer = Continue::kYes;
  bool closed = false;
  std::vector<MenuCommand> edits;
  std::map<ControlId, std::u16string> faults;
  std::vector<std::filesystem::path> font_files;
  WindowMode mode = WindowMode::kClassic;
  WindowPlace place;  // where the window is
  std::vector<WindowRect> screens = {{0, 0, 1920, 1080}};
  WindowPlace placed;  // where it was put

  void ShowText(std::u16string_view shown, TextChange) override { text = shown; }
  void ShowTextFormat(std::u16string_view face, Color) override { format_face = face; }
  void ShowFaces(const std::vector<std::u16string>&) override {}
  void ShowControlText(ControlId id, std::u16string_view shown) override { texts[id] = shown; }
  void ShowChecked(ControlId id, bool on) override { checked[id] = on; }
  void ShowColors(ControlId id, const std::vector<ColorChoice>& shown, size_t selected) override {
    colors[id] = {shown, selected};
  }
  void Enable(ControlId id, bool on) override { enabled[id] = on; }
  void ShowFault(ControlId id, std::u16string_view why) override { faults[id] = why; }
  void ShowCaptions() override {}
  void ShowControl(ControlId, bool) override {}
  void ShowMenuChecked(MenuCommand command, bool on) override { menu[command] = on; }
  void ShowStatus(std::u16string_view shown, StatusKind kind) override {
    status = shown;
    status_kind = kind;
  }
  void ShowMode(WindowMode now) override { mode = now; }
  void RepaintPreview() override {}
  void ShowMessage(std::u16string_view shown, std::function<void()>) override {
    messages.emplace_back(shown);
  }
  Continue ShowProgress(std::u16string_view, double) override {
    ++progress_calls;
    return Continue::kYes;
  }
  Continue ShowWork(std::u16string_view, double) override {
    ++progress_calls;
    return work_answer;
  }
  void AskAgain(std::u16string_view question, std::function<void(bool)> answered) override {
    messages.emplace_back(question);
    if (on_ask) on_ask();
    const bool again = again_answers > 0;
    --again_answers;
    answered(again);
  }
  void WakeUp() override {}
  void EndProgress() override { closed_progress = true; }
  void ShowAbout(std::u16string_view, std::u16string_view) override {}
  std::optional<std::filesystem::path> AskFolder(const std::filesystem::path&) override {
    return folder_answer;
  }
  std::optional<std::filesystem::path> AskSave(const SaveQuestion& question) override {
    asked = question;
    return save_answer;
  }
  void EditText(MenuCommand command) override { edits.push_back(command); }
  bool LoadFontFile(const std::filesystem::path& file) override {
    font_files.push_back(file);
    return true;
  }
  void CallWhenDue(int) override { ++due_calls; }
  WindowPlace PlaceOfWindow() const override { return place; }
  std::vector<WindowRect> Screens() const override { return screens; }
  void PlaceWindow(const WindowPlace& wanted) override { placed = wanted; }
  void CloseWindow() override { closed = true; }
};

// Waits until nothing is written beside the window any more.
inline void Settle(DialogPresenter& presenter) {
  while (presenter.IsWriting()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    presenter.Awake();
  }
}

class FakeDialogServices : public DialogServices {
 public:
  DialogMemory memory, saved;
  std::u16string saved_text;
  std::vector<std::u16string> faces = {u"Plain", u"Other"};
  std::filesystem::path folder;
  std::vector<std::filesystem::path> opened_folders;
  std::vector<std::string> log;  // "dxf NAME" and so on, in order
  std::string rtf;               // the last bytes written
  std::string failing;           // the kind of output that fails, as the log names it
  bool uploads = false;
  std::u16string locale = u"en_US.UTF-8";
  int refreshed_pages = 0;
  PartsA parts_to_read;
  PartsA exported;
  std::vector<std::filesystem::path> sent;
  // The context that measures: a square of height units for each of "A" to "D".
  FakeDeviceContext* context = nullptr;

  std::unique_ptr<DeviceContext> CreateMeasuringContext() override {
    auto made = std::make_unique<FakeDeviceContext>();
    made->metrics.tmHeight = 20;
    for (char32_t ch = U'A'; ch <= U'D'; ++ch) {
      FakeGlyph& glyph = made->glyphs[ch];
      glyph.metrics.gmCellIncX = 12;
      NativeBuffer buffer;
      buffer.Polygon(0, 0).Record(1, {{10, 0}, {10, 10}, {0, 10}});
      glyph.outline = buffer.bytes();
    }
    context = made.get();
    return made;
  }
  std::vector<std::u16string> Faces() override { return faces; }
  Status LoadFontFile(const std::filesystem::path& file,
                      std::vector<std::u16string>* loaded) override {
    *loaded = {u"Dropped"};
    return Log("font", file);
  }
  DialogMemory Load() override { return memory; }
  Status Save(const DialogMemory& kept) override {
    saved = kept;
    return Log("settings", "kept");
  }
  std::u16string LoadSavedText() override { return saved_text; }
  Status SaveText(std::u16string_view text) override {
    saved_text = text;
    Status status = Log("text", "kept");
    if (!status.ok()) CurrentNotices().Message(u"the text is not kept");
    return status;
  }
  std::filesystem::path DefaultOutputFolder() override { return folder; }
  bool OpenFolder(const std::filesystem::path& opened) override {
    opened_folders.push_back(opened);
    return true;
  }
  Status WriteBytes(const std::filesystem::path& file, std::string_view bytes) override {
    rtf = bytes;
    return Log("rtf", file);
  }
  Status Write(const Format& format, const PartsA& parts, const OutputOptions&,
               const std::filesystem::path& file) override {
    exported = parts;
    return Log(std::string(format.extension), file);
  }
  Status ReadParts(const std::filesystem::path& file, PartsA* parts) override {
    *parts = parts_to_read;
    (void)CurrentNotices().Progress(u"reading", 1, 2);
    return Log("read", file);
  }
  Status BuildPage(const PageRequest&, std::filesystem::path* page) override {
    return Log("page", *page);
  }
  Status RefreshPage(const std::filesystem::path&) override {
    ++refreshed_pages;
    return Status::Ok();
  }
  bool CanUpload() override { return uploads; }
  Status Upload(const std::vector<std::filesystem::path>& files, std::u16string*) override {
    sent = files;
    return Log("upload", files.empty() ? std::filesystem::path() : files.front());
  }
  std::u16string TextLocale() override { return locale; }
  void AboutTexts(std::u16string* version, std::u16string*) override {
    *version = u"Kerno   Version 1";
  }

 private:
  std::mutex logging_;

  Status Log(const std::string& kind, const std::filesystem::path& file) {
    const std::lock_guard lock(logging_);  // outputs are written by a thread of their own
    log.push_back(kind + " " + file.extension().string());
    if (kind != failing) return Status::Ok();
    return Status::Error(Failure::kNoSpace, PathText(file), u"the disk is full");
  }
};

}  // namespace kerno::test
