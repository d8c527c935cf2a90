/* Kerno as a library: a text as outlines of true size for machines that cut, as "kerno cut" makes
 * them.
 *
 *   KernoSign sign = kerno_new();
 *   kerno_set_text(sign, "Open");
 *   kerno_set(sign, "cap-height", "40mm");
 *   if (kerno_write(sign, "open.dxf", NULL) != KERNO_OK) puts(kerno_message());
 *   kerno_free(sign);
 *
 * Units and directions: coordinates are in the sign's unit (millimetres, or inches where the option
 * "unit" says "in"), x to the right, y up. Angles are counter-clockwise.
 *
 * Texts are UTF-8 that ends with a NUL. Names of files are bytes as the system has them, on Windows
 * UTF-8.
 *
 * Failure: a function that answers int answers KERNO_OK or another KernoResult; kerno_message()
 * then tells in words what is wrong, and why. What such a function was to fill is as it was. A sign
 * that was freed, a number that never was a sign, and NULL where a pointer is wanted are such
 * failures, too. Kerno prints nothing (Fontconfig may, of configurations that it cannot read), and
 * no exception comes out. Without memory, also where the system has none for a file, a call
 * fails with KERNO_NO_MEMORY; a C library that has none for the variables of a thread ends the
 * process.
 *
 * Threads: every function may be called from every thread. Calls for different signs run at the
 * same time; calls for one sign wait for each other. A call may start threads of its own, which end
 * before it returns. After fork() the child may use its signs if no other thread was in a call
 * then.
 */
#ifndef KERNO_H
#define KERNO_H

#include <stddef.h>
#include <stdint.h>

#ifdef _WIN32
#define KERNO_API /* kerno.dll lists what it shows, and its import library the same */
#else
#define KERNO_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A sign: a text with its options, and the drawing that is made of them. A number that means
 * something in this process only; none is given out twice, and 0 is none. */
typedef uint64_t KernoSign;

/* The numbers are the exit statuses of the command. */
typedef enum KernoResult {
  KERNO_OK = 0,
  KERNO_FAILED = 1,   /* something could not be made, read or written */
  KERNO_BAD_CALL = 2, /* wrong options or arguments, or no such sign */
  KERNO_NO_FACE = 3,  /* the face is not installed, or with "strict" a character has no glyph */
  KERNO_NO_MEMORY = 4 /* there is not enough memory */
} KernoResult;

typedef enum KernoUnit { KERNO_MILLIMETRE = 0, KERNO_INCH = 1 } KernoUnit;

typedef enum KernoKind {
  KERNO_LINE = 0, /* straight */
  KERNO_ARC = 1,  /* along a circle */
  KERNO_CUBIC = 2 /* a Bezier curve of third degree */
} KernoKind;

typedef struct KernoPoint {
  double x, y;
} KernoPoint;

/* What a drawing consists of. */
typedef struct KernoFacts {
  uint64_t paths;                  /* open and closed ones */
  uint64_t closed;                 /* paths */
  uint64_t lines, arcs, curves;    /* segments of all paths */
  uint64_t layers;                 /* see kerno_layer */
  uint64_t warnings;               /* see kerno_warning */
  double length;                   /* of all paths together */
  double left, bottom, right, top; /* the box of all paths; zeros without any */
  int32_t unit;                    /* a KernoUnit */
  int32_t reserved;                /* 0 */
} KernoFacts;

typedef struct KernoPath {
  uint64_t segments;
  int32_t closed; /* 1: the last segment ends where the first one begins; otherwise 0 */
  int32_t
      depth; /* of how many other contours it lies inside: even of outer ones, odd of counters */
  int32_t layer;  /* which of the layers, counted from 0 */
  int32_t colour; /* AutoCAD colour index of that layer, 1 to 255 */
} KernoPath;

