#include "app/cut_store.h"

#include <algorithm>
#include <initializer_list>

#include "app/cut_services.h"
#include "app/cut_texts.h"
#include "app/dialog_settings.h"
#include "app/text_source.h"
#include "base/folders.h"
#include "base/launch.h"
#include "base/text.h"
#include "base/text_file.h"
#include "export/drawing_formats.h"
#include "platform/folder_path.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kFile = u"Kerno_Cut.txt";

void AppendLine(std::u16string* out, std::initializer_list<std::u16string_view> words) {
  bool is_first = true;
  for (const std::u16string_view word : words) {
    if (!is_first) *out += u'\t';
    is_first = false;
    for (const char16_t c : word) {
      if (c == u'\n') {
        *out += u"\\n";
      } else if (c == u'\t') {
        *out += u"\\t";
      } else if (c == u'\\') {
        *out += u"\\\\";
      } else {
        *out += c;
      }
    }
  }
  *out += u'\n';
}

std::vector<std::u16string> WordsOf(std::u16string_view line) {
  std::vector<std::u16string> words(1);
  for (size_t i = 0; i < line.size(); ++i) {
    const char16_t c = line[i];
    if (c == u'\t') {
      words.emplace_back();
    } else if (c == u'\\' && i + 1 < line.size()) {
      const char16_t code = line[++i];
      words.back() += code == u'n' ? u'\n' : code == u't' ? u'\t' : code;
    } else if (c != u'\r') {
      words.back() += c;
    }
  }
  return words;
}

std::string NameOf(std::u16string_view name) {
  return {name.begin(), name.end()};  // names of fields are ASCII
}
std::u16string Wide(std::string_view name) {
  return {name.begin(), name.end()};
}

// The texts that are kept one by one.
struct KeptText {
  std::u16string_view name;
  std::u16string CutMemory::*text;
};
constexpr KeptText kKept[] = {{u"favourites", &CutMemory::favourites},
                              {u"faces", &CutMemory::recent},
                              {u"folder", &CutMemory::folder},
                              {u"format", &CutMemory::format}};

void TakePreset(const std::vector<std::u16string>& words, CutMemory* memory) {
  const auto found = std::ranges::find(memory->presets, words[1], &CutPreset::name);
  CutPreset& preset = found != memory->presets.end()
                          ? *found
                          : memory->presets.emplace_back(CutPreset{words[1], {}});
  if (words.size() == 4) preset.texts.emplace_back(NameOf(words[2]), words[3]);
}

void TakeLine(const std::vector<std::u16string>& words, CutMemory* memory) {
  const std::u16string& kind = words[0];
  if (kind == u"form" && words.size() == 3) memory->form.emplace_back(NameOf(words[1]), words[2]);
  if (kind == u"preset" && words.size() >= 2) TakePreset(words, memory);
  if (kind == u"text" && words.size() == 2) memory->recent_texts.push_back(words[1]);
  if (kind != u"keep" || words.size() != 3) return;
  for (const KeptText& kept : kKept) {
    if (words[1] == kept.name) memory->*kept.text = words[2];
  }
}

fs::path StorePath() {
  return SavedTextPath().replace_filename(TextPath(kFile));
}

}  // namespace

std::u16string StoredText(const CutMemory& memory) {
  std::u16string out;
  for (const auto& [name, value] : memory.form) AppendLine(&out, {u"form", Wide(name), value});
  for (const CutPreset& preset : memory.presets) {
    AppendLine(&out, {u"preset", preset.name});
    for (const auto& [name, value] : preset.texts) {
      AppendLine(&out, {u"preset", preset.name, Wide(name), value});
    }
  }
  for (const std::u16string& text : memory.recent_texts) AppendLine(&out, {u"text", text});
  for (const KeptText& kept : kKept) AppendLine(&out, {u"keep", kept.name, memory.*kept.text});
  return out;
}

CutMemory ReadStored(std::u16string_view text) {
  CutMemory memory;
  while (!text.empty()) {
    const size_t end = std::min(text.find(u'\n'), text.size());
    TakeLine(WordsOf(text.substr(0, end)), &memory);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  memory.was_used = true;
  return memory;
}

CutMemory Merged(CutMemory kept, const CutMemory& before, const CutMemory& now) {
  const auto find = [](auto& presets, const std::u16string& name) {
    return std::ranges::find(presets, name, &CutPreset::name);
  };
  for (const CutPreset& preset : before.presets) {
    if (find(now.presets, preset.name) != now.presets.end()) continue;
    std::erase_if(kept.presets, [&](const CutPreset& p) { return p.name == preset.name; });
  }
  for (const CutPreset& preset : now.presets) {
    const auto known = find(before.presets, preset.name);
    if (known != before.presets.end() && known->texts == preset.texts) continue;
    const auto there = find(kept.presets, preset.name);
    (there != kept.presets.end() ? *there : kept.presets.emplace_back()) = preset;
  }
  std::ranges::sort(kept.presets, {}, &CutPreset::name);
  std::vector<std::u16string> texts = now.recent_texts;
  for (const std::u16string& text : kept.recent_texts) {
    if (texts.size() == CutMemory::kMostRecentTexts) break;
    if (std::ranges::find(texts, text) == texts.end()) texts.push_back(text);
  }
  kept.recent_texts = std::move(texts);
  for (const KeptText& each : kKept) {
    if (now.*each.text != before.*each.text) kept.*each.text = now.*each.text;
  }
  if (now.form != before.form) kept.form = now.form;
  return kept;
}

Status LoadCutMemory(CutMemory* memory) {
  std::u16string text;
  const fs::path file = StorePath();
  if (!PathExists(file)) {
    *memory = {};
    return Status::Ok();
  }
  const Status read = LoadText(file, &text);
  if (read.ok()) *memory = ReadStored(text);
  return read;
}

Status SaveCutMemory(const CutMemory& memory) {
  return WriteText(StorePath(), StoredText(memory), TextEncoding::kUtf8);
}

Status SystemCutServices::LoadCut(CutMemory* memory) {
  const Status read = LoadCutMemory(memory);
  if (read.ok()) loaded_ = *memory;
  return read;
}

// What cannot be read is not written over.
Status SystemCutServices::SaveCut(const CutMemory& memory) {
  CutMemory kept;
  Status status = LoadCutMemory(&kept);
  if (!status.ok()) return status;
  const CutMemory merged = Merged(kept, loaded_, memory);
  if (!kept.was_used || StoredText(merged) != StoredText(kept)) status = SaveCutMemory(merged);
  if (status.ok()) loaded_ = memory;
  return status;
}

fs::path SystemCutServices::Documents() {
  const fs::path documents = SpecialFolder(static_cast<uint32_t>(SpecialFolderId::kPersonal));
  return PathExists(documents) ? documents
                               : SpecialFolder(static_cast<uint32_t>(SpecialFolderId::kProfile));
}

fs::path SystemCutServices::ScratchFolder() {
  return scratch_.Folder();
}

Status SystemCutServices::WriteDrawing(const CutDrawing& made, const CutJob& job,
                                       const DrawingStyle& style, const Format& format,
                                       const fs::path& file) {
  return WriteCut(job, made, style, format, file);
}

bool SystemCutServices::OpenPath(const fs::path& path) {
  LaunchRequest request;
  request.file = path;
  return Launch(&request);
}

}  // namespace kerno
