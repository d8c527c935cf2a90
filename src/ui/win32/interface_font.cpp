#include "ui/win32/interface_font.h"

#include <string>

#include "platform/win32/wide_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

int CALLBACK Found(const LOGFONTW* /*font*/, const TEXTMETRICW* /*metrics*/, DWORD /*kind*/,
                   LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return 0;  // one is enough
}

bool IsInstalled(HDC dc, const std::wstring& face) {
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  face.copy(wanted.lfFaceName, LF_FACESIZE - 1);
  bool found = false;
  EnumFontFamiliesExW(dc, &wanted, Found, reinterpret_cast<LPARAM>(&found), 0);
  return found;
}

}  // namespace

LOGFONTW InterfaceFont(Language language, int dpi) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  LOGFONTW font = metrics.lfMessageFont;
  // 9 points, the system's own size, whatever the density that the metrics count in.
  font.lfHeight = -MulDiv(9, dpi, 72);
  font.lfWidth = 0;
  if (language != Language::kJapanese) return font;
  font.lfCharSet = SHIFTJIS_CHARSET;
  *font.lfFaceName = L'\0';  // where none of them is installed the system finds one
  const HDC dc = GetDC(nullptr);
  for (const char16_t* const name : CaptionFaces(language)) {
    const std::wstring face = ToWide(name);
    if (!IsInstalled(dc, face)) continue;
    face.copy(font.lfFaceName, LF_FACESIZE - 1);
    font.lfFaceName[face.size()] = L'\0';
    break;
  }
  ReleaseDC(nullptr, dc);
  return font;
}

}  // namespace kerno
