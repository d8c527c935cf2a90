// The main window's services as the real program has them.
#pragma once

#include <memory>
#include <optional>

#include "app/dialog_services.h"
#include "base/folders.h"
#include "parts/ipx_cache.h"
#include "platform/held_file.h"

namespace kerno {

class SystemServices : public DialogServices {
 public:
  SystemServices();

  std::unique_ptr<DeviceContext> CreateMeasuringContext() override;
  std::vector<std::u16string> Faces() override;
  Status LoadFontFile(const std::filesystem::path& file,
                      std::vector<std::u16string>* faces) override;
  DialogMemory Load() override;
  Status Save(const DialogMemory& memory) override;
  std::u16string LoadSavedText() override;
  Status SaveText(std::u16string_view text) override;
  int WindowsBefore() override;
  std::filesystem::path DefaultOutputFolder() override;
  bool OpenFolder(const std::filesystem::path& folder) override;
  Status WriteBytes(const std::filesystem::path& file, std::string_view bytes) override;
  Status Write(const Format& format, const PartsA& parts, const OutputOptions& options,
               const std::filesystem::path& file) override;
  Status ReadParts(const std::filesystem::path& file, PartsA* parts) override;
  Status BuildPage(const PageRequest& request, std::filesystem::path* page) override;
  Status RefreshPage(const std::filesystem::path& base_path) override;
  bool CanUpload() override;
  Status Upload(const std::vector<std::filesystem::path>& files, std::u16string* answer) override;
  std::u16string TextLocale() override;
  void AboutTexts(std::u16string* version, std::u16string* copyright) override;

 private:
  IpxCache cache_;
  DialogMemory loaded_;  // as the settings had it
  std::unique_ptr<HeldFile> window_mark_;
  std::optional<int> windows_before_;
};

}  // namespace kerno
