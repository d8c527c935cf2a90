// The lexical floor of the parts file: lines ended by CR LF, fields followed by a blank, groups in
// double quotes, items of a group in single quotes.
//
// Text is formed and parsed in the packed form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "drawing/geometry.h"
#include "parts/ipx_packed.h"

namespace kerno::ipx {

// The quotes in which a text reads back whole: double ones, or single ones where a double quote of
// the text stands before a blank or half a line break. 0 for a text that no line can hold: one with
// a line break, or with both quotes so. What was read from a file has quotes.
char QuoteFor(std::u16string_view text);

// Writes fields into a packed text. Every field is followed by its blank.
class Writer {
 public:
  // Takes a piece of the text that ends at a line's end; false when it can go no further, and then
  // nothing more is handed over.
  using Drain = std::function<bool(std::string_view packed)>;

  // Keeps the whole text.
  Writer() = default;
  // Hands the text over whenever it has grown long, and at Finish.
  explicit Writer(Drain drain) : drain_(std::move(drain)) {}

  void Integer(int64_t value);
  void Number(double value);
  void IntegerItem(int64_t value);  // in single quotes
  void NumberItem(double value);
  void Count(size_t value) { Integer(static_cast<int64_t>(value)); }
  void Text(std::u16string_view text);         // unchanged, in the quotes that QuoteFor chooses
  void EscapedText(std::u16string_view text);  // escaped, in double quotes
  void List(const std::vector<int32_t>& values);
  void Points(const std::vector<P2>& points);  // Classic: no blank follows, files have none there
  // What `fields` writes into this writer, in double quotes.
  template <class Fields>
  void Group(const Fields& fields) {
    Raw("\"");
    fields(*this);
    Raw("\" ");
  }
  void Raw(std::string_view ascii) { text_.append(ascii); }
  void RawPacked(std::u16string_view text) { AppendPacked(&text_, text); }
  void EndLine();

  // Hands over what is left. Whether everything was taken.
  bool Finish();

  const std::string& text() const { return text_; }
  bool stopped() const { return stopped_; }
  // Whether a number written so far was not finite.
  bool wrote_non_finite() const { return wrote_non_finite_; }

 private:
  void HandOver();

  std::string text_;
  Drain drain_;
  bool stopped_ = false;
  bool wrote_non_finite_ = false;
};

// What ends a field.
inline bool IsSeparator(char c) {
  return c == ' ' || c == '\r' || c == '\n';
}

// The fields of a line. A field in quotes (single or double) that end before a separator or at the
// line's end keeps its blanks and loses the quotes; any other ends at the next blank, CR or LF.
class Tokens {
 public:
  explicit Tokens(std::string_view line) : at_(line.data()), end_(line.data() + line.size()) {}

  // The next field; false when there is none.
  bool Next(std::string_view* token);
  void Skip();

  // Each reads the next field into its target and leaves the target alone when there is none. What
  // is no number is 0; an integer beyond 32 bits becomes the nearest.
  void Integer(int32_t& value);
  void Number(double& value);
  void IntegerItem(int32_t& value) { Integer(value); }
  void NumberItem(double& value) { Number(value); }
  void Count(size_t /*value*/) { Skip(); }  // lists are as long as they are
  void Text(std::u16string& text);
  void EscapedText(std::u16string& text) { Text(text); }  // the escaping is not undone
  void List(std::vector<int32_t>& values);
  void Points(std::vector<P2>& points);
  // What `fields` reads from the fields of the next field.
  template <class Fields>
  void Group(const Fields& fields) {
    std::string_view token;
    Next(&token);
    Tokens group(token);
    fields(group);
  }

 private:
  bool SkipSeparators();

  const char* at_;
  const char* end_;
  // Whether no closing quote of the kind is left in the line: what was sought once is not sought
  // again.
  bool no_single_ = false;
  bool no_double_ = false;
};

// The lines of a text; an end that lacks its CR LF is a line too.
class Lines {
 public:
  // Puts the next piece of a text, whole lines, into *piece, which lives until the next call; false
  // when there is none.
  using Source = std::function<bool(std::string_view* piece)>;

  explicit Lines(std::string_view text) : rest_(text), unread_(text.size()) {}
  // A text that comes in pieces, `size` bytes in all as far as one can tell.
  Lines(Source source, size_t size) : source_(std::move(source)), unread_(size) {}

  bool AtEnd();
  // The next line without its CR LF; empty when none is left. Lives until the next call.
  std::string_view Next();
  // How many lines were taken so far.
  size_t taken() const { return taken_; }
  // About how many bytes are left.
  size_t unread() const { return unread_; }

 private:
  std::string_view rest_;
  Source source_;
  size_t taken_ = 0;
  size_t unread_;
};

// The number that a text begins with, after white space: as the C library reads it (a sign,
// hexadecimal, "inf" and "nan" included) but the same in every locale; 0 where there is none.
// *stop, when given, is where the reading ended.
double LeadingNumber(std::string_view text, const char** stop = nullptr);

// The decimal integer that a text begins with, after white space; 0 where there is none. What
// passes 64 bits becomes the nearest.
int64_t LeadingInteger(std::string_view text, const char** stop = nullptr);

}  // namespace kerno::ipx
