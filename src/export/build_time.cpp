#include "export/build_time.h"

namespace kerno {

std::string_view BuildTime() {
  return __DATE__ " " __TIME__;
}

}  // namespace kerno
