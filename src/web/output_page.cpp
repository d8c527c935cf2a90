#include "web/output_page.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "web/html_text.h"
#include "web/page_template.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMostHeading = 300;  // characters of the text that the page shows
constexpr size_t kMostTitle = 80;     // and its title

// The kinds of files that a run leaves, in the order in which a page lists them.
const std::vector<FileKind>& Kinds() {
  static const std::vector<FileKind> kinds = [] {
    std::vector<FileKind> all(Formats().begin(), Formats().end());
    all.push_back({"rtf", "Text, formatted (RTF)"});
    return all;
  }();
  return kinds;
}

struct SourceField {
  std::string_view name;
  std::u16string PageSource::*value;
};

// How a page carries its source for the next rebuild, first thing after the character encoding.
constexpr SourceField kFields[] = {
    {"kerno-text", &PageSource::text},
    {"kerno-face", &PageSource::face},
    {"kerno-height", &PageSource::height},
};

// At most `most` characters, the last one "…" where some were cut.
std::u16string Cut(std::u16string_view text, size_t most) {
  size_t count = 0;
  size_t before_last = 0;
  for (size_t at = 0; at < text.size(); ++count) {
    if (count == most) return std::u16string(text.substr(0, before_last)) + u"…";
    if (count == most - 1) before_last = at;
    NextCharacter(text, &at);
  }
  return std::u16string(text);
}

std::u16string OneLine(std::u16string_view text) {
  std::u16string line;
  for (const char16_t c : text) {
    const bool blank = c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
    if (!blank) line.push_back(c);
    if (blank && !line.empty() && line.back() != u' ') line.push_back(u' ');
  }
  if (line.ends_with(u' ')) line.pop_back();
  return line;
}

bool IsKana(char16_t c) {
  return c >= 0x3041 && c <= 0x30FF;
}

// The language that a reader should take the text for, where its script tells.
std::string_view LanguageOf(std::u16string_view text) {
  return std::any_of(text.begin(), text.end(), IsKana) ? " lang=\"ja\"" : "";
}

// "MS Mincho, height 100", as far as known.
std::u16string FaceLine(const PageSource& source) {
  std::u16string line = source.face;
  if (!line.empty() && !source.height.empty()) line += u", ";
  if (!source.height.empty()) line += u"height " + source.height;
  return line;
}

std::string TitleOf(const PageSource& source) {
  std::u16string title = Cut(OneLine(source.text), kMostTitle);
  if (title.empty()) title = u"Outputs";
  const std::u16string face = OneLine(FaceLine(source));
  if (!face.empty()) title += u" – " + Cut(face, kMostTitle);
  return EscapeHtml(title);
}

std::string SizeText(uint64_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  constexpr std::array kUnits = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  size_t unit = 0;
  uint64_t tenths = 0;
  for (uint64_t rest = bytes;; rest /= 1024, ++unit) {
    tenths = rest / 1024 * 10 + (rest % 1024 * 10 + 512) / 1024;
    if (tenths < 10240 || unit + 1 == kUnits.size()) break;
  }
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " " + kUnits[unit];
}

void AppendHead(std::string* out, const PageSource& source) {
  out->append("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n");
  for (const SourceField& field : kFields) {
    out->append("<meta name=\"").append(field.name).append("\" content=\"");
    out->append(EscapeHtml(Cut(source.*field.value, kMostHeading))).append("\">\n");
  }
  out->append("<title>").append(TitleOf(source)).append("</title>\n");
  out->append("<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n")
      .append("<meta name=\"referrer\" content=\"no-referrer\">\n")
      .append("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; ")
      .append("img-src 'self' file: data:; style-src 'sha256-")
      .append(kPageStyleHash)
      .append("'; script-src 'sha256-")
      .append(kPageScriptHash)
      .append("'; base-uri 'none'; form-action 'none'\">\n");
  // Without one, browsers ask the server's root for an icon.
  out->append("<link rel=\"icon\" href=\"data:,\">\n<style>").append(kPageStyle);
  out->append("</style>\n</head>\n");
}

class PageBuilder {
 public:
  explicit PageBuilder(const OutputPage& page) : page_(page) {
    heading_ = Cut(page.source.text, kMostHeading);
    if (OneLine(heading_).empty()) heading_ = u"Outputs";
    for (const PageFile& file : page.files) {
      const FileKind* const kind = KindOfFile(file.name);
      if (!kind || kind->role == PageRole::kOther) continue;
      if (kind->role == PageRole::kBitmap && fallback_.empty()) fallback_ = LinkTo(file.name);
      // Drawings come first, otherwise the order stays.
      auto place = pictures_.end();
      if (kind->role == PageRole::kDrawing) place = pictures_.begin() + drawings_++;
      pictures_.insert(place, {&file, kind});
    }
  }

