#include "link/transfer/ReceiveImage.h"

#include <array>

#include "disc/host/HostError.h"
#include "disc/image/ImageFiles.h"
#include "link/transfer/Transfer.h"
#include "link/wire/Commands.h"
#include "link/wire/Packets.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "link/wire/Trace.h"
#include "link/wire/WireCRC.h"

namespace sectorbox {
namespace {

class Receiver final : public Transfer {
 public:
  Receiver(Link& link, std::int32_t drive) : Transfer(link, drive, kWords) {}

  bool Run(bool dataOnly, std::string& fileName) {
    link_.AbortRequested = false;
    if (!ConnectIfClosed() || !AskBufferSize() || !SelectDrive() || !ReadMap()) return false;
    fileName = AskFile();
    if (fileName.empty()) return false;
    if (!OpenFile(fileName, TransferFile::Access::kReadWrite)) return false;
    OpenDialog();
    if (RunAreas(dataOnly) == Progress::kAbandoned) return false;
    file_.reset();
    Finish();
    return true;
  }

 private:
  static constexpr Words kWords = {"Receive Image", "Receiving",     "Read",
                                   "Reading",       "Error reading", "CRC Match - don't read"};
  static constexpr std::int32_t kMapSectors = 2;

  bool ReadMap();
  std::string AskFile();
  Progress RunChunk() override;
  Compared CompareFirst();
  Progress ReadChunk();
  void CountFailure(SectorStatus status);
  Progress Abandon();
};

bool Receiver::ReadMap() {
  ShowStep("Reading the free space map...");
  TraceLine(link_, "Receiving Sectors 0 to 1 of 2\r");
  std::array<std::uint8_t, static_cast<std::size_t>(kMapSectors * wire::kSectorSize)> sectors{};
  if (ReadSectors(link_, sectors, drive_, 0, kMapSectors) != SectorStatus::kSuccess) {
    return Refuse("Error reading free space map");
  }
  map_ = ParseTransferMap(link_, sectors);
  return Advance();
}

// The disc's size alone decides the kind of image: one of the three floppies, or a hard disc.
std::string Receiver::AskFile() {
  const DiscType type = KindOfDiscSize(map_.DiscSize);
  layout_ = LayoutOf(type);
  return link_.Host.AskSaveFileName({"Receive ADFS Image", FilterOfKind("ADFS", type), ""});
}

// Nothing is sent to the server: it has finished its exchange, or it notices the silence. Only
// after an Abort during the compare the caller sends ESC, 2 first, as the server may still be
// computing.
Transfer::Progress Receiver::Abandon() {
  ResetLink(link_);
  link_.Host.CloseTransfer();
  return Progress::kAbandoned;
}

Transfer::Compared Receiver::CompareFirst() {
  if (!link_.Host.CheckBeforeTransfer()) return Compared::kDifferent;
  file_->ReadChunk(layout_, current_, count_, map_.DiscSize, buffer_);
  std::uint32_t crc = 0;  // of the plain data; the CRC of a stream is another one
  UpdateCRC(crc, buffer_);
  return CompareWithDrive(crc);
}

Transfer::Progress Receiver::RunChunk() {
  count_ = std::min(chunkLimit_, areaLeft_);
  if (link_.AbortRequested) return Abandon();
  BeginChunk();
  switch (CompareFirst()) {
    case Compared::kAborted:
      link_.AbortRequested = false;
      (void)SendCommand(link_, std::string(wire::kAbandon), false);
      return Abandon();
    case Compared::kNoReply:
      CountRetry();
      ResetLink(link_);
      return Progress::kGoOn;
    case Compared::kDifferent:
      if (ReadChunk() == Progress::kAbandoned) return Progress::kAbandoned;
      break;
    case Compared::kEqual:
      AccountForChunk();
      break;
  }
  ShowProgress();
  return Progress::kGoOn;
}

Transfer::Progress Receiver::ReadChunk() {
  const SectorStatus status = ReadSectors(link_, buffer_, drive_, current_, count_);
  if (link_.AbortRequested) return Abandon();
  if (status == SectorStatus::kSuccess) {
    file_->WriteChunk(layout_, current_, count_, buffer_);
    AccountForChunk();
    CountSingle();
    return Progress::kGoOn;
  }
  CountFailure(status);
  if (status == SectorStatus::kReadError) GiveWay();
  // ReadSectors has reset the link once already. A server that was still sending when the port was
  // closed gets a second silence in which it comes to rest.
  ResetLink(link_);
  return Progress::kGoOn;
}

void Receiver::CountFailure(SectorStatus status) {
  switch (status) {
    case SectorStatus::kTimeOut:
      ++counters_.Retries;
      break;
    case SectorStatus::kReadError:
      ++counters_.BadSectors;
      break;
    default:
      ++counters_.BadCRCs;
      break;
  }
  ShowCounters();
}

}  // namespace

bool ReceiveImage(Link& link, std::int32_t drive, bool dataOnly, std::string& fileName) {
  try {
    return Receiver(link, drive).Run(dataOnly, fileName);
  } catch (const HostError& error) {
    // The user pulled the port out, or the host's disc is full. The file stays as far as it got.
    link.Host.CloseTransfer();
    link.Host.ShowWarning(error.what());
    return false;
  } catch (const BbcSilent& silent) {
    link.Host.CloseTransfer();
    link.Host.ShowMessage(silent.what(), kLinkTitle);
    return false;
  }
}

}  // namespace sectorbox
