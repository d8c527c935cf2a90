// ProfileStore: settings as (section, key) pairs, in an INI file or in the current user's registry.
//
// No read fails: what is missing gives the default. Names are compared without case. Writes answer
// whether and why not; a value with a line break or a NUL is refused.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/profile_values.h"
#include "base/settings.h"
#include "platform/status.h"

namespace kerno {

enum class ShowState { kNormal, kMinimised, kMaximised, kRestore };

// A main window's place, as the window system keeps it.
struct WindowPlacement {
  ShowState show = ShowState::kNormal;
  bool restore_to_maximised = false;  // flag of a minimised window
  ProfileRect normal;                 // its place when it is neither minimised nor maximised
};

enum class DialogState { kNormal, kMinimised };

// The general store, which may use the registry.
class ProfileStore : public SettingsReader {
 public:
  // Chooses where the settings live: the registry when the application has a registry key, else an
  // INI file, whose folder is created and whose text becomes UTF-16. A store without a name calls
  // itself "Env__" and a serial number, which it notes in the dump log.
  explicit ProfileStore(std::u16string_view name);
  ProfileStore(const ProfileStore&) = delete;
  ProfileStore& operator=(const ProfileStore&) = delete;

  int32_t GetInt(std::u16string_view section, std::u16string_view key, int32_t default_value) final;
  // At most 10,000 units.
  std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                        std::u16string_view default_value) final;

  // The value that is stored, nothing for one that is missing; a number that is empty counts as
  // missing. In the log of reads a missing one is empty.
  std::optional<int32_t> FindInt(std::u16string_view section, std::u16string_view key);
  std::optional<std::u16string> FindStr(std::u16string_view section, std::u16string_view key);

  Status WriteInt(std::u16string_view section, std::u16string_view key, int32_t value);
  Status WriteStr(std::u16string_view section, std::u16string_view key, std::u16string_view value);
  Status Remove(std::u16string_view section, std::u16string_view key);

  // Typed values, kept as text under the key with a suffix (base/profile_values.h).
  int64_t GetInt64(std::u16string_view section, std::u16string_view key, int64_t default_value);
  double GetDouble(std::u16string_view section, std::u16string_view key, double default_value);
  ProfileRect GetRect(std::u16string_view section, std::u16string_view key,
                      const ProfileRect& default_value);
  ProfilePoint GetPoint(std::u16string_view section, std::u16string_view key,
                        const ProfilePoint& default_value);
  ProfilePoint3 GetPoint3(std::u16string_view section, std::u16string_view key,
                          const ProfilePoint3& default_value);
  Status WriteInt64(std::u16string_view section, std::u16string_view key, int64_t value);
  Status WriteDouble(std::u16string_view section, std::u16string_view key, double value);
  Status WriteRect(std::u16string_view section, std::u16string_view key, const ProfileRect& value,
                   NumberForm form = NumberForm::kPlain);
  Status WritePoint(std::u16string_view section, std::u16string_view key, const ProfilePoint& value,
                    NumberForm form = NumberForm::kPlain);
  Status WritePoint3(std::u16string_view section, std::u16string_view key,
                     const ProfilePoint3& value, NumberForm form = NumberForm::kPlain);

  // The number under "Counter"; one that is absent is 0, and is set up as 0.
  int32_t GetCounter(std::u16string_view section);
  Status WriteCounter(std::u16string_view section, int32_t value);

  // The folder under "FilePath" with a separator at its end; "./" (".\" on the desktop system) when
  // there is none.
  std::u16string GetFilePath(std::u16string_view section);

  // The main window's place. A minimised window's last normal place stays as it was stored.
  // `work_area_left` and `work_area_top` are those of the desktop's work area.
  Status SavePosition(const WindowPlacement& placement);
  WindowPlacement RestorePosition(int32_t work_area_left, int32_t work_area_top);

  // A dialog's rectangle under its name; a minimised dialog keeps the one stored last.
  Status SaveDialogRect(std::u16string_view dialog, const ProfileRect& rect, DialogState state);
  ProfileRect LoadDialogRect(std::u16string_view dialog, const ProfileRect& default_value);

  // Whether every read is to reach the file or the log.
  bool reads_are_watched() const { return logs_reads_ || !use_cache_; }

  // The INI file's full path, or the profile's name in the registry.
  const std::u16string& profile_path() const { return profile_path_; }
  bool in_registry() const { return in_registry_; }

  // The last registry failure as a message; empty when there was none.
  const std::u16string& registry_error() const { return registry_error_; }

  // The first failure of reading the file, or of looking where it is, so far. What was asked for
  // was answered as missing then, and the user was told.
  const Status& reading() const { return reading_; }

