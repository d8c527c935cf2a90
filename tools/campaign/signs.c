/* The library in the campaign: makes a sign, tells all of it, and writes its files.
 *
 * usage: kerno_signs TEXT [OPTION=VALUE]... [FILE]...     a sign, and its files
 *        kerno_signs                                       what there is to choose from
 *
 * The exit status is the KernoResult. What failed is done once more from the start in the same
 * process: "again: done" says that it then worked, so that a fault that has passed leaves nothing
 * broken. */
#include <kerno.h>
#include <stdio.h>
#include <string.h>

enum { kRoom = 4096 };

static int told(int result) {
  if (result != KERNO_OK) fprintf(stderr, "kerno: %s\n", kerno_message());
  return result;
}

/* NULL comes with a message, but not with a number. */
static int told_text(const char* what, const char* text) {
  if (!text)
    return told(strncmp(kerno_message(), "memory", 6) == 0 ? KERNO_NO_MEMORY : KERNO_FAILED);
  printf("%s %s\n", what, text);
  return KERNO_OK;
}

static int tell_path(KernoSign sign, uint64_t path) {
  static KernoSegment segments[kRoom];
  static KernoPoint points[kRoom];
  KernoPath about;
  size_t count = 0, corners = 0;
  int result = kerno_path(sign, path, &about);
  if (!result) result = kerno_segments(sign, path, segments, kRoom, &count);
  if (!result) result = kerno_points(sign, path, 0.1, points, kRoom, &corners);
  if (result) return told(result);
  printf("path of %zu segments and %zu corners, depth %d\n", count, corners, (int)about.depth);
  for (size_t i = 0; i < corners && i < kRoom; ++i) printf("%.9g %.9g\n", points[i].x, points[i].y);
  return KERNO_OK;
}

static int tell_sign(KernoSign sign) {
  KernoFacts facts;
  int result = told(kerno_facts(sign, &facts));
  for (uint64_t i = 0; !result && i < facts.paths; ++i) result = tell_path(sign, i);
  for (uint64_t i = 0; !result && i < facts.layers; ++i) {
    result = told_text("layer", kerno_layer(sign, i));
  }
  for (uint64_t i = 0; !result && i < facts.warnings; ++i) {
    result = told_text("warning", kerno_warning(sign, i));
  }
  return result;
}

static int set_option(KernoSign sign, const char* word) {
  char option[64];
  const size_t length = strcspn(word, "=");
  snprintf(option, sizeof option, "%.*s", (int)length, word);
  return told(kerno_set(sign, option, word + length + 1));
}

static int make_sign(KernoSign sign, char** words) {
  int result = told(kerno_set_text(sign, *words++));
  for (; !result && *words && strchr(*words, '='); ++words) result = set_option(sign, *words);
  if (!result) result = tell_sign(sign);
  for (; !result && *words; ++words) result = told(kerno_write(sign, *words, NULL));
  return result;
}

static int make(char** words) {
  const KernoSign sign = kerno_new();
  if (!sign) return told(KERNO_NO_MEMORY);
  const int result = make_sign(sign, words);
  const int freed = told(kerno_free(sign));
  return result ? result : freed;
}

static int list(char** words) {
  (void)words;
  int result = told_text("faces", kerno_faces());
  if (!result) result = told_text("fonts of strokes", kerno_stroke_fonts());
  if (!result) result = told_text("formats", kerno_formats());
  return result ? result : told_text("options", kerno_options());
}

int main(int count, char** words) {
  int (*const work)(char**) = count > 1 ? make : list;
  const int result = work(words + 1);
  const int again = result ? work(words + 1) : KERNO_OK;
  if (fflush(stdout)) {
    fprintf(stderr, "kerno: standard output: cannot be written\n");
    return KERNO_FAILED;
  }
  if (result && !again) fprintf(stderr, "again: done\n");
  return again ? again : result;
}
