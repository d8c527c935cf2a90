; The installer: for one user, without rights of an administrator. What must be done whole or not at
; all, and what is longer than the 1,023 characters that a text here may have, does
; kerno-setup-helper.exe.
;
; Defined by make_installer.sh: VERSION, STAGE (the folder of what is installed), FILES (a list of
; File commands), HELPER, ICON, WIZARD, LICENCE, TEXTS, SIZE_KB, OUT_FILE, and SIGN where files are signed.

Unicode true
Target amd64-unicode
ManifestDPIAware true
ManifestSupportedOS Win10
RequestExecutionLevel user
SetCompressor /SOLID lzma

!include LogicLib.nsh
!include FileFunc.nsh
!include WordFunc.nsh
!include WinVer.nsh
!include Sections.nsh
!include MUI2.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Kerno"
!define CLASSES "Software\Classes"
!define PROG_ID "Kerno.Parts"
!define USER_CHOICE "Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts\.ipx\UserChoice"
!define STAGED "$INSTDIR\kerno-setup.tmp"

; With what the installer and the uninstaller end, beside 0 (done), 1 (cancelled by the user) and
; those of kerno-setup-helper (src/setup/outcome.h).
!define EXIT_USAGE 2
!define EXIT_IN_USE 3
!define EXIT_NEWER 4
!define EXIT_NOT_WRITABLE 5
!define EXIT_NOT_INSTALLED 6
!define EXIT_OLD_WINDOWS 7
!define EXIT_PATH_LEFT 8
!define EXIT_FOREIGN_FILE 9
!define ALREADY_THERE 10

; The files' own names and that of the one set aside must fit into what Windows takes.
!define LONGEST_FOLDER 150

Name "Kerno"
OutFile "${OUT_FILE}"
BrandingText "Kerno ${VERSION}"
InstallDir "$LOCALAPPDATA\Programs\Kerno"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_WELCOMEFINISHPAGE_BITMAP "${WIZARD}"
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_FINISHPAGE_RUN "$INSTDIR\kerno-desktop.exe"
!define MUI_FINISHPAGE_NOREBOOTSUPPORT

!insertmacro MUI_PAGE_LICENSE "${LICENCE}"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Japanese"
!insertmacro MUI_LANGUAGE "German"
!include "${TEXTS}"

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
!macro VersionTexts language description
  VIAddVersionKey /LANG=${language} "ProductName" "Kerno"
  VIAddVersionKey /LANG=${language} "ProductVersion" "${VERSION}"
  VIAddVersionKey /LANG=${language} "FileVersion" "${VERSION}"
  VIAddVersionKey /LANG=${language} "FileDescription" "${description}"
  VIAddVersionKey /LANG=${language} "CompanyName" "Kerno developers"
  VIAddVersionKey /LANG=${language} "LegalCopyright" "Copyright (c) 2026 the Kerno maintainers"
!macroend
!insertmacro VersionTexts ${LANG_ENGLISH} "Kerno setup"
!insertmacro VersionTexts ${LANG_JAPANESE} "Kerno セットアップ"
!insertmacro VersionTexts ${LANG_GERMAN} "Kerno-Setup"

!ifdef SIGN
  !uninstfinalize `${SIGN} "%1"` = 0
!endif

Var former_folder  ; where the version before is installed; empty without one
Var exit_status    ; of an installation that is done

; ---------------------------------------------------------------------------------------------------
; Steps of the helper: the exit status comes into $0, the name of what is in the way into $1.

!macro DefineHelper un not_done
Function ${un}Helper
  Exch $2  ; what is to be done: the words for the helper
  SetDetailsPrint none  ; of the steps, the user sees what they came to
  ClearErrors
  ExecWait '"$PLUGINSDIR\kerno-setup-helper.exe" $2 --report "$PLUGINSDIR\report.txt"' $0
  ${If} ${Errors}
    StrCpy $0 ${EXIT_NOT_WRITABLE}
  ${EndIf}
  StrCpy $1 ""
  ClearErrors
  FileOpen $2 "$PLUGINSDIR\report.txt" r
  ${IfNot} ${Errors}
    FileReadUTF16LE $2 $1
    FileClose $2
    Delete "$PLUGINSDIR\report.txt"
  ${EndIf}
  ClearErrors
  SetDetailsPrint lastused
  Pop $2
