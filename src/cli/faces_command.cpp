#include "cli/faces_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "app/option_values.h"
#include "app/specimen.h"
#include "app/stroke_fonts.h"
#include "base/number_text.h"
#include "base/text.h"
#include "cli/console.h"
#include "cli/face_options.h"
#include "export/drawing_formats.h"
#include "outline/font_details.h"
#include "platform/fold_case.h"
#include "platform/font_faces.h"
#include "platform/font_file.h"

namespace kerno {
namespace {

const char* EmbeddingName(Embedding embedding) {
  switch (embedding) {
    case Embedding::kInstallable:
      return "installable";
    case Embedding::kEditable:
      return "editable";
    case Embedding::kPreviewPrint:
      return "preview and print";
    case Embedding::kRestricted:
      break;
  }
  return "restricted";
}

// An object of one line, grown field by field.
class JsonObject {
 public:
  std::string& Name(const char* name) {
    text_.append(text_.empty() ? "{\"" : ", \"").append(name).append("\": ");
    return text_;
  }
  void Text(const char* name, std::u16string_view text) { AppendJsonString(&Name(name), text); }
  void Flag(const char* name, bool flag) { Name(name).append(flag ? "true" : "false"); }
  void Number(const char* name, double number) { AppendShortest(&Name(name), number); }
  void List(const char* name, const std::vector<std::u16string>& texts) {
    std::string& out = Name(name);
    out += "[";
    for (size_t i = 0; i < texts.size(); ++i) {
      if (i > 0) out += ", ";
      AppendJsonString(&out, texts[i]);
    }
    out += "]";
  }
  void List(const char* name, const std::vector<std::string>& texts) {
    std::vector<std::u16string> wide;
    wide.reserve(texts.size());
    for (const std::string& text : texts) wide.push_back(Utf8ToUtf16Lossy(text));
    List(name, wide);
  }
  void Raw(const char* name, const std::string& json) { Name(name) += json; }
  std::string Take() { return text_ + "}"; }

