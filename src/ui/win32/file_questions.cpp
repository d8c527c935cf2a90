#include "ui/win32/file_questions.h"

#include <vector>

#include "app/captions.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/interface.h"
#include "ui/win32/looks.h"
#include "ui/win32/resource.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// The kinds of files of a dialog; the texts stay where the dialog reads them.
class Kinds {
 public:
  void Add(std::u16string_view name, const std::vector<std::u16string>& extensions) {
    std::wstring pattern;
    for (const std::u16string& extension : extensions) {
      pattern += (pattern.empty() ? L"*." : L";*.") + ToWide(extension);
    }
    texts_.push_back({ToWide(name), pattern.empty() ? L"*.*" : pattern});
  }
  void Set(IFileDialog& dialog) const {
    std::vector<COMDLG_FILTERSPEC> specs;
    for (const Text& text : texts_) specs.push_back({text.name.c_str(), text.pattern.c_str()});
    if (!specs.empty()) dialog.SetFileTypes(static_cast<UINT>(specs.size()), specs.data());
  }

 private:
  struct Text {
    std::wstring name, pattern;
  };
  std::vector<Text> texts_;
};

void BeginIn(IFileDialog& dialog, const std::filesystem::path& start) {
  Interface<IShellItem> folder;
  if (SUCCEEDED(
          SHCreateItemFromParsingName(start.c_str(), nullptr, IID_IShellItem, folder.put_void()))) {
    dialog.SetFolder(folder.get());
  }
}

std::optional<std::filesystem::path> Answer(HWND owner, IFileDialog& dialog) {
  Interface<IShellItem> chosen;
  PWSTR name = nullptr;
  if (FAILED(dialog.Show(owner)) || FAILED(dialog.GetResult(chosen.put())) ||
      FAILED(chosen->GetDisplayName(SIGDN_FILESYSPATH, &name))) {
    return std::nullopt;
  }
  std::filesystem::path path(name);
  CoTaskMemFree(name);
  return path;
}

struct NameQuestion {
  std::wstring title, proposed;
  std::u16string answer;
};

INT_PTR CALLBACK NameProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (const auto answer = AnswerInLooks(window, message, wparam, lparam)) return *answer;
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, GWLP_USERDATA, lparam);
    const auto& question = *reinterpret_cast<const NameQuestion*>(lparam);
    SetWindowTextW(window, question.title.c_str());
    SetDlgItemTextW(window, KERNO_NAME_EDIT, question.proposed.c_str());
    SetDlgItemTextW(window, IDOK, ToWide(Say(u"OK")).c_str());
    SetDlgItemTextW(window, IDCANCEL, ToWide(Say(u"Cancel")).c_str());
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  if (LOWORD(wparam) != IDOK && LOWORD(wparam) != IDCANCEL) return FALSE;
  auto& question = *reinterpret_cast<NameQuestion*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  question.answer = TextOfWindow(GetDlgItem(window, KERNO_NAME_EDIT));
  EndDialog(window, LOWORD(wparam));
  return TRUE;
}

}  // namespace

std::optional<std::filesystem::path> AskForSave(HWND owner, const SaveQuestion& question) {
  Interface<IFileSaveDialog> dialog;
  if (FAILED(CoCreateInstance(CLSID_FileSaveDialog, nullptr, CLSCTX_INPROC_SERVER,
                              IID_IFileSaveDialog, dialog.put_void()))) {
    return std::nullopt;
  }
  Kinds kinds;
  for (const SaveQuestion::Kind& kind : question.kinds) kinds.Add(kind.name, {kind.extension});
  kinds.Set(*dialog.get());
  dialog->SetTitle(ToWide(question.title).c_str());
  dialog->SetFileName(ToWide(question.name).c_str());
  if (!question.kinds.empty()) {
    dialog->SetDefaultExtension(ToWide(question.kinds.front().extension).c_str());
  }
  dialog->SetOptions(FOS_OVERWRITEPROMPT | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST);
  BeginIn(*dialog.get(), question.folder);
  return Answer(owner, *dialog.get());
}

std::optional<std::filesystem::path> AskForOpen(HWND owner, const OpenQuestion& question) {
  Interface<IFileOpenDialog> dialog;
  if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                              IID_IFileOpenDialog, dialog.put_void()))) {
    return std::nullopt;
  }
  Kinds kinds;
  for (const OpenQuestion::Kind& kind : question.kinds) kinds.Add(kind.name, kind.extensions);
  kinds.Set(*dialog.get());
  dialog->SetTitle(ToWide(question.title).c_str());
  dialog->SetOptions(FOS_FILEMUSTEXIST | FOS_FORCEFILESYSTEM);
  BeginIn(*dialog.get(), question.folder);
  return Answer(owner, *dialog.get());
}

std::optional<std::filesystem::path> AskForFolder(HWND owner, const std::filesystem::path& start) {
  Interface<IFileOpenDialog> dialog;
  if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                              IID_IFileOpenDialog, dialog.put_void()))) {
    return std::nullopt;
  }
  dialog->SetOptions(FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM);
  BeginIn(*dialog.get(), start);
  return Answer(owner, *dialog.get());
}

std::optional<std::u16string> AskForName(HINSTANCE instance, HWND owner, std::u16string_view title,
                                         std::u16string_view proposed) {
  NameQuestion question = {ToWide(title), ToWide(proposed), {}};
  const INT_PTR answer = DialogBoxParamW(instance, MAKEINTRESOURCEW(KERNO_NAME_DIALOG), owner,
                                         NameProc, reinterpret_cast<LPARAM>(&question));
  if (answer != IDOK || question.answer.empty()) return std::nullopt;
  return question.answer;
}

std::optional<size_t> AskForDecision(HWND owner, std::u16string_view text,
                                     const std::vector<std::u16string>& buttons) {
  constexpr int kFirst = 100;  // numbers of the buttons, beyond those of the system's own
  const std::wstring question = ToWide(text);
  std::vector<std::wstring> captions;
  for (const std::u16string& button : buttons) captions.push_back(ToWide(button));
  captions.push_back(ToWide(Say(u"Cancel")));
  std::vector<TASKDIALOG_BUTTON> shown;
  for (const std::wstring& caption : captions) {
    shown.push_back({kFirst + static_cast<int>(shown.size()), caption.c_str()});
  }
  shown.back().nButtonID = IDCANCEL;
  TASKDIALOGCONFIG config{};
  config.cbSize = sizeof config;
  config.hwndParent = owner;
  config.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_POSITION_RELATIVE_TO_WINDOW;
  config.pszWindowTitle = L"Kerno";
  config.pszContent = question.c_str();
  config.cButtons = static_cast<UINT>(shown.size());
  config.pButtons = shown.data();
  config.nDefaultButton = IDCANCEL;
  int pressed = IDCANCEL;
  if (FAILED(TaskDialogIndirect(&config, &pressed, nullptr, nullptr))) {
    // Boxes with buttons of any name are not there: OK stands for the first one, and says so.
    const std::wstring said = question + L"\n\nOK: " + captions.front();
    pressed = MessageBoxW(owner, said.c_str(), L"Kerno", MB_OKCANCEL | MB_DEFBUTTON2);
    if (pressed == IDOK) pressed = kFirst;
  }
  if (pressed < kFirst) return std::nullopt;
  return static_cast<size_t>(pressed - kFirst);
}

}  // namespace kerno
