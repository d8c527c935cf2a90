#include "app/captions.h"

#include <atomic>
#include <unordered_map>
#include <vector>

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
    {u"Colour index (DXF): classic &rule", u"色番号 (DXF): 従来の規則(&R)",
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
    {u", ", u"、", u", "},
    {u"About Kerno", u"ﾊﾞｰｼﾞｮﾝ情報", u"Über Kerno"},
    {u"Cancel", u"キャンセル", u"Abbrechen"},
    {u"Folder of the outputs", u"出力先フォルダー", u"Ausgabeordner"},
    {u"Hue {}°", u"色相 {}°", u"Farbton {}°"},
    {u"No font is installed, so nothing can be outlined.",
     u"フォントがインストールされていないため、輪郭を作れません。",
     u"Es ist keine Schrift installiert; nichts kann umrissen werden."},
    {u"Not saved. The window stays open; close it once more to leave all the same.",
     u"保存できませんでした。ウィンドウは開いたままです。もう一度閉じるとそのまま終了します。",
     u"Nicht gespeichert. Das Fenster bleibt offen; noch einmal schließen beendet es trotzdem."},
    {u"Outputs go to {}", u"出力先: {}", u"Ausgaben gehen nach {}"},
    {u"Sent. {}", u"送信しました。{}", u"Gesendet. {}"},
    {u"Still writing. Press again when that is done.",
     u"書き込み中です。終わってからもう一度押してください。",
     u"Es wird noch geschrieben. Danach noch einmal drücken."},
    {u"Still writing. The window closes when that is done.",
     u"書き込み中です。終わりしだいウィンドウを閉じます。",
     u"Es wird noch geschrieben. Danach schließt das Fenster."},
    {u"The drawing is empty. {}", u"図面は空です。{}", u"Die Zeichnung ist leer. {}"},
    {u"There is not enough memory for this text.",
     u"メモリが足りないため、この文字列は作図できません。",
     u"Der Speicher reicht für diesen Text nicht."},
    {u"This is not a whole number; it is read as {}.", u"整数ではありません。{} とみなします。",
     u"Das ist keine ganze Zahl; gelesen wird {}."},
    {u"Writing the outputs", u"出力を書き込んでいます", u"Die Ausgaben werden geschrieben"},
    {u"Wrote {} in {}", u"{2} に {1} を保存しました", u"{} in {} geschrieben"},
    {u"Wrote {} of {} in {}", u"{3} に {2} の {1} を出力しました", u"{} von {} in {} geschrieben"},
    {u"and {} other", u"ほか {} 文字", u"und {} weiteres"},
    {u"and {} others", u"ほか {} 文字", u"und {} weitere"},
    {u"is set from left to right", u"左から右に並べます", u"wird von links nach rechts gesetzt"},
    {u"it replaces that of another text; the File menu saves copies",
     u"別の文字列から作ったファイルを置き換えました。「ファイル」メニューでコピーを保存できます",
     u"ersetzt die eines anderen Textes; das Menü Datei speichert Kopien"},
    {u"its letters are neither reordered nor combined", u"文字の並べ替えと結合を行いません",
     u"Buchstaben werden weder umgestellt noch verbunden"},
    {u"its letters are not joined", u"文字をつなげません", u"Buchstaben werden nicht verbunden"},
    {u"its marks are not placed", u"記号の位置を合わせません",
     u"Zeichen über und unter Buchstaben werden nicht gesetzt"},
    {u"letters as low as this are bent to whole units; Cut keeps their shape",
     u"この高さでは文字の形が整数の単位に丸められて崩れます。「カット」なら形を保ちます",
     u"so niedrige Buchstaben werden auf ganze Einheiten verbogen; Schneiden erhält ihre Form"},
    {u"no glyph for {}", u"字形のない文字: {}", u"kein Zeichenbild für {}"},
    {u"no outline of this size for {}", u"この大きさでは輪郭のない文字: {}",
     u"kein Umriss dieser Größe für {}"},
    {u"text: {} (Cut shapes it)", u"文字列: {}（「カット」では整形されます）",
     u"Text: {} (Schneiden formt ihn)"},
    {u"the text ends at a NUL character", u"文字列は NUL 文字で終わっています",
     u"der Text endet an einem NUL-Zeichen"},
    {u"typing shows the text again", u"入力すると文字列の表示に戻ります",
     u"Tippen zeigt wieder den Text"},
    {u"{} character", u"{} 文字", u"{} Zeichen"},
    {u"{} characters", u"{} 文字", u"{} Zeichen"},
    {u"{} contour", u"輪郭 {} 本", u"{} Kontur"},
    {u"{} contours", u"輪郭 {} 本", u"{} Konturen"},
    {u"{} element not shown: a coordinate is missing or no number that can be drawn",
     u"{} 個の要素は表示できません: 座標がないか、作図できない数値です",
     u"{} Element nicht gezeigt: eine Koordinate fehlt oder ist nicht darstellbar"},
    {u"{} elements not shown: coordinates are missing or no numbers that can be drawn",
     u"{} 個の要素は表示できません: 座標がないか、作図できない数値です",
     u"{} Elemente nicht gezeigt: Koordinaten fehlen oder sind nicht darstellbar"},
    {u"{} in place of {}, which is not installed", u"{2} がインストールされていないため {1} で代用",
     u"{} statt {}, das nicht installiert ist"},
    {u"{} part", u"部品 {} 個", u"{} Teil"},
    {u"{} parts", u"部品 {} 個", u"{} Teile"},
    {u"{} point", u"{} 点", u"{} Punkt"},
    {u"{} points", u"{} 点", u"{} Punkte"},
    {u"{} text not shown: it has too many points",
     u"{} 個の文字要素は表示できません: 点が多すぎます",
     u"{} Text nicht gezeigt: er hat zu viele Punkte"},
    {u"{} text not shown: it is too small or too large here",
     u"{} 個の文字要素は表示できません: ここでは小さすぎるか大きすぎます",
     u"{} Text nicht gezeigt: er ist hier zu klein oder zu groß"},
    {u"{} text: {} (Cut shapes it)", u"{}: {}（「カット」では整形されます）",
     u"{}: {} (Schneiden formt ihn)"},
    {u"{} texts not shown: they are too small or too large here",
     u"{} 個の文字要素は表示できません: ここでは小さすぎるか大きすぎます",
     u"{} Texte nicht gezeigt: sie sind hier zu klein oder zu groß"},
    {u"{} texts not shown: they have too many points",
     u"{} 個の文字要素は表示できません: 点が多すぎます",
     u"{} Texte nicht gezeigt: sie haben zu viele Punkte"},
    {u"{} × {} units", u"{} × {} 単位", u"{} × {} Einheiten"},
    {u"{}: Kerno takes text files, parts files (.ipx) and font files.",
     u"{}: 開けるのはテキストファイル、部品ファイル (.ipx)、フォントファイルです。",
     u"{}: Kerno nimmt Textdateien, Teiledateien (.ipx) und Schriftdateien."},
    {u"{}: another program holds this file.", u"{}: 別のプログラムがこのファイルを使用しています。",
     u"{}: Ein anderes Programm hält diese Datei."},
    {u"{}: cannot be opened", u"{}: 開けません", u"{}: lässt sich nicht öffnen"},
    {u"{}: holds no face that can be used", u"{}: 使える書体が入っていません",
     u"{}: enthält keine brauchbare Schrift"},
    {u"{}: is larger than 4 MiB, too much for one drawing",
     u"{}: 4 MiB を超えており、一つの図面には大きすぎます",
     u"{}: ist größer als 4 MiB, zu viel für eine Zeichnung"},
    {u"{}: no format has this extension", u"{}: この拡張子の形式はありません",
     u"{}: kein Format hat diese Endung"},
    {u"{}: there is no such file.", u"{}: ファイルが見つかりません。",
     u"{}: Diese Datei gibt es nicht."},

    // Colours.
    {u"Aqua", u"水色", u"Aqua"},
    {u"Brown", u"茶", u"Braun"},
    {u"Dark grey", u"濃い灰色", u"Dunkelgrau"},
    {u"Fuchsia", u"赤紫", u"Fuchsia"},
    {u"Grey", u"灰色", u"Grau"},
    {u"Lime", u"黄緑", u"Limone"},
    {u"Maroon", u"栗色", u"Kastanie"},
    {u"Navy", u"紺", u"Marineblau"},
    {u"Olive", u"オリーブ", u"Oliv"},
    {u"Orange", u"オレンジ", u"Orange"},
    {u"Pink", u"ピンク", u"Rosa"},
    {u"Purple", u"紫", u"Violett"},
    {u"Silver", u"銀", u"Silber"},
    {u"Teal", u"青緑", u"Blaugrün"},
    {u"White", u"白", u"Weiß"},

    // Formats.
    {u"Bitmap", u"ビットマップ", u"Pixelbild"},
    {u"DXF drawing", u"DXF 図面", u"DXF-Zeichnung"},
    {u"Enhanced metafile", u"拡張メタファイル", u"Erweiterte Metadatei"},
    {u"HPGL plot", u"HPGL プロット", u"HPGL-Plot"},
    {u"IPL sizes", u"IPL 寸法", u"IPL-Maße"},
    {u"IPX parts", u"IPX 部品", u"IPX-Teile"},
    {u"PDF page", u"PDF ページ", u"PDF-Seite"},
    {u"SVG drawing", u"SVG 図面", u"SVG-Zeichnung"},
    {u"X3D scene", u"X3D シーン", u"X3D-Szene"},

    // Scripts.
    {u"Balinese", u"バリ文字", u"Balinesisch"},
    {u"Han", u"漢字", u"Chinesisch"},
    {u"Hiragana", u"ひらがな", u"Hiragana"},
    {u"Javanese", u"ジャワ文字", u"Javanisch"},
    {u"Katakana", u"カタカナ", u"Katakana"},
    {u"N'Ko", u"ンコ文字", u"N'Ko"},
    {u"Syriac", u"シリア文字", u"Syrisch"},
    {u"Thaana", u"ターナ文字", u"Thaana"},

    // Reasons that the rest of the program gives (Status::why).
    {u"a part of the path is not a folder", u"パスの途中がフォルダーではありません",
     u"ein Teil des Pfades ist kein Ordner"},
    {u"another process holds the file", u"別のプログラムがファイルを使用しています",
     u"ein anderes Programm hält die Datei"},
    {u"holds no outline face that can be used", u"使える輪郭書体が入っていません",
     u"enthält keine brauchbare Umrissschrift"},
    {u"is an empty file", u"空のファイルです", u"ist eine leere Datei"},
    {u"it exists already", u"すでにあります", u"es gibt sie schon"},
    {u"it is a device or a pipe, not a file", u"ファイルではなく、デバイスかパイプです",
     u"ist ein Gerät oder eine Pipe, keine Datei"},
    {u"it is a folder", u"フォルダーです", u"ist ein Ordner"},
    {u"it is a folder, not a file", u"ファイルではなく、フォルダーです",
     u"ist ein Ordner, keine Datei"},
    {u"it is a program that is running", u"実行中のプログラムです", u"ist ein laufendes Programm"},
    {u"it is not a folder", u"フォルダーではありません", u"ist kein Ordner"},
    {u"it is not a folder of this user's own", u"このユーザー専用のフォルダーではありません",
     u"ist kein eigener Ordner dieses Benutzers"},
    {u"it is protected from writing", u"書き込み禁止です", u"ist schreibgeschützt"},
    {u"its folder does not exist", u"そのフォルダーがありません", u"der Ordner fehlt"},
    {u"no connection", u"接続できません", u"keine Verbindung"},
    {u"no permission", u"アクセス権がありません", u"keine Berechtigung"},
    {u"no permission to write in its folder", u"フォルダーに書き込む権限がありません",
     u"keine Berechtigung, in den Ordner zu schreiben"},
    {u"no secure connection", u"安全な接続ができません", u"keine sichere Verbindung"},
    {u"not enough memory for the picture", u"画像のためのメモリが足りません",
     u"der Speicher reicht für das Bild nicht"},
    {u"not replaced: it is no page that this program wrote",
     u"置き換えませんでした: このプログラムが書いたページではありません",
     u"nicht ersetzt: diese Seite stammt nicht von diesem Programm"},
    {u"nothing answers behind this name", u"この名前の先から応答がありません",
     u"hinter diesem Namen antwortet nichts"},
    {u"other users could write in it", u"ほかのユーザーが書き込めます",
     u"andere Benutzer könnten hineinschreiben"},
    {u"stopped by the user", u"中止しました", u"vom Benutzer abgebrochen"},
    {u"the address cannot be read", u"アドレスを読み取れません", u"die Adresse ist nicht lesbar"},
    {u"the disk is full", u"ディスクの空きがありません", u"der Datenträger ist voll"},
    {u"the drive is not ready", u"ドライブの準備ができていません",
     u"das Laufwerk ist nicht bereit"},
    {u"the file has no name", u"ファイル名がありません", u"die Datei hat keinen Namen"},
    {u"the file is empty", u"ファイルが空です", u"die Datei ist leer"},
    {u"the file would be larger than is allowed", u"許される大きさを超えます",
     u"die Datei würde zu groß"},
    {u"the folder of the outputs cannot be made: {}", u"出力先フォルダーを作れません: {}",
     u"der Ausgabeordner lässt sich nicht anlegen: {}"},
    {u"the host's name is not known", u"ホスト名が見つかりません",
     u"der Name des Servers ist unbekannt"},
    {u"the name holds a NUL", u"名前に NUL が含まれています", u"der Name enthält ein NUL"},
    {u"the name holds characters that no file can have",
     u"名前にファイル名として使えない文字があります",
     u"der Name enthält Zeichen, die keine Datei haben darf"},
    {u"the name is not valid", u"名前が正しくありません", u"der Name ist ungültig"},
    {u"the name is too long", u"名前が長すぎます", u"der Name ist zu lang"},
    {u"the name stands for a device of the system", u"システムのデバイス名です",
     u"der Name steht für ein Gerät des Systems"},
    {u"the network name was not found", u"ネットワーク名が見つかりません",
     u"der Netzwerkname wurde nicht gefunden"},
    {u"the network path was not found", u"ネットワークパスが見つかりません",
     u"der Netzwerkpfad wurde nicht gefunden"},
    {u"the place can only be read", u"読み取り専用の場所です", u"der Ort ist nur lesbar"},
    {u"the quota of the disk is used up", u"ディスクの割り当てを使い切りました",
     u"das Kontingent ist erschöpft"},
    {u"the reader of the pipe has gone", u"パイプの読み手がいません",
     u"der Leser der Pipe ist fort"},
    {u"the symbolic links lead in a circle", u"シンボリックリンクが循環しています",
     u"die Verknüpfungen führen im Kreis"},
    {u"the system holds it (a mount point, for instance)",
     u"システムが使用しています（マウントポイントなど）",
     u"das System hält es (etwa als Einhängepunkt)"},
    {u"the transfer failed", u"転送に失敗しました", u"die Übertragung ist fehlgeschlagen"},
    {u"there are no outputs in it", u"出力がありません", u"darin sind keine Ausgaben"},
    {u"there is no folder of the user's own to keep them in",
     u"保存するための専用フォルダーがありません", u"es gibt keinen eigenen Ordner dafür"},
    {u"there is no such drive", u"そのドライブはありません", u"dieses Laufwerk gibt es nicht"},
    {u"there is no such file", u"ファイルが見つかりません", u"diese Datei gibt es nicht"},
    {u"there is no such file or folder", u"ファイルもフォルダーも見つかりません",
     u"weder Datei noch Ordner dieses Namens"},
    {u"there is no such folder", u"フォルダーが見つかりません", u"diesen Ordner gibt es nicht"},
    {u"there is no temporary folder of the user's own; choose another folder",
     u"専用の一時フォルダーがありません。別のフォルダーを選んでください",
     u"es gibt keinen eigenen temporären Ordner; einen anderen Ordner wählen"},
    {u"this names a folder, not a file", u"ファイルではなくフォルダーの名前です",
     u"das ist der Name eines Ordners"},
    {u"what answered is not a web server", u"応答したのはウェブサーバーではありません",
     u"was antwortete, ist kein Webserver"},

    // The Cut page: controls and options.
    {u"+", u"+", u"+"},
    {u"1 character is of another face", u"1 文字は別の書体です",
     u"1 Zeichen ist aus einer anderen Schrift"},
    {u"1 closed path", u"閉じたパス 1 個", u"1 geschlossener Pfad"},
    {u"1 open path", u"開いたパス 1 個", u"1 offener Pfad"},
    {u"1 path crosses itself or another one", u"交差しているパスが 1 個あります",
     u"1 Pfad kreuzt sich oder einen anderen"},
    {u"1 path is open", u"閉じていないパスが 1 個あります", u"1 Pfad ist offen"},
    {u"1 path touches itself or another one", u"接しているパスが 1 個あります",
     u"1 Pfad berührt sich oder einen anderen"},
    {u"1 path vanished: it is thinner than the offset", u"オフセットより細いパスが 1 個消えました",
     u"1 Pfad ist verschwunden: er ist dünner als der Versatz"},
    {u"1:1", u"1:1", u"1:1"},
    {u"A font that is not installed, or a font of strokes",
     u"インストールしていないフォント、または線フォント",
     u"Eine nicht installierte Schrift oder eine Strichschrift"},
    {u"A length or a sum: 120, 4*30, 12cm, 5in", u"長さまたは計算式：120、4*30、12cm、5in",
     u"Eine Länge oder Rechnung: 120, 4*30, 12cm, 5in"},
    {u"A length or a sum: 20, 20*2, 2cm, 0.8in", u"長さまたは計算式：20、20*2、2cm、0.8in",
     u"Eine Länge oder Rechnung: 20, 20*2, 2cm, 0,8in"},
    {u"A length that is added after each character", u"各文字の後に加える長さ",
     u"Eine Länge, die nach jedem Zeichen hinzukommt"},
    {u"A table with commas (CSV); its columns are fields of the text: {name}",
     u"CSV の表。列は文字列の中で {name} のように使えます",
     u"Eine Tabelle mit Kommas (CSV); ihre Spalten sind Felder im Text: {name}"},
    {u"Alignment", u"文字揃え", u"Ausrichtung"},
    {u"All files", u"すべてのファイル", u"Alle Dateien"},
    {u"All letters", u"すべての文字", u"Alle Buchstaben"},
    {u"All scripts", u"すべての文字体系", u"Alle Schriftsysteme"},
    {u"Arcs", u"円弧", u"Kreisbögen"},
    {u"As the text", u"文字列のまま", u"Wie der Text"},
    {u"Between two signs", u"隣り合う看板の間隔", u"Zwischen zwei Schildern"},
    {u"Black", u"黒", u"Schwarz"},
    {u"Blue", u"青", u"Blau"},
    {u"Cancelled.", u"中止しました。", u"Abgebrochen."},
    {u"Cap height", u"大文字の高さ", u"Versalhöhe"},
    {u"Centre", u"中央", u"Mitte"},
    {u"Close the list", u"リストを閉じる", u"Liste schließen"},
    {u"Colour", u"色", u"Farbe"},
    {u"Columns from top to bottom, the first one on the right", u"縦書き（右の行から）",
     u"Spalten von oben nach unten, die erste rechts"},
    {u"Copied as SVG", u"SVG をコピーしました", u"Als SVG kopiert"},
    {u"Copy as SVG", u"SVG をコピー", u"Als SVG kopieren"},
    {u"Copy path", u"パスをコピー", u"Pfad kopieren"},
    {u"Curves", u"曲線", u"Kurven"},
    {u"Curves as", u"曲線の形", u"Kurven als"},
    {u"Cut", u"カット", u"Schneiden"},
    {u"Cut around each sign: 40x15; empty: none", u"各看板を囲む枠：40x15。空欄は枠なし",
     u"Um jedes Schild geschnitten: 40x15; leer: keiner"},
    {u"Cut lines", u"カット線", u"Schnittlinien"},
    {u"Cyan", u"シアン", u"Cyan"},
    {u"Degrees to the right", u"右への傾き（度）", u"Grad nach rechts"},
    {u"Degrees, counter-clockwise", u"反時計回りの角度（度）", u"Grad gegen den Uhrzeigersinn"},
    {u"Direction", u"書字方向", u"Richtung"},
    {u"Drop a list here: one sign for each of its rows",
     u"ここにリストをドロップ：1 行が 1 枚の看板になります",
     u"Liste hier ablegen: ein Schild für jede Zeile"},
    {u"Each letter", u"1 文字ごと", u"Jeder Buchstabe"},
    {u"Each line", u"1 行ごと", u"Jede Zeile"},
    {u"Each sign takes its own size, not that of the largest",
     u"各看板をその大きさで詰めます（最大の看板に合わせません）",
     u"Jedes Schild hat seine eigene Größe, nicht die des größten"},
    {u"Em", u"全角の高さ", u"Geviert"},
    {u"Faces", u"書体一覧", u"Schriften"},
    {u"Faces with the text in each; F marks a favourite",
     u"文字列の見本付き書体一覧。F でお気に入り",
     u"Schriften mit dem Text darin; F merkt einen Favoriten"},
    {u"Favourite", u"お気に入り", u"Favorit"},
    {u"Favourites only", u"お気に入りだけ", u"Nur Favoriten"},
    {u"Favourites stand at the top of the list", u"お気に入りは一覧の先頭に並びます",
     u"Favoriten stehen oben in der Liste"},
    {u"Filled", u"塗りつぶし", u"Gefüllt"},
    {u"Fit", u"全体", u"Alles"},
    {u"Fonts", u"フォント", u"Schriften"},
    {u"Fonts of strokes only", u"線フォントだけ", u"Nur Strichschriften"},
    {u"Frame", u"枠", u"Rahmen"},
    {u"Free along the edges of the sheet", u"材料の縁から空ける幅",
     u"Frei an den Rändern der Platte"},
    {u"Gap", u"間隔", u"Abstand"},
    {u"Green", u"緑", u"Grün"},
    {u"Grid", u"グリッド", u"Raster"},
    {u"Has all my characters", u"文字列の文字がすべてある書体", u"Hat alle meine Zeichen"},
    {u"In which paths are cut", u"カットする順序", u"In der Pfade geschnitten werden"},
    {u"Inside and outside", u"内側と外側", u"Innen und außen"},
    {u"Inside first", u"内側から", u"Innen zuerst"},
    {u"Joins what overlaps", u"重なる部分を一つにします", u"Verbindet, was sich überlappt"},
    {u"Keep these settings as", u"この設定に名前を付けて保存", u"Diese Einstellungen merken als"},
    {u"Keep these settings as...", u"この設定に名前を付けて保存...",
     u"Diese Einstellungen merken als..."},
    {u"Larger", u"拡大", u"Größer"},
    {u"Layers", u"レイヤー", u"Ebenen"},
    {u"Left", u"左", u"Links"},
    {u"Left and right change places", u"左右を反転します", u"Links und rechts vertauscht"},
    {u"Left to right", u"左から右", u"Von links nach rechts"},
    {u"Letter spacing", u"文字間隔", u"Zeichenabstand"},
    {u"Line spacing", u"行間", u"Zeilenabstand"},
    {u"Lines", u"線分", u"Linien"},
    {u"Lines at even distances", u"等間隔の線", u"Linien in gleichen Abständen"},
    {u"Magenta", u"マゼンタ", u"Magenta"},
    {u"Margin", u"余白", u"Rand"},
    {u"Measure", u"計測", u"Messen"},
    {u"Mirror", u"左右反転", u"Spiegeln"},
    {u"Moves outlines outwards, below 0 inwards, for the width of the beam",
     u"輪郭を外側へ（負の値は内側へ）ずらします（ビーム幅の補正）",
     u"Verschiebt Umrisse nach außen, unter 0 nach innen, für die Strahlbreite"},
    {u"Multiplies the face's own distance of lines", u"書体の行送りに対する倍率",
     u"Vielfaches des Zeilenabstands der Schrift"},
    {u"Name", u"名前", u"Name"},
    {u"Names", u"ファイル名", u"Namen"},
    {u"No glyph for: {}", u"書体にない文字：{}", u"Kein Zeichen in der Schrift für: {}"},
    {u"Nodes", u"節点", u"Knoten"},
    {u"Nothing", u"なし", u"Nichts"},
    {u"Number of the row in the preview", u"プレビューする行の番号",
     u"Nummer der Zeile in der Vorschau"},
    {u"Of each line; as the text: that of its first letter with a direction",
     u"各行の方向。「文字列のまま」は最初の文字の方向に従います",
     u"Jeder Zeile; wie der Text: die des ersten Buchstabens mit Richtung"},
    {u"Of several lines", u"複数行の揃え方", u"Mehrerer Zeilen"},
    {u"Of the files: {row:03}-{name}.dxf", u"ファイル名の形：{row:03}-{name}",
     u"Der Dateien: {row:03}-{name}"},
    {u"Of the layer, or the first word of the layers' names",
     u"レイヤー名、または各レイヤー名の先頭", u"Der Ebene, oder das erste Wort der Ebenennamen"},
    {u"Of the true size", u"実寸に対する倍率", u"Der wahren Größe"},
    {u"Of what is cut", u"カット線の色", u"Dessen, was geschnitten wird"},
    {u"Offset", u"オフセット", u"Versatz"},
    {u"On a layer of their own, to be engraved", u"別レイヤーに刻印用の番号を入れます",
     u"Auf eigener Ebene, zum Gravieren"},
    {u"On paper, in true size", u"実寸で紙に印刷します", u"Auf Papier, in wahrer Größe"},
    {u"On sheets", u"材料に並べる", u"Auf Platten"},
    {u"One for all", u"全体で 1 枚", u"Eine für alles"},
    {u"Open", u"開く", u"Öffnen"},
    {u"Open a font file", u"フォントファイルを開く", u"Schriftdatei öffnen"},
    {u"Open a font file...", u"フォントファイルを開く...", u"Schriftdatei öffnen..."},
    {u"Open a list", u"リストを開く", u"Liste öffnen"},
    {u"Open a list...", u"リストを開く...", u"Liste öffnen..."},
    {u"Opening hours\n9–17 h", u"営業時間\n9–17時", u"Öffnungszeiten\n9–17 Uhr"},
    {u"Order", u"順序", u"Reihenfolge"},
    {u"Other formats", u"ほかの形式", u"Andere Formate"},
    {u"Packed", u"詰めて並べる", u"Gepackt"},
    {u"Presets", u"プリセット", u"Vorlagen"},
    {u"Print...", u"印刷...", u"Drucken..."},
    {u"Puts the drawing on the clipboard", u"図面をクリップボードに入れます",
     u"Legt die Zeichnung in die Zwischenablage"},
    {u"Puts the signs side by side on sheets of material", u"看板を材料の上に並べます",
     u"Legt die Schilder nebeneinander auf Platten"},
    {u"Recent texts", u"最近の文字列", u"Letzte Texte"},
    {u"Red", u"赤", u"Rot"},
    {u"Remove \"{}\"", u"「{}」を削除", u"„{}“ entfernen"},
    {u"Replace", u"置き換える", u"Ersetzen"},
    {u"Right", u"右", u"Rechts"},
    {u"Right to left", u"右から左", u"Von rechts nach links"},
    {u"Row numbers", u"行番号", u"Zeilennummern"},
    {u"Row {} of {}", u"{} / {} 行", u"Zeile {} von {}"},
    {u"Save DXF...", u"DXF を保存...", u"DXF speichern..."},
    {u"Save the drawing", u"図面を保存", u"Zeichnung speichern"},
    {u"Save {}...", u"{} を保存...", u"{} speichern..."},
    {u"Search faces", u"書体を検索", u"Schriften suchen"},
    {u"Series", u"連続作成", u"Serie"},
    {u"Settings by a name", u"名前を付けた設定", u"Einstellungen unter einem Namen"},
    {u"Sheet", u"材料", u"Platte"},
    {u"Show", u"表示", u"Zeigen"},
    {u"Show in folder", u"フォルダーを表示", u"Im Ordner zeigen"},
    {u"Shows the whole drawing", u"図面全体を表示します", u"Zeigt die ganze Zeichnung"},
    {u"Size", u"大きさ", u"Größe"},
    {u"Size by", u"大きさの基準", u"Größe nach"},
    {u"Size of the drawing", u"図面の大きさ", u"Größe der Zeichnung"},
    {u"Slant", u"傾斜", u"Neigung"},
    {u"Smaller", u"縮小", u"Kleiner"},
    {u"Standard settings", u"標準の設定", u"Standardeinstellungen"},
    {u"Stretched to both", u"幅と高さに伸縮", u"Auf beides gestreckt"},
    {u"Style", u"スタイル", u"Schnitt"},
    {u"Tables and lists", u"表とリスト", u"Tabellen und Listen"},
    {u"Texts that were written to files", u"ファイルに書き出した文字列",
     u"Texte, die in Dateien geschrieben wurden"},
    {u"The distance between two clicks", u"2 回のクリックの間の距離",
     u"Der Abstand zwischen zwei Klicks"},
    {u"The farthest that a path strays from the true curve", u"元の曲線からの最大のずれ",
     u"So weit weicht ein Pfad höchstens von der wahren Kurve ab"},
    {u"The next row", u"次の行", u"Die nächste Zeile"},
    {u"The row before", u"前の行", u"Die vorige Zeile"},
    {u"The true size", u"実寸で表示します", u"Die wahre Größe"},
    {u"There are settings of this name already.", u"この名前の設定はすでにあります。",
     u"Einstellungen dieses Namens gibt es schon."},
    {u"There is nothing to write: the drawing is empty",
     u"書き出すものがありません（図面が空です）", u"Nichts zu schreiben: die Zeichnung ist leer"},
    {u"Tolerance", u"許容差", u"Toleranz"},
    {u"Try again", u"再試行", u"Noch einmal"},
    {u"Turn", u"回転", u"Drehung"},
    {u"Type the text to cut", u"カットする文字列を入力してください",
     u"Text zum Schneiden eingeben"},
    {u"Unit of the lengths here", u"ここでの長さの単位", u"Einheit der Längen hier"},
    {u"Vertical", u"縦書き", u"Senkrecht"},
    {u"Way of working", u"作業モード", u"Arbeitsweise"},
    {u"Wheel zooms, dragging moves, with Ctrl it takes the drawing out as a file; a double click "
     u"shows all",
     u"ホイールで拡大縮小、ドラッグで移動、Ctrl+"
     u"ドラッグで図面をファイルとして取り出し、ダブルクリッ"
     u"クで全体表示",
     u"Das Rad vergrößert, Ziehen verschiebt, mit Strg zieht es die Zeichnung als Datei heraus; "
     u"ein "
     u"Doppelklick zeigt alles"},
    {u"Weld", u"結合", u"Verschweißen"},
    {u"What curves become", u"曲線をどう表すか", u"Was aus Kurven wird"},
    {u"What has a layer of its own", u"レイヤーの分け方", u"Was eine eigene Ebene hat"},
    {u"What the preview shows", u"プレビューの表示方法", u"Was die Vorschau zeigt"},
    {u"What the size is measured on", u"何の大きさを指定するか", u"Woran die Größe gemessen wird"},
    {u"Which faces the list shows", u"一覧に出す書体", u"Welche Schriften die Liste zeigt"},
    {u"Width", u"幅", u"Breite"},
    {u"Width and height", u"幅と高さ", u"Breite und Höhe"},
    {u"Width and height: 600x400", u"幅と高さ：600x400", u"Breite und Höhe: 600x400"},
    {u"Within letters", u"文字の中だけ", u"Innerhalb der Buchstaben"},
    {u"Write all...", u"すべて書き出す...", u"Alle schreiben..."},
    {u"Writes the drawing to a file", u"図面をファイルに書き出します",
     u"Schreibt die Zeichnung in eine Datei"},
    {u"Writes the files of all rows into a folder", u"全行のファイルをフォルダーに書き出します",
     u"Schreibt die Dateien aller Zeilen in einen Ordner"},
    {u"Writing {}", u"{} を書き出しています", u"{} wird geschrieben"},
    {u"Wrote {}", u"{} を書き出しました", u"{} geschrieben"},
    {u"Wrote {} files of {} rows", u"{2} 行から {1} 個のファイルを書き出しました",
     u"{} Dateien von {} Zeilen geschrieben"},
    {u"Yellow", u"黄", u"Gelb"},
    {u"in", u"in", u"in"},
    {u"is larger than 4 MiB, too much for one drawing",
     u"は 4 MiB を超えていて、1 枚の図面には大きすぎます",
     u"ist größer als 4 MiB, zu viel für eine Zeichnung"},
    {u"leaves the letters no room in the size", u"この大きさでは文字の入る余地がありません",
     u"lässt den Buchstaben in dieser Größe keinen Platz"},
    {u"mm", u"mm", u"mm"},
    {u"pt", u"pt", u"pt"},
    {u"row {}", u"{} 行目", u"Zeile {}"},
    {u"the name is empty", u"名前が空です", u"der Name ist leer"},
    {u"the text has no ink to fit", u"文字列に形がないため、大きさを合わせられません",
     u"der Text hat nichts, was sich einpassen lässt"},
    {u"there is no temporary folder", u"一時フォルダーがありません",
     u"es gibt keinen temporären Ordner"},
    {u"there is not enough memory for this text", u"この文字列にはメモリーが足りません",
     u"der Speicher reicht für diesen Text nicht"},
    {u"{} cannot be opened", u"{} を開けません", u"{} lässt sich nicht öffnen"},
    {u"{} characters are of other faces", u"{} 文字は別の書体です",
     u"{} Zeichen sind aus anderen Schriften"},
    {u"{} closed paths", u"閉じたパス {} 個", u"{} geschlossene Pfade"},
    {u"{} has no such style: its letters are made of others",
     u"{} にそのスタイルはありません（他の文字から作ります）",
     u"{} hat diesen Schnitt nicht: die Buchstaben sind aus anderen gemacht"},
    {u"{} is finer than files are: at least 0.00001mm",
     u"{} はファイルの精度より細かい値です（0.00001mm 以上）",
     u"{} ist feiner, als Dateien sind: mindestens 0.00001mm"},
    {u"{} is not a length (20, 20mm, 2cm, 0.8in, 56pt)",
     u"{} は長さではありません（20、20mm、2cm、0.8in、56pt）",
     u"{} ist keine Länge (20, 20mm, 2cm, 0.8in, 56pt)"},
    {u"{} is not a number", u"{} は数ではありません", u"{} ist keine Zahl"},
    {u"{} is not above 0", u"{} は 0 より大きくありません", u"{} ist nicht größer als 0"},
    {u"{} is outside -80 to 80", u"{} は -80 から 80 の範囲外です",
     u"{} liegt nicht zwischen -80 und 80"},
    {u"{} is there already.", u"{} はすでにあります。", u"{} gibt es schon."},
    {u"{} is too long: a kilometre at most", u"{} は長すぎます（1 km まで）",
     u"{} ist zu lang: höchstens ein Kilometer"},
    {u"{} of the files are there already.", u"{} 個のファイルがすでにあります。",
     u"{} der Dateien gibt es schon."},
    {u"{} open paths", u"開いたパス {} 個", u"{} offene Pfade"},
    {u"{} paths are open", u"閉じていないパスが {} 個あります", u"{} Pfade sind offen"},
    {u"{} paths cross themselves or each other", u"交差しているパスが {} 個あります",
     u"{} Pfade kreuzen sich oder einander"},
    {u"{} paths touch themselves or each other", u"接しているパスが {} 個あります",
     u"{} Pfade berühren sich oder einander"},
    {u"{} paths vanished: they are thinner than the offset",
     u"オフセットより細いパスが {} 個消えました",
     u"{} Pfade sind verschwunden: sie sind dünner als der Versatz"},
    {u"{} rows failed", u"{} 行は失敗しました", u"{} Zeilen sind gescheitert"},
    {u"{} {} to cut", u"カット長 {} {}", u"{} {} zu schneiden"},
    {u"{}: the page takes tables, text files and font files",
     u"{}：表、テキストファイル、フォントファイルをドロップできます",
     u"{}: möglich sind Tabellen, Textdateien und Schriftdateien"},
    {u"{}: there is no such file", u"{}：ファイルがありません", u"{}: diese Datei gibt es nicht"},
    {u"{}: {} rows", u"{}：{} 行", u"{}: {} Zeilen"},
    {u"−", u"−", u"−"},
    {u"▶", u"▶", u"▶"},
    {u"▾", u"▾", u"▾"},
    {u"◀", u"◀", u"◀"},

    // The Cut page: faces.
    {u"Armenian", u"アルメニア文字", u"Armenisch"},
    {u"Bopomofo", u"注音字母", u"Bopomofo"},
    {u"Braille", u"点字", u"Braille"},
    {u"Ethiopic", u"エチオピア文字", u"Äthiopisch"},
    {u"Georgian", u"ジョージア文字", u"Georgisch"},
    {u"Hangul", u"ハングル", u"Hangul"},
    {u"Italic", u"イタリック", u"Kursiv"},
    {u"Kana", u"かな", u"Kana"},
    {u"Kanji", u"漢字", u"Kanji"},
    {u"Optical size", u"オプティカルサイズ", u"Optische Größe"},
    {u"Weight", u"太さ", u"Strichstärke"},
    {u"fixed width", u"等幅", u"feste Breite"},
    {u"single lines", u"単線", u"Einzellinien"},
    {u"symbols", u"記号", u"Symbole"},

    // The Cut page: preview.

    // The Cut page: series.

    // What the window of one system alone says.
    {u"Another program holds the clipboard.", u"ほかのプログラムがクリップボードを使用中です。",
     u"Ein anderes Programm hält die Zwischenablage fest."},
    {u"The file cannot be dragged.", u"ファイルをドラッグできません。",
     u"Die Datei lässt sich nicht ziehen."},

    // What the views alone show.
    {u"Classic", u"クラシック", u"Klassisch"},
    {u"Folder of the files", u"ファイルのフォルダー", u"Ordner der Dateien"},
    {u"Msftedit.dll: the rich edit control is not there",
     u"Msftedit.dll: リッチエディットコントロールがありません",
     u"Msftedit.dll: das Rich-Edit-Steuerelement fehlt"},
    {u"Print", u"印刷", u"Drucken"},
    {u"The drawing is {}, the page has room for {}. What does not fit is cut off.",
     u"図面は {}、用紙に入るのは {} です。入らない部分は印刷されません。",
     u"Die Zeichnung ist {}, auf die Seite passen {}. Was nicht passt, wird abgeschnitten."},
    {u"The printer cannot be used.", u"プリンターを使用できません。",
     u"Der Drucker lässt sich nicht benutzen."},
    {u"The window cannot be created.", u"ウィンドウを作成できません。",
     u"Das Fenster lässt sich nicht erzeugen."},
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

constexpr size_t kLeastLiteral = 6;  // of a pattern that says what it is

// Puts parts in the place of "{}" or "{2}".
std::u16string Filled(std::u16string_view text, std::span<const std::u16string_view> parts) {
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
    if (part < parts.size()) out += parts[part];
    i = end;
  }
  return out;
}