FunctionEnd

Function ${un}UnpackHelper
  InitPluginsDir
  SetOutPath "$PLUGINSDIR"  ; no folder of the installation is held by being the current one
  File "${HELPER}"
FunctionEnd

; Ends with the exit status $R0, after showing $R1.
Function ${un}Fail
  SetDetailsPrint both
  DetailPrint "$R1"
  SetErrorLevel $R0
  MessageBox MB_OK|MB_ICONSTOP "$R1" /SD IDOK
  Abort "$R1"
FunctionEnd

; The words for the outcome $0 of a step on the files.
Function ${un}FailOfHelper
  StrCpy $R0 $0
  ${Select} $0
    ${Case} ${EXIT_IN_USE}
      StrCpy $R1 "$(RUNS)"
    ${Case} ${EXIT_NOT_INSTALLED}
      StrCpy $R1 "$(NOT_INSTALLED)"
    ${Case} ${EXIT_FOREIGN_FILE}
      StrCpy $R1 "$(FOREIGN_FILE)"
    ${Default}
      StrCpy $R0 ${EXIT_NOT_WRITABLE}
      StrCpy $R1 "$(${not_done})"
  ${EndSelect}
  Call ${un}Fail
FunctionEnd

; Asks until no program of the folder $3 runs, or the user gives up.
Function ${un}AwaitPrograms
  ${Do}
    Push 'check "$3"'
    Call ${un}Helper
    ${If} $0 <> ${EXIT_IN_USE}
      ${ExitDo}
    ${EndIf}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(RUNS)$\r$\n$\r$\n$(CLOSE_IT)" /SD IDCANCEL IDRETRY +2
    Call ${un}FailOfHelper
  ${Loop}
FunctionEnd

; Another installer or uninstaller of Kerno must not be at work.
Function ${un}TakeTurn
  System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Local\KernoSetup") p .r0 ?e'
  Pop $1
  ${If} $1 = 183  ; ERROR_ALREADY_EXISTS
    SetErrorLevel ${EXIT_IN_USE}
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(SETUP_RUNS)" /SD IDOK
    Quit
  ${EndIf}
FunctionEnd

Function ${un}ChooseLanguage
  ${${un}GetParameters} $0
  ClearErrors
  ${${un}GetOptions} $0 "/LANGUAGE=" $1
  ${IfNot} ${Errors}
    StrCpy $LANGUAGE $1
  ${EndIf}
  ClearErrors
FunctionEnd

; What was added beside the files. Each is noted in the uninstaller's entry and taken back by that
; note, so that nothing goes that somebody else made.
Function ${un}RemoveStartMenu
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "KernoStartMenu"
  ${If} $0 == "1"
    Delete "$SMPROGRAMS\Kerno.lnk"
    DeleteRegValue HKCU "${UNINSTALL_KEY}" "KernoStartMenu"
  ${EndIf}
FunctionEnd

Function ${un}RemoveDesktop
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "KernoDesktop"
  ${If} $0 == "1"
    Delete "$DESKTOP\Kerno.lnk"
    DeleteRegValue HKCU "${UNINSTALL_KEY}" "KernoDesktop"
  ${EndIf}
FunctionEnd

Function ${un}RemovePath
  ReadRegStr $3 HKCU "${UNINSTALL_KEY}" "KernoPath"
  ${If} $3 != ""
    Push 'remove-path "$3"'
    Call ${un}Helper
    ${If} $0 = 0
      DeleteRegValue HKCU "${UNINSTALL_KEY}" "KernoPath"
    ${Else}
      MessageBox MB_OK|MB_ICONEXCLAMATION "$(PATH_STAYS)" /SD IDOK
    ${EndIf}
  ${EndIf}
