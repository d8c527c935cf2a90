// A device context whose glyphs come out of a table and which records the text drawn into it.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/device_context.h"

namespace kerno {

// Builds buffers of native outline records.
class NativeBuffer {
 public:
  using Points = std::vector<std::pair<double, double>>;

  NativeBuffer& Polygon(double x, double y, uint32_t type = 24) {
    header_ = bytes_.size();
    Put<uint32_t>(16);
    Put<uint32_t>(type);
    PutPoint(x, y);
    return *this;
  }
  NativeBuffer& Record(uint16_t type, const Points& points) {
    Put(type);
    Put(static_cast<uint16_t>(points.size()));
    for (const auto& [x, y] : points) PutPoint(x, y);
    const auto length = static_cast<uint32_t>(bytes_.size() - header_);
    std::memcpy(&bytes_[header_], &length, sizeof length);
    return *this;
  }
  template <class T>
  NativeBuffer& Put(T value) {
    const auto* raw = reinterpret_cast<const uint8_t*>(&value);
    bytes_.insert(bytes_.end(), raw, raw + sizeof value);
    return *this;
  }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  void PutPoint(double x, double y) {
    Put(static_cast<int32_t>(x * 65536));
    Put(static_cast<int32_t>(y * 65536));
  }

  std::vector<uint8_t> bytes_;
  size_t header_ = 0;
};

struct FakeGlyph {
  GlyphMetrics metrics;
  std::vector<uint8_t> outline;
};

class FakeFont final : public Font {
 public:
  explicit FakeFont(std::u16string name) : name_(std::move(name)) {}
  const std::u16string& FaceName() const override { return name_; }
  bool HasGlyph(char32_t) const override { return true; }

 private:
  std::u16string name_;
};

// Over a DeviceContext, or over an interface derived from it.
template <class Interface>
class FakeContext : public Interface {
 public:
  std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) override {
    created.push_back(wanted);
    return std::make_unique<FakeFont>(wanted.face_name);
  }
  Font* SelectFont(Font* font) override {
    Font* before = selected_;
    selected_ = font;
    return before;
  }
  Font* SelectedFont() const override { return selected_; }
  bool GetTextMetrics(TextMetrics* wanted) override {
    *wanted = metrics;
    return true;
  }
  uint32_t GetGlyphOutline(char32_t ch, uint32_t, GlyphMetrics* wanted, uint32_t size, void* buffer,
                           const Mat2& matrix) override {
    last_matrix = matrix;
    const auto found = glyphs.find(ch);
    if (found == glyphs.end()) return kGdiError;
    *wanted = found->second.metrics;
    const auto needed = static_cast<uint32_t>(found->second.outline.size());
    if (!buffer) return needed + shrinks_between_calls;
    if (size < needed) return kGdiError;
    std::memcpy(buffer, found->second.outline.data(), needed);
    return needed;
  }
  bool GetTextExtent(std::u16string_view text, Extent* extent) override {
    *extent = {static_cast<int32_t>(text.size()) * 10, metrics.tmHeight};
    return true;
  }
  bool TextOut(int32_t x, int32_t y, std::u16string_view text) override {
    drawn.push_back({x, y, std::u16string(text)});
    return true;
  }

  struct Drawn {
    int32_t x, y;
    std::u16string text;
  };

  std::map<char32_t, FakeGlyph> glyphs;
  TextMetrics metrics;
  std::vector<LogFont> created;
  std::vector<Drawn> drawn;
  Mat2 last_matrix;
  uint32_t shrinks_between_calls = 0;

 private:
  Font* selected_ = nullptr;
};

class FakeDeviceContext : public FakeContext<DeviceContext> {};

}  // namespace kerno
