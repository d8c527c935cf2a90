// Every element array as a block of the parts file, and back: a header line of count, identifier
// and tag, then a line for each element. Tags are not looked at when a block is read. A count
// beyond the lines that are left is cut to them, a negative one is 0.
#pragma once

#include "parts/elements.h"
#include "parts/ipx_lexer.h"
#include "parts/vertex_pool.h"

namespace kerno::ipx {

void Write(Writer* out, const P3A& array);
void Read(Lines* lines, P3A* array);

void Write(Writer* out, const TextA& array);
void Read(Lines* lines, TextA* array);

void Write(Writer* out, const LineA& array);
void Read(Lines* lines, LineA* array);

void Write(Writer* out, const CircleA& array);
void Read(Lines* lines, CircleA* array);

void Write(Writer* out, const FaceA& array);
void Read(Lines* lines, FaceA* array);

void Write(Writer* out, const EdgeA& array);
void Read(Lines* lines, EdgeA* array);

void Write(Writer* out, const PointA& array);
void Read(Lines* lines, PointA* array);

void Write(Writer* out, const TextHA& array);
void Read(Lines* lines, TextHA* array);

void Write(Writer* out, const TextVA& array);
void Read(Lines* lines, TextVA* array);

}  // namespace kerno::ipx
