#include "base/launch.h"

#include "base/dump_log.h"
#include "base/notices.h"
#include "base/text.h"
#include "platform/folder_path.h"
#include "platform/registry.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kLastFailure = 32;
constexpr std::u16string_view kDumpName = u"Launch";
constexpr std::u16string_view kAppPaths =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";

struct ResultText {
  int result;
  std::u16string_view text;
};

constexpr ResultText kResults[] = {
    {0, u"The operating system is out of memory or resources."},
    {2, u"ファイルが見つかりませんでした"},
    {3, u"The specified path was not found."},
    {5, u"The operating system denied access to the specified file."},
    {8, u"There was not enough memory to complete the operation."},
    {11, u"The .EXE file is invalid (non-Win32 .EXE or error in .EXE image)."},
    {26, u"A sharing violation occurred."},
    {27, u"The filename association is incomplete or invalid."},
    {28, u"The DDE transaction could not be completed because the request timed out."},
    {29, u"The DDE transaction failed."},
    {30,
     u"The DDE transaction could not be completed because other DDE transactions were being "
     u"processed."},
    {31, u"指定されたファイル拡張子に関連付けされたプログラムがありません"},
    {32, u"The specified dynamic-link library was not found."},
};

std::u16string Joined(const std::vector<std::u16string>& parameters) {
  std::u16string text;
  for (const std::u16string& parameter : parameters) {
    if (!text.empty()) text.push_back(u' ');
    text += parameter;
  }
  return text;
}

// Tells the user and keeps a record of the answer.
void Report(const std::u16string& message) {
  CurrentNotices().Ask(message, [message](int button) {
    std::u16string record = u"---- OK              Button1  ";
    record.append(ButtonLabel(button)).append(u"\r\n").append(message).append(u"\r\n");
    DumpText(kDumpName, record);
  });
}

bool IsFile(const fs::path& path) {
  std::error_code error;
  return !path.empty() && fs::exists(path, error) && !fs::is_directory(path, error);
}

bool IsProgram(const fs::path& path) {
  constexpr fs::perms kAny = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  return !error && fs::is_regular_file(status) && (status.permissions() & kAny) != fs::perms::none;
}

bool IsText(const RegistryValue& value) {
  return value.type == RegistryType::kString || value.type == RegistryType::kExpandableString;
}

// Paths stand there with quotes round them or without.
fs::path PathOf(const RegistryValue& value) {
  return TextPath(Unquote(value.text));
}

fs::path FromAppPaths(std::u16string_view name) {
  const std::u16string key = std::u16string(kAppPaths).append(name);
  RegistryValue value;
  const RegistryOutcome outcome = QueryRegistry(RegistryRoot::kLocalMachine, key, u"", &value);
  if (outcome == RegistryOutcome::kNoKey) return {};
  if (outcome == RegistryOutcome::kNoValue) {
    DumpText(kDumpName, u"Error RegQueryValueEx NULL");
  } else if (!IsText(value)) {
    DumpText(kDumpName, u"Error RegQueryValueEx @");
  }
  fs::path program = PathOf(value);
  if (!IsWholePath(program)) {
    RegistryValue folder;
    QueryRegistry(RegistryRoot::kLocalMachine, key, u"path", &folder);
    program = PathOf(folder) / TextPath(name);
  }
  return IsWholePath(program) && IsFile(program) ? program : fs::path();
}

// Programs that have a folder of their own lie in it or in its "bin".
fs::path SearchApplications(const fs::path& folder, const fs::path& name) {
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    for (const fs::path& file : {at->path() / name, at->path() / "bin" / name}) {
      if (IsProgram(file)) return file;
    }
  }
  return {};
}

}  // namespace

std::u16string_view ButtonLabel(int button) {
  constexpr std::u16string_view kLabels[] = {u"[OK]    \t", u"[CANCEL]\t", u"[Abort] \t",
                                             u"[Retry] \t", u"[Innore]\t", u"[Yes]   \t",
                                             u"[No]    \t"};
  const bool known = button >= 1 && button <= static_cast<int>(std::size(kLabels));
  return known ? kLabels[button - 1] : u"Bug...  \t";
}

std::u16string LaunchMessage(const LaunchRequest& request) {
  const std::u16string file = PathText(request.file);
  const std::u16string parameters = Joined(request.parameters);
  std::u16string message = u"Error(" + file + u"," + parameters + u")\n";
  for (const ResultText& known : kResults) {
    if (known.result == request.result) message = known.text;
  }
  // Classic: "Paramaters" is misspelt, as in the records that exist.
  return message + u"\nFile=" + QuoteText(file, u'"') + u"\nParamaters=" +
         QuoteText(parameters, u'"');
}

bool Launch(LaunchRequest* request) {
  Shell& shell = CurrentShell();
  request->result = shell.Execute(*request);
  if (request->result > kLastFailure || shell.StartProcess(*request)) return true;
  Report(LaunchMessage(*request));
  return false;
}

fs::path FindProgram(std::u16string_view name) {
  if (name.empty() || name.find_first_of(u"/\\") != name.npos) return {};
  if (fs::path registered = FromAppPaths(name); !registered.empty()) return registered;
  const fs::path file = TextPath(name);
  for (const fs::path& folder : CurrentShell().ProgramFolders()) {
    if (IsProgram(folder / file)) return folder / file;
  }
  for (const fs::path& folder : CurrentShell().ApplicationFolders()) {
    if (fs::path found = SearchApplications(folder, file); !found.empty()) return found;
  }
  return {};
}

}  // namespace kerno
