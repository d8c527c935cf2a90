#include "platform/stock_font.h"

namespace kerno {

// The desktop's own system font is bold, 16 units high, of the swiss family.
LogFont SystemLogFont() {
  LogFont font;
  font.height = 16;
  font.width = 7;
  font.weight = 700;
  font.pitch_and_family = 0x22;  // VARIABLE_PITCH | FF_SWISS
  font.face_name = u"System";
  return font;
}

}  // namespace kerno
