#include "app/captions.h"

#include <atomic>
#include <unordered_map>

#include "base/text.h"

namespace kerno {
namespace {

// Rows stand in blocks by what shows them, sorted by the English text within each.
constexpr CaptionRow kRows[] = {
    // The controls of both ways of working.
    {u"&DXF", u"&DXF", u"&DXF"},
    {u"&Height", u"高さ(&H)", u"&Höhe"},
    {u"&IPX", u"&IPX", u"&IPX"},
    {u"&SVG", u"&SVG", u"&SVG"},
    {u"&Upload", u"送信(&U)", u"Hoch&laden"},
    {u"@", u"@", u"@"},
    {u"Build the page of the outputs and send the files to the server",
     u"出力の一覧ページを作り、ファイルをサーバーへ送ります",
     u"Die Seite der Ausgaben erstellen und die Dateien an den Server senden"},
    {u"Character height in drawing units", u"文字の高さ（図面の単位）",
     u"Zeichenhöhe in Zeichnungseinheiten"},
    {u"Close the window", u"ウィンドウを閉じます", u"Das Fenster schließen"},
    {u"Colour of the figure's outline", u"図形の輪郭線の色", u"Farbe der Umrisslinie"},
    {u"Colour of the text and of the filled figure", u"文字と塗りつぶし図形の色",
     u"Farbe des Textes und der gefüllten Figur"},
    {u"Copyright", u"著作権", u"Copyright"},
    {u"DI&B", u"DI&B", u"DI&B"},
    {u"EMF", u"EMF", u"EMF"},
    {u"F&ace", u"書体(&A)", u"Schrif&t"},
    {u"Face", u"書体", u"Schrift"},
    {u"Height", u"高さ", u"Höhe"},
    {u"Height as a number", u"高さ（数値）", u"Höhe als Zahl"},
    {u"Height, step by step", u"高さの増減", u"Höhe schrittweise"},
    {u"OK", u"OK", u"OK"},
    {u"Outline colour", u"輪郭線の色", u"Umrissfarbe"},
    {u"Paste", u"貼り付け", u"Einfügen"},
    {u"Paste the clipboard into the text", u"クリップボードの内容を文字列に貼り付けます",
     u"Die Zwischenablage in den Text einfügen"},
    {u"PolyPolygon", u"PolyPolygon", u"PolyPolygon"},
    {u"Preview", u"プレビュー", u"Vorschau"},
    {u"Preview as one filled figure", u"塗りつぶした図形として表示",
     u"Vorschau als eine gefüllte Figur"},
    {u"Quit", u"終了", u"Beenden"},
    {u"Show the outlines as one filled figure; otherwise each contour in its own colour",
     u"輪郭を一つの塗りつぶし図形として表示します。オフのときは輪郭ごとに色分けします",
     u"Die Umrisse als eine gefüllte Figur zeigen; sonst jede Kontur in eigener Farbe"},
    {u"Status", u"状態", u"Status"},
    {u"Text", u"文字列", u"Text"},
    {u"Text colour", u"文字の色", u"Textfarbe"},
    {u"The text to convert. Ctrl+Tab types a tab.",
     u"変換する文字列。Ctrl+Tab でタブを入力します。",
     u"Der Text, der umgewandelt wird. Strg+Tab schreibt einen Tabulator."},
    {u"Upload", u"送信", u"Hochladen"},
    {u"Version", u"バージョン", u"Version"},
    {u"Vertical writing", u"縦書き", u"Senkrechte Schreibung"},
    {u"Wheel zooms, dragging moves, a double click shows all",
     u"ホイールで拡大縮小、ドラッグで移動、ダブルクリックで全体表示",
     u"Das Rad vergrößert, Ziehen verschiebt, ein Doppelklick zeigt alles"},
    {u"Write DXF", u"DXF を出力", u"DXF schreiben"},
    {u"Write IPL", u"IPL を出力", u"IPL schreiben"},
    {u"Write IPX", u"IPX を出力", u"IPX schreiben"},
    {u"Write SVG", u"SVG を出力", u"SVG schreiben"},
    {u"Write a DXF drawing and a metafile", u"DXF 図面とメタファイルを出力します",
     u"Eine DXF-Zeichnung und eine Metadatei schreiben"},
    {u"Write a bitmap", u"ビットマップを出力", u"Ein Pixelbild schreiben"},
    {u"Write a bitmap (Alt+B)", u"ビットマップを出力します (Alt+B)",
     u"Ein Pixelbild schreiben (Alt+B)"},
    {u"Write a metafile", u"メタファイルを出力", u"Eine Metadatei schreiben"},
    {u"Write an IPX parts file and its sizes (IPL)",
     u"IPX 部品ファイルと寸法ファイル (IPL) を出力します",
     u"Eine IPX-Teiledatei und ihre Maße (IPL) schreiben"},
    {u"Write an SVG drawing, a metafile and the page of the outputs",
     u"SVG 図面、メタファイル、出力の一覧ページを出力します",
     u"Eine SVG-Zeichnung, eine Metadatei und die Seite der Ausgaben schreiben"},
    {u"Write the sizes of the parts", u"部品の寸法を出力します", u"Die Maße der Teile schreiben"},
    {u"ipl", u"ipl", u"ipl"},

    // The menu.
    {u"&About Kerno...", u"ﾊﾞｰｼﾞｮﾝ情報(&A)...", u"&Über Kerno..."},
    {u"&Choose the folder of the outputs...", u"出力先フォルダーの選択(&C)...",
     u"Ausgabeordner &wählen..."},
    {u"&Copy", u"コピー(&C)", u"&Kopieren"},
    {u"&Edit", u"編集(&E)", u"Bea&rbeiten"},
    {u"&File", u"ファイル(&F)", u"D&atei"},
    {u"&Open the folder of the outputs", u"出力先フォルダーを開く(&O)", u"Ausgabeordner &öffnen"},
    {u"&Options", u"オプション(&O)", u"&Optionen"},
    {u"&Paste", u"貼り付け(&P)", u"&Einfügen"},
    {u"&Quit", u"終了(&Q)", u"&Beenden"},
    {u"&Redo", u"やり直し(&R)", u"&Wiederholen"},
    {u"&Undo", u"元に戻す(&U)", u"&Rückgängig"},
    {u"&View", u"表示(&V)", u"A&nsicht"},
    {u"As the s&ystem", u"システムに合わせる(&Y)", u"Wie das S&ystem"},
    {u"Colour index (DXF): &nearest colour", u"色番号 (DXF): 最も近い色(&N)",
     u"Farbnummer (DXF): &nächste Farbe"},
    {u"Colour index (DXF): c&lassic rule", u"色番号 (DXF): 従来の規則(&L)",
     u"Farbnummer (DXF): &klassische Regel"},
    {u"Contours as &faces", u"輪郭を面にする(&F)", u"Konturen als &Flächen"},
    {u"Contours as &lines", u"輪郭を線にする(&L)", u"Konturen als &Linien"},
    {u"Contours as lines &and faces", u"輪郭を線と面にする(&A)",
     u"Konturen als Linien &und Flächen"},
    {u"Cu&t", u"切り取り(&T)", u"&Ausschneiden"},
    {u"Deutsch", u"Deutsch", u"Deutsch"},
    {u"English", u"English", u"English"},
    {u"Hel&p", u"ヘルプ(&P)", u"Hil&fe"},
    {u"Save a copy &as...", u"コピーを保存(&A)...", u"Kopie &speichern..."},
    {u"Select &all", u"すべて選択(&A)", u"A&lles markieren"},
    {u"Show the &whole drawing", u"図面全体を表示(&W)", u"&Ganze Zeichnung zeigen"},
    {u"Use the &temporary folder", u"一時フォルダーを使う(&T)", u"&Temporären Ordner benutzen"},
    {u"Vertical pitch: by the &cell", u"縦書きの字送り: 文字枠(&C)",
     u"Senkrechter Abstand: nach der &Zelle"},
    {u"Vertical pitch: by the &ink", u"縦書きの字送り: 字面(&I)",
     u"Senkrechter Abstand: nach dem &Bild"},
    {u"日本語", u"日本語", u"日本語"},

    // Messages and the status line.

    // Reasons that the rest of the program gives (Status::why).

    // The Cut page: controls and options.

    // The Cut page: faces.

    // The Cut page: preview.

    // The Cut page: series.

    // What the views alone show.
};

std::atomic<Language> current_language = Language::kEnglish;

const CaptionRow* FindRow(std::u16string_view english) {
  static const auto* const rows = [] {
    auto* map = new std::unordered_map<std::u16string_view, const CaptionRow*>;
    for (const CaptionRow& row : kRows) map->emplace(row.english, &row);
    return map;
  }();
  const auto found = rows->find(english);
  return found == rows->end() ? nullptr : found->second;
}

}  // namespace

Language CurrentLanguage() {
  return current_language;
}

void SetLanguage(Language language) {
  current_language = language;
}

Language LanguageOfLocale(std::u16string_view locale) {
  const std::u16string name = AsciiLower(locale.substr(0, locale.find_first_of(u"_-.@")));
  if (name == u"ja") return Language::kJapanese;
  return name == u"de" ? Language::kGerman : Language::kEnglish;
}

std::u16string SayIn(Language language, std::u16string_view english) {
  const CaptionRow* const row = FindRow(english);
  if (!row) return std::u16string(english);
  switch (language) {
    case Language::kJapanese:
      return row->japanese;
    case Language::kGerman:
      return row->german;
    default:
      return row->english;
  }
}

std::u16string Say(std::u16string_view english) {
  return SayIn(CurrentLanguage(), english);
}

std::u16string Say(std::u16string_view english, std::initializer_list<std::u16string_view> parts) {
  const std::u16string text = Say(english);
  std::u16string out;
  size_t next = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool numbered = i + 2 < text.size() && text[i + 1] >= u'1' && text[i + 1] <= u'9';
    const size_t end = i + (numbered ? 2 : 1);
    if (text[i] != u'{' || end >= text.size() || text[end] != u'}') {
      out += text[i];
      continue;
    }
    const size_t part = numbered ? static_cast<size_t>(text[i + 1] - u'1') : next++;
    if (part < parts.size()) out += parts.begin()[part];
    i = end;
  }
  return out;
}

std::u16string SayStatus(const Status& status) {
  return status.why.empty() ? Say(status.what) : status.what + u": " + Say(status.why);
}

std::u16string WithoutMnemonic(std::u16string_view caption) {
  std::u16string text(caption);
  const size_t mark = text.find(u'&');
  if (mark == std::u16string::npos) return text;
  const bool in_brackets =
      mark > 0 && text[mark - 1] == u'(' && mark + 2 < text.size() && text[mark + 2] == u')';
  return in_brackets ? text.erase(mark - 1, 4) : text.erase(mark, 1);
}

std::span<const CaptionRow> Captions() {
  return kRows;
}

std::span<const char16_t* const> CaptionFaces(Language language) {
  static constexpr const char16_t* kJapanese[] = {u"Yu Gothic UI", u"Meiryo UI", u"MS UI Gothic"};
  static constexpr const char16_t* kLatin[] = {u"Segoe UI", u"Tahoma"};
  return language == Language::kJapanese ? std::span<const char16_t* const>(kJapanese)
                                         : std::span<const char16_t* const>(kLatin);
}

}  // namespace kerno
