/* The ABI of libkerno.so.1 as programs were built with it: this compiles only while kerno.h still
 * has these types. What is here is never changed, only added to; docs/library.md tells why. */
#include "kerno.h"

static const char* (*const version)(void) = kerno_version;
static const char* (*const message)(void) = kerno_message;
static uint64_t (*const make_new)(void) = kerno_new;
static int (*const free_sign)(uint64_t) = kerno_free;
static int (*const set_text)(uint64_t, const char*) = kerno_set_text;
static int (*const set)(uint64_t, const char*, const char*) = kerno_set;
static int (*const unset)(uint64_t, const char*) = kerno_unset;
static int (*const make)(uint64_t) = kerno_make;
static int (*const facts)(uint64_t, KernoFacts*) = kerno_facts;
static int (*const path)(uint64_t, uint64_t, KernoPath*) = kerno_path;
static int (*const segments)(uint64_t, uint64_t, KernoSegment*, size_t, size_t*) = kerno_segments;
static int (*const points)(uint64_t, uint64_t, double, KernoPoint*, size_t, size_t*) = kerno_points;
static const char* (*const layer)(uint64_t, uint64_t) = kerno_layer;
static const char* (*const warning)(uint64_t, uint64_t) = kerno_warning;
static int (*const write_file)(uint64_t, const char*, const char*) = kerno_write;
static const char* (*const lists[])(void) = {kerno_faces, kerno_stroke_fonts, kerno_formats,
                                             kerno_options};

#define AT(type, field, place, of)                                                          \
  _Static_assert(                                                                           \
      offsetof(type, field) == (place) && _Generic(((type*)0)->field, of : 1, default : 0), \
      #type "." #field)
#define SIZE(type, bytes) _Static_assert(sizeof(type) == (bytes), #type)
#define IS(name, value) _Static_assert((name) == (value), #name)

IS(KERNO_OK, 0);
IS(KERNO_FAILED, 1);
IS(KERNO_BAD_CALL, 2);
IS(KERNO_NO_FACE, 3);
IS(KERNO_NO_MEMORY, 4);
IS(KERNO_MILLIMETRE, 0);
IS(KERNO_INCH, 1);
IS(KERNO_LINE, 0);
IS(KERNO_ARC, 1);
IS(KERNO_CUBIC, 2);

SIZE(KernoSign, 8);
SIZE(KernoPoint, 16);
AT(KernoPoint, y, 8, double);

SIZE(KernoFacts, 104);
AT(KernoFacts, paths, 0, uint64_t);
AT(KernoFacts, closed, 8, uint64_t);
AT(KernoFacts, lines, 16, uint64_t);
AT(KernoFacts, arcs, 24, uint64_t);
AT(KernoFacts, curves, 32, uint64_t);
AT(KernoFacts, layers, 40, uint64_t);
AT(KernoFacts, warnings, 48, uint64_t);
AT(KernoFacts, length, 56, double);
AT(KernoFacts, left, 64, double);
AT(KernoFacts, bottom, 72, double);
AT(KernoFacts, right, 80, double);
AT(KernoFacts, top, 88, double);
AT(KernoFacts, unit, 96, int32_t);

SIZE(KernoPath, 24);
AT(KernoPath, segments, 0, uint64_t);
AT(KernoPath, closed, 8, int32_t);
AT(KernoPath, depth, 12, int32_t);
AT(KernoPath, layer, 16, int32_t);
AT(KernoPath, colour, 20, int32_t);

SIZE(KernoSegment, 96);
AT(KernoSegment, kind, 0, int32_t);
AT(KernoSegment, start, 8, KernoPoint);
AT(KernoSegment, end, 24, KernoPoint);
AT(KernoSegment, control1, 40, KernoPoint);
AT(KernoSegment, control2, 56, KernoPoint);
AT(KernoSegment, centre, 72, KernoPoint);
AT(KernoSegment, bulge, 88, double);

int main(void) {
  return version && message && make_new && free_sign && set_text && set && unset && make && facts &&
                 path && segments && points && layer && warning && write_file && lists[0] &&
                 lists[1] && lists[2] && lists[3]
             ? 0
             : 1;
}
