#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "disc/host/HostError.h"
#include "disc/medium/JournalPlace.h"
#include "disc/medium/Medium.h"
#include "disc/medium/MediumKinds.h"

namespace sectorbox::testing {

// What goes wrong on a medium, and when. The same plan serves all mediums that a store opens one
// after the other, so that it goes on counting when a disc is closed and opened again.
struct FaultPlan {
  enum class Operation { kRead, kWrite, kSync };
  enum class Kind {
    kNone,  // nothing; the operations are only counted
    kFail,  // the operation is a HostError and does nothing
    kTear,  // half of a write reaches the medium, then it is a HostError; a read or sync fails
    kLast,  // the operation is done, and no later write reaches the medium: the program was killed
    kCut,   // as kLast, and some of what was written since the last sync is lost: a power cut
  };

  Operation What = Operation::kWrite;
  Kind Fault = Kind::kNone;
  int At = 0;  // the operation that meets the fault, counted from 0

  int Reads = 0;
  int Writes = 0;
  int Syncs = 0;
  bool Dead = false;  // after kLast and kCut: writes are lost without a word
  // Which blocks a power cut takes away: bit n stands for the blocks whose number is n modulo 8.
  // Bit 8 stands for the removal of a journal, or for one that was written.
  unsigned Lost = 0;
  // What stood in the blocks before they were written, since the last sync.
  std::map<std::int32_t, std::vector<std::uint8_t>> Unsynced;
  // The journal that was removed last, until another one is written.
  std::vector<std::uint8_t> RemovedJournal;
  bool JournalIsSynced = true;
  // The host isn't asked to sync, which is slow. For tests in which no program dies; it stays when
  // a fault is set.
  bool SkipsSyncs = false;
  // Once a fault was met, every read fails.
  bool ReadsFailAfterwards = false;
  bool WasMet = false;

  [[nodiscard]] int Count() const {
    switch (What) {
      case Operation::kRead:
        return Reads;
      case Operation::kWrite:
        return Writes;
      case Operation::kSync:
        return Syncs;
    }
    return 0;
  }
  // Starts to count anew, with a fault at an operation.
  void Set(Operation what, Kind fault, int at, unsigned lost = 0) {
    const bool skipsSyncs = SkipsSyncs;
    *this = {};
    SkipsSyncs = skipsSyncs;
    What = what;
    Fault = fault;
    At = at;
    Lost = lost;
  }
};

// A medium that passes everything on to another one and does what its plan says.
class FaultyMedium final : public Medium {
 public:
  FaultyMedium(std::unique_ptr<Medium> inner, FaultPlan& plan)
      : inner_(std::move(inner)), plan_(plan) {}

