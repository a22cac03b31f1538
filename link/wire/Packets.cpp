#include "link/wire/Packets.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "disc/format/Text.h"
#include "link/wire/AnswerBounds.h"
#include "link/wire/Commands.h"
#include "link/wire/Compression.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "link/wire/Trace.h"
#include "link/wire/WireCRC.h"

namespace sectorbox {
namespace {

// Decodes one stream that comes in. Bytes past the limit are counted and not stored, so that a
// stream that is too long ends with the status kWrongLength.
class StreamDecoder {
 public:
  StreamDecoder(Link& link, std::span<std::uint8_t> buffer, std::uint32_t& crc, std::size_t limit)
      : link_(link), buffer_(buffer), crc_(crc), limit_(std::min(limit, buffer.size())) {}

  SectorStatus Run() {
    while (!ended_) {
      if (link_.AbortRequested) return Fail("Transfer Aborted", SectorStatus::kTimeOut);
      const std::optional<SectorStatus> failure = TakeItem();
      if (failure) return *failure;
    }
    if (position_ == limit_) return SectorStatus::kSuccess;
    return FailLength();
  }

 private:
  SectorStatus Fail(const std::string& text, SectorStatus status) {
    TraceLine(link_, text + "\r");
    return status;
  }
  SectorStatus FailLength() {
    return Fail("Data Decompression Failed - Data Length = " + std::to_string(position_),
                SectorStatus::kWrongLength);
  }
  // No byte came, or the stream has no end.
  SectorStatus FailUnended() {
    if (bounds_ && bounds_->IsTooLong()) return FailLength();
    return Fail("Timeout waiting for response", SectorStatus::kTimeOut);
  }

  // The next byte. Nothing if none came in time, or if the stream is longer or slower than any.
  std::optional<std::uint8_t> NextByte() {
    const auto byte = ReadByte(link_);
    if (!byte) return std::nullopt;
    UpdateCRC(crc_, *byte);
    // The BBC reads its disc before the first byte, so the time counts from that byte on. A single
    // silence may still last as long as ReadByte lets it.
    if (!bounds_) bounds_.emplace(link_, wire::MostBytesOfStream(limit_), wire::kStreamByteLimit);
    return bounds_->Take() ? byte : std::nullopt;
  }

  void Put(std::uint8_t byte) {
    if (position_ < limit_) buffer_[position_] = byte;
    ++position_;
  }

  // Takes a byte, a run or an escape from the line. Nothing if all went well.
  std::optional<SectorStatus> TakeItem() {
    const auto byte = NextByte();
    if (!byte) return FailUnended();
    if (*byte == wire::kEscape) return TakeEscape();
    Put(*byte);
    return std::nullopt;
  }

  std::optional<SectorStatus> TakeEscape() {
    const auto code = NextByte();
    if (!code) return FailUnended();
    switch (*code) {
      case wire::kStreamRun:
        return TakeRun();
      case wire::kStreamLiteral:
        Put(wire::kEscape);
        return std::nullopt;
      case wire::kStreamFailed:
        return Fail("Read Error from BBC", SectorStatus::kReadError);
      case wire::kStreamEnd:
        ended_ = true;
        return std::nullopt;
      default:
        return Fail("Unknown ESCAPE sequence", SectorStatus::kUnknownEscape);
    }
  }

  // Count and value stand raw on the wire: a 27 in either is no escape.
  std::optional<SectorStatus> TakeRun() {
    const auto count = NextByte();
    const auto value = count ? NextByte() : std::nullopt;
    if (!value) return FailUnended();
    for (int i = 0; i < *count; ++i) Put(*value);
    return std::nullopt;
  }

  Link& link_;
  std::span<std::uint8_t> buffer_;
  std::uint32_t& crc_;
  std::size_t limit_;
  std::size_t position_ = 0;
  std::optional<AnswerBounds> bounds_;  // since the first byte
  bool ended_ = false;
};

std::size_t BytesOf(std::int32_t sectors) {
  return static_cast<std::size_t>(sectors) * wire::kSectorSize;
}

SectorStatus ResetAndGive(Link& link, SectorStatus status) {
  ResetLink(link);
  return status;
}

}  // namespace

SectorStatus ReceivePacket(Link& link, std::span<std::uint8_t> buffer, std::uint32_t& crc,
                           std::int32_t sectors) {
  link.Timer4.Interval = wire::kStreamByteLimit;
  EnableTimer(link);
  link.LongestAnswer = wire::MostBytesOfStream(BytesOf(sectors));
  return StreamDecoder(link, buffer, crc, BytesOf(sectors)).Run();
}

bool TraceCRCs(Link& link, std::string_view reply, std::uint32_t crc) {
  const std::int64_t received = LeadingNumber(reply);
  TraceLine(link, "Received CRC of " + SignedDecimal(received) + "\r");
  TraceLine(link, "My CRC = " + SignedDecimal(crc) + "\r");
  // The CRC of zeros is 0, and a text without digits gives the number 0 too. Noise in place of a
  // CRC must not count as a match, or the sectors of a new file would never be read.
  const bool isNumber = !reply.empty() && reply[0] >= '0' && reply[0] <= '9';
  return isNumber && received == std::int64_t{crc};
}

SectorStatus ReadSectors(Link& link, std::span<std::uint8_t> buffer, std::int32_t drive,
                         std::int32_t start, std::int32_t count) {
  std::uint32_t crc = 0;
  NoteExchange(link, LongestStream(BytesOf(count)));
  (void)SendCommand(link,
                    "A" + std::to_string(drive) + "\r" + std::to_string(start) + "\r" +
                        std::to_string(count) + "\r",
                    false);
  const SectorStatus status = ReceivePacket(link, buffer, crc, count);
  if (status != SectorStatus::kSuccess) return ResetAndGive(link, status);
  TraceLine(link, "Waiting for CRC\r");
  std::string reply;
  if (!ReadReply(link, reply)) return ResetAndGive(link, SectorStatus::kTimeOut);
  if (TraceCRCs(link, reply, crc)) return SectorStatus::kSuccess;
  TraceLine(link, "Mismatch in CRC\r");
  return ResetAndGive(link, SectorStatus::kWrongCRC);
}

void SendPacket(Link& link, std::span<const std::uint8_t> buffer, std::uint32_t& crc,
                std::int32_t sectors) {
  constexpr std::size_t kBytesBetweenPumps = 128;
  const std::size_t length = std::min(BytesOf(sectors), buffer.size());
  std::vector<std::uint8_t> stream = CompressBytes(buffer.first(length));
  TraceLine(link, "Compressed Packet Size " +
                      SignedDecimal(static_cast<std::int64_t>(stream.size())) + "\r");
  stream.push_back(wire::kEscape);
  stream.push_back(wire::kStreamEnd);
  NoteExchange(link, LongestStream(length));
  crc = 0;
  for (std::size_t i = 0; i < stream.size(); ++i) {
    UpdateCRC(crc, stream[i]);
    const char byte = static_cast<char>(stream[i]);
    SendRaw(link, std::string_view(&byte, 1));
    if (i % kBytesBetweenPumps == 0) PumpEvents(link);
    if (link.AbortRequested) return;
  }
}

}  // namespace sectorbox
