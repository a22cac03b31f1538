#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "link/transfer/TransferFile.h"
#include "link/transfer/TransferMap.h"
#include "link/wire/Link.h"

namespace sectorbox {

// What a receive and a send have in common: getting hold of the drive, the areas to go through, the
// chunks within them, the dialog and the end. An area is a stretch of used sectors between two free
// runs; a whole-disc transfer has one area. A chunk is what one exchange carries.
class Transfer {
 public:
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

 protected:
  // The words in which the two directions differ.
  struct Words {
    const char* Caption;    // of the dialog
    const char* Chunk;      // "Receiving", in front of the chunk's sectors
    const char* Total;      // "Read", in front of the running total
    const char* Area;       // "Reading", in the trace of an area
    const char* GivenUp;    // "Error reading", in the trace of a sector
    const char* Unchanged;  // the trace of a chunk that needs no transfer
  };
  enum class Progress { kGoOn, kAbandoned };

  Transfer(Link& link, std::int32_t drive, const Words& words);
  virtual ~Transfer() = default;

  // One exchange for the next chunk: sets the chunk's place, moves it, accounts for it. A chunk
  // that failed is simply not accounted for, and so comes again.
  virtual Progress RunChunk() = 0;

  // Steps of the way to the first chunk. Each gives false when it has shown why not.
  bool ConnectIfClosed();
  bool AskBufferSize();
  bool SelectDrive();
  bool OpenFile(const std::string& fileName, TransferFile::Access access);
  bool Refuse(const std::string& message);

  // The dialog, the list of areas, and all chunks of all areas.
  void OpenDialog();
  Progress RunAreas(bool dataOnly);
  // The count of sectors, OK in the dialog, and the sound.
  void Finish();

  // --- Within a chunk --------------------------------------------------------------------------
  // The next chunk's length; shown and traced.
  void BeginChunk();
  // The command of one exchange: a letter, then drive, first sector and count.
  std::string ChunkCommand(char letter) const;
  // Asks for the CRC of the chunk's plain data as the drive holds it, and compares it with crc. A
  // server that can't read its disc counts as different: the chunk is transferred then.
  enum class Compared { kEqual, kDifferent, kNoReply, kAborted };
  Compared CompareWithDrive(std::uint32_t crc);
  // The chunk is done: exchanged or found unchanged. Only an exchange counts singles down.
  void AccountForChunk();
  void CountSingle();
  // A chunk that can't be read or written is gone through sector by sector; a single sector that
  // can't is given up, traced, and full chunks resume at once.
  void GiveWay();
  void CountRetry();
  void ShowCounters();
  void ShowProgress();

  Link& link_;
  const std::int32_t drive_;
  const Words& words_;
  TransferCounters counters_;
  TransferMap map_;
  std::unique_ptr<TransferFile> file_;
  FileLayout layout_ = FileLayout::kLinear;
  std::int32_t bufferSectors_ = 0;  // the server's buffer
  std::int32_t usedSectors_ = 0;    // sectors that the transfer has to deliver
  std::int32_t areaLeft_ = 0;       // sectors still to do in the current area
  std::int32_t current_ = 0;        // first sector of the chunk
  std::int32_t count_ = 0;          // sectors in the chunk
  std::int32_t done_ = 0;           // sectors handled, skipped ones included
  std::int32_t chunkLimit_ = 0;     // the most sectors per exchange
  std::int32_t singlesLeft_ = 0;    // single exchanges before full chunks come back
  std::vector<std::uint8_t> buffer_;

 private:
  void ShowTotal();
};

}  // namespace sectorbox