 private:
  std::string text_;
};

std::string AxesJson(const std::vector<FontAxis>& axes) {
  std::string out = "[";
  for (const FontAxis& axis : axes) {
    JsonObject object;
    object.Text("tag", Utf8ToUtf16Lossy(axis.tag));
    object.Text("name", axis.name);
    object.Number("least", axis.least);
    object.Number("default", axis.usual);
    object.Number("most", axis.most);
    out += (out.size() > 1 ? ", " : "") + object.Take();
  }
  return out + "]";
}

// How the face is asked for: by its file where the system tells that.
FaceRequest RequestFor(const ListedFace& face) {
  if (!face.file.empty()) return {.file = face.file, .index = face.index};
  return {.family = face.families.front(),
          .style = face.styles.empty() ? u"" : face.styles.front()};
}

// The faces of a file, or of one font in it.
Status ListFacesIn(const FaceRequest& request, std::vector<ListedFace>* faces) {
  FontData first;
  if (Status found = FindFontData(request, &first); !found.ok()) return found;
  for (FontFileFace& face : FacesIn(first.file->bytes())) {
    if (request.index && face.index != *request.index) continue;
    if (face.families.empty()) face.families.push_back(first.file->name());
    FontData data;
    const bool outlines = FindFontData({.file = request.file, .index = face.index}, &data).ok();
    faces->push_back({.families = std::move(face.families),
                      .full_names = std::move(face.full_names),
                      .styles = std::move(face.style.styles),
                      .file = request.file,
                      .index = face.index,
                      .instance = face.instance,
                      .has_outlines = outlines});
  }
  return Status::Ok();
}

// One face; `styles` are its own, or the named instances of a variable one.
std::string FaceJson(const ListedFace& face, const std::vector<std::u16string>& styles) {
  JsonObject object;
  object.Text("family", face.families.front());
  object.List("names", face.families);
  object.List("fullNames", face.full_names);
  object.List("styles", styles);
  if (!face.file.empty()) {
    object.Text("file", PathText(face.file));
    object.Number("index", face.index);
  }
  object.Flag("outlines", face.has_outlines);
  FontData data;
  FontDetails details;
  const bool known = face.has_outlines && FindFontData(RequestFor(face), &data).ok() &&
                     ReadFontDetails(data, &details).ok();
  if (known) {
    object.Raw("axes", AxesJson(details.axes));
    object.List("scripts", details.scripts);
    object.List("features", details.features);
    object.Text("embedding", Utf8ToUtf16Lossy(EmbeddingName(details.embedding)));
  }
  return object.Take();
}

bool HasName(const std::vector<std::u16string>& names, std::u16string_view wanted) {
  return std::ranges::any_of(
      names, [&](const std::u16string& name) { return EqualWithoutCase(name, wanted); });
}

// The face's features, or its axes as --variation takes them.
void AddTags(const ListedFace& face, bool axes, std::set<std::u16string>* names) {
  FontData data;
  FontDetails details;
  if (!FindFontData(RequestFor(face), &data).ok() || !ReadFontDetails(data, &details).ok()) return;
  if (!axes) {
    for (const std::string& tag : details.features) names->insert(Utf8ToUtf16Lossy(tag));
  } else {
    for (const FontAxis& axis : details.axes) names->insert(Utf8ToUtf16Lossy(axis.tag + "="));
  }
}

bool HasControl(const std::u16string& name) {
  return std::ranges::any_of(name, [](char16_t unit) { return unit < 0x20 || unit == 0x7F; });
}

}  // namespace

void FacesCommand::AddOptions(CLI::App& app) {
  app_ = &app;
  app.add_flag("--json", json_,
               "every face with its file, styles, axes, scripts, features and permissions");
  app.add_flag("--vertical", vertical_, "the \"@\" forms, for vertical writing");
  app.add_flag("--strokes", strokes_, "fonts of single lines, for kerno cut --stroke-font");
  app.add_flag("--skipped", skipped_, "warn of font files that cannot be used");
  app.add_option("--font-file", font_file_,
                 "the faces of this file instead, installed or not; #INDEX: of a collection")
      ->type_name("FILE[#INDEX]");
  app.add_option("--covers", covers_, "only faces that have every character of TEXT")
      ->type_name("TEXT");
  app.add_option("--sample", sample_, "draw TEXT in each family that has it, into the file of -o")
      ->type_name("TEXT");
  outputs_.AddTo(app);
  // For completions: names as --face and --style take them, one a line. Not in the help.
  app.add_flag("--names", names_, "families by every name")->group("");
  app.add_flag("--styles", styles_, "styles of --family, or of --font-file")->group("");
  app.add_flag("--tags", tags_, "features of the same")->group("");
  app.add_flag("--axes", axes_, "axes of the same")->group("");
  app.add_option("--family", family_, "a family by any of its names")->group("");
}

bool FacesCommand::ReadTexts() {
  for (const auto& [option, value, text] :
       {std::tuple("--covers", &covers_, &covered_), std::tuple("--sample", &sample_, &shown_)}) {
    if (app_->count(option) == 0) continue;
    const auto read = TextArgument(option, *value);
    if (!read) return false;
    if (read->empty()) {
      ReportError(option, "the text is empty");
      return false;
    }
    *text = *read;
  }
  if (shown_.empty() && app_->count("-o") > 0) {
    ReportError("-o", "needs --sample TEXT");
    return false;
  }
  if (!shown_.empty() && json_) {
    ReportError("--sample", "does not go with --json");
    return false;
  }
  return shown_.empty() || outputs_.Read();
}

// The families that have both texts.
std::vector<std::u16string> FacesCommand::Families() const {
  std::vector<std::u16string> families =
      ListFamilies(vertical_ ? FamilyForm::kVertical : FamilyForm::kPlain);
  const std::u16string text = covered_ + shown_;
  if (text.empty()) return families;
  std::erase_if(families, [&](const std::u16string& name) {
    return !CoversText({.family = name.substr(name.starts_with(u'@') ? 1 : 0)}, text);
  });
  return families;
}

ExitStatus FacesCommand::DrawSheet(const std::vector<std::u16string>& families) const {
  Specimen sheet;
  std::vector<std::u16string> names;
  names.reserve(families.size());
  for (const std::u16string& name : families) {
    names.push_back(name.substr(name.starts_with(u'@') ? 1 : 0));
  }
  if (const Status made = MakeSpecimen(shown_, names, &sheet); !made.ok()) {
    ReportError(made);
    return kFaceTrouble;
  }
  constexpr int kDarkGrey = 250;  // AutoCAD's colour index
  DrawingStyle style;
  style.svg = SvgLook::kFill;
  style.color = kDarkGrey;
  const auto write = [&](const Format& format, const std::filesystem::path& file) {
    constexpr double kTolerance = 0.01;
    return WriteDrawing(sheet.drawing, style, kTolerance, format, file);
  };
  const std::string summary =
      std::to_string(sheet.rows) + (sheet.rows == 1 ? " family" : " families");
  return outputs_.WriteAll(write, {summary}) ? kDone : kFailed;
}

// Faces by file; the instances of a variable one are styles of it.
std::string FacesCommand::Json(const std::vector<ListedFace>& listed) const {
  std::vector<ListedFace> faces;
  std::vector<std::vector<std::u16string>> styles;
  std::map<std::pair<std::filesystem::path, uint32_t>, size_t> known;
  for (const ListedFace& face : listed) {
    if (vertical_ && !face.has_vertical_form) continue;
    const auto [place, is_new] = known.try_emplace({face.file, face.index}, faces.size());
    if (is_new || face.file.empty()) {
      if (!covered_.empty() && !(face.has_outlines && CoversText(RequestFor(face), covered_))) {
        known.erase(place);
        continue;
      }
      faces.push_back(face);
      styles.push_back(face.styles);
    } else if (!face.styles.empty()) {
      std::vector<std::u16string>& names = faces[place->second].full_names;
      names.insert(names.end(), face.full_names.begin(), face.full_names.end());
      styles[place->second].push_back(face.styles.front());
    }
  }
  std::string out = "[";
  for (size_t i = 0; i < faces.size(); ++i) {
    out += (i == 0 ? "\n  " : ",\n  ") + FaceJson(faces[i], styles[i]);
  }
  return out + (faces.empty() ? "]\n" : "\n]\n");
}

ExitStatus FacesCommand::ListStrokeFonts() const {
  for (const char* other : {"--vertical", "--skipped", "--covers", "--sample", "-o"}) {
    if (app_->count(other) == 0) continue;
    ReportError(other, "is of fonts with outlines and goes not with --strokes");
    return kWrongUsage;
  }
  std::string out = json_ ? "[" : "";
  bool first = true;
  for (const StrokeFontFile& font : InstalledStrokeFonts()) {
    if (json_) {
      out += first ? "\n  {\"name\": " : ",\n  {\"name\": ";
      AppendJsonString(&out, font.name);
      out += ", \"file\": ";
      AppendJsonString(&out, PathText(font.file));
      out += "}";
    } else {
      out += ShownName(font.name) + "\n";
    }
    first = false;
  }
  if (json_) out += first ? "]\n" : "\n]\n";
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

// Whether the options that are not in the help go together.
bool FacesCommand::CheckNames() const {
  const auto report = [](const std::string& option, const char* why) {
    ReportError(option, why);
    return false;
  };
  for (const CLI::Option* option : app_->get_options()) {
    const std::string name = option->get_name();  // empty: one of those
    const bool goes = name.empty() || name == "--font-file";
    if (!goes && option->count() > 0) return report(name, "does not go with lists of names");
  }
  const bool has_family = app_->count("--family") > 0;
  const char* const of_face = styles_ ? "--styles" : tags_ ? "--tags" : axes_ ? "--axes" : nullptr;
  if (names_ && (of_face || has_family)) return report("--names", "stands alone");
  if (has_family && !of_face) return report("--family", "needs --styles");
  if (of_face && styles_ + tags_ + axes_ > 1) return report(of_face, "stands alone");
  if (of_face && has_family == (app_->count("--font-file") > 0)) {
    return report(of_face, "needs either --family or --font-file");
  }
  return true;
}

// The system's list alone is asked for names and styles, no font file: an answer to a key must be
// quick.
ExitStatus FacesCommand::ListNames() const {
  const bool of_file = app_->count("--font-file") > 0;
  std::vector<ListedFace> faces;
  FaceRequest request;
  if (!of_file) {
    faces = ListFaces();
  } else if (!ReadFontFile(font_file_, &request) || !ListFacesIn(request, &faces).ok()) {
    return kFailed;
  }
  const std::u16string family = Utf8ToUtf16Lossy(family_);
  std::set<std::u16string> names;
  for (const ListedFace& face : faces) {
    if (!face.has_outlines) continue;
    if (names_) {
      names.insert(face.families.begin(), face.families.end());
    } else if (!of_file && !HasName(face.families, family)) {
      continue;
    } else if (!styles_) {
      AddTags(face, axes_, &names);
    } else if (!face.styles.empty()) {
      names.insert(face.styles.front());
    }
  }
  std::erase_if(names, HasControl);
  std::string out;
  for (const std::u16string& name : names) out += Utf16ToUtf8(name) + "\n";
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

ExitStatus FacesCommand::DescribeFile() const {
  for (const char* other : {"--vertical", "--strokes", "--skipped", "--covers", "--sample", "-o"}) {
    if (app_->count(other) == 0) continue;
    ReportError(other, "is of the installed faces and goes not with --font-file");
    return kWrongUsage;
  }
  FaceRequest request;
  if (!ReadFontFile(font_file_, &request)) return kWrongUsage;
  std::vector<ListedFace> faces;
  if (const Status read = ListFacesIn(request, &faces); !read.ok()) {
    ReportError(read);
    return read.failure == Failure::kNotFound ? kFaceTrouble : kFailed;
  }
  std::string out;
  if (json_) {
    out = Json(faces);
  } else {
    std::vector<std::u16string> names;  // the default may be one of the instances, too
    for (const ListedFace& face : faces) {
      const std::u16string style = face.styles.empty() ? u"" : u" " + face.styles.front();
      names.push_back(face.families.front() + style);
      const bool known = std::ranges::find(names, names.back()) != names.end() - 1;
      if (!known) out += Utf16ToUtf8(names.back()) + "\n";
    }
  }
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

ExitStatus FacesCommand::Run() {
  if (names_ || styles_ || tags_ || axes_ || app_->count("--family") > 0) {
    return CheckNames() ? ListNames() : kWrongUsage;
  }
  if (app_->count("--font-file") > 0) return DescribeFile();
  if (strokes_) return ListStrokeFonts();
  if (!ReadTexts()) return kWrongUsage;
  if (!shown_.empty()) return DrawSheet(Families());
  std::string out;
  if (json_) {
    out = Json(ListFaces());
  } else {
    for (const std::u16string& name : Families()) out += ShownName(name) + "\n";
  }
  if (skipped_) {
    std::vector<std::u16string> skipped;
    (void)EnumerateFaces(&skipped);
    for (const std::u16string& file : skipped) {
      ReportWarning(Utf16ToUtf8(file), "is skipped: no font that can be used");
    }
  }
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