// Whether a text is a pattern with something in the place of each "{}".
bool Matches(std::u16string_view pattern, std::u16string_view text,
             std::vector<std::u16string_view>* parts) {
  parts->clear();
  size_t hole = pattern.find(u"{}");
  if (!text.starts_with(pattern.substr(0, hole))) return false;
  text.remove_prefix(hole);
  while (hole != pattern.npos) {
    pattern.remove_prefix(hole + 2);
    hole = pattern.find(u"{}");
    const std::u16string_view literal = pattern.substr(0, hole);
    const bool is_last = hole == pattern.npos;
    const bool is_found = !is_last || text.ends_with(literal);
    const size_t end = is_last ? text.size() - literal.size() : text.find(literal);
    if (!is_found || end == text.npos) return false;
    parts->push_back(text.substr(0, end));
    text.remove_prefix(end + literal.size());
    if (!is_last) pattern.remove_prefix(literal.size());
    hole = pattern.find(u"{}");
  }
  return true;
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
  return Filled(Say(english), {parts.begin(), parts.size()});
}

std::u16string SayReason(std::u16string_view why) {
  if (CurrentLanguage() == Language::kEnglish) return std::u16string(why);
  if (FindRow(why)) return Say(why);
  std::vector<std::u16string_view> parts, best_parts;
  const CaptionRow* best = nullptr;
  size_t most = kLeastLiteral;
  for (const CaptionRow& row : kRows) {
    const std::u16string_view pattern = row.english;
    if (pattern.find(u"{}") == pattern.npos || pattern.size() < most) continue;
    if (!Matches(pattern, why, &parts)) continue;
    best = &row;
    best_parts = parts;
    most = pattern.size();
  }
  return best ? Filled(Say(best->english), best_parts) : std::u16string(why);
}

std::u16string SayStatus(const Status& status) {
  if (status.why.empty()) return SayReason(status.what);
  return (status.what.empty() ? u"" : status.what + u": ") + SayReason(status.why);
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
