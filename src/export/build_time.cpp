#include "export/build_time.h"

// The build says it where it is to be the same each time: cmake/KernoReproducible.cmake.
#ifndef KERNO_BUILD_TIME
#define KERNO_BUILD_TIME __DATE__ " " __TIME__
#endif

namespace kerno {

std::string_view BuildTime() {
  return KERNO_BUILD_TIME;
}

}  // namespace kerno
