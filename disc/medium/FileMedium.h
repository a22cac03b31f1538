#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "disc/host/HostFile.h"
#include "disc/medium/JournalPlace.h"
#include "disc/medium/Medium.h"

namespace sectorbox {

// HostError if a journal lies beside the image at path: a change to it was interrupted, and can't
// be finished any more if another image takes its place.
void RequireNoJournal(const std::string& path);

// A hard disc image (.dat): a flat file of 256-byte sectors that is read and written in place. It
// grows when a block beyond its end is written.
class FileMedium final : public Medium {
 public:
  // A file that doesn't exist is created. A file that the host lets us only read is opened for
  // reading, and Storable then throws a HostError with the host's reason.
  explicit FileMedium(const std::string& path);

  [[nodiscard]] bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) override;
  void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) override;
  [[nodiscard]] std::size_t ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  [[nodiscard]] std::size_t WriteRun(std::int64_t offset,
                                     std::span<const std::uint8_t> bytes) override;
  void Cut(std::int64_t length) override { file_.Cut(static_cast<std::uint64_t>(length)); }
  void Sync() override { file_.Sync(); }
  // Beside the file, with "-journal" behind its name. If no file can be made there, in the user's
  // state folder, with the file's identity in its name.
  [[nodiscard]] JournalPlace* Journal() override;
  [[nodiscard]] std::vector<std::unique_ptr<JournalPlace>> OldJournals() override;
  // The file keeps the note. A file that has got another name, or has two, is finished by the
  // journal that lies beside the former name.
  void NoteJournal(bool isThere) override;
  [[nodiscard]] std::string NotedJournal() const override;
  [[nodiscard]] std::int64_t EndOfData() const override;
  [[nodiscard]] std::int64_t LongestFile() const override;
  [[nodiscard]] std::span<const std::uint8_t> Storable(
      std::int64_t offset, std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] bool IsOpen() const override { return file_.IsOpen(); }
  [[nodiscard]] std::string HostPath() const override { return file_.Path(); }
  [[nodiscard]] bool Is(const std::string& path) const override;
  void Close() override { file_.Close(); }

 private:
  // Reads all of bytes. What lies behind the end of the file are zeros.
  void ReadAt(std::uint64_t place, std::span<std::uint8_t> bytes) const;

  RandomAccessFile file_;
  std::string journalPath_;
  JournalFile journal_{journalPath_};
  StateJournal elsewhere_;
};

}  // namespace sectorbox