  std::string Build() {
    out_.reserve(16384 + page_.files.size() * 1024);
    AppendHead(&out_, page_.source);
    out_.append("<body>\n<main>\n<h1><bdi").append(LanguageOf(heading_)).append(">");
    out_.append(EscapeHtml(heading_)).append("</bdi></h1>\n");
    const std::u16string face = FaceLine(page_.source);
    if (!face.empty()) {
      out_.append("<p class=\"source\"><bdi").append(LanguageOf(face)).append(">");
      out_.append(EscapeHtml(face)).append("</bdi></p>\n");
    }
    if (!pictures_.empty()) AppendPictures();
    AppendTable();
    out_.append("</main>\n<script>").append(kPageScript).append("</script>\n</body>\n</html>\n");
    return std::move(out_);
  }

 private:
  struct Picture {
    const PageFile* file;
    const FileKind* kind;
  };

  void AppendPictures() {
    out_.append("<section id=\"pictures\" aria-labelledby=\"pictures-title\">\n")
        .append("<h2 id=\"pictures-title\">Pictures</h2>\n<ul class=\"slides\">\n");
    for (size_t i = 0; i < pictures_.size(); ++i) AppendSlide(i);
    out_.append("</ul>\n");
    if (pictures_.size() > 1) AppendTurning();
    out_.append("</section>\n");
  }

  void AppendSlide(size_t index) {
    const Picture& picture = pictures_[index];
    const std::string link = LinkTo(picture.file->name);
    const std::string name = EscapeHtml(PathText(picture.file->name));
    const std::string alt =
        EscapeHtml(Cut(OneLine(heading_), kMostTitle)) + " (" + std::string(picture.kind->name) + ")";
    out_.append("<li data-label=\"Picture ").append(std::to_string(index + 1)).append(" of ");
    out_.append(std::to_string(pictures_.size())).append(": ").append(name).append("\">");
    out_.append("<figure><picture class=\"paper\">");
    if (picture.kind->role == PageRole::kDrawing && !fallback_.empty()) {
      out_.append("<source type=\"image/svg+xml\" srcset=\"").append(link).append("\">");
      out_.append("<img src=\"").append(fallback_).append("\" data-else=\"").append(fallback_);
    } else {
      out_.append("<img src=\"").append(link);
    }
    out_.append("\" alt=\"").append(alt).append("\"></picture>\n<figcaption><bdi>").append(name);
    out_.append("</bdi></figcaption></figure></li>\n");
  }

  void AppendTurning() {
    out_.append("<div class=\"turn\">\n<button type=\"button\" class=\"previous\" ")
        .append("aria-label=\"Previous picture\">&#x2039;</button>\n<div class=\"dots\">");
    for (size_t i = 1; i <= pictures_.size(); ++i) {
      out_.append("<button type=\"button\" aria-label=\"Picture ").append(std::to_string(i));
      out_.append("\">&#x2022;</button>");
    }
    out_.append("</div>\n<button type=\"button\" class=\"next\" aria-label=\"Next picture\">")
        .append("&#x203A;</button>\n</div>\n<p class=\"hidden-text\" role=\"status\"></p>\n");
  }

  void AppendTable() {
    out_.append("<h2 id=\"files-title\">Files</h2>\n");
    if (page_.files.empty()) {
      out_.append("<p>There are no outputs here.</p>\n");
      return;
    }
    out_.append("<table aria-labelledby=\"files-title\">\n<thead><tr><th scope=\"col\">Name</th>")
        .append("<th scope=\"col\">Kind</th><th scope=\"col\" class=\"size\">Size</th></tr>")
        .append("</thead>\n<tbody>\n");
    for (const PageFile& file : page_.files) {
      const FileKind* const kind = KindOfFile(file.name);
      out_.append("<tr><th scope=\"row\"><a href=\"").append(LinkTo(file.name)).append("\"><bdi>");
      out_.append(EscapeHtml(PathText(file.name))).append("</bdi></a></th><td>");
      out_.append(kind ? kind->name : std::string_view("File")).append("</td><td class=\"size\" title=\"");
      out_.append(std::to_string(file.size)).append(" bytes\">").append(SizeText(file.size));
      out_.append("</td></tr>\n");
    }
    out_.append("</tbody>\n</table>\n");
  }

  const OutputPage& page_;
  std::u16string heading_;
  std::vector<Picture> pictures_;
  std::ptrdiff_t drawings_ = 0;
  std::string fallback_;  // the link of the first bitmap
  std::string out_;
};

}  // namespace

const FileKind* KindOfFile(const fs::path& name) {
  const std::string extension = Utf16ToUtf8(AsciiLower(PathText(name.extension())));
  for (const FileKind& kind : Kinds()) {
    if (!extension.empty() && extension.substr(1) == kind.extension) return &kind;
  }
  return nullptr;
}

std::string BuildOutputPage(const OutputPage& page) {
  return PageBuilder(page).Build();
}

bool ReadPageSource(std::string_view html, PageSource* source) {
  PageSource found;
  size_t at = 0;
  for (const SourceField& field : kFields) {
    const std::string start = "<meta name=\"" + std::string(field.name) + "\" content=\"";
    at = html.find(start, at);
    if (at == std::string_view::npos) return false;
    at += start.size();
    const size_t end = html.find('"', at);
    if (end == std::string_view::npos) return false;
    found.*field.value = UnescapeHtml(html.substr(at, end - at));
    at = end;
  }
  *source = std::move(found);
  return true;
}

}  // namespace kerno
