#include "export/section_buffer.h"

#include <algorithm>
#include <utility>

namespace kerno {
namespace {

constexpr size_t kFirstChunk = size_t{4} << 10;
constexpr size_t kChunk = size_t{1} << 20;

}  // namespace

SectionBuffer::SectionBuffer(std::filesystem::path folder, std::string prefix, size_t memory_limit)
    : folder_(std::move(folder)), prefix_(std::move(prefix)), memory_limit_(memory_limit) {}

void SectionBuffer::AddChunk(size_t least) {
  if (stream_ && in_memory_ >= kChunk) Stream();
  if (in_memory_ >= memory_limit_) Spill();
  if (!spare_.empty() && spare_.back().capacity >= least) {
    in_memory_ += spare_.back().capacity;
    chunks_.push_back(std::move(spare_.back()));
    spare_.pop_back();
    return;
  }
  const size_t usual = std::clamp(in_memory_, kFirstChunk, kChunk);
  Chunk chunk;
  chunk.capacity = std::max(least, usual);
  chunk.bytes = std::make_unique_for_overwrite<char[]>(chunk.capacity);
  in_memory_ += chunk.capacity;
  chunks_.push_back(std::move(chunk));
}

// A scratch file that cannot be made or is full is no failure: the bytes stay in memory.
void SectionBuffer::Spill() {
  Status status;
  if (may_spill_ && !scratch_) scratch_ = ScratchFile::Create(folder_, prefix_, &status);
  may_spill_ = may_spill_ && scratch_;
  size_t done = 0;
  while (may_spill_ && done < chunks_.size()) {
    Chunk& chunk = chunks_[done];
    may_spill_ = scratch_->Append({chunk.bytes.get(), chunk.used}).ok();
    if (!may_spill_) break;
    spilled_ += chunk.used;
    in_memory_ -= chunk.capacity;
    chunk.used = 0;
    spare_.push_back(std::move(chunk));
    ++done;
  }
  chunks_.erase(chunks_.begin(), chunks_.begin() + static_cast<std::ptrdiff_t>(done));
}

void SectionBuffer::Stream() {
  for (Chunk& chunk : chunks_) {
    if (stream_status_.ok()) stream_status_ = stream_->Write({chunk.bytes.get(), chunk.used});
    in_memory_ -= chunk.capacity;
    chunk.used = 0;
    spare_.push_back(std::move(chunk));
  }
  chunks_.clear();
}

Status SectionBuffer::CopyTo(FileReplacement* out) const {
  if (!stream_status_.ok()) return stream_status_;
  const auto buffer = std::make_unique_for_overwrite<char[]>(spilled_ ? kChunk : 1);
  for (uint64_t at = 0; at < spilled_;) {
    size_t count = 0;
    Status status = scratch_->Read(at, buffer.get(), kChunk, &count);
    if (status.ok() && count == 0) {
      status = Status::Error(Failure::kOther, u"the temporary file", u"it has become shorter");
    }
    if (status.ok()) status = out->Write({buffer.get(), count});
    if (!status.ok()) return status;
    at += count;
  }
  for (const Chunk& chunk : chunks_) {
    if (Status status = out->Write({chunk.bytes.get(), chunk.used}); !status.ok()) return status;
  }
  return Status::Ok();
}

}  // namespace kerno
