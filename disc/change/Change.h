#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "disc/change/Outcome.h"
#include "disc/store/Disc.h"

namespace sectorbox {

// A change to the open disc that is whole or not at all, whatever happens: a host that fails, a
// program that is killed, a power cut. Every operation that changes a disc makes one. A Change that
// is made while another one runs joins it.
//
// Commit makes the change safe. If a HostError, or anything else, leaves the scope of the Change
// before that, the destructor drops the change: the disc, the free list, the changed mark and the
// tracked sectors are what they were when it began.
//
// A change that the operation refuses in its middle is committed too: what was done before the
// refusal stays.
class Change {
 public:
  enum class Parts {
    kAllowed,  // Step may make parts of the change safe, each of which leaves a sound disc
    kNone,     // while this Change lives, Step does nothing, not even that of another Change
  };

  // HostError if the host fails; nothing has changed then.
  explicit Change(Disc& disc, Parts parts = Parts::kAllowed);
  ~Change();
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;

  // Ends the change. Of a Change that has joined another one, that one's Commit counts.
  void Commit();
  // True if parts of the running change may be made safe, and if the disc isn't in memory.
  [[nodiscard]] static bool MayStep(const Disc& disc);
  // True if so much has been done that Step would make it safe.
  [[nodiscard]] static bool StepIsDue(const Disc& disc);
  // Makes safe what the running change of the disc has done so far, if that is much. The change
  // goes on. The disc has to be sound at this moment: its map and catalogue agree.
  static void Step(Disc& disc);
  // The same, however much has been done, if MayStep.
  static void StepNow(Disc& disc);

 private:
  void Begin();
  void Restore();

  Disc& disc_;
  Parts parts_;
  bool joined_;
  bool open_ = true;

  // What it was when the change began.
  std::array<std::int32_t, format::kMapEntriesInMemory> freeStart_{};
  std::array<std::int32_t, format::kMapEntriesInMemory> freeLen_{};
  std::int16_t freeCount_ = 0;
  bool imageChanged_ = false;
  std::vector<std::pair<std::int32_t*, std::int32_t>> tracked_;
};

// True if the open disc may be changed. Else the user has been told why: another program works on
// it or has changed it since it was opened, or its map and its catalogue contradict each other, so
// that a change could lose something.
[[nodiscard]] bool MayChange(Disc& disc);

// Runs work, which gives an Outcome, in a change. kRefused if the disc may not be changed.
template <typename Work>
[[nodiscard]] Outcome InChange(Disc& disc, Work work,
                               Change::Parts parts = Change::Parts::kAllowed) {
  if (!MayChange(disc)) return Outcome::kRefused;
  Change change(disc, parts);
  const Outcome outcome = work();
  change.Commit();
  return outcome;
}

}  // namespace sectorbox
