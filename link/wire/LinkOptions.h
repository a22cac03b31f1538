#pragma once

#include <cstdint>

namespace sectorbox {

// The user's choices. The link asks for each at the moment of its use, since the user can change
// them at any time.
class LinkOptions {
 public:
  virtual ~LinkOptions() = default;

  // The ticked speed in baud; 0 if none of the five is ticked. Asked whenever the link connects.
  [[nodiscard]] virtual std::int32_t TickedSpeed() = 0;
  // Whether chunks that are equal on both sides are passed over. Asked before each chunk.
  [[nodiscard]] virtual bool CheckBeforeTransfer() = 0;
  // Asked at the end of a transfer.
  [[nodiscard]] virtual bool PlayWaveOnSuccess() = 0;
};

}  // namespace sectorbox
