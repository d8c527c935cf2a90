#include "platform/stock_font.h"
#include "platform/win32/realized_font.h"

namespace kerno {

LogFont SystemLogFont() {
  LOGFONTW description{};
  GetObjectW(GetStockObject(SYSTEM_FONT), sizeof description, &description);
  return FromSystem(description);
}

}  // namespace kerno
