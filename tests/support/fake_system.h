// A system whose answers a test sets.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/system.h"
#include "support/installed.h"

namespace kerno::test {

// The process's system while it lives. Folders that are not set are unknown,
// and all special ones are.
class FakeSystem final : public Installed<System, ReplaceSystem> {
 public:
  std::map<std::u16string, std::u16string, std::less<>> environment;
  std::filesystem::path program = "/nowhere/bin/kerno";
  std::u16string user = u"someone";
  std::u16string computer = u"machine";
  std::filesystem::path current = "/nowhere";
  std::filesystem::path temporary;
  std::filesystem::path config;
  std::filesystem::path cache;
  std::filesystem::path system_place;  // it and what lies under it
  bool private_folders = true;         // false: MakePrivateFolder is refused
  bool own_folders = true;             // what IsOwnFolder answers

  std::optional<std::u16string> Environment(std::u16string_view name) override {
    const auto found = environment.find(name);
    if (found == environment.end()) return std::nullopt;
    return found->second;
  }
  std::filesystem::path ProgramPath() override { return program; }
  std::u16string UserName() override { return user; }
  std::u16string ComputerName() override { return computer; }
  std::filesystem::path CurrentFolder() override { return current; }
  std::filesystem::path TemporaryPath() override { return temporary; }
  std::filesystem::path ConfigFolder() override { return config; }
  std::filesystem::path CacheFolder() override { return cache; }
  std::filesystem::path SpecialFolder(SpecialFolderId, MissingFolder) override { return {}; }
  bool IsSystemPlace(const std::filesystem::path& path) override {
    return !system_place.empty() && path.native().starts_with(system_place.native());
  }
  bool IsOwnFolder(const std::filesystem::path&) override { return own_folders; }
  Status MakePrivateFolder(const std::filesystem::path& folder) override {
    if (private_folders) {
      std::error_code error;
      std::filesystem::create_directory(folder, error);
      if (!error) return Status::Ok();
    }
    return Status::Error(Failure::kAccessDenied, u"folder", u"refused");
  }
};

}  // namespace kerno::test
