// Every text of the window in its languages, from one table (captions_table.h).
//
// The English text is the key, mnemonic "&" included. "{}" stands for the parts, one after the
// other; a translation that wants another order numbers them: "{2}" is the second part.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

enum class Language { kEnglish, kJapanese, kGerman };

// The language of the window; English until it is set. Both may be called by any thread.
Language CurrentLanguage();
void SetLanguage(Language language);

// The language for a locale's name ("ja_JP.UTF-8", "de-AT"); English for all without a table.
Language LanguageOfLocale(std::u16string_view locale);

// The text in the current language. A key without a row comes back as it is.
std::u16string Say(std::u16string_view english);
std::u16string Say(std::u16string_view english, std::initializer_list<std::u16string_view> parts);

// The same in a given language.
std::u16string SayIn(Language language, std::u16string_view english);

// A reason in the current language, where the table has it, with anything in the place of "{}".
std::u16string SayReason(std::u16string_view why);

// What a Status says, "what: why", both in the current language where the table has them.
std::u16string SayStatus(const Status& status);

// The text without the mark of its mnemonic: "F&ile" and "ファイル(&F)" become "File" and
// "ファイル"; dots at the end stay.
std::u16string WithoutMnemonic(std::u16string_view caption);

// The face of the window's texts on systems whose own choice lacks a language's characters, best
// first.
std::span<const char16_t* const> CaptionFaces(Language language);

}  // namespace kerno
