// What the main window needs of the rest of the program and of the system; tests bring their own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/dialog_view.h"
#include "app/job.h"
#include "base/settings_table.h"
#include "export/formats.h"
#include "outline/text_layout.h"
#include "parts/parts.h"
#include "platform/device_context.h"
#include "platform/status.h"

namespace kerno {

// The languages of the View menu, by their numbers in the settings.
enum class LanguageChoice { kSystem, kJapanese, kEnglish, kGerman };

// What persists between runs besides the text.
struct DialogMemory {
  std::u16string face;  // empty: the one that the system gives
  std::u16string height{kDialogHeight.default_value};
  bool vertical = false;
  bool use_poly_polygon = kDialogPolyPolygon.default_value;
  Color first_color = 0;
  size_t second_color = 0;  // index into the following colours
  ContourElements elements = ContourElements::kLines;
  VerticalPitch pitch = VerticalPitch::kClassic;
  AciRule aci = AciRule::kClassic;
  std::u16string output_folder;  // empty: "Kerno.tmp" in the temporary folder
  LanguageChoice language = LanguageChoice::kSystem;
  WindowMode mode = WindowMode::kClassic;
  WindowPlace window;
};

class DialogServices {
 public:
  virtual ~DialogServices() = default;

  virtual std::unique_ptr<DeviceContext> CreateMeasuringContext() = 0;

  // The entries of the face list, in the system's order.
  virtual std::vector<std::u16string> Faces() = 0;

  // Makes a font file's faces known for this run. *faces receives their names.
  virtual Status LoadFontFile(const std::filesystem::path& file,
                              std::vector<std::u16string>* faces) = 0;

  virtual DialogMemory Load() = 0;
  virtual Status Save(const DialogMemory& memory) = 0;
  virtual std::u16string LoadSavedText() = 0;
  // A failure is also reported as a message.
  virtual Status SaveText(std::u16string_view text) = 0;

  // How many windows of the program stand already, in other runs; the same answer throughout a run.
  virtual int WindowsBefore() { return 0; }

  // The default folder of the outputs, and opening a folder in the shell.
  virtual std::filesystem::path DefaultOutputFolder() = 0;
  virtual bool OpenFolder(const std::filesystem::path& folder) = 0;

  // The writers and Upload are called by a thread beside the window's. Each leaves no new file when
  // it fails.
  virtual Status WriteBytes(const std::filesystem::path& file, std::string_view bytes) = 0;
  virtual Status Write(const Format& format, const PartsA& parts, const OutputOptions& options,
                       const std::filesystem::path& file) = 0;
  virtual Status ReadParts(const std::filesystem::path& file, PartsA* parts) = 0;

  // The page of the outputs of a run, and sending them to the server.
  struct PageRequest {
    std::filesystem::path base_path;
    std::u16string text, face, height;
  };
  virtual Status BuildPage(const PageRequest& request, std::filesystem::path* page) = 0;
  // Writes the page again when there is one: another output of the run was written.
  virtual Status RefreshPage(const std::filesystem::path& base_path) = 0;
  virtual bool CanUpload() = 0;
  // One request each, until one fails; *answer receives what the server said last.
  virtual Status Upload(const std::vector<std::filesystem::path>& files,
                        std::u16string* answer) = 0;

  // The name of the locale in which the user wants texts.
  virtual std::u16string TextLocale() = 0;

  // The texts of the About box.
  virtual void AboutTexts(std::u16string* version, std::u16string* copyright) = 0;
};

}  // namespace kerno
