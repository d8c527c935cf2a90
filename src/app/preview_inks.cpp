#include "app/preview_inks.h"

#include "app/color_choices.h"

namespace kerno {
namespace {

constexpr Color kBlack = RgbColor(0, 0, 0), kWhite = RgbColor(255, 255, 255);

Color Mixed(Color from, Color to, int sixteenths) {
  const auto mix = [&](int a, int b) { return a + (b - a) * sixteenths / 16; };
  return RgbColor(mix(Red(from), Red(to)), mix(Green(from), Green(to)), mix(Blue(from), Blue(to)));
}

bool IsDark(Color paper) {
  return Contrasts(kWhite, paper) && !Contrasts(kBlack, paper);
}

}  // namespace

PreviewInks InksOn(Color paper) {
  PreviewInks inks;
  inks.paper = paper;
  const bool dark = IsDark(paper);
  const Color far = dark ? kWhite : kBlack;
  inks.start = dark ? RgbColor(90, 220, 120) : RgbColor(0, 130, 50);
  inks.corner = dark ? RgbColor(120, 180, 255) : RgbColor(0, 80, 200);
  inks.node = dark ? RgbColor(255, 190, 90) : RgbColor(190, 90, 0);
  inks.control = dark ? RgbColor(220, 150, 255) : RgbColor(140, 40, 180);
  inks.grid = Mixed(paper, far, 1);
  inks.grid_far = Mixed(paper, far, dark ? 3 : 2);
  inks.axis = Mixed(paper, far, dark ? 7 : 6);
  inks.ruler = Mixed(paper, far, 1);
  inks.ruler_ink = Mixed(paper, far, dark ? 11 : 12);
  inks.measure = dark ? RgbColor(110, 220, 255) : RgbColor(0, 90, 170);
  inks.sheet = Mixed(paper, far, 8);
  return inks;
}

Color LegibleOn(Color paper, Color ink) {
  const Color far = IsDark(paper) ? kWhite : kBlack;
  Color seen = ink;
  for (int step = 1; step <= 16 && !Contrasts(seen, paper); ++step) seen = Mixed(ink, far, step);
  return seen;
}

}  // namespace kerno