 protected:
  ProfileStore() = default;

  // Prepares the INI file at `path`, which may be empty: then nothing is stored. A file of the INI
  // base folder is not written while an earlier place could not be looked at.
  void OpenFile(const std::filesystem::path& path);
  // What the user is told once when something was written: where, when that is not where it
  // belongs.
  void TellOfWrites(std::u16string message) { told_of_writes_ = std::move(message); }
  void ReadSwitches(bool named);

  std::filesystem::path file() const;
  bool wrote() const { return wrote_; }

  // Writes several lines at once, past the cache and the switches.
  Status WriteLines(const std::vector<ProfileEdit>& edits);

 private:
  // What was read or written for a (section, key), in the forms that it was read in.
  struct Cached {
    std::optional<int32_t> number;
    std::optional<std::u16string> text;
  };
  struct Name {
    std::u16string section;
    std::u16string key;
  };
  struct NameView {
    std::u16string_view section;
    std::u16string_view key;
  };
  struct NameHash {
    using is_transparent = void;
    size_t operator()(const NameView& name) const;
    size_t operator()(const Name& name) const { return (*this)(NameView{name.section, name.key}); }
  };
  struct NameEqual {
    using is_transparent = void;
    static NameView View(const Name& name) { return {name.section, name.key}; }
    static NameView View(const NameView& name) { return name; }
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const {
      return Equal(View(a), View(b));
    }
    static bool Equal(const NameView& a, const NameView& b);
  };

  // Out of the cache or the backing store. The log tells `if_missing` as the answer when nothing is
  // stored.
  std::optional<int32_t> LookUpInt(std::u16string_view section, std::u16string_view key,
                                   std::u16string_view if_missing);
  std::optional<std::u16string> LookUpStr(std::u16string_view section, std::u16string_view key,
                                          std::u16string_view if_missing);
  std::optional<int32_t> ReadInt(std::u16string_view section, std::u16string_view key);
  std::optional<std::u16string> ReadStr(std::u16string_view section, std::u16string_view key);
  void NoteReading(const Status& read);
  std::optional<std::u16string> ReadFromFile(std::u16string_view section, std::u16string_view key);
  Cached& CacheEntry(std::u16string_view section, std::u16string_view key);
  const Cached* FindCached(std::u16string_view section, std::u16string_view key) const;
  std::u16string RegistryKey(std::u16string_view section) const;
  // Keeps the message of a failure of the registry, and tells it of the setting.
  Status FromRegistry(const Status& status, std::u16string_view section, std::u16string_view key);
  Status CheckNames(std::u16string_view section, std::u16string_view key,
                    std::u16string_view value) const;
  Status WriteLine(std::u16string_view section, std::u16string_view key,
                   std::optional<std::u16string> value);
  void Log(std::u16string_view operation, std::u16string_view section, std::u16string_view key,
           std::u16string_view value) const;
  std::u16string GetTyped(std::u16string_view section, std::u16string_view key,
                          std::u16string_view suffix, std::u16string_view default_text);
  Status WriteTyped(std::u16string_view section, std::u16string_view key,
                    std::u16string_view suffix, std::u16string_view text);

  std::u16string profile_path_;
  std::filesystem::path file_;
  Status not_written_;  // why nothing may be written
  Status reading_;
  std::u16string told_of_writes_;
  bool in_registry_ = false;
  bool use_cache_ = true;
  bool wrote_ = false;
  bool logs_writes_ = false;
  bool logs_reads_ = false;
  std::unordered_map<Name, Cached, NameHash, NameEqual> cache_;
  std::u16string registry_error_;
};

// The INI-only store: always a file, in a folder that can be written, and stamped when it wrote.
class IniStore final : public ProfileStore {
 public:
  // When the file is missing and its folder cannot be written, the file of the same name in the
  // user's own temporary folder takes its place, and the user is told.
  // A file that stands there is read, whether its folder can be written or not; writes then fail.
  explicit IniStore(std::u16string_view name);

  // Stamps the file with the time, here and in the registry, when this store wrote.
  ~IniStore() override;

  // Whether something else than a store changed the file since the last stamp.
  bool changed_outside() const { return changed_outside_; }

  // Whether the folder could not be written, so that the file is in the temporary folder.
  bool displaced() const { return displaced_; }

 private:
  // Where the file is, for which `wanted` is the place.
  std::filesystem::path FindFile(const std::filesystem::path& wanted);
  void CheckStamp();
  std::u16string StampName() const;

  bool changed_outside_ = false;
  bool displaced_ = false;
};

}  // namespace kerno
