#include "base/copy_log.h"

#include <string>

#include "base/dump_log.h"
#include "base/profile_values.h"
#include "base/settings_places.h"
#include "base/settings_table.h"

namespace kerno {

void LogModelCopy(std::u16string_view operation, size_t parts) {
  std::optional<bool>& switched = SettingsProcess::Current().copy_log;
  if (!switched) switched = Get(kCopyLog);
  if (!*switched) return;
  DumpText(u"Parts", std::u16string(operation) + u"\t" + Int64Text(static_cast<int64_t>(parts)));
}

}  // namespace kerno
