// What the Cut page needs of the rest of the program and of the system; tests bring their own.
#pragma once

#include <filesystem>

#include "app/cut.h"
#include "app/cut_memory.h"
#include "app/own_scratch.h"
#include "export/drawing_style.h"
#include "export/formats.h"
#include "platform/status.h"

namespace kerno {

class CutServices {
 public:
  virtual ~CutServices() = default;

  // What the last run kept. Fails where that cannot be read; nothing is kept then.
  virtual Status LoadCut(CutMemory* memory) = 0;
  virtual Status SaveCut(const CutMemory& memory) = 0;

  // The user's documents, or what comes nearest.
  virtual std::filesystem::path Documents() = 0;
  // For files of this run that other programs are given; made when it is asked for, gone with this.
  // Empty when it cannot be had.
  virtual std::filesystem::path ScratchFolder() = 0;

  // Writes the drawing, whole or not at all. Called beside the window.
  virtual Status WriteDrawing(const CutDrawing& made, const CutJob& job, const DrawingStyle& style,
                              const Format& format, const std::filesystem::path& file) = 0;

  // Opens a file or a folder by the system's shell; false when that failed.
  virtual bool OpenPath(const std::filesystem::path& path) = 0;
};

// The services as the real program has them.
class SystemCutServices final : public CutServices {
 public:
  Status LoadCut(CutMemory* memory) override;
  Status SaveCut(const CutMemory& memory) override;
  std::filesystem::path Documents() override;
  std::filesystem::path ScratchFolder() override;
  Status WriteDrawing(const CutDrawing& made, const CutJob& job, const DrawingStyle& style,
                      const Format& format, const std::filesystem::path& file) override;
  bool OpenPath(const std::filesystem::path& path) override;

 private:
  CutMemory loaded_;  // as this window read or wrote it last
  OwnScratch scratch_;
};

}  // namespace kerno
