#include "platform/posix/registry_text.h"

#include <algorithm>
#include <vector>

#include "platform/fold_case.h"

namespace kerno::posix {
namespace {

constexpr size_t kNone = std::u16string_view::npos;

std::u16string_view Trim(std::u16string_view text) {
  while (!text.empty() && text.front() <= u' ') text.remove_prefix(1);
  while (!text.empty() && text.back() <= u' ') text.remove_suffix(1);
  return text;
}

// What one statement of the text does. A statement may go over several lines.
struct Statement {
  enum class Kind { kNothing, kKey, kDeleteKey, kValue, kDeleteValue };
  Kind kind = Kind::kNothing;
  size_t begin = 0;
  size_t end = 0;             // after its line end
  std::u16string_view name;   // of a key, the brackets left out
  std::u16string value_name;  // of a value, unescaped
  std::u16string_view data;   // of a value, as it stands
};

// The index after the closing quote of a string that begins at `at`, or kNone.
size_t EndOfString(std::u16string_view text, size_t at) {
  for (size_t i = at + 1; i < text.size(); ++i) {
    if (text[i] == u'\\') {
      ++i;
    } else if (text[i] == u'"') {
      return i + 1;
    }
  }
  return kNone;
}

std::u16string Unescape(std::u16string_view inner) {
  std::u16string plain;
  for (size_t i = 0; i < inner.size(); ++i) {
    if (inner[i] == u'\\' && i + 1 < inner.size()) ++i;
    plain.push_back(inner[i]);
  }
  return plain;
}

std::u16string Quote(std::u16string_view text) {
  std::u16string quoted = u"\"";
  for (const char16_t unit : text) {
    if (unit == u'\\' || unit == u'"') quoted.push_back(u'\\');
    quoted.push_back(unit);
  }
  quoted.push_back(u'"');
  return quoted;
}

size_t LineEnd(std::u16string_view text, size_t at) {
  const size_t end = text.find_first_of(u"\r\n", at);
  return end == kNone ? text.size() : end;
}

size_t NextLine(std::u16string_view text, size_t end) {
  if (end + 1 < text.size() && text[end] == u'\r' && text[end + 1] == u'\n') return end + 2;
  return end < text.size() ? end + 1 : end;
}

// Whether nothing but blanks stands between `at` and the end of its line.
bool IsLineDone(std::u16string_view text, size_t at) {
  at = text.find_first_not_of(u" \t", at);
  return at == kNone || text[at] == u'\r' || text[at] == u'\n';
}

// Where the data of a value ends: strings may hold line breaks, other data goes on after "\". A
// string that is never closed (its file was cut off) ends with its line, whatever follows.
size_t EndOfData(std::u16string_view text, size_t at) {
  while (at < text.size() && (text[at] == u' ' || text[at] == u'\t')) ++at;
  if (at < text.size() && text[at] == u'"') {
    const size_t closing = EndOfString(text, at);
    if (closing != kNone && IsLineDone(text, closing)) return LineEnd(text, closing);
  }
  size_t end = LineEnd(text, at);
  while (end < text.size()) {
    const std::u16string_view line = Trim(text.substr(at, end - at));
    if (line.empty() || line.back() != u'\\') break;
    at = NextLine(text, end);
    end = LineEnd(text, at);
  }
  return end;
}

void ReadKeyLine(std::u16string_view line, Statement* statement) {
  const size_t close = line.rfind(u']');
  if (close == kNone) return;
  std::u16string_view name = line.substr(1, close - 1);
  const bool deletes = !name.empty() && name.front() == u'-';
  if (deletes) name.remove_prefix(1);
  statement->kind = deletes ? Statement::Kind::kDeleteKey : Statement::Kind::kKey;
  statement->name = name;
}

// Reads the statement that begins at statement->begin.
void ReadStatement(std::u16string_view text, Statement* statement) {
  size_t at = statement->begin;
  while (at < text.size() && (text[at] == u' ' || text[at] == u'\t')) ++at;
  size_t end = LineEnd(text, at);
  const char16_t first = at < end ? text[at] : u'\0';
  if (first == u'[') {
    ReadKeyLine(Trim(text.substr(at, end - at)), statement);
  } else if (first == u'@' || first == u'"') {
    const size_t name_end = first == u'@' ? at + 1 : EndOfString(text, at);
    const size_t equals = name_end > end ? kNone : text.find_first_not_of(u" \t", name_end);
    if (equals != kNone && text[equals] == u'=') {
      end = EndOfData(text, equals + 1);
      statement->data = Trim(text.substr(equals + 1, end - equals - 1));
      statement->kind =
          statement->data == u"-" ? Statement::Kind::kDeleteValue : Statement::Kind::kValue;
      if (first == u'"') {
        statement->value_name = Unescape(text.substr(at + 1, name_end - at - 2));
      }
    }
  }
  statement->end = NextLine(text, end);
}

std::vector<Statement> Parse(std::u16string_view text) {
  std::vector<Statement> statements;
  for (size_t at = 0; at < text.size();) {
    Statement statement;
    statement.begin = at;
    ReadStatement(text, &statement);
    at = statement.end;
    statements.push_back(std::move(statement));
  }
  return statements;
}

// Whether `key` is `parent` or below it.
bool IsOrLiesUnder(std::u16string_view key, std::u16string_view parent) {
  if (key.size() > parent.size() && key[parent.size()] == u'\\') key = key.substr(0, parent.size());
  return EqualWithoutCase(key, parent);
}

// What is left of a key when all statements are executed.
struct KeyState {
  bool exists = false;
  bool has_keys_below = false;
  size_t block_end = kNone;  // after the last statement of its last block
  const Statement* value = nullptr;
};

KeyState Execute(const std::vector<Statement>& statements, std::u16string_view key,
                 std::u16string_view name) {
  KeyState state;
  bool inside = false;
  for (const Statement& statement : statements) {
    switch (statement.kind) {
      case Statement::Kind::kKey:
        inside = EqualWithoutCase(statement.name, key);
        if (IsOrLiesUnder(statement.name, key)) {
          state.exists = true;
          state.has_keys_below = state.has_keys_below || !inside;
        }
        if (inside) state.block_end = statement.end;
        break;
      case Statement::Kind::kDeleteKey:
        inside = false;
        if (IsOrLiesUnder(key, statement.name)) state = {};
        break;
      case Statement::Kind::kValue:
      case Statement::Kind::kDeleteValue:
        if (!inside) break;
        state.block_end = statement.end;
        if (EqualWithoutCase(statement.value_name, name)) {
          state.value = statement.kind == Statement::Kind::kValue ? &statement : nullptr;
        }
        break;
      case Statement::Kind::kNothing:
        break;
    }
  }
  return state;
}

int HexDigit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  const int letter = unit | 0x20;
  return letter >= u'a' && letter <= u'f' ? letter - u'a' + 10 : -1;
}

RegistryValue ReadData(std::u16string_view data) {
  RegistryValue value;
  constexpr std::u16string_view kDword = u"dword:";
  if (data.size() >= 2 && data.front() == u'"' && EndOfString(data, 0) == data.size()) {
    value.type = RegistryType::kString;
    value.text = Unescape(data.substr(1, data.size() - 2));
  } else if (EqualWithoutCase(data.substr(0, kDword.size()), kDword)) {
    const std::u16string_view digits = data.substr(kDword.size());
    uint32_t number = 0;
    bool good = !digits.empty() && digits.size() <= 8;
    for (const char16_t unit : digits) {
      good = good && HexDigit(unit) >= 0;
      number = number << 4 | static_cast<uint32_t>(HexDigit(unit) & 0xF);
    }
    if (good) {
      value.type = RegistryType::kDword;
      value.number = number;
    }
  }
  return value;
}

std::u16string WriteData(const RegistryValue& value) {
  if (value.type == RegistryType::kString) return Quote(value.text);
  std::u16string text = u"dword:";
  for (int shift = 28; shift >= 0; shift -= 4) {
    text.push_back(u"0123456789abcdef"[value.number >> shift & 0xF]);
  }
  return text;
}

// The last line with something on it as the reader sees it, without blanks around it.
std::u16string_view LastLine(std::u16string_view text) {
  const size_t last = text.find_last_not_of(u"\r\n");
  if (last == kNone) return {};
  const size_t before = text.find_last_of(u"\r\n", last);
  const size_t begin = before == kNone ? 0 : before + 1;
  return Trim(text.substr(begin, last + 1 - begin));
}

// Where a new line goes, and what it needs before it.
struct Insertion {
  size_t at = 0;
  std::u16string before;
};

Insertion PlaceOfValue(std::u16string_view text, const KeyState& state, std::u16string_view key) {
  if (state.value) return {state.value->begin, u""};
  if (state.block_end != kNone && state.block_end < text.size()) return {state.block_end, u""};
  std::u16string before(text.empty() ? kRegistryHeader : std::u16string_view());
  const bool ended = !text.empty() && (text.back() == u'\n' || text.back() == u'\r');
  if (!ended) before += u"\r\n";
  if (state.block_end == kNone)
    return {text.size(), before.append(u"\r\n[").append(key) + u"]\r\n"};
  // Data that was cut off after its "\" goes on in the next line, which has to be an empty one.
  const std::u16string_view last = LastLine(text);
  if (!last.empty() && last.back() == u'\\') before += u"\r\n";
  return {text.size(), before};
}

// Whether two texts do the same, but for the statements that are said to differ. A damaged line (a
// string without an end) may take in or set free what follows it when that changes.
template <typename OldDiffers, typename NewDiffers>
bool MeanTheSame(const std::vector<Statement>& before, const OldDiffers& old_differs,
                 const std::vector<Statement>& after, const NewDiffers& new_differs) {
  const auto kept = [](const std::vector<Statement>& all, const auto& differs) {
    std::vector<const Statement*> rest;
    for (const Statement& statement : all) {
      const bool does_nothing = statement.kind == Statement::Kind::kNothing;
      if (!differs(statement) && !does_nothing) rest.push_back(&statement);
    }
    return rest;
  };
  const auto same = [](const Statement* a, const Statement* b) {
    return a->kind == b->kind && a->name == b->name && a->value_name == b->value_name &&
           a->data == b->data;
  };
  return std::ranges::equal(kept(before, old_differs), kept(after, new_differs), same);
}

// Takes statements out of the text; kFailed, and the text stays, when others would change with it.
template <typename Goes>
RegistryOutcome RemoveStatements(std::u16string* text, const std::vector<Statement>& statements,
                                 const Goes& goes) {
  std::u16string kept;
  std::vector<Statement> rest;
  for (const Statement& statement : statements) {
    if (goes(statement)) continue;
    kept.append(*text, statement.begin, statement.end - statement.begin);
    rest.push_back(statement);
  }
  const auto none = [](const Statement&) { return false; };
  if (!MeanTheSame(rest, none, Parse(kept), none)) return RegistryOutcome::kFailed;
  *text = std::move(kept);
  return RegistryOutcome::kDone;
}

}  // namespace

