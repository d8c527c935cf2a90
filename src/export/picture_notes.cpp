#include "export/picture_notes.h"

#include <string>

#include "base/notices.h"
#include "base/number_text.h"
#include "base/text.h"

namespace kerno {

void TellLeftOut(const PictureNotes& notes, const VertexRule& rule,
                 const std::filesystem::path& name) {
  const auto tell = [&](size_t count, std::u16string_view what) {
    if (count == 0) return;
    std::string number;
    AppendInteger(&number, static_cast<int64_t>(count));
    CurrentNotices().Message(PathText(name) + u": " + Utf8ToUtf16Lossy(number) +
                             std::u16string(what));
  };
  tell(notes.left_out,
       rule.most == kMaxPictured
           ? u" elements were left out: their coordinates are not finite, beyond 1e100, or missing"
           : u" elements were left out: their coordinates are not finite or missing");
  tell(notes.texts_too_large, u" texts have too many points: split them into shorter ones");
  tell(notes.texts_no_size, u" texts were left out: too small or too large for a font");
}

void TellScale(double scale, const std::filesystem::path& name) {
  std::u16string text = PathText(name);
  text += scale < 1
              ? u": the drawing is too large for its picture and was scaled down: one pixel is "
              : u": the drawing is smaller than one pixel and was enlarged: one pixel is ";
  std::string number;
  AppendGeneral(&number, 1 / scale, 3);
  CurrentNotices().Message(text + Utf8ToUtf16Lossy(number) + u" units");
}

}  // namespace kerno
