// What the readers of options and lists have to say: which one, and why. The command line prints
// it; the window keeps it and shows it at the field.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace kerno {

struct Message {
  bool is_warning = false;
  std::string what, why;  // the option or the file, and the reason
};

void ReportError(std::string_view what, std::string_view why);
void ReportError(const Status& status);
void ReportWarning(std::string_view what, std::string_view why);

// Where reports go that no HeldMessages keeps. Without one they go to standard error.
using Reporter = void (*)(const Message& message);
void SetReporter(Reporter reporter);

// While it lives, what this thread reports is kept instead of shown.
class HeldMessages {
 public:
  explicit HeldMessages(std::vector<Message>* messages);
  ~HeldMessages();
  HeldMessages(const HeldMessages&) = delete;
  HeldMessages& operator=(const HeldMessages&) = delete;

 private:
  std::vector<Message>* before_;
};

}  // namespace kerno
