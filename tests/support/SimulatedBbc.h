#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace sectorbox::testing {

// What a SimulatedBbc does wrong: at every n-th exchange of the named kind, counted from 1; 0 means
// never.
struct BbcFaults {
  int WrongCrcEvery = 0;       // CRC replies, also those of the checksum command
  int NoCrcEvery = 0;          // CRC replies: none comes
  int NoiseForCrcEvery = 0;    // CRC replies: bytes that are no number
  int SilentEvery = 0;         // reads, writes, checksums: the command is not heard
  int NoAcknowledgeEvery = 0;  // writes
  int WrongEscapeEvery = 0;    // streams sent: ESC, 4 in front
  int ShortStreamEvery = 0;    // streams sent: one data byte too few
  int LongStreamEvery = 0;     // streams sent: three data bytes too many
  int GarbageEvery = 0;        // streams sent: noise in front
  int BurstEvery = 0;          // streams sent: a pause of a second in the middle
  int LoseOutgoingEvery = 0;   // bytes of the streams sent
  int LoseIncomingEvery = 0;   // bytes of the streams received
  std::set<std::int32_t> CannotRead;
  std::set<std::int32_t> CannotWrite;
  int MostBytesSaid = -1;  // each thing that it says is cut there; -1 means that nothing is
  bool Mute = false;       // hears everything, says nothing
};

// The BBC's end of the cable as the PC sees it: the transfer server in front of some drives. It is
// written from the protocol alone and shares no code with the link: its CRC and its coding of the
// streams are its own (it codes runs of three already, which the PC never does).
class SimulatedBbc {
 public:
  // Bytes to send, after a pause behind the burst in front.
  struct Burst {
    std::int32_t DelayMilliseconds = 0;
    std::string Bytes;
  };

  // --- What the test sets ----------------------------------------------------------------------
  BbcFaults Faults;
  std::map<std::int32_t, std::vector<std::uint8_t>> Drives;  // by number, flat, whole sectors
  std::string BufferReply = "4096\r";
  std::string Acknowledge = "-----BBC-----PC-----\n\r";
  std::string FreeReply;  // made from the drive's map when empty
  bool FreeIsSilent = false;
  bool AdfsFails = false;
  bool MountFails = false;
  std::map<std::string, std::vector<Burst>> StarReplies;  // other commands are errors
  std::string ErrorText = "Bad command\n\r";

  // --- What the test looks at ------------------------------------------------------------------
  std::int32_t Speed = 1200;
  std::vector<std::string> Heard;  // commands in order, CRs as "|": "A0|0|16|", "ESC2", "*CAT|"
  int Quits = 0;
  int SectorsSent = 0;
  int SectorsWritten = 0;
  std::set<std::int32_t> SkippedReads;  // single sectors whose read was refused
  std::set<std::int32_t> SkippedWrites;

  void SetBuffer(std::int32_t sectors) { BufferReply = std::to_string(sectors * 256) + "\r"; }
  // A byte arrives from the PC.
  void Receive(std::uint8_t byte);
  // Gives the bytes that are to be sent since the last call.
  std::vector<Burst> TakeOutput();

 private:
  enum class Mode { kCommand, kStream };
  enum class Escape { kNone, kCode, kCount, kValue };

  void ReceiveCommandByte(std::uint8_t byte);
  void ReceiveStreamByte(std::uint8_t byte);
  void RunCommand(const std::string& text);
  void RunStar(const std::string& command);
  void RunRead();
  void RunWrite();
  void RunChecksum();
  void EndStream();
  void Say(const std::string& text, std::int32_t delay = 0);
  void SayCrc(std::uint32_t crc, std::int32_t delay = 0);
  std::string FreeSpaceText() const;
  bool ParseFields(const std::string& text);
  bool Due(int every, int& counter) const;
  std::string StreamOf(const std::vector<std::uint8_t>& data) const;

  Mode mode_ = Mode::kCommand;
  std::string line_;
  std::vector<Burst> output_;
  std::int32_t mounted_ = 0;
  std::int32_t drive_ = 0;
  std::int32_t first_ = 0;
  std::int32_t count_ = 0;
  Escape escape_ = Escape::kNone;
  bool escapeInCommand_ = false;
  std::uint8_t runCount_ = 0;
  std::vector<std::uint8_t> incoming_;
  std::uint32_t incomingCrc_ = 0;
  int crcReplies_ = 0, missingCrcs_ = 0, noisyCrcs_ = 0, exchanges_ = 0, writes_ = 0,
      wrongEscapes_ = 0, shortStreams_ = 0, longStreams_ = 0, garbage_ = 0, bursts_ = 0,
      outgoing_ = 0, lostIncoming_ = 0;
};

// CRC-16 with polynomial 0x00AF, a bit at a time.
std::uint32_t BbcCrc(const std::string& bytes);

}  // namespace sectorbox::testing
