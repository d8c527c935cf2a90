/* A text as a drawing: cc sign.c $(pkg-config --cflags --libs kerno) -o sign && ./sign open.dxf */
#include <kerno.h>
#include <stdio.h>

int main(int count, char** words) {
  KernoFacts facts;
  KernoSign sign = kerno_new();
  if (kerno_set_text(sign, "Open") || kerno_set(sign, "face", "DejaVu Sans") ||
      kerno_set(sign, "cap-height", "40mm") || kerno_facts(sign, &facts) ||
      kerno_write(sign, count > 1 ? words[1] : "open.dxf", NULL)) {
    fprintf(stderr, "%s\n", kerno_message());
    return 1;
  }
  printf("%d paths, %.3f x %.3f mm\n", (int)facts.paths, facts.right - facts.left,
         facts.top - facts.bottom);
  return kerno_free(sign);
}
