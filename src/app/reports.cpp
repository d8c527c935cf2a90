#include "app/reports.h"

#include <atomic>
#include <cstdio>
#include <utility>

#include "base/text.h"

namespace kerno {
namespace {

thread_local std::vector<Message>* held_messages = nullptr;

void PrintPlainly(const Message& message) {
  std::fprintf(stderr, "kerno: %s%s: %s\n", message.is_warning ? "warning: " : "",
               message.what.c_str(), message.why.c_str());
}

std::atomic<Reporter> the_reporter = PrintPlainly;

void Report(Message message) {
  if (held_messages) {
    held_messages->push_back(std::move(message));
  } else {
    the_reporter.load()(message);
  }
}

}  // namespace

HeldMessages::HeldMessages(std::vector<Message>* messages)
    : before_(std::exchange(held_messages, messages)) {}

HeldMessages::~HeldMessages() {
  held_messages = before_;
}

void SetReporter(Reporter reporter) {
  the_reporter = reporter;
}

void ReportError(std::string_view what, std::string_view why) {
  Report({false, std::string(what), std::string(why)});
}

void ReportError(const Status& status) {
  ReportError(Utf16ToUtf8(status.what), Utf16ToUtf8(status.why));
}

void ReportWarning(std::string_view what, std::string_view why) {
  Report({true, std::string(what), std::string(why)});
}

}  // namespace kerno
