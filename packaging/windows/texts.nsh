; What the installer and the uninstaller say beyond the texts of their pages. $1 is the name of a file
; or folder that is in the way.

!macro Text name english japanese german
  LangString ${name} ${LANG_ENGLISH} "${english}"
  LangString ${name} ${LANG_JAPANESE} "${japanese}"
  LangString ${name} ${LANG_GERMAN} "${german}"
!macroend

; The components.
!insertmacro Text START_MENU "Entry in the start menu" "スタート メニューに登録" "Eintrag im Startmenü"
!insertmacro Text DESKTOP_ICON "Icon on the desktop" "デスクトップにアイコンを作成" "Symbol auf dem Desktop"
!insertmacro Text SEARCH_PATH "Command line everywhere (PATH)" "どこからでもコマンドを実行 (PATH)" \
  "Befehlszeile überall (PATH)"
!insertmacro Text FILE_TYPE "Open parts files (.ipx) with Kerno" "パーツファイル (.ipx) を Kerno で開く" \
  "Teiledateien (.ipx) mit Kerno öffnen"
!insertmacro Text ABOUT_PROGRAM "The window, the command line, documents and examples." \
  "ウィンドウ、コマンドライン、ドキュメント、サンプル。" \
  "Das Fenster, die Befehlszeile, Dokumente und Beispiele."
!insertmacro Text ABOUT_START_MENU "Starts the window from the start menu." \
  "スタート メニューからウィンドウを開きます。" "Öffnet das Fenster aus dem Startmenü."
!insertmacro Text ABOUT_DESKTOP_ICON "Starts the window from the desktop." \
  "デスクトップからウィンドウを開きます。" "Öffnet das Fenster vom Desktop aus."
!insertmacro Text ABOUT_SEARCH_PATH \
  "New command windows know the command kerno. Only your own search path gets the entry." \
  "新しく開くコマンド ウィンドウで kerno が使えます。変更するのは自分の PATH だけです。" \
  "Neue Befehlsfenster kennen den Befehl kerno. Nur der eigene Suchpfad wird ergänzt."
!insertmacro Text ABOUT_FILE_TYPE \
  "Not chosen where another program opens these files. Kerno is always among those of Open with." \
  "別のプログラムが開く設定のときは選択されません。「プログラムから開く」には常に表示されます。" \
  "Nicht gewählt, wenn ein anderes Programm sie öffnet. Unter Öffnen mit steht Kerno immer."
!insertmacro Text PARTS_FILE "Kerno parts file" "Kerno パーツファイル" "Kerno-Teiledatei"

; The components of the uninstaller.
!insertmacro Text SETTINGS "Delete my settings, too" "設定も削除する" "Auch meine Einstellungen löschen"
!insertmacro Text ABOUT_UNINSTALL "Removes what was installed, and nothing else." \
  "インストールしたものだけを削除します。" "Entfernt, was installiert wurde, und sonst nichts."
!insertmacro Text ABOUT_SETTINGS "Without this they stay, and a new installation finds them." \
  "選択しなければ設定は残り、再インストール後も使えます。" \
  "Sonst bleiben sie, und eine neue Installation findet sie."

; Messages.
!insertmacro Text RUNS "$1 is in use: Kerno is running." "$1 は使用中です。Kerno が実行されています。" \
  "$1 wird benutzt: Kerno läuft noch."
!insertmacro Text CLOSE_IT "Close Kerno and try again. Nothing has been changed so far." \
  "Kerno を終了してから再試行してください。まだ何も変更していません。" \
  "Kerno bitte schließen und wiederholen. Bisher wurde nichts geändert."
!insertmacro Text SETUP_RUNS "Another setup of Kerno is running." \
  "Kerno の別のセットアップが実行中です。" "Ein anderes Setup von Kerno läuft noch."
!insertmacro Text NEWER \
  "Kerno $1 is installed, which is newer than ${VERSION}. Replace it by the older one?" \
  "より新しい Kerno $1 がインストールされています。古い ${VERSION} に置き換えますか?" \
  "Kerno $1 ist installiert und neuer als ${VERSION}. Durch die ältere Fassung ersetzen?"
!insertmacro Text NOT_WRITABLE \
  "$1 cannot be written. Nothing has been changed. Choose another folder, or ask who may write there." \
  "$1 に書き込めません。何も変更していません。別のフォルダーを選ぶか、書き込み権限を確認してください。" \
  "$1 kann nicht geschrieben werden. Nichts wurde geändert. Bitte einen anderen Ordner wählen oder die Rechte prüfen."
!insertmacro Text NOT_REMOVED \
  "$1 cannot be removed. It stays, and so does the entry of Kerno: try again later." \
  "$1 を削除できません。Kerno の登録は残ります。後でもう一度実行してください。" \
  "$1 kann nicht entfernt werden. Der Eintrag von Kerno bleibt: bitte später wiederholen."
!insertmacro Text FOREIGN_FILE \
  "$1 is there already and does not belong to an installation of Kerno. Nothing has been changed. Choose another folder." \
  "$1 は既に存在し、Kerno のものではありません。何も変更していません。別のフォルダーを選んでください。" \
  "$1 gibt es schon, ohne zu einer Installation von Kerno zu gehören. Nichts wurde geändert. Bitte einen anderen Ordner wählen."
!insertmacro Text FOLDER_TOO_LONG \
  "The folder's name is too long: at most ${LONGEST_FOLDER} characters. Nothing has been changed." \
  "フォルダー名が長すぎます (${LONGEST_FOLDER} 文字まで)。何も変更していません。" \
  "Der Name des Ordners ist zu lang: höchstens ${LONGEST_FOLDER} Zeichen. Nichts wurde geändert."
!insertmacro Text NOT_INSTALLED "Kerno is not installed in this folder. Nothing has been changed." \
  "このフォルダーに Kerno はインストールされていません。何も変更していません。" \
  "Kerno ist in diesem Ordner nicht installiert. Nichts wurde geändert."
!insertmacro Text OLD_WINDOWS "Kerno needs Windows 10 or later." "Kerno には Windows 10 以降が必要です。" \
  "Kerno braucht Windows 10 oder neuer."
!insertmacro Text PATH_LEFT \
  "Kerno is installed, but the search path (PATH) was left as it is: it would become too long, or is of an unusual kind." \
  "Kerno はインストールされましたが、PATH は変更していません。長くなりすぎるか、値の形式が通常と異なるためです。" \
  "Kerno ist installiert, aber der Suchpfad (PATH) blieb, wie er ist: er würde zu lang oder ist von ungewöhnlicher Art."
!insertmacro Text PATH_STAYS "The entry of Kerno in the search path (PATH) could not be removed." \
  "PATH から Kerno の項目を削除できませんでした。" \
  "Der Eintrag von Kerno im Suchpfad (PATH) ließ sich nicht entfernen."
!insertmacro Text FORMER_STAYS \
  "Kerno is installed, but the version before could not be removed from its folder $former_folder." \
  "Kerno はインストールされましたが、以前のバージョンを $former_folder から削除できませんでした。" \
  "Kerno ist installiert, aber die frühere Fassung in $former_folder ließ sich nicht entfernen."