/* A piece of a path. What does not belong to its kind is 0. */
typedef struct KernoSegment {
  int32_t kind; /* a KernoKind */
  int32_t reserved;
  KernoPoint start, end;
  KernoPoint control1, control2; /* of a cubic */
  KernoPoint centre;             /* of an arc */
  double bulge; /* of an arc: the tangent of a quarter of its angle, above 0 counter-clockwise */
} KernoSegment;

/* "1.0.0" */
KERNO_API const char* kerno_version(void);

/* What went wrong in the last call of this thread that failed, as "what: why"; empty where none
 * has. It stands until a call of this thread fails again. */
KERNO_API const char* kerno_message(void);

/* A sign without a text, every option at its default; 0 when there is no memory. */
KERNO_API KernoSign kerno_new(void);

/* Frees a sign; 0 is passed over. A call for it that another thread is in ends well. */
KERNO_API int kerno_free(KernoSign sign);

/* The text, which is copied; lines end by LF, CR LF or CR. */
KERNO_API int kerno_set_text(KernoSign sign, const char* text);

/* Gives an option of "kerno cut" a value: "cap-height" and "40mm", "fit" and "120x40mm", "face" and
 * "DejaVu Sans"; the hyphens before the name may stand, too. Flags ("vertical", "stretch",
 * "mirror", "strict") are "on" or "off". "fallback" takes one more family at each call. Fails for a
 * name that no option has, and for a flag that is neither; other values are looked at when the
 * drawing is made. */
KERNO_API int kerno_set(KernoSign sign, const char* option, const char* value);

/* The option has its default again. */
KERNO_API int kerno_unset(KernoSign sign, const char* option);

/* Makes the drawing now. The functions below do so by themselves where the text or an option has
 * changed, and then fail as this one does: for values that are wrong or do not go together, a face
 * that is not there, a text without outlines that was to have a size. */
KERNO_API int kerno_make(KernoSign sign);

KERNO_API int kerno_facts(KernoSign sign, KernoFacts* facts);

/* A path by its number, counted from 0 in the order in which files have them: the one in which they
 * are cut. Fails for a number that is too large. */
KERNO_API int kerno_path(KernoSign sign, uint64_t path, KernoPath* about);

/* The segments of a path, each beginning where the one before ends: *count becomes their number,
 * and the first `room` of them are copied to `segments`, which may be NULL where room is 0. */
KERNO_API int kerno_segments(KernoSign sign, uint64_t path, KernoSegment* segments, size_t room,
                             size_t* count);

/* The corners of a path as straight lines that stray no farther than `tolerance` from it (in the
 * sign's unit; 0: as far as its option "tolerance" says). Those of a closed path do not repeat the
 * first one. Given as kerno_segments gives segments. */
KERNO_API int kerno_points(KernoSign sign, uint64_t path, double tolerance, KernoPoint* points,
                           size_t room, size_t* count);

/* The name of a layer, and what the user should know of the drawing and of the file that was
 * written last ("no glyph in DejaVu Sans: ..."), each by a number from 0. NULL, with a message, for
 * a number that is too large. The text stands until this thread calls the same function again. */
KERNO_API const char* kerno_layer(KernoSign sign, uint64_t layer);
KERNO_API const char* kerno_warning(KernoSign sign, uint64_t warning);

/* Writes the drawing to a file, whole or not at all, with the bytes of "kerno cut -o". The format
 * is that of the name's extension, or the one named: "dxf", "svg" and so on; NULL or "": by
 * extension. A file that another program holds is waited for, up to ten seconds. */
KERNO_API int kerno_write(KernoSign sign, const char* file, const char* format);

/* Lists, one name a line, each line ended by LF: the families that are installed, the fonts of
 * single strokes (for the option "stroke-font"), the formats, the options. NULL, with a message,
 * when there is no memory. The text stands until this thread calls the same function again. */
KERNO_API const char* kerno_faces(void);
KERNO_API const char* kerno_stroke_fonts(void);
KERNO_API const char* kerno_formats(void);
KERNO_API const char* kerno_options(void);

#ifdef __cplusplus
}
#endif

#endif /* KERNO_H */