FunctionEnd

Function ${un}GiveTypeBack
  ReadRegStr $0 HKCU "${CLASSES}\.ipx" ""
  ${If} $0 == "${PROG_ID}"
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "KernoTypeBefore"
    ${If} $0 == ""
      DeleteRegValue HKCU "${CLASSES}\.ipx" ""
    ${Else}
      WriteRegStr HKCU "${CLASSES}\.ipx" "" "$0"
    ${EndIf}
  ${EndIf}
  DeleteRegValue HKCU "${UNINSTALL_KEY}" "KernoTypeBefore"
FunctionEnd

Function ${un}TellShell
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'  ; SHCNE_ASSOCCHANGED
FunctionEnd
!macroend
!insertmacro DefineHelper "" NOT_WRITABLE
!insertmacro DefineHelper "un." NOT_REMOVED

; ---------------------------------------------------------------------------------------------------

Function AddStartMenu
  CreateShortcut "$SMPROGRAMS\Kerno.lnk" "$INSTDIR\kerno-desktop.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "KernoStartMenu" "1"
FunctionEnd

Function AddDesktop
  CreateShortcut "$DESKTOP\Kerno.lnk" "$INSTDIR\kerno-desktop.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "KernoDesktop" "1"
FunctionEnd

Function AddPath
  Push 'add-path "$INSTDIR"'
  Call Helper
  ${If} $0 = 0
    WriteRegStr HKCU "${UNINSTALL_KEY}" "KernoPath" "$INSTDIR"
  ${ElseIf} $0 <> ${ALREADY_THERE}
    StrCpy $exit_status ${EXIT_PATH_LEFT}
    DetailPrint "$(PATH_LEFT)"
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(PATH_LEFT)" /SD IDOK
  ${EndIf}
FunctionEnd

; Among the programs of "Open with", whoever opens the files by itself.
Function AddType
  WriteRegStr HKCU "${CLASSES}\${PROG_ID}" "" "$(PARTS_FILE)"
  WriteRegStr HKCU "${CLASSES}\${PROG_ID}\DefaultIcon" "" "$INSTDIR\kerno-desktop.exe,0"
  WriteRegStr HKCU "${CLASSES}\${PROG_ID}\shell\open\command" "" '"$INSTDIR\kerno-desktop.exe" "%1"'
  WriteRegStr HKCU "${CLASSES}\.ipx\OpenWithProgids" "${PROG_ID}" ""
FunctionEnd

Function TakeType
  ReadRegStr $0 HKCU "${CLASSES}\.ipx" ""
  ${If} $0 != "${PROG_ID}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "KernoTypeBefore" "$0"
    WriteRegStr HKCU "${CLASSES}\.ipx" "" "${PROG_ID}"
  ${EndIf}
FunctionEnd

Function WriteEntry
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "Kerno"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\kerno-desktop.exe,0"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "Kerno developers"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
FunctionEnd

; The version before stood elsewhere: its settings come along, and it goes.
Function LeaveFormerFolder
  Call RemovePath
  Push 'leave-former "$INSTDIR" "$former_folder"'
  Call Helper
  ${If} $0 <> 0
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(FORMER_STAYS)" /SD IDOK
  ${EndIf}
FunctionEnd

!macro Choose section add remove
  ${If} ${SectionIsSelected} ${section}
    Call ${add}
  ${Else}
    Call ${remove}
  ${EndIf}
!macroend

