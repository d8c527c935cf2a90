// Pages of outputs: what goes into one comes out again, markup stays markup, and a page of any
// bytes says of its source what the page that is made of that says, too.
#include <fuzzer/FuzzedDataProvider.h>

#include <set>
#include <string>
#include <vector>

#include "base/text.h"
#include "readers.h"
#include "web/html_text.h"
#include "web/output_page.h"
#include "web/output_run.h"

namespace kerno {
namespace {

using fuzz::Require;

// A tag's name; attributes must stand in double quotes, each once. *html begins after the "<" and
// then after the ">".
std::string ReadTag(std::string_view* html) {
  const auto take = [&](std::string_view stops) {
    const size_t end = html->find_first_of(stops);
    Require(end != html->npos);
    const std::string text(html->substr(0, end));
    html->remove_prefix(end);
    return text;
  };
  const std::string name = take(" >");
  std::set<std::string> attributes;
  while (html->starts_with(' ')) {
    html->remove_prefix(1);
    Require(attributes.insert(take("= >")).second);
    if (!html->starts_with("=\"")) continue;
    html->remove_prefix(2);
    Require(take("\"").find('<') == std::string::npos);
    html->remove_prefix(1);
  }
  Require(html->starts_with('>'));
  html->remove_prefix(1);
  return name;
}

// Elements lie in each other; those without an end tag are the ones that HTML knows.
void CheckMarkup(std::string_view html) {
  static const std::set<std::string> kVoid = {"!DOCTYPE", "meta", "link", "source", "img"};
  std::vector<std::string> open;
  size_t at = 0;
  while ((at = html.find('<')) != html.npos) {
    Require(html.substr(0, at).find('>') == html.npos);
    html.remove_prefix(at + 1);
    const std::string name = ReadTag(&html);
    if (name.starts_with('/')) {
      Require(!open.empty() && open.back() == name.substr(1));
      open.pop_back();
    } else if (name == "script" || name == "style") {
      const size_t end = html.find("</" + name + ">");
      Require(end != html.npos);
      html.remove_prefix(end + name.size() + 3);
    } else if (!kVoid.contains(name)) {
      open.push_back(name);
    }
  }
  Require(open.empty());
}

void CheckPage(const OutputPage& page) {
  const std::string html = BuildOutputPage(page);
  CheckMarkup(html);
  const auto read = ReadPageSource(html);
  Require(read.has_value());
  // What a page says of itself makes a page that says the same: nothing is cut or changed twice.
  Require(ReadPageSource(BuildOutputPage({*read, page.files})) == read);
  const std::u16string& text = page.source.text;
  const bool plain = text.size() < 100 && EscapeHtml(text) == Utf16ToUtf8(text);
  Require(!plain || read->text == text);
  for (const PageFile& file : page.files) {
    Require(html.find("href=\"" + LinkTo(file.name) + "\"") != html.npos);
  }
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kerno;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  OutputPage page;
  if (const auto source = ReadPageSource(bytes)) {
    page.source = *source;
    CheckPage(page);
  }
  const std::u16string whole = Utf8ToUtf16Lossy(bytes);
  fuzz::Require(UnescapeHtml(EscapeHtml(whole)) ==
                UnescapeHtml(EscapeHtml(UnescapeHtml(EscapeHtml(whole)))));
  FuzzedDataProvider input(data, size);
  const auto text = [&] { return Utf8ToUtf16Lossy(input.ConsumeRandomLengthString(400)); };
  page.source = {text(), text(), text()};
  for (const char* extension : {".svg", ".BMP", ".dxf", ".svg", ".ipl"}) {
    std::string name = input.ConsumeRandomLengthString(20);
    std::erase_if(name, [](char c) { return c == '/' || c == '\0'; });
    if (!name.empty()) page.files.push_back({name + extension, input.ConsumeIntegral<uint64_t>()});
  }
  CheckPage(page);
  page.source = SourceOfName(whole);
  CheckPage(page);
  return 0;
}