bool IsRegistryText(std::u16string_view text) {
  const std::u16string_view first = Trim(text.substr(0, LineEnd(text, 0)));
  return first == kRegistryHeader || first == u"REGEDIT4";
}

RegistryOutcome FindRegistryValue(std::u16string_view text, std::u16string_view key,
                                  std::u16string_view name, RegistryValue* value) {
  const std::vector<Statement> statements = Parse(text);
  const KeyState state = Execute(statements, key, name);
  if (!state.exists) return RegistryOutcome::kNoKey;
  if (!state.value) return RegistryOutcome::kNoValue;
  *value = ReadData(state.value->data);
  return RegistryOutcome::kDone;
}

RegistryOutcome SetRegistryText(std::u16string* text, std::u16string_view key,
                                std::u16string_view name, const RegistryValue& value) {
  const std::u16string data = WriteData(value);
  const std::vector<Statement> before = Parse(*text);
  const KeyState state = Execute(before, key, name);
  const Insertion insertion = PlaceOfValue(*text, state, key);
  const size_t replaced = state.value ? state.value->end - state.value->begin : 0;
  const std::u16string written =
      insertion.before + (name.empty() ? u"@" : Quote(name)) + u"=" + data + u"\r\n";
  std::u16string changed = *text;
  changed.replace(insertion.at, replaced, written);
  const std::vector<Statement> after = Parse(changed);
  const bool rest_stays = MeanTheSame(
      before, [&](const Statement& old) { return &old == state.value; }, after,
      [&](const Statement& now) {
        return now.begin >= insertion.at && now.begin - insertion.at < written.size();
      });
  const KeyState result = Execute(after, key, name);
  if (!rest_stays || !result.value || result.value->data != data) return RegistryOutcome::kFailed;
  *text = std::move(changed);
  return RegistryOutcome::kDone;
}

