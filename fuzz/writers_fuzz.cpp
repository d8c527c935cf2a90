// Parts files to every writer: what each writes is a file of its format. The last bytes of the
// input are the writers' options.
#include <algorithm>
#include <string>

#include "base/text.h"
#include "export/formats.h"
#include "export/ipl_writer.h"
#include "export/x3d_writer.h"
#include "own_fonts.h"
#include "parts/ipx.h"
#include "readers.h"
#include "support/memory_file.h"

namespace kerno {
namespace {

using fuzz::Require;
using test::MemoryFile;

constexpr int kLargestPicture = 64;  // pixels of a side: larger ones only take time

template <class Write, class Check>
void WriteAndCheck(const Write& write, const Check& check) {
  MemoryFile file;
  Require(write(&file).ok());
  check(file.bytes);
}

// Parts files carry texts that are escaped, and numbers of 15 digits: the second writing is as the
// first.
void CheckIpx(const PartsA& model) {
  std::string bytes[2];
  PartsA read = model;
  for (std::string& written : bytes) {
    const Status status = EncodeIpx(read, u"fuzz", u"fuzz", [&](std::string_view piece) {
      written += piece;
      return Status::Ok();
    });
    Require(status.ok() && DecodeIpx(written, &read).ok());
  }
  Require(read.parts.size() == model.parts.size());
}

void WriteAll(const PartsA& model, uint8_t choice, uint8_t width, uint8_t height) {
  const std::filesystem::path name = "fuzz";
  DxfOptions dxf;
  dxf.layers = (choice & 1) != 0 ? DxfLayerRule::kColour : DxfLayerRule::kName;
  dxf.aci = (choice & 2) != 0 ? AciRule::kNearest : AciRule::kClassic;
  WriteAndCheck([&](auto* file) { return WriteDxf(model, dxf, name, file); }, fuzz::CheckDxf);
  WriteAndCheck(
      [&](auto* file) { return WriteSvg(model, {.millimetres = (choice & 4) != 0}, name, file); },
      fuzz::CheckXml);
  WriteAndCheck([&](auto* file) { return WriteX3d(model, name, file, choice); }, fuzz::CheckXml);
  WriteAndCheck([&](auto* file) { return WriteEmf(model, {}, name, file); }, fuzz::CheckEmf);
  WriteAndCheck([&](auto* file) { return WriteIpl(model, name, file); }, fuzz::CheckTable);
  BmpOptions bmp;
  const BmpLayout own = LayOutBmp(model.Extent(), bmp);
  const bool small = std::max(own.width, own.height) <= kLargestPicture;
  if ((choice & 8) != 0 || !small)
    bmp = {.width = 1 + width % kLargestPicture, .height = 1 + height % kLargestPicture};
  WriteAndCheck([&](auto* file) { return WriteBmp(model, bmp, name, file); }, fuzz::CheckBmp);
  CheckIpx(model);
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  kerno::fuzz::UseOwnFonts();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kerno::PartsA model;
  const auto option = [&](size_t i) { return i <= size ? data[size - i] : uint8_t{0}; };
  kerno::fuzz::Require(kerno::DecodeIpx({reinterpret_cast<const char*>(data), size}, &model).ok());
  kerno::WriteAll(model, option(1), option(2), option(3));
  return 0;
}
