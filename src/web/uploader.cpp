#include "web/uploader.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/file_wait.h"
#include "base/folders.h"
#include "base/notices.h"
#include "base/text.h"
#include "base/version_info.h"
#include "platform/clock.h"
#include "platform/file_replacement.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"
#include "platform/large_pages.h"
#include "platform/system.h"
#include "web/multipart.h"
#include "web/shown_text.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kField = "file_img";
constexpr size_t kMostShown = 200;  // characters of the server that a message repeats
constexpr size_t kMostOfPath = 4096;
constexpr size_t kReadAtOnce = 256 * 1024;

// A path as a part of a message.
std::u16string ShownPath(const fs::path& path) {
  return ShownText(Utf16ToUtf8(PathText(path)), kMostOfPath);
}

UploadResult Ended(UploadEnd end, std::u16string_view about, std::u16string_view why) {
  UploadResult result;
  result.end = end;
  result.message.append(about).append(u": ").append(why);
  return result;
}

std::u16string Decimal(int64_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::u16string DurationText(std::chrono::milliseconds duration) {
  const int64_t count = duration.count();
  return count % 1000 ? Decimal(count) + u" ms" : Decimal(count / 1000) + u" s";
}

// Why the thing at `file` is not one to send; ok for a regular file.
Status CheckKind(const fs::path& file, const PathFacts& facts) {
  const std::u16string name = ShownPath(file);
  switch (facts.kind) {
    case PathKind::kFile:
      break;
    case PathKind::kMissing:
      return Status::Error(Failure::kNotFound, name, u"there is no such file");
    case PathKind::kFolder:
      return Status::Error(Failure::kIsFolder, name, u"it is a folder, not a file");
    case PathKind::kUnknown:
      return Status::Error(Failure::kAccessDenied, name, facts.why.why);
    case PathKind::kOther:
      return Status::Error(Failure::kOther, name, u"it is a device or a pipe, not a file");
  }
  return Status::Ok();
}

// A whole request body, or why there is none: then `trouble` is how the upload ends.
struct Body {
  UploadEnd trouble = UploadEnd::kFileTrouble;
  std::string boundary;  // the one in the bytes
  std::string bytes;
};

// Appends the file's bytes to the body, with room left for `tail` bytes more.
Status AppendFile(const fs::path& file, int64_t limit, size_t tail, Body* body) {
  const PathFacts facts = FactsOfPath(file);
  if (Status status = CheckKind(file, facts); !status.ok()) return status;
  const auto too_large = [&] {
    body->trouble = UploadEnd::kTooLarge;
    return Status::Error(
        Failure::kOther, ShownPath(file),
        u"not sent: it is larger than " + Decimal(limit) + u" bytes (\"up_max_file_size\")");
  };
  if (facts.size > static_cast<uint64_t>(limit)) return too_large();
  std::unique_ptr<HeldFile> held;
  Status status = WaitForFile(file, FileWait::kRead, [&] {
    Status opened;
    held = HeldFile::Open(file, Deny::kWrite, &opened);
    return opened;
  });
  if (!held) return status;
  std::string& bytes = body->bytes;
  const size_t head = bytes.size();
  bytes.reserve(head + static_cast<size_t>(facts.size) + kReadAtOnce + tail);
  PreferLargePages(bytes.data(), bytes.capacity());
  const size_t most = head + static_cast<size_t>(limit);
  for (size_t before = head + 1; before != bytes.size() && bytes.size() <= most;) {
    before = bytes.size();
    status = held->ReadPiece(before - head, kReadAtOnce, &bytes);
    if (!status.ok()) return status;
  }
  return bytes.size() > most ? too_large() : Status::Ok();  // it may have grown meanwhile
}

Status BuildBody(const fs::path& file, int64_t limit, Body* body) {
  const std::string name = HeaderFileName(PathText(file.filename()));
  const LocalTime now = CurrentClock().Now();
  body->boundary = *ChooseBoundary(now, "");
  body->bytes = MultipartHead(body->boundary, kField, name);
  const size_t head = body->bytes.size();
  const size_t tail = MultipartTail(body->boundary).size();
  if (Status status = AppendFile(file, limit, tail, body); !status.ok()) return status;
  const auto chosen = ChooseBoundary(now, std::string_view(body->bytes).substr(head));
  if (!chosen) {
    return Status::Error(Failure::kOther, ShownPath(file),
                         u"not sent: it holds every text that could mark its end");
  }
  body->boundary = *chosen;
  body->bytes.replace(0, head, MultipartHead(body->boundary, kField, name));
  body->bytes.append(MultipartTail(body->boundary));
  return Status::Ok();
}

void KeepInspectionCopy(const fs::path& file, std::string_view body) {
  const fs::path folder = WorkFolder();
  fs::path copy = folder / file.filename();
  copy += ".txt";
  const Status status = folder.empty() ? Status::Error(Failure::kOther, ShownPath(file.filename()),
                                                       u"there is no folder for it")
                                       : ReplaceFile(copy, body);
  if (!status.ok()) {
    CurrentNotices().Message(status.what + u": the copy of the request was not written: " +
                             status.why);
  }
}

// Why the request did not lead to an answer, in words for the user.
std::u16string WhyNotSent(const HttpReply& reply, const HttpLimits& limits,
                          CertificateTrust trust) {
  const std::u16string detail = u" (" + ShownText(reply.why, kMostShown) + u")";
  switch (reply.end) {
    case HttpEnd::kUnavailable:
      return u"this machine cannot send" + detail;
    case HttpEnd::kBadUrl:
      return u"the address cannot be read" + detail;
    case HttpEnd::kUnknownHost:
      return u"the host's name is not known" + detail;
    case HttpEnd::kRefused:
      return u"no connection" + detail;
    case HttpEnd::kConnectTimeout:
      return u"no connection within " + DurationText(limits.connect);
    case HttpEnd::kUntrusted:
      return u"not sent: the server's certificate was not accepted" + detail +
             (trust == CertificateTrust::kKnownAuthority
                  ? u"; \"self_certificate\" set to 1 accepts one that no known authority signed"
                  : u"; with \"self_certificate\" set it must still be for the server's name");
    case HttpEnd::kTlsFailed:
      return u"no secure connection" + detail;
    case HttpEnd::kStalled:
      return reply.body_sent
                 ? u"the server took the file but did not answer in time; it may have it or not"
                 : u"the transfer stood still for " + DurationText(limits.stall);
    case HttpEnd::kBroken:
      return u"the connection broke before a whole answer" + detail;
    case HttpEnd::kNoAnswer:
      return u"the server closed the connection without an answer";
    case HttpEnd::kNotHttp:
      return u"what answered is not a web server" + detail;
    case HttpEnd::kStopped:
      return u"stopped";
    case HttpEnd::kAnswered:
    case HttpEnd::kOther:
      break;
  }
  return u"the transfer failed" + detail;
}

// A permanent or repeatable redirect says that the script is elsewhere; 302 and 303 are how
// scripts send a browser on to a page after they took a form.
bool IsMoved(int status) {
  return status == 301 || status == 307 || status == 308;
}

UploadResult FromAnswer(const HttpReply& reply, std::u16string_view about) {
  UploadResult result;
  result.sent = reply.body_sent;
  result.status = reply.status;
  result.status_line = ShownText(reply.status_line, kMostShown);
  result.first_line = FirstShownLine(reply.answer, kMostShown);
  const bool accepted =
      reply.body_sent && reply.status < 400 && !IsMoved(reply.status) && !reply.broke_off;
  result.end = accepted ? UploadEnd::kAccepted : UploadEnd::kNotAccepted;
  std::u16string& message = result.message;
  message.append(about).append(accepted ? u": sent: " : u": not accepted: ");
  message += result.status_line;
  if (!result.first_line.empty()) message += u": " + result.first_line;
  if (!reply.location.empty()) {
    message += u"; it points to " + ShownText(reply.location, kMostShown) + u", not followed";
  }
  if (reply.broke_off) {
    message += u"; the answer broke off (" + ShownText(reply.why, kMostShown) +
               u"), the server may have the file or not";
  }
  return result;
}

std::u16string ProgramVersion(const fs::path& program) {
  for (const auto& [key, text] : OwnVersionStrings()) {
    if (key == u"FileVersion") return text;
  }
  VersionReader file;
  (void)file.Open(program);  // without it there is no version to tell
  return file.Get(u"FileVersion");
}

std::string JoinedByBlanks(std::initializer_list<std::u16string> pieces) {
  std::string out;
  for (const std::u16string& piece : pieces) {
    const std::string shown = Utf16ToUtf8(ShownText(Utf16ToUtf8(piece), kMostShown));
    if (!out.empty() && !shown.empty()) out += ' ';
    out += shown;
  }
  return out;
}

}  // namespace