  [[nodiscard]] bool InMemory() const override { return inner_->InMemory(); }
  [[nodiscard]] std::span<std::uint8_t> Memory() override { return inner_->Memory(); }
  [[nodiscard]] std::vector<std::uint8_t> WholeFile() override { return inner_->WholeFile(); }
  [[nodiscard]] Layout BlockLayout() const override { return inner_->BlockLayout(); }
  [[nodiscard]] bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) override {
    if (Meets(FaultPlan::Operation::kRead, plan_.Reads)) Fail();
    return inner_->ReadBlock(block, data);
  }
  void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) override {
    Write(
        [&] {
          KeepOld(block);
          inner_->WriteBlock(block, data);
        },
        [&] { TearBlock(block, data); });
  }
  void WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                   const StoredBytes& stored) override {
    Write(
        [&] {
          KeepOld(block);
          inner_->WriteStored(block, data, stored);
        },
        [] {});
  }
  [[nodiscard]] std::size_t ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) override {
    if (Meets(FaultPlan::Operation::kRead, plan_.Reads)) Fail();
    return inner_->ReadRun(offset, bytes);
  }
  [[nodiscard]] std::size_t WriteRun(std::int64_t offset,
                                     std::span<const std::uint8_t> bytes) override {
    std::size_t done = bytes.size() - bytes.size() % kBlockSize;
    Write(
        [&] {
          for (std::size_t at = 0; at < done; at += kBlockSize) {
            KeepOld(
                static_cast<std::int32_t>((offset + static_cast<std::int64_t>(at)) / kBlockSize));
          }
          done = inner_->WriteRun(offset, bytes);
        },
        [&] { (void)inner_->WriteRun(offset, bytes.first(bytes.size() / 2)); });
    return done;
  }
  void Cut(std::int64_t length) override {
    Write([&] { inner_->Cut(length); }, [] {});
  }
  void Sync() override {
    if (Meets(FaultPlan::Operation::kSync, plan_.Syncs)) Fail();
    if (plan_.Dead) return;
    if (!plan_.SkipsSyncs) inner_->Sync();
    plan_.Unsynced.clear();
  }
  [[nodiscard]] JournalPlace* Journal() override {
    return inner_->Journal() == nullptr ? nullptr : &journal_;
  }
  [[nodiscard]] std::vector<std::unique_ptr<JournalPlace>> OldJournals() override {
    return inner_->OldJournals();
  }
  void NoteJournal(bool isThere) override {
    if (!plan_.Dead) inner_->NoteJournal(isThere);
  }
  [[nodiscard]] std::string NotedJournal() const override { return inner_->NotedJournal(); }
  [[nodiscard]] std::int32_t WriteFaults() const override { return inner_->WriteFaults(); }
  [[nodiscard]] std::int32_t ReadFaults() const override { return inner_->ReadFaults(); }
  [[nodiscard]] std::int64_t Extent() const override { return inner_->Extent(); }
  [[nodiscard]] std::int64_t EndOfData() const override { return inner_->EndOfData(); }
  [[nodiscard]] std::int64_t LongestFile() const override { return inner_->LongestFile(); }
  [[nodiscard]] std::optional<std::int32_t> UsableSectors() const override {
    return inner_->UsableSectors();
  }
  [[nodiscard]] std::span<const std::uint8_t> Storable(
      std::int64_t offset, std::span<const std::uint8_t> bytes) override {
    return inner_->Storable(offset, bytes);
  }
  [[nodiscard]] std::int32_t Faults() const override { return inner_->Faults(); }
  [[nodiscard]] std::int32_t DeviceSectors() const override { return inner_->DeviceSectors(); }
  void WriteDeviceSectors(std::int32_t sector, std::span<const std::uint8_t> bytes) override {
    Write([&] { inner_->WriteDeviceSectors(sector, bytes); }, [] {});
  }
  [[nodiscard]] bool IsOpen() const override { return inner_->IsOpen(); }
  [[nodiscard]] bool IsReady() const override { return inner_->IsReady(); }
  [[nodiscard]] bool Is(const std::string& path) const override { return inner_->Is(path); }
  [[nodiscard]] std::string HostPath() const override { return inner_->HostPath(); }
  [[nodiscard]] bool MayBeReplaced() const override { return inner_->MayBeReplaced(); }
  void Close() override {
    if (inner_->InMemory()) {
      Write([&] { inner_->Close(); }, [] {});
    } else {
      inner_->Close();
    }
  }

 private:
  // The journal of the inner medium. Writing it and removing it are writes of the plan, and so on.
  class FaultyJournal final : public JournalPlace {
   public:
    explicit FaultyJournal(FaultyMedium& medium) : medium_(medium) {}
    [[nodiscard]] std::int64_t Length() override { return Inner().Length(); }
    void ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) override {
      if (medium_.Meets(FaultPlan::Operation::kRead, medium_.plan_.Reads)) Fail();
      Inner().ReadAt(offset, bytes);
    }
    [[nodiscard]] bool IsInUse() override { return Inner().IsInUse(); }
    void RequireRoom() override { Inner().RequireRoom(); }
    void Append(std::span<const std::uint8_t> bytes) override {
      medium_.Write(
          [&] {
            Inner().Append(bytes);
            medium_.plan_.JournalIsSynced = false;
            medium_.plan_.RemovedJournal.clear();
          },
          [&] { Inner().Append(bytes.first(bytes.size() / 2)); });
    }
    void Sync() override {
      if (medium_.Meets(FaultPlan::Operation::kSync, medium_.plan_.Syncs)) Fail();
      if (medium_.plan_.Dead) return;
      if (!medium_.plan_.SkipsSyncs) Inner().Sync();
      medium_.plan_.JournalIsSynced = true;
    }
    void Remove() override {
      medium_.Write(
          [&] {
            medium_.plan_.RemovedJournal = All();
            Inner().Remove();
          },
          [] {});
    }
    // The power is cut: the removal of a journal is lost, or half of one that wasn't synced.
    void LoseUnsynced() {
      std::vector<std::uint8_t> left = medium_.plan_.RemovedJournal;
      if (left.empty() && !medium_.plan_.JournalIsSynced) {
        left = All();
        left.resize(left.size() / 2);
        Inner().Remove();
      }
      if (left.empty()) return;
      Inner().Append(left);
      Inner().Sync();
    }

   private:
    std::vector<std::uint8_t> All() {
      std::vector<std::uint8_t> bytes(static_cast<std::size_t>(Inner().Length()));
      if (!bytes.empty()) Inner().ReadAt(0, bytes);
      return bytes;
    }
    JournalPlace& Inner() { return *medium_.inner_->Journal(); }

    FaultyMedium& medium_;
  };

  [[noreturn]] static void Fail() { throw HostError("faulty medium", "Input/output error"); }

  // Counts the operation. True if it fails.
  bool Meets(FaultPlan::Operation what, int& count) {
    const int number = count++;
    if (what == FaultPlan::Operation::kRead && plan_.WasMet && plan_.ReadsFailAfterwards) {
      return true;
    }
    if (plan_.What != what || number != plan_.At || plan_.Dead) return false;
    plan_.WasMet = true;
    plan_.Dead = plan_.Fault == FaultPlan::Kind::kLast || plan_.Fault == FaultPlan::Kind::kCut;
    return plan_.Fault == FaultPlan::Kind::kFail || plan_.Fault == FaultPlan::Kind::kTear;
  }

  template <typename Whole, typename Torn>
  void Write(Whole whole, Torn torn) {
    const bool wasDead = plan_.Dead;
    if (Meets(FaultPlan::Operation::kWrite, plan_.Writes)) {
      if (plan_.Fault == FaultPlan::Kind::kTear && !wasDead) torn();
      Fail();
    }
    if (wasDead) return;
    whole();
    if (plan_.Dead && plan_.Fault == FaultPlan::Kind::kCut) LoseUnsynced();
  }

  void KeepOld(std::int32_t block) {
    if (plan_.Unsynced.contains(block)) return;
    std::vector<std::uint8_t> old(inner_->BlockLayout().BlockBytes);
    (void)inner_->ReadBlock(block, old);
    plan_.Unsynced[block] = std::move(old);
  }

  // The power is cut: the blocks that the plan names are what they were at the last sync.
  void LoseUnsynced() {
    for (const auto& [block, old] : plan_.Unsynced) {
      if ((plan_.Lost >> (block % 8) & 1U) != 0) inner_->WriteBlock(block, old);
    }
    if ((plan_.Lost >> 8 & 1U) != 0) journal_.LoseUnsynced();
  }

  // The front half of a block is new, the rest is what stood there.
  void TearBlock(std::int32_t block, std::span<const std::uint8_t> data) {
    std::vector<std::uint8_t> torn(data.size());
    (void)inner_->ReadBlock(block, torn);
    std::copy_n(data.begin(), data.size() / 2, torn.begin());
    inner_->WriteBlock(block, torn);
  }

  std::unique_ptr<Medium> inner_;
  FaultPlan& plan_;
  FaultyJournal journal_{*this};
};

// Puts a FaultyMedium around every medium that a store opens.
class FaultyMaker final : public MediumMaker {
 public:
  explicit FaultyMaker(FaultPlan& plan) : plan_(plan) {}
  [[nodiscard]] std::unique_ptr<Medium> Make(DiscType type, const MediumRequest& request,
                                             const MediumParts& parts) override {
    return std::make_unique<FaultyMedium>(MediumMaker::Make(type, request, parts), plan_);
  }

 private:
  FaultPlan& plan_;
};

}  // namespace sectorbox::testing
