#include "app/warm_glyphs.h"

#include <algorithm>
#include <utility>

namespace kerno {
namespace {

constexpr size_t kMostMaps = 4;           // sizes and poses that are in use at a time
constexpr size_t kMostSegments = 100000;  // of a store: some 10 MB
constexpr size_t kMostForms = 1000;

// The item that is like what is wanted, moved to the front; null where there is none.
template <class Item, class Like>
Item* ToFront(std::list<Item>* items, const Like& like) {
  const auto found = std::ranges::find_if(*items, like);
  if (found == items->end()) return nullptr;
  items->splice(items->begin(), *items, found);
  return &items->front();
}

}  // namespace

const WarmShape* ShapeStore::Find(const Key& key) const {
  const auto found = shapes_.find(key);
  return found == shapes_.end() ? nullptr : &found->second;
}

void ShapeStore::Keep(const Key& key, const Shape& shape, const ShapeNotes& notes) {
  for (const ShapePath& path : shape) segments_ += path.path.segments.size();
  segments_ += key.size();
  shapes_.try_emplace(key, WarmShape{shape, notes});
}

void ShapeStore::Trim() {
  if (segments_ <= kMostSegments) return;
  shapes_.clear();
  segments_ = 0;
}

void WarmGlyphs::Trim() {
  if (forms_.size() <= kMostForms) return;
  forms_.clear();
  inks_.clear();
  shapes_.clear();
}

uint32_t WarmGlyphs::IdOf(const GlyphForm& form) {
  const auto found = std::ranges::find(forms_, form);
  if (found == forms_.end()) forms_.push_back(form);
  return static_cast<uint32_t>(std::ranges::find(forms_, form) - forms_.begin());
}

WarmGlyphs::Inks& WarmGlyphs::InksUnder(const Linear& map) {
  if (KnownInks* known = ToFront(&inks_, [&](const KnownInks& k) { return k.map == map; })) {
    return known->inks;
  }
  if (inks_.size() == kMostMaps) inks_.pop_back();
  return inks_.emplace_front(KnownInks{map, {}}).inks;
}

bool WarmGlyphs::Knows(const Linear& map) const {
  return std::ranges::any_of(inks_, [&](const KnownInks& known) { return known.map == map; });
}

ShapeStore& WarmGlyphs::ShapesFor(const CutJob& job, const Linear& map) {
  const auto is_alike = [&](const KnownShapes& known) {
    return known.map == map && MakeSameShapes(known.job, job);
  };
  KnownShapes* known = ToFront(&shapes_, is_alike);
  if (!known) {
    if (shapes_.size() == kMostMaps) shapes_.pop_back();
    known = &shapes_.emplace_front(KnownShapes{map, job, {}});
  }
  known->store.Trim();
  return known->store;
}

}  // namespace kerno
