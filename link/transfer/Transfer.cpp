#include "link/transfer/Transfer.h"

#include <algorithm>
#include <utility>

#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/host/HostPath.h"
#include "link/wire/Commands.h"
#include "link/wire/Packets.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "link/wire/Trace.h"

namespace sectorbox {
namespace {

// No BBC has so large a buffer. The bound keeps noise on the line from making us take much memory.
constexpr std::int64_t kMostBufferSectors = 4096;

}  // namespace

Transfer::Transfer(Link& link, std::int32_t drive, const Words& words)
    : link_(link), drive_(drive), words_(words) {
  link_.Silence.DiscAtWork = true;
}

Transfer::~Transfer() {
  EndSteps();
  link_.Silence.DiscAtWork = false;
}

void Transfer::ShowStep(const std::string& text) {
  stepShown_ = true;
  link_.Host.ShowStep(text);
}

void Transfer::EndSteps() {
  if (std::exchange(stepShown_, false)) link_.Host.ShowStep("");
}

bool Transfer::Refuse(const std::string& message) {
  link_.Host.ShowMessage(message, kLinkTitle);
  return false;
}

bool Transfer::Advance() {
  NoteValid(link_);
  return true;
}

bool Transfer::ConnectIfClosed() {
  ShowStep("Connecting to the BBC...");
  if (link_.Port.PortOpen() || IsAcknowledge(ConnectToBBC(link_))) return Advance();
  return Refuse("Beeb Not Responding");
}

bool Transfer::AskBufferSize() {
  ShowStep("Asking for the size of the BBC's buffer...");
  const std::string reply = SendCommand(link_, "B\r", true);
  const std::int64_t sectors = LeadingNumber(reply) / wire::kSectorSize;
  // A buffer without room for one sector can't take any chunk.
  if (sectors < 1) return Refuse("Error reading track buffer size");
  bufferSectors_ = static_cast<std::int32_t>(std::min(sectors, kMostBufferSectors));
  TraceLine(link_, "Transfer buffer is " + std::to_string(bufferSectors_) + " sectors\r");
  return Advance();
}

bool Transfer::SelectDrive() {
  ShowStep("Mounting drive " + std::to_string(drive_) + "...");
  if (!IsAcknowledge(SendCommand(link_, "*FADFS\r", true))) {
    return Refuse("Error changing to ADFS");
  }
  NoteValid(link_);
  const std::string drive = std::to_string(drive_);
  if (IsAcknowledge(SendCommand(link_, "*MOUNT " + drive + "\r", true))) return Advance();
  return Refuse("Error setting drive " + drive);
}

bool Transfer::OpenFile(const std::string& fileName, TransferFile::Access access) {
  try {
    file_ = std::make_unique<TransferFile>(fileName, access);
    return true;
  } catch (const HostError& error) {
    link_.Host.ShowWarning(error.what());
    return false;
  }
}

void Transfer::OpenDialog() {
  link_.AbortRequested = false;
  EndSteps();
  link_.Host.OpenTransfer(words_.Caption);
  NoteValid(link_);
}

Transfer::Progress Transfer::RunAreas(bool dataOnly) {
  const std::int32_t runCount = dataOnly ? map_.RunCount() : 1;
  usedSectors_ = dataOnly ? map_.UsedSectors : map_.DiscSize;
  std::int32_t areaLength = dataOnly ? map_.FreeStart[0] : map_.DiscSize;
  ShowTotal();
  ShowCounters();
  for (std::int32_t i = 0; i < runCount; ++i) {
    areaLeft_ = areaLength;
    TraceLine(link_, words_.Area + (" " + std::to_string(areaLeft_)) +
                         " sectors starting at sector " + std::to_string(current_) + "\r");
    chunkLimit_ = bufferSectors_;
    while (areaLeft_ > 0) {
      if (RunChunk() == Progress::kAbandoned) return Progress::kAbandoned;
    }
    if (i + 1 == runCount) break;
    const auto run = static_cast<std::size_t>(i);
    current_ = map_.FreeStart[run] + map_.FreeLen[run];
    areaLength = map_.FreeStart[run + 1] - current_;
  }
  return Progress::kGoOn;
}

void Transfer::Finish() {
  if (done_ != usedSectors_) {
    // Only a map that contradicts itself leads here: its runs overlap or are out of order.
    const std::string text = "Sector write mismatch - written = " + std::to_string(done_) +
                             " used = " + std::to_string(usedSectors_);
    TraceLine(link_, text + "\r");
    link_.Host.ShowMessage(text, kLinkTitle);
  }
  link_.Host.FinishTransfer();
  if (!link_.Host.PlayWaveOnSuccess()) return;
  // A sound that can't be played changes nothing about the transfer.
  (void)link_.Host.PlayWave(JoinHostPath(link_.Host.ProgramFolder(), "xfer.wav"), false);
}

void Transfer::BeginChunk() {
  const std::string text = words_.Chunk + (" Sectors " + std::to_string(current_)) + " to " +
                           std::to_string(current_ + count_ - 1);
  link_.Host.ShowChunk(text);
  TraceLine(link_, text + "\r");
  buffer_.assign(static_cast<std::size_t>(count_) * wire::kSectorSize, 0);
}

std::string Transfer::ChunkCommand(char letter) const {
  return letter + std::to_string(drive_) + "\r" + std::to_string(current_) + "\r" +
         std::to_string(count_) + "\r";
}

Transfer::Compared Transfer::CompareWithDrive(std::uint32_t crc) {
  (void)SendCommand(link_, ChunkCommand('c'), false);
  std::string reply;
  const bool replied = ReadReply(link_, reply);
  if (link_.AbortRequested) return Compared::kAborted;
  if (!replied) return Compared::kNoReply;
  if (IsFailureReply(reply) || !TraceCRCs(link_, reply, crc)) return Compared::kDifferent;
  TraceLine(link_, std::string(words_.Unchanged) + "\r");
  return Compared::kEqual;
}

void Transfer::AccountForChunk() {
  NoteValid(link_);
  current_ += count_;
  done_ += count_;
  areaLeft_ -= count_;
}

void Transfer::CountSingle() {
  if (chunkLimit_ != 1) return;
  if (--singlesLeft_ < 1) chunkLimit_ = bufferSectors_;
}

void Transfer::GiveWay() {
  NoteValid(link_);
  if (chunkLimit_ > 1) {
    chunkLimit_ = 1;
    singlesLeft_ = count_;
    return;
  }
  TraceLine(link_, words_.GivenUp + (" sector " + Hex(static_cast<std::uint32_t>(current_), 6)) +
                       ", " + std::to_string(current_) + "\r");
  ++current_;
  ++done_;
  --areaLeft_;
  chunkLimit_ = bufferSectors_;
  ++counters_.GivenUp;
  ShowCounters();
}

void Transfer::CountRetry() {
  ++counters_.Retries;
  ShowCounters();
}

void Transfer::ShowCounters() {
  link_.Host.ShowCounters(counters_);
}

void Transfer::ShowProgress() {
  if (!link_.AbortRequested && done_ <= usedSectors_ && usedSectors_ > 0) {
    link_.Host.ShowPercent(static_cast<float>(done_) / static_cast<float>(usedSectors_) * 100.0F);
  }
  ShowTotal();
}

void Transfer::ShowTotal() {
  const std::string text =
      words_.Total + (" " + std::to_string(done_)) + " of " + std::to_string(usedSectors_);
  link_.Host.ShowTotal(text);
  TraceLine(link_, text + "\r");
}

}  // namespace sectorbox
