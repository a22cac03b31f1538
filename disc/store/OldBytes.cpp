#include "disc/store/OldBytes.h"

#include <algorithm>

namespace sectorbox {
namespace {

// Bytes are kept in pieces that begin at a multiple of this.
constexpr std::size_t kPiece = 1024;

}  // namespace

void OldBytes::Begin() {
  End();
  active_ = true;
}

void OldBytes::End() {
  active_ = false;
  old_.clear();
}

void OldBytes::Keep(std::span<const std::uint8_t> memory, std::size_t offset, std::size_t count) {
  if (!active_) return;
  const std::size_t end = std::min(offset + count, memory.size());
  for (std::size_t at = offset / kPiece * kPiece; at < end; at += kPiece) {
    if (old_.contains(at)) continue;
    const auto bytes = memory.subspan(at, std::min(kPiece, memory.size() - at));
    old_.emplace(at, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
  }
}

void OldBytes::Restore(std::span<std::uint8_t> memory) const {
  for (const auto& [at, bytes] : old_) {
    std::ranges::copy(bytes, memory.begin() + static_cast<std::ptrdiff_t>(at));
  }
}

}  // namespace sectorbox
