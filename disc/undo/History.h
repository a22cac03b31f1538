#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <optional>
#include <span>
#include <string>

#include "disc/change/Outcome.h"
#include "disc/store/Disc.h"
#include "disc/store/DiscWatcher.h"
#include "disc/undo/KeptBlocks.h"

namespace sectorbox {

// The steps that changed the open disc, each of which can be taken back and done again. A step is
// what one command has done: its name and the bytes that the disc had before, in blocks. Undoing
// brings these bytes back and keeps the newer ones instead, so a step that was undone is done again
// in the same way.
//
// What is stored while no step runs makes the history empty, since the bytes of its steps no longer
// fit the disc. So does another disc. A save doesn't: what it cuts off is kept with the last step.
class History : private DiscWatcher {
 public:
  static constexpr std::size_t kMostSteps = 100;

  // What a step does to the mark of unsaved changes (Disc::ImageChanged).
  enum class Mark {
    kSets,    // the command sets it, as nearly all do
    kLeaves,  // the command leaves it as it is
  };
  enum class Place {
    kNew,          // a step of its own
    kWithTheLast,  // one step with the last one, if that can still be undone
  };

  // Watches the store of disc, which outlives the history.
  explicit History(Disc& disc, UndoRoom room = {});
  ~History() override;
  History(const History&) = delete;
  History& operator=(const History&) = delete;

  // While this object lives, what is stored on the disc is one step. A step that is begun inside
  // another one is a part of that one. Of a step in which nothing has become safe nothing is left.
  class Step {
   public:
    Step(History& history, std::string name, Mark mark = Mark::kSets, Place place = Place::kNew)
        : history_(history) {
      history_.Begin(std::move(name), mark, place);
    }
    ~Step() { history_.End(); }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

    // A better name, when more is known.
    void SetName(std::string name) { history_.name_ = std::move(name); }

   private:
    History& history_;
  };

  [[nodiscard]] bool CanUndo() const { return position_ > 0; }
  [[nodiscard]] bool CanRedo() const { return position_ < steps_.size(); }
  // The name of the step that would be undone, or done again; empty if there is none.
  [[nodiscard]] std::string UndoName() const;
  [[nodiscard]] std::string RedoName() const;
  // A number that no other step has; 0 if nothing can be undone.
  [[nodiscard]] std::int64_t LastStep() const;
  // Takes the last step back, or does the step again that was undone last. The disc is changed as
  // by any command: whole or not at all. kRefused if there is no such step, or the disc may not be
  // changed; the user has been told. HostError if the host fails: the step can be tried again then,
  // unless UndoName and RedoName show that it was made all the same.
  [[nodiscard]] Outcome Undo();
  [[nodiscard]] Outcome Redo();
  void Clear();
  // False if a step runs that can't be undone later. The user has been told.
  [[nodiscard]] bool IsKeeping() const { return depth_ == 0 || running_.has_value(); }

  // The running step is about to change about so many bytes of the disc. If they are too many to be
  // kept, the user is told now, and the history begins anew after the step.
  void Expect(std::int64_t bytes);

 private:
  enum class WhenFull { kDropOldest, kGiveUp };

  struct Record {
    explicit Record(UndoRoom& room) : Old(room) {}

    std::string Name;
    Mark Marks = Mark::kSets;
    std::int64_t Number = 0;
    // Of the disc after the step. Steps that leave the mark of unsaved changes have the version of
    // the step before.
    std::int64_t Version = 0;
    // The bytes on the other side of the step: before it, or after it once it is undone.
    KeptBlocks Old;
    std::int64_t Length = 0;      // of the image on that side, in bytes
    std::int64_t LengthHere = 0;  // on this side
    // The sum of the same blocks on this side, as far as the image reaches. Another program has
    // changed the disc if they have another one. None if it isn't known.
    std::optional<std::uint64_t> Sum;
  };

  // --- What the store tells --------------------------------------------------------------------
  void DiscOpened() override { Clear(); }
  void BytesWillChange(std::int64_t offset, std::size_t size) override;
  void BytesWillVanish(std::int64_t offset, std::size_t size) override;
  void DeviceWritten() override { Clear(); }
  void ChangeEnded(bool isMade) noexcept override;

  // --- A step ----------------------------------------------------------------------------------
  void Begin(std::string name, Mark mark, Place place);
  void End() noexcept;
  void Finish(Record record);
  // Keeps those blocks of the range that kept doesn't have yet. False if there is no room, or if
  // the bytes can't be read.
  [[nodiscard]] bool Keep(KeptBlocks& kept, std::int64_t offset, std::size_t size,
                          WhenFull whenFull);
  [[nodiscard]] bool KeepOne(KeptBlocks& kept, std::int32_t block,
                             std::span<const std::uint8_t> bytes, WhenFull whenFull);
  // What is named can't be undone, and so no earlier step fits the disc any more.
  void Lose(const std::string& what);
  // Drops the first step, which can be undone.
  void DropOldest();
  // A command that failed, or an undo that failed, may have written into free sectors. What they
  // held before belongs to the last step, since it may be what an earlier step has deleted.
  void GiveToTheLast(const KeptBlocks& kept);

  // --- Undo ------------------------------------------------------------------------------------
  // Brings the disc to the other side of a step; position_ is position then.
  [[nodiscard]] Outcome Swap(std::size_t step, std::size_t position);
  // True if the blocks of the step are as the step has left them. Else the user is told.
  [[nodiscard]] bool IsAsLeft(const Record& record);
  // Makes the record of the opposite step. False if there is no room for all of its bytes.
  [[nodiscard]] bool KeepOpposite(const Record& record, Record& opposite);
  void ForgetOpposite(std::size_t step);
  void GiveBack(const KeptBlocks& kept, bool isWhole);
  // Stores the bytes of the record in one change. Gives the failure, if there is one; isMade_ tells
  // if the change was made all the same.
  [[nodiscard]] std::exception_ptr PutBack(const Record& record);
  // None if the blocks can't be read.
  [[nodiscard]] std::optional<std::uint64_t> SumNow(const Record& record);
  // The disc isn't as the steps that were undone have left it, in sectors that nothing needs.
  void ForgetRedoSums();
  [[nodiscard]] std::int64_t VersionAt(std::size_t position) const;
  // Notes that the disc is as it was saved, if it has no mark of unsaved changes.
  void NoteSaved();

  Disc& disc_;
  UndoRoom room_;
  std::deque<Record> steps_;  // those before position_ can be undone, the others done again
  std::size_t position_ = 0;
  std::int64_t lastNumber_ = 0;
  std::int64_t firstVersion_ = 0;  // of the disc before the first step
  std::optional<std::int64_t> savedVersion_;

  int depth_ = 0;     // how many Step objects live
  std::string name_;  // of the step that runs now or was the last one
  Place place_ = Place::kNew;
  std::optional<Record> running_;  // none if no step runs, or if it was lost
  bool isPending_ = false;         // something was stored that isn't safe yet
  bool isMade_ = false;            // something was stored that is safe
  bool isSwapping_ = false;
};

}  // namespace sectorbox
