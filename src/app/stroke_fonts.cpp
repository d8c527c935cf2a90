#include "app/stroke_fonts.h"

#include <algorithm>
#include <new>
#include <set>
#include <utility>

#include "base/nearest_names.h"
#include "base/text.h"
#include "base/text_file.h"
#include "outline/lff_part.h"
#include "outline/scripts.h"
#include "platform/fold_case.h"
#include "platform/folder_path.h"
#include "platform/no_memory.h"
#include "platform/stroke_font_folders.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMostBytes = size_t{64} << 20;
constexpr size_t kSuggestions = 3;

std::u16string Folded(std::u16string_view text) {
  std::u16string folded(text);
  for (char16_t& unit : folded) unit = FoldCase(unit);
  return folded;
}

// The font files of one folder, by name; a folder that cannot be read has none.
std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  if (!IsFolder(folder)) return files;
  const Status listed = ListFolder(folder, [&](const fs::path& path) {
    if (IsStrokeFontName(path)) files.push_back(path);
  });
  if (LacksMemory(listed)) throw std::bad_alloc();
  if (!listed.ok()) files.clear();
  std::ranges::sort(files);
  return files;
}

bool NamesFile(std::u16string_view wanted) {
  if (wanted.find_first_of(u"/\\") != wanted.npos) return true;
  const PathKind kind = FactsOfPath(TextPath(wanted)).kind;
  return kind != PathKind::kMissing &&
         (kind != PathKind::kFolder || wanted == u"." || wanted == u"..");
}

Status FindByName(std::u16string_view wanted, fs::path* file) {
  const std::vector<StrokeFontFile> fonts = InstalledStrokeFonts();
  std::vector<std::u16string> names;
  for (const StrokeFontFile& font : fonts) {
    if (EqualWithoutCase(font.name, wanted) ||
        EqualWithoutCase(PathText(font.file.filename()), wanted)) {
      *file = font.file;
      return Status::Ok();
    }
    names.push_back(font.name);
  }
  std::u16string why = u"there is no such stroke font";
  std::vector<std::u16string> near = NearestNames(wanted, names, kSuggestions);
  // Of names that are farther away most of the letters are others.
  std::erase_if(near, [&](const std::u16string& name) {
    return EditDistance(wanted, name) > wanted.size() / 2;
  });
  if (near.empty()) why += u" (kerno faces --strokes lists those that are)";
  for (const std::u16string& name : near) {
    const bool first = &name == near.data();
    why += !first ? u", \"" : near.size() > 1 ? u"; the nearest are \"" : u"; the nearest is \"";
    why += name + u"\"";
  }
  return Status::Error(Failure::kNotFound, std::u16string(wanted), std::move(why));
}

bool IsLff(const fs::path& file) {
  return Folded(Extension(PathText(file.filename()))) == u"lff";
}

Status ReadBytes(const fs::path& file, std::string* bytes) {
  if (Status read = ReadFileBytes(file, bytes, kMostBytes + 1); !read.ok()) {
    return Status::Error(read.failure, PathText(file), read.why);
  }
  if (bytes->size() <= kMostBytes) return Status::Ok();
  return Status::Error(Failure::kOther, PathText(file),
                       u"is larger than the 64 MB that a stroke font may have");
}

// Reads the font of a file's bytes; chosen->file is set.
Status Parse(std::string_view bytes, ChosenStrokeFont* chosen) {
  const std::u16string name = PathText(chosen->file.stem());
  if (Status status = ReadStrokeFont(bytes, name, &chosen->font); !status.ok()) {
    const std::u16string where = status.what.empty() ? u"" : u", " + status.what;
    return Status::Error(status.failure, PathText(chosen->file) + where, status.why);
  }
  if (chosen->font.family.empty()) chosen->font.family = name;
  return Status::Ok();
}

}  // namespace

bool IsStrokeFontName(const fs::path& file) {
  const std::u16string ending = Folded(Extension(PathText(file.filename())));
  return std::ranges::find(kStrokeFontEndings, ending) != std::end(kStrokeFontEndings);
}

std::vector<StrokeFontFile> InstalledStrokeFonts() {
  std::vector<StrokeFontFile> fonts;
  std::set<std::u16string> taken, files;
  for (const fs::path& folder : StrokeFontFolders()) {
    for (const fs::path& file : FilesIn(folder)) {
      const std::u16string whole = PathText(file.filename());
      if (!files.insert(Folded(whole)).second) continue;  // a folder before has one of this name
      std::u16string name = PathText(file.stem());
      if (!taken.insert(Folded(name)).second) name = whole;
      fonts.push_back({std::move(name), file});
    }
  }
  std::ranges::sort(fonts, [](const StrokeFontFile& a, const StrokeFontFile& b) {
    const std::u16string x = Folded(a.name), y = Folded(b.name);
    return x != y ? x < y : a.name < b.name;
  });
  return fonts;
}

Status ChooseStrokeFont(std::u16string_view wanted, ChosenStrokeFont* chosen) {
  ChosenStrokeFont made;
  if (NamesFile(wanted)) {
    made.file = TextPath(wanted);
  } else if (Status found = FindByName(wanted, &made.file); !found.ok()) {
    return found;
  }
  std::string bytes;
  if (Status read = ReadBytes(made.file, &bytes); !read.ok()) return read;
  if (Status parsed = Parse(bytes, &made); !parsed.ok()) return parsed;
  *chosen = std::move(made);
  return Status::Ok();
}

Status ReadStrokesFor(std::u16string_view text, const fs::path& file, ChosenStrokeFont* chosen) {
  ChosenStrokeFont made = {.file = file, .font = {}};
  std::string bytes;
  if (Status read = ReadBytes(file, &bytes); !read.ok()) return read;
  if (IsLff(file)) {
    std::u32string wanted = U"H ";  // the reader measures by them
    for (const ComposedCharacter& character : ComposedCharacters(text)) wanted += character.ch;
    bytes = PartOfLff(bytes, wanted);
  }
  if (Status parsed = Parse(bytes, &made); !parsed.ok()) return parsed;
  *chosen = std::move(made);
  return Status::Ok();
}

Status ReadStrokeCharacters(const fs::path& file, CharacterSet* characters) {
  std::vector<char32_t> all;
  ChosenStrokeFont whole = {.file = file, .font = {}};
  std::string bytes;
  if (Status read = ReadBytes(file, &bytes); !read.ok()) return read;
  if (IsLff(file)) {
    all = CharactersOfLff(bytes);
  } else {
    if (Status parsed = Parse(bytes, &whole); !parsed.ok()) return parsed;
    for (const auto& [ch, number] : whole.font.numbers) all.push_back(ch);
    std::ranges::sort(all);
  }
  *characters = {};
  for (const char32_t ch : all) Append({ch, ch}, characters);
  return Status::Ok();
}

}  // namespace kerno