Uploader::Uploader(SettingsReader& settings, fs::path file, HttpSession& session)
    : settings_(settings), settings_file_(std::move(file)), session_(session) {}

bool Uploader::IsConfigured() {
  return !ReadUploadSettings(settings_).server.empty();
}

UploadResult Uploader::Upload(const fs::path& file) {
  const UploadSettings settings = ReadUploadSettings(settings_);
  const std::u16string ini = ShownPath(settings_file_);
  if (settings.server.empty()) {
    return Ended(UploadEnd::kNotConfigured, ini,
                 u"no upload server is set; give section [UpFile] the key \"server\" with the name "
                 u"of a host that runs a receiving script");
  }
  UploadTarget target;
  if (const Status formed = FormUploadTarget(settings, &target); !formed.ok()) {
    return Ended(UploadEnd::kBadSettings, ini + u": " + formed.what, formed.why);
  }

  const std::shared_ptr<void> preparation = session_.Prepare();
  Body body;
  const Status built = BuildBody(file, UploadLimit(settings.up_max_file_size), &body);
  if (!built.ok()) return Ended(body.trouble, built.what, built.why);
  if (!settings.debug.empty()) KeepInspectionCopy(file, body.bytes);

  HttpPost post;
  post.url = target.Url();
  post.user_agent = UploadUserAgent();
  post.headers = {"Content-Type: multipart/form-data; boundary=" + body.boundary};
  post.body = body.bytes;
  post.trust = settings.self_certificate.empty() ? CertificateTrust::kKnownAuthority
                                                 : CertificateTrust::kAnyAuthority;
  post.limits = limits;
  const std::u16string doing = u"Uploading " + ShownPath(file.filename());
  const HttpReply reply = session_.Post(post, [&](int64_t sent, int64_t total) {
    // The end is for the answer.
    const int64_t done = std::min(sent, total - 1);
    return CurrentNotices().Progress(doing, done, total) == Continue::kYes ? Transfer::kGoOn
                                                                           : Transfer::kStop;
  });
  if (reply.body_sent) {
    const auto total = static_cast<int64_t>(body.bytes.size());
    // Nothing is left to stop, whatever the answer is.
    (void)CurrentNotices().Progress(doing, total, total);
  }
  const std::u16string about = ShownPath(file) + u" to " + ShownText(post.url, kMostShown);
  if (reply.end == HttpEnd::kAnswered) return FromAnswer(reply, about);
  return Ended(reply.end == HttpEnd::kStopped ? UploadEnd::kStopped : UploadEnd::kNotSent, about,
               WhyNotSent(reply, limits, post.trust));
}

std::string UploadUserAgent() {
  const fs::path program = CurrentSystem().ProgramPath();
  const SystemFacts facts = ReadSystemFacts();
  const std::u16string system = facts.description.empty() ? u"Windows NT " + Decimal(facts.major) +
                                                                u"." + Decimal(facts.minor)
                                                          : facts.description;
  return JoinedByBlanks({PathText(program.filename()), ProgramVersion(program), system});
}

}  // namespace kerno
