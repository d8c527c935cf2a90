// A view of the Cut page that keeps what it was told and answers as a test wants, and its services.
#pragma once

#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/cut_presenter.h"
#include "app/cut_services.h"
#include "app/cut_texts.h"

namespace kerno::test {

class RecordingCutView final : public CutView {
 public:
  std::u16string text, status, copied;
  StatusKind status_kind = StatusKind::kNormal;
  std::vector<StatusLink> links;
  std::map<ControlId, std::u16string> texts, faults;
  std::map<ControlId, bool> checked, enabled, shown;
  std::map<ControlId, std::vector<std::u16string>> choices;
  std::map<ControlId, std::vector<MenuItem>> menus;
  std::vector<FaceListRow> faces;
  std::optional<size_t> face;
  std::string svg;
  std::vector<SaveQuestion> save_questions;
  std::vector<std::u16string> questions;
  std::optional<std::filesystem::path> save_answer, folder_answer;
  std::optional<std::u16string> name_answer;
  std::vector<std::optional<size_t>> answers;  // to questions, one after the other; then Cancel
  std::atomic<int> wakes = 0;

  void ShowText(std::u16string_view now, TextChange) override { text = now; }
  void ShowControlText(ControlId id, std::u16string_view now) override { texts[id] = now; }
  void ShowChecked(ControlId id, bool on) override { checked[id] = on; }
  void ShowChoices(ControlId id, const std::vector<std::u16string>& items, size_t) override {
    choices[id] = items;
  }
  void ShowColors(ControlId, const std::vector<ColorChoice>&, size_t) override {}
  void ShowMenuItems(ControlId id, const std::vector<MenuItem>& items) override {
    menus[id] = items;
  }
  void ShowFault(ControlId id, std::u16string_view why) override {
    faults[id] = why;
    if (why.empty()) faults.erase(id);
  }
  void Enable(ControlId id, bool on) override { enabled[id] = on; }
  void ShowControl(ControlId id, bool on) override { shown[id] = on; }
  void ShowFaceRows(const std::vector<FaceListRow>& rows, std::optional<size_t> selected) override {
    faces = rows;
    face = selected;
  }
  void RepaintFaceRows() override {}
  void ShowAxes(const std::vector<AxisRow>&) override {}
  void RepaintPreview() override {}
  double PixelsPerMillimetre() const override { return 4; }
  void ShowStatus(std::u16string_view now, StatusKind kind,
                  const std::vector<StatusLink>& words) override {
    status = now;
    status_kind = kind;
    links = words;
  }
  std::optional<std::filesystem::path> AskSave(const SaveQuestion& question) override {
    save_questions.push_back(question);
    return save_answer;
  }
  std::optional<std::filesystem::path> AskOpen(const OpenQuestion&) override { return {}; }
  std::optional<std::filesystem::path> AskFolder(const std::filesystem::path&) override {
    return folder_answer;
  }
  std::optional<std::u16string> AskName(std::u16string_view, std::u16string_view) override {
    return name_answer;
  }
  std::optional<size_t> AskWhich(std::u16string_view question,
                                 const std::vector<std::u16string>&) override {
    questions.emplace_back(question);
    return questions.size() <= answers.size() ? answers[questions.size() - 1] : std::nullopt;
  }
  void CopyText(std::u16string_view now) override { copied = now; }
  void CopySvg(std::string_view now) override { svg = now; }
  void Print(const Drawing&, std::u16string_view) override {}
  void ShowProgress(std::u16string_view, double) override {}
  void WakeUp() override { ++wakes; }
  void CallWhenDue(int) override {}
};

class FakeCutServices final : public CutServices {
 public:
  CutMemory memory;
  std::filesystem::path folder;
  std::vector<Status> failures;  // of the next writes
  std::vector<std::filesystem::path> opened;
  std::shared_future<void> gate;  // where there is one, writing waits for it
  int writes = 0;

  Status load = Status::Ok();
  Status LoadCut(CutMemory* now) override {
    if (load.ok()) *now = memory;
    return load;
  }
  Status SaveCut(const CutMemory& now) override {
    memory = now;
    return Status::Ok();
  }
  std::filesystem::path Documents() override { return folder; }
  std::filesystem::path ScratchFolder() override { return folder; }
  Status WriteDrawing(const CutDrawing& made, const CutJob& job, const DrawingStyle& style,
                      const Format& format, const std::filesystem::path& file) override {
    if (gate.valid()) gate.wait();
    ++writes;
    if (failures.empty()) return WriteCut(job, made, style, format, file);
    const Status first = failures.front();
    failures.erase(failures.begin());
    const bool is_held = first.failure == Failure::kSharingViolation;
    const bool again = is_held && Background::OfThisThread()->Ask(first.what);
    return again ? WriteDrawing(made, job, style, format, file) : first;
  }
  bool OpenPath(const std::filesystem::path& path) override {
    opened.push_back(path);
    return true;
  }
};

}  // namespace kerno::test
