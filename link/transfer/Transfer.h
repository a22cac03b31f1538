#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "link/transfer/TransferFile.h"
#include "link/transfer/TransferMap.h"
#include "link/wire/Link.h"

namespace sectorbox {

// What a receive and a send have in common: the steps to the drive, the areas, their chunks, the
// dialog and the end. An area is a stretch of used sectors between two free runs; a transfer of the
// whole disc has one area. A chunk is the sectors that one exchange carries.
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
  virtual ~Transfer();

  // One exchange for the next chunk: it sets count_, moves the sectors, and accounts for them. A
  // chunk that failed isn't accounted for, and so it comes again.
  virtual Progress RunChunk() = 0;

  // The steps up to the first chunk. Each gives false if it failed; a box has told the user why
  // then.
  [[nodiscard]] bool ConnectIfClosed();
  [[nodiscard]] bool AskBufferSize();
  [[nodiscard]] bool SelectDrive();
  [[nodiscard]] bool OpenFile(const std::string& fileName, TransferFile::Access access);
  // A step has gone well: notes that the BBC has answered (Silence.h); always true.
  bool Advance();
  // Shows the message; always false.
  [[nodiscard]] bool Refuse(const std::string& message);

  // Tells what comes next, until the dialog opens or the transfer is over.
  void ShowStep(const std::string& text);
  // Opens the dialog, and clears AbortRequested.
  void OpenDialog();
  // Goes through all chunks of all areas.
  [[nodiscard]] Progress RunAreas(bool dataOnly);
  // The end: checks the count of sectors, enables OK in the dialog, and plays the sound.
  void Finish();

  // --- Within a chunk --------------------------------------------------------------------------
  // Shows and traces the chunk's sectors, and sizes buffer_ for them.
  void BeginChunk();
  // The command of one exchange: a letter, then drive, first sector and count.
  [[nodiscard]] std::string ChunkCommand(char letter) const;
  // Asks for the CRC of the chunk's plain data on the drive, and compares it with crc. If the
  // server can't read its disc, the result is kDifferent: the chunk is transferred then.
  enum class Compared { kEqual, kDifferent, kNoReply, kAborted };
  [[nodiscard]] Compared CompareWithDrive(std::uint32_t crc);
  // The chunk is done, as it was exchanged or found unchanged. CountSingle is for an exchange only:
  // it counts down the single sectors that GiveWay has asked for.
  void AccountForChunk();
  void CountSingle();
  // The chunk can't be read or written. Its sectors are tried one by one then. If the chunk is a
  // single sector, that sector is given up and traced, and the next chunk is a full one again.
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
  std::int32_t done_ = 0;           // sectors handled, those given up included
  std::int32_t chunkLimit_ = 0;     // the most sectors in an exchange
  std::int32_t singlesLeft_ = 0;    // single sectors to come before full chunks come back
  std::vector<std::uint8_t> buffer_;

 private:
  void ShowTotal();
  void EndSteps();

  bool stepShown_ = false;
};

}  // namespace sectorbox
