// The bytes of a parts file as pieces of whole lines in the packed form, whatever the encoding.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kerno::ipx {

// UTF-16 and UTF-8 by their marks, anything else as code page 932. Only a piece at a time is
// converted.
class Pieces {
 public:
  // Appends more bytes of the file; false at its end.
  using More = std::function<bool(std::string* bytes)>;

  // Of bytes that outlive this object.
  explicit Pieces(std::string_view bytes) : rest_(bytes) {}
  explicit Pieces(More more) : more_(std::move(more)) {}

  // The next piece, which lives until the next call; false when there is none.
  bool Next(std::string_view* piece);

 private:
  enum class Form { kUnknown, kCodePage, kLittleEndian, kBigEndian, kUtf8 };

  bool Fill();
  void FindForm();
  std::string_view Cut();
  size_t EndOfLine(size_t from) const;
  void Convert(std::string_view bytes);

  More more_;
  std::string buffer_;
  std::string_view rest_;  // of the buffer or of the bytes that were given
  Form form_ = Form::kUnknown;
  std::string packed_;
};

}  // namespace kerno::ipx
