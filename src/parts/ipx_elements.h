// Every element of a part as one line of the parts file, and back. Write leaves the line open; Read
// takes the fields of a line and sets the fields of the element that the line has, so that what is
// missing stays at the default.
#pragma once

#include "drawing/geometry.h"
#include "parts/elements.h"
#include "parts/ipx_lexer.h"

namespace kerno::ipx {

void Write(Writer* out, const P3& point);
void Read(Tokens* line, P3* point);

void Write(Writer* out, const TextItem& item);
void Read(Tokens* line, TextItem* item);

void Write(Writer* out, const LineItem& item);
void Read(Tokens* line, LineItem* item);

void Write(Writer* out, const CircleItem& item);
void Read(Tokens* line, CircleItem* item);

void Write(Writer* out, const FaceItem& item);
void Read(Tokens* line, FaceItem* item);

void Write(Writer* out, const EdgeItem& item);
void Read(Tokens* line, EdgeItem* item);

void Write(Writer* out, const PointSet& item);
void Read(Tokens* line, PointSet* item);

void Write(Writer* out, const TextLine& item);
void Read(Tokens* line, TextLine* item);

}  // namespace kerno::ipx