Section "!Kerno" section_program
  SectionIn RO
  StrCpy $exit_status 0
  StrLen $0 "$INSTDIR"
  ${If} $0 > ${LONGEST_FOLDER}
    StrCpy $R0 ${EXIT_NOT_WRITABLE}
    StrCpy $R1 "$(FOLDER_TOO_LONG)"
    Call Fail
  ${EndIf}
  Call UnpackHelper
  StrCpy $3 "$INSTDIR"
  Call AwaitPrograms
  ${If} $former_folder != ""
    StrCpy $3 "$former_folder"
    Call AwaitPrograms
  ${EndIf}

  RMDir /r "${STAGED}"  ; of an installer that was stopped
  ClearErrors
  SetOverwrite try
  !include "${FILES}"
  WriteUninstaller "${STAGED}\uninstall.exe"
  ${If} ${Errors}
    SetOutPath "$PLUGINSDIR"
    RMDir /r "${STAGED}"
    RMDir "$INSTDIR"
    StrCpy $0 ${EXIT_NOT_WRITABLE}
    StrCpy $1 "$INSTDIR"
    Call FailOfHelper
  ${EndIf}
  SetOutPath "$PLUGINSDIR"
  Push 'place "$INSTDIR" "${STAGED}"'
  Call Helper
  ${If} $0 <> 0
    Call FailOfHelper
  ${EndIf}
  ${If} $former_folder != ""
  ${AndIf} $former_folder != $INSTDIR
    Call LeaveFormerFolder
  ${EndIf}
  SetOutPath "$INSTDIR"  ; where the shortcuts start the program
  Call WriteEntry
  Call AddType
SectionEnd

Section "$(START_MENU)" section_menu
SectionEnd
Section /o "$(DESKTOP_ICON)" section_desktop
SectionEnd
Section "$(SEARCH_PATH)" section_path
SectionEnd
Section "$(FILE_TYPE)" section_type
SectionEnd

Section "-choices"
  !insertmacro Choose ${section_menu} AddStartMenu RemoveStartMenu
  !insertmacro Choose ${section_desktop} AddDesktop RemoveDesktop
  !insertmacro Choose ${section_path} AddPath RemovePath
  !insertmacro Choose ${section_type} TakeType GiveTypeBack
  Call TellShell
  SetErrorLevel $exit_status
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${section_program} "$(ABOUT_PROGRAM)"
  !insertmacro MUI_DESCRIPTION_TEXT ${section_menu} "$(ABOUT_START_MENU)"
  !insertmacro MUI_DESCRIPTION_TEXT ${section_desktop} "$(ABOUT_DESKTOP_ICON)"
  !insertmacro MUI_DESCRIPTION_TEXT ${section_path} "$(ABOUT_SEARCH_PATH)"
  !insertmacro MUI_DESCRIPTION_TEXT ${section_type} "$(ABOUT_FILE_TYPE)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; What the version before had chosen; then the switches of the command line.
!macro Default section note
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "${note}"
  ${If} $0 == ""
    !insertmacro UnselectSection ${section}
  ${Else}
    !insertmacro SelectSection ${section}
  ${EndIf}
!macroend

!macro Switch word section action
  ClearErrors
  ${GetOptions} $R0 "${word}" $0
  ${IfNot} ${Errors}
    !insertmacro ${action} ${section}
  ${EndIf}
!macroend

; Files that another program opens are taken over by the user's word alone.
Function ProposeType
  ReadRegStr $0 HKCU "${CLASSES}\.ipx" ""
  ${If} $0 == ""
    ReadRegStr $0 HKLM "${CLASSES}\.ipx" ""
  ${EndIf}
  ReadRegStr $1 HKCU "${USER_CHOICE}" "ProgId"
  ${If} $1 != ""
    StrCpy $0 $1
  ${EndIf}
  ${If} $0 != ""
  ${AndIf} $0 != "${PROG_ID}"
    !insertmacro UnselectSection ${section_type}
  ${EndIf}
FunctionEnd

Function RememberChoices
  ReadRegStr $former_folder HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $former_folder != ""
    !insertmacro Default ${section_menu} "KernoStartMenu"
    !insertmacro Default ${section_desktop} "KernoDesktop"
    !insertmacro Default ${section_path} "KernoPath"
    ReadRegStr $0 HKCU "${CLASSES}\.ipx" ""
    ${If} $0 != "${PROG_ID}"
      !insertmacro UnselectSection ${section_type}
    ${EndIf}
  ${EndIf}
