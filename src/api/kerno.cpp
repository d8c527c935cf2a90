#include "api/kerno.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "api/last_message.h"
#include "api/sign_table.h"
#include "app/output_list.h"
#include "app/stroke_fonts.h"
#include "base/text.h"
#include "export/formats.h"
#include "platform/font_faces.h"

namespace kerno {
namespace {

// Does the work of a call. What goes wrong becomes its result and this thread's message: no
// exception leaves the library.
template <class Work>
int Answer(const Work& work) noexcept {
  try {
    return Keep(work());
  } catch (const std::bad_alloc&) {
    return KeepNoMemory();
  } catch (const std::exception& error) {
    return KeepFault(error.what());
  } catch (...) {
    return KeepFault("something went wrong that has no name");
  }
}

Outcome NoSuchSign(KernoSign number) {
  if (number == 0) return Outcome::Bad("sign", "0 is none");
  const bool was_given = SignTable::Current().WasGiven(number);
  return Outcome::Bad("sign",
                      std::to_string(number) + (was_given ? " was freed" : " never was a sign"));
}

Outcome NullFor(const char* argument) {
  return Outcome::Bad(argument, "is NULL");
}

// Calls work(sign) while no other thread works on that.
template <class Work>
int ForSign(KernoSign number, const Work& work) noexcept {
  return Answer([&] {
    const std::shared_ptr<Sign> sign = SignTable::Current().Find(number);
    if (!sign) return NoSuchSign(number);
    const std::lock_guard held(sign->mutex);
    return work(*sign);
  });
}

// Hands a list to its caller: as many as there is room for, and how many there are.
template <class Item, class Make>
int HandOut(KernoSign sign, Item* items, const char* name, size_t room, size_t* count,
            const Make& make) noexcept {
  return ForSign(sign, [&](Sign& known) {
    if (!count) return NullFor("count");
    if (!items && room > 0) return NullFor(name);
    std::vector<Item> made;
    if (Outcome done = make(known, &made); !done.ok()) return done;
    std::copy_n(made.begin(), std::min(room, made.size()), items);
    *count = made.size();
    return Outcome::Ok();
  });
}

// Hands out a text that stays with the thread; null after a failure.
template <class Make>
const char* HandOutText(TextKind kind, const Make& make) noexcept {
  const char* shown = nullptr;
  const int result = Answer([&] {
    std::string text;
    Outcome done = make(&text);
    if (done.ok()) shown = KeepText(kind, std::move(text));
    return done;
  });
  return result == KERNO_OK ? shown : nullptr;
}

template <class Make>
const char* TextOfSign(KernoSign sign, TextKind kind, const Make& make) noexcept {
  return HandOutText(kind, [&](std::string* text) {
    const std::shared_ptr<Sign> known = SignTable::Current().Find(sign);
    if (!known) return NoSuchSign(sign);
    const std::lock_guard held(known->mutex);
    return make(*known, text);
  });
}

// A name with a line end in it would be two.
void AppendLine(std::string* lines, std::u16string_view name) {
  if (name.find_first_of(u"\r\n") == name.npos) *lines += Utf16ToUtf8(name) + "\n";
}

}  // namespace
}  // namespace kerno

using kerno::Outcome;
using kerno::Sign;
using kerno::TextKind;

const char* kerno_version(void) {
  return KERNO_VERSION;
}

const char* kerno_message(void) {
  return kerno::LastMessage();
}

KernoSign kerno_new(void) {
  KernoSign number = 0;
  (void)kerno::Answer([&] {
    number = kerno::SignTable::Current().Add(std::make_shared<Sign>());
    return Outcome::Ok();
  });
  return number;
}

int kerno_free(KernoSign sign) {
  return kerno::Answer([&] {
    const bool is_freed = sign == 0 || kerno::SignTable::Current().Remove(sign) != nullptr;
    return is_freed ? Outcome::Ok() : kerno::NoSuchSign(sign);
  });
}

int kerno_set_text(KernoSign sign, const char* text) {
  return kerno::ForSign(
      sign, [&](Sign& known) { return text ? known.SetText(text) : kerno::NullFor("text"); });
}

int kerno_set(KernoSign sign, const char* option, const char* value) {
  return kerno::ForSign(sign, [&](Sign& known) {
    if (!option) return kerno::NullFor("option");
    return value ? known.Set(option, value) : kerno::NullFor("value");
  });
}

int kerno_unset(KernoSign sign, const char* option) {
  return kerno::ForSign(
      sign, [&](Sign& known) { return option ? known.Unset(option) : kerno::NullFor("option"); });
}

int kerno_make(KernoSign sign) {
  return kerno::ForSign(sign, [](Sign& known) { return known.Make(); });
}

int kerno_facts(KernoSign sign, KernoFacts* facts) {
  return kerno::ForSign(
      sign, [&](Sign& known) { return facts ? known.Tell(facts) : kerno::NullFor("facts"); });
}

int kerno_path(KernoSign sign, uint64_t path, KernoPath* about) {
  return kerno::ForSign(sign, [&](Sign& known) {
    return about ? known.TellPath(path, about) : kerno::NullFor("about");
  });
}

int kerno_segments(KernoSign sign, uint64_t path, KernoSegment* segments, size_t room,
                   size_t* count) {
  return kerno::HandOut(
      sign, segments, "segments", room, count,
      [&](Sign& known, std::vector<KernoSegment>* made) { return known.Segments(path, made); });
}

int kerno_points(KernoSign sign, uint64_t path, double tolerance, KernoPoint* points, size_t room,
                 size_t* count) {
  return kerno::HandOut(sign, points, "points", room, count,
                        [&](Sign& known, std::vector<KernoPoint>* made) {
                          return known.Points(path, tolerance, made);
                        });
}

const char* kerno_layer(KernoSign sign, uint64_t layer) {
  return kerno::TextOfSign(sign, TextKind::kLayer, [&](Sign& known, std::string* text) {
    return known.LayerName(layer, text);
  });
}

const char* kerno_warning(KernoSign sign, uint64_t warning) {
  return kerno::TextOfSign(sign, TextKind::kWarning, [&](Sign& known, std::string* text) {
    return known.Warning(warning, text);
  });
}

int kerno_write(KernoSign sign, const char* file, const char* format) {
  return kerno::ForSign(sign, [&](Sign& known) {
    return file ? known.Write(file, format ? format : "") : kerno::NullFor("file");
  });
}

const char* kerno_faces(void) {
  return kerno::HandOutText(TextKind::kFaces, [](std::string* lines) {
    for (const std::u16string& name : kerno::ListFamilies(kerno::FamilyForm::kPlain)) {
      kerno::AppendLine(lines, name);
    }
    return Outcome::Ok();
  });
}

const char* kerno_stroke_fonts(void) {
  return kerno::HandOutText(TextKind::kStrokeFonts, [](std::string* lines) {
    for (const auto& font : kerno::InstalledStrokeFonts()) kerno::AppendLine(lines, font.name);
    return Outcome::Ok();
  });
}

const char* kerno_formats(void) {
  return kerno::HandOutText(TextKind::kFormats, [](std::string* lines) {
    for (const kerno::Format& format : kerno::Formats()) {
      lines->append(format.extension).append("\n");
    }
    return Outcome::Ok();
  });
}

const char* kerno_options(void) {
  return kerno::HandOutText(TextKind::kOptions, [](std::string* lines) {
    for (const std::string& name : kerno::SignOptions()) lines->append(name).append("\n");
    return Outcome::Ok();
  });
}
