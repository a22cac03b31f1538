#include "link/transfer/SendImage.h"

#include <array>
#include <cstddef>
#include <string>

#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/image/ImageFiles.h"
#include "disc/store/Disc.h"
#include "link/transfer/Transfer.h"
#include "link/wire/Commands.h"
#include "link/wire/Packets.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "link/wire/Trace.h"
#include "link/wire/WireCRC.h"

namespace sectorbox {
namespace {

class Sender final : public Transfer {
 public:
  Sender(Link& link, std::int32_t drive) : Transfer(link, drive, kWords) {}

  void Run(bool dataOnly) {
    // A receive clears the flag before it connects, a send only after that: an Abort that is still
    // set from before makes the connection fail.
    if (!ConnectIfClosed()) return;
    link_.AbortRequested = false;
    if (!AskBufferSize() || !ChooseFile() || !SelectDrive() || !AskDriveSize()) return;
    if (!OpenFile(fileName_, TransferFile::Access::kRead) || !FitsDrive()) return;
    OpenDialog();
    if (RunAreas(dataOnly) == Progress::kAbandoned) return;
    file_.reset();
    Finish();
  }

 private:
  static constexpr Words kWords = {"Send Image", "Sending",       "Written",
                                   "Writing",    "Error writing", "CRC Match - don't write"};

  bool ChooseFile();
  bool AskDriveSize();
  bool FitsDrive();
  Progress RunChunk() override;
  Progress WriteChunk();
  bool AnnounceChunk();
  void JudgeReply(bool replied, const std::string& reply, std::uint32_t wireCRC);
  Progress Abandon();

  std::string fileName_;
  DiscType type_ = kAdf;           // by the file's extension
  std::int64_t driveSectors_ = 0;  // free and used sectors of the drive together
};

bool Sender::ChooseFile() {
  fileName_ = link_.Host.AskOpenFileName({"Send ADFS Image", FilterOfImageFiles(), ""});
  if (fileName_.empty()) return false;
  const MediumKind* kind = KindOfExtension(fileName_);
  if (kind == nullptr) return Refuse("Unknown image type");
  type_ = kind->Type;
  layout_ = LayoutOf(type_);
  return true;
}

// *FREE prints the free sectors in hex at the start of its first line, and the used ones at the
// start of its second line. The second number stands right behind the first CR, as the BBC ends a
// line with LF and CR in that order.
bool Sender::AskDriveSize() {
  constexpr std::size_t kDigits = 6;
  const std::string reply = SendCommand(link_, "*FREE\r", true);
  const auto lineEnd = reply.find('\r');
  if (lineEnd == std::string::npos) return Refuse("Error getting free space");
  driveSectors_ = std::int64_t{ParseHex(reply.substr(0, kDigits))} +
                  ParseHex(reply.substr(lineEnd + 1, kDigits));
  return Advance();
}

bool Sender::FitsDrive() {
  std::array<std::uint8_t, std::size_t{2} * wire::kSectorSize> sectors{};
  file_->ReadAt(0, sectors);  // sectors 0 and 1 are the first in every layout
  map_ = ParseTransferMap(link_, sectors);
  // A hard disc image is sent whatever its size: the user may know more of the drive than *FREE
  // tells.
  if (type_ == kDat || map_.DiscSize <= driveSectors_) return true;
  return Refuse("Drive " + std::to_string(drive_) + " is too small for the image");
}

Transfer::Progress Sender::Abandon() {
  link_.AbortRequested = false;  // the flag would refuse the order to abandon, too
  (void)SendCommand(link_, std::string(wire::kAbandon), false);
  ResetLink(link_);
  link_.Host.CloseTransfer();
  return Progress::kAbandoned;
}

Transfer::Progress Sender::RunChunk() {
  count_ = std::min(chunkLimit_, areaLeft_);
  if (link_.AbortRequested) return Abandon();
  BeginChunk();
  file_->ReadChunk(layout_, current_, count_, map_.DiscSize, buffer_);
  std::uint32_t dataCRC = 0;
  UpdateCRC(dataCRC, buffer_);
  if (link_.Host.CheckBeforeTransfer()) {
    switch (CompareWithDrive(dataCRC)) {
      case Compared::kAborted:
        return Abandon();
      case Compared::kNoReply:
        CountRetry();
        ResetLink(link_);
        return Progress::kGoOn;
      case Compared::kEqual:
        AccountForChunk();
        ShowProgress();
        return Progress::kGoOn;
      case Compared::kDifferent:
        break;
    }
  }
  return WriteChunk();
}

// Sends the write command and waits for its acknowledge. If none comes, the server may still wait
// for the rest of a stream, so it is told to abandon that before the chunk is sent again.
bool Sender::AnnounceChunk() {
  if (IsAcknowledge(SendCommand(link_, ChunkCommand('a'), true))) return true;
  TraceLine(link_, "Received no reply for disc " + std::to_string(drive_) + " sector " +
                       std::to_string(current_) + " from BBC\r");
  const bool abortWanted = link_.AbortRequested;
  link_.AbortRequested = false;
  (void)SendCommand(link_, std::string(wire::kAbandon), false);
  ResetLink(link_);
  CountRetry();
  // An Abort may have come while the acknowledge was awaited; the next chunk takes it up at its
  // start. The dialog is gone, so if the Abort were lost here, nobody could end the transfer.
  if (abortWanted) link_.AbortRequested = true;
  return false;
}

Transfer::Progress Sender::WriteChunk() {
  if (!AnnounceChunk()) return Progress::kGoOn;
  std::uint32_t wireCRC = 0;
  SendPacket(link_, buffer_, wireCRC, count_);
  if (link_.AbortRequested) return Abandon();
  TraceLine(link_, "Waiting for CRC\r");
  std::string reply;
  const bool replied = ReadReply(link_, reply);
  if (link_.AbortRequested) return Abandon();
  JudgeReply(replied, reply, wireCRC);
  ShowProgress();
  return Progress::kGoOn;
}

void Sender::JudgeReply(bool replied, const std::string& reply, std::uint32_t wireCRC) {
  if (!replied) {
    CountRetry();
    ResetLink(link_);
  } else if (IsFailureReply(reply)) {
    ++counters_.BadSectors;
    ShowCounters();
    GiveWay();
  } else if (TraceCRCs(link_, reply, wireCRC)) {
    AccountForChunk();
    CountSingle();
  } else {
    // The server has replied, so it is at rest: the chunk is sent again at once, without a reset.
    TraceLine(link_, "Mismatch in CRC\r");
    ++counters_.BadCRCs;
    ShowCounters();
  }
}

}  // namespace

void SendImage(Link& link, std::int32_t drive, bool dataOnly) {
  try {
    Sender(link, drive).Run(dataOnly);
  } catch (const HostError& error) {
    link.Host.CloseTransfer();
    link.Host.ShowWarning(error.what());
  } catch (const BbcSilent& silent) {
    link.Host.CloseTransfer();
    link.Host.ShowMessage(silent.what(), kLinkTitle);
  }
}

}  // namespace sectorbox