FunctionEnd

Function AskAboutNewer
  ReadRegStr $1 HKCU "${UNINSTALL_KEY}" "DisplayVersion"
  ${If} $1 == ""
    Return
  ${EndIf}
  ${VersionCompare} "$1" "${VERSION}" $0
  ${If} $0 <> 1
    Return
  ${EndIf}
  ClearErrors
  ${GetOptions} $R0 "/DOWNGRADE" $0
  ${If} ${Errors}
    SetErrorLevel ${EXIT_NEWER}
    MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "$(NEWER)" /SD IDNO IDYES downgrade
    Quit
    downgrade:
    SetErrorLevel -1
  ${EndIf}
FunctionEnd

Function .onInit
  ${GetParameters} $R0
  Call ChooseLanguage
  ${IfNot} ${AtLeastWin10}
    SetErrorLevel ${EXIT_OLD_WINDOWS}
    MessageBox MB_OK|MB_ICONSTOP "$(OLD_WINDOWS)" /SD IDOK
    Quit
  ${EndIf}
  Call TakeTurn
  Call AskAboutNewer
  Call ProposeType
  Call RememberChoices
  !insertmacro Switch "/NOMENU" ${section_menu} UnselectSection
  !insertmacro Switch "/MENU" ${section_menu} SelectSection
  !insertmacro Switch "/DESKTOP" ${section_desktop} SelectSection
  !insertmacro Switch "/NODESKTOP" ${section_desktop} UnselectSection
  !insertmacro Switch "/NOPATH" ${section_path} UnselectSection
  !insertmacro Switch "/PATH" ${section_path} SelectSection
  !insertmacro Switch "/NOIPX" ${section_type} UnselectSection
  !insertmacro Switch "/IPX" ${section_type} SelectSection
FunctionEnd

; ---------------------------------------------------------------------------------------------------

; The entry may be that of a copy in another folder, which stays.
Function un.RemoveEntries
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 != $INSTDIR
    Return
  ${EndIf}
  Call un.RemoveStartMenu
  Call un.RemoveDesktop
  Call un.RemovePath
  Call un.GiveTypeBack
  DeleteRegValue HKCU "${CLASSES}\.ipx\OpenWithProgids" "${PROG_ID}"
  DeleteRegKey /ifempty HKCU "${CLASSES}\.ipx\OpenWithProgids"
  DeleteRegKey /ifempty HKCU "${CLASSES}\.ipx"
  DeleteRegKey HKCU "${CLASSES}\${PROG_ID}"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
  Call un.TellShell
FunctionEnd

Section "!un.Kerno" section_un_program
  SectionIn RO
  Call un.UnpackHelper
  StrCpy $3 "$INSTDIR"
  Call un.AwaitPrograms
  Push 'remove "$INSTDIR"'
  Call un.Helper
  ${If} $0 <> 0
    Call un.FailOfHelper
  ${EndIf}
  Call un.RemoveEntries
SectionEnd

Section /o "un.$(SETTINGS)" section_un_settings
  Push 'forget-settings "$INSTDIR"'
  Call un.Helper
  ${If} $0 <> 0
    Call un.FailOfHelper
  ${EndIf}
SectionEnd

!insertmacro MUI_UNFUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${section_un_program} "$(ABOUT_UNINSTALL)"
  !insertmacro MUI_DESCRIPTION_TEXT ${section_un_settings} "$(ABOUT_SETTINGS)"
!insertmacro MUI_UNFUNCTION_DESCRIPTION_END

Function un.onInit
  Call un.ChooseLanguage
  Call un.TakeTurn
  ${un.GetParameters} $R0
  ClearErrors
  ${un.GetOptions} $R0 "/DELETESETTINGS" $0
  ${IfNot} ${Errors}
    !insertmacro SelectSection ${section_un_settings}
  ${EndIf}
FunctionEnd
