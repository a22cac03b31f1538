#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "disc/store/Disc.h"

namespace sectorbox {

// Replaces everything on the open partition of a card, by a format or a restore. The card has no
// room for the old disc beside the new one, so the change can't be whole or not at all. It goes in
// an order in which no half of it can be taken for a disc:
// - the front, where the map and the root directory begin, becomes zero;
// - everything behind the front is written;
// - the front is written, but without the mark of the root directory;
// - the mark is written.
// Each step is safe on the card before the next begins. After a step that has failed none follows.
// If it ends before the last step, for whatever reason, the destructor tells the user what is on
// the card.
class DiscReplacement {
 public:
  // Sectors of the front: the map, the root directory, and the sector that shares their blocks.
  static constexpr std::int32_t kFrontSectors = 8;

  // Who makes the front zero.
  enum class Front {
    kToBeCleared,  // Begin does
    kIsCleared,    // the caller has, since it made this object
  };

  // Nothing is written yet. disc outlives the object, and a partition of a card is open in it.
  explicit DiscReplacement(Disc& disc);
  ~DiscReplacement();
  DiscReplacement(const DiscReplacement&) = delete;
  DiscReplacement& operator=(const DiscReplacement&) = delete;

  // The front as it was before, in full or as much of it as the partition has.
  [[nodiscard]] const std::vector<std::uint8_t>& FormerFront() const { return former_; }
  // The first step. False if it fails; the user has been told. After it the caller writes what lies
  // behind the front, and nothing of the front.
  [[nodiscard]] bool Begin(Front front);
  [[nodiscard]] bool HasBegun() const { return state_ != State::kUntouched; }
  // The last two steps, once everything behind the front is written. front has the length of
  // FormerFront. False if a step fails, or if a write behind the front has failed.
  [[nodiscard]] bool Finish(std::span<const std::uint8_t> front);

 private:
  enum class State {
    kUntouched,
    kNoFront,    // the first step has failed
    kNoDisc,     // the first step is done
    kUncertain,  // the last step has failed
    kDone,
  };

  // Writes the front and waits until it is on the card. False if the card fails.
  [[nodiscard]] bool Put(std::span<const std::uint8_t> front);
  void Tell(const char* what);

  Disc& disc_;
  std::int32_t faults_;
  std::vector<std::uint8_t> former_;
  State state_ = State::kUntouched;
};

}  // namespace sectorbox