RegistryOutcome RemoveRegistryText(std::u16string* text, std::u16string_view key,
                                   std::u16string_view name) {
  const std::vector<Statement> statements = Parse(*text);
  const KeyState state = Execute(statements, key, name);
  if (!state.exists) return RegistryOutcome::kNoKey;
  if (!state.value) return RegistryOutcome::kNoValue;
  bool inside = false;
  return RemoveStatements(text, statements, [&](const Statement& statement) {
    if (statement.kind == Statement::Kind::kKey) inside = EqualWithoutCase(statement.name, key);
    const bool value = statement.kind == Statement::Kind::kValue;
    return inside && value && EqualWithoutCase(statement.value_name, name);
  });
}

RegistryOutcome RemoveRegistryKeyText(std::u16string* text, std::u16string_view key) {
  const std::vector<Statement> statements = Parse(*text);
  const KeyState state = Execute(statements, key, {});
  if (!state.exists) return RegistryOutcome::kNoKey;
  if (state.has_keys_below) return RegistryOutcome::kFailed;
  bool inside = false;
  return RemoveStatements(text, statements, [&](const Statement& statement) {
    if (statement.kind == Statement::Kind::kKey || statement.kind == Statement::Kind::kDeleteKey) {
      inside = statement.kind == Statement::Kind::kKey && EqualWithoutCase(statement.name, key);
    }
    return inside;
  });
}

}  // namespace kerno::posix
