// How the owner-drawn controls look.
#pragma once

#include "app/dialog_view.h"
#include "platform/drawing.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// A face's name, in the list in that face where it has the letters.
void DrawFaceItem(const DRAWITEMSTRUCT& item);

// A swatch of the colour that is the item's data, and its name.
void DrawColorItem(const DRAWITEMSTRUCT& item);

// Sets the text colour of the status line; the brush of its ground.
HBRUSH StatusBrush(HDC dc, StatusKind kind);

// The picture, pixel by pixel.
void Blit(HDC dc, int left, int top, const BitmapSurface& picture);

}  // namespace kerno
