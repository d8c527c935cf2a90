// The model of tests/data/ipx/every-kind.ipx: every element kind, every attribute, Japanese text
// and awkward numbers, none of the characters that are escaped.
#pragma once

#include "parts/parts.h"

namespace kerno::test {

inline void FillElements(PartsElement* part) {
  part->vertices.id = 11;
  const P3 points[] = {{0, 0, 0},
                       {12.5, 0.25, -3},
                       {-0.0, 1.0 / 3, 1e-15},
                       {123456789.012345678, 1e-5, 1e300},
                       {0.1, -0.5, 1e15},
                       {65536, -1.0 / 65536, 0.30000000000000004}};
  for (const P3& point : points) part->vertices.Append(point);
  part->texts = {1, {{0, u"日本語の文字"}, {1, u"plain text"}, {-1, u""}}};
  part->lines = {2, {{0, 1}, {1, 5}}};
  part->circles = {3, {{0, 2.5, 4, 1, 2}, {1, 1e-7, -1, -1, -1}}};
  part->faces[0] = {4, {{9, {0, 1, 2}, {2, 1, 0}, 5}}};
  part->faces[1] = {5, {{0, {3, 4}, {}, -7}}};
  part->faces[2] = {6, {{-1, {}, {}, 0}}};
  part->edges = {7, {{}, {0, 1, 45, {2, 3, 1, -2147483647 - 1}}}};
  part->point_sets = {8, {{1, 2, 3, {5, 4}}, {}}};
  part->more_texts = {9, {{5, u"ｶﾀｶﾅ ～ ①"}}};
  part->horizontal_texts.id = 10;
  part->horizontal_texts.items = {{2,
                                   u"横書き",
                                   10.5,
                                   0,
                                   90,
                                   -12.25,
                                   u"ＭＳ ゴシック",
                                   128,
                                   {{0, 0}, {1.5, -0.0}, {1e-15, 0.5}}}};
  part->vertical_texts.id = -10;
  part->vertical_texts.items = {{4, u"縦書き", 1, 2, 3, 4, u"@ＭＳ 明朝", -1, {}}, {}};
  part->more_point_sets = {12, {{0, 0, 0, {0}}}};
}

inline PartsA EveryKind() {
  PartsA container;
  container.id = 7;
  container.parts.resize(2);
  PartsElement& part = container.parts[0];
  part.header_first = 3;
  part.header_second = -4;
  part.name = u"外形線 A'1";
  part.second_text = u"注記";
  part.pen = {255, 0.25, 1, 1.5, 12};
  part.brush = {65280, 2, 5};
  part.extra = {-0.0, 9, 1e-15};
  part.placement = {{1.5, -2.25, 1e22}, 2};
  part.codes = {1, -1, 2147483647};
  part.keeps_order = 1;
  part.trailing = -6;
  FillElements(&part);
  return container;
}

}  // namespace kerno::test
