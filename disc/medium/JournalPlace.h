#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "disc/host/FileLock.h"
#include "disc/host/HostFile.h"

namespace sectorbox {

// The place where a medium keeps its journal (BlockJournal.h): one string of bytes that survives
// the end of the program. Offsets and lengths count bytes of the journal.
class JournalPlace {
 public:
  virtual ~JournalPlace() = default;

  // The length of the journal; 0 if there is none. HostError if the host fails.
  [[nodiscard]] virtual std::int64_t Length() = 0;
  // Fills all of bytes from offset on. HostError if the host fails or the journal ends before.
  virtual void ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) = 0;
  // True if another program is at work with the journal.
  [[nodiscard]] virtual bool IsInUse() = 0;
  // HostError if another file stands where a journal would be begun.
  virtual void RequireRoom() = 0;
  // Writes bytes behind the last ones. The first call, and the first one after Remove, begins a new
  // journal. HostError if the host fails; a part of the bytes may be there then. HostError too if
  // another file stands there; it stays.
  virtual void Append(std::span<const std::uint8_t> bytes) = 0;
  // Returns when all that was appended is safe, also against a power cut. HostError if the host
  // fails.
  virtual void Sync() = 0;
  // Afterwards there is no journal. Nothing happens if there was none. HostError if the host fails.
  virtual void Remove() = 0;
};

// A journal in a host file of its own.
class JournalFile final : public JournalPlace {
 public:
  explicit JournalFile(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] std::int64_t Length() override;
  void ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  [[nodiscard]] bool IsInUse() override;
  void RequireRoom() override;
  void Append(std::span<const std::uint8_t> bytes) override;
  void Sync() override;
  void Remove() override;

 private:
  std::string path_;
  FileLock lock_;          // on the journal that Append has begun
  RandomAccessFile file_;  // not open before the first call
  // Bytes of the journal that Append has begun; none before.
  std::optional<std::int64_t> written_;
  bool isOurs_ = false;  // Append has begun the file that is there
};

// A journal in the user's state folder, in a file with a name of its own. It is for mediums that
// have no folder beside them. What an earlier program left there is reached through FilesOf.
class StateJournal final : public JournalPlace {
 public:
  // kind begins the file's name. Journals of one kind are for mediums that look alike.
  explicit StateJournal(std::string kind) : kind_(std::move(kind)) {}

  // The files of all journals of a kind that are there.
  [[nodiscard]] static std::vector<std::string> FilesOf(const std::string& kind);

  [[nodiscard]] std::int64_t Length() override;
  void ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  [[nodiscard]] bool IsInUse() override { return false; }
  void RequireRoom() override {}  // each has a name of its own
  void Append(std::span<const std::uint8_t> bytes) override;
  void Sync() override;
  void Remove() override;

 private:
  std::string kind_;
  std::optional<JournalFile> file_;  // none if Append has begun no journal
};

}  // namespace sectorbox
