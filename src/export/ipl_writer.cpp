#include "export/ipl_writer.h"

#include <string>
#include <string_view>
#include <vector>

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/number_text.h"
#include "base/text.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

constexpr int kDigits = 15;
constexpr size_t kWriteBlock = 1 << 16;

// The vertices that count, gathered for their extents.
class Gathered {
 public:
  void Add(const Parts& part) {
    for (const P3& p : part.vertices) {
      if (kPicturedXYZ.Takes(p)) {
        if (empty_) box_ = {p, p};
        Include(&box_, p);
        empty_ = false;
      } else {
        passed_over_ = true;
      }
    }
    if (part.child) Add(*part.child);
  }

  const Extent3& box() const { return box_; }
  bool passed_over() const { return passed_over_; }

 private:
  Extent3 box_;
  bool empty_ = true;
  bool passed_over_ = false;
};

void AppendRecord(std::string* out, std::string_view kind, size_t number, std::u16string_view layer,
                  const Extent3& box) {
  out->append(kind).append("\t");
  AppendInteger(out, static_cast<int64_t>(number));
  out->append("\t").append(Utf16ToUtf8(QuoteText(EscapeText(layer), u'"')));
  for (const double value : {box.min.x, box.min.y, box.min.z, box.max.x, box.max.y, box.max.z,
                             box.max.x - box.min.x, box.max.y - box.min.y, box.max.z - box.min.z}) {
    out->push_back('\t');
    AppendNumberText(out, value, kDigits);
  }
  out->append("\r\n");
}

}  // namespace

Status WriteIpl(const PartsA& model, const std::filesystem::path& name, FileReplacement* out) {
  std::string text =
      ";IPL\tnumber\tlayer\tmin x\tmin y\tmin z\tmax x\tmax y\tmax z\twidth\theight\tdepth\r\n";
  Gathered whole;
  Status status;
  size_t number = 0;
  for (const PartsElement& part : PartsView(model)) {
    Gathered gathered;
    gathered.Add(part);
    whole.Add(part);
    AppendRecord(&text, "part", ++number, part.name, gathered.box());
    if (text.size() < kWriteBlock) continue;
    if (status.ok()) status = out->Write(text);
    text.clear();
  }
  AppendRecord(&text, "whole", number, u"", whole.box());
  if (status.ok()) status = out->Write(text);
  if (status.ok() && whole.passed_over()) {
    CurrentNotices().Message(PathText(name) +
                             u": vertices that are not finite or beyond 1e100 do not count");
  }
  return status;
}

Status ExportIpl(const PartsA& model, const std::filesystem::path& file) {
  return ReplaceWhenFree(file, [&](FileReplacement* out) { return WriteIpl(model, file, out); });
}

}  // namespace kerno
