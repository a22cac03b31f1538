#include "tests/support/SimulatedBbc.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace sectorbox::testing {
namespace {

constexpr char kEsc = 27;
const std::string kErrorToken = "-----BBCerror1-----PC-----";
const std::string kRefusal = {kEsc, 2};

std::string Shown(const std::string& text) {
  std::string shown = text;
  std::replace(shown.begin(), shown.end(), '\r', '|');
  return shown;
}

int CrsIn(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\r'));
}

}  // namespace

std::uint32_t BbcCrc(const std::string& bytes) {
  std::uint32_t crc = 0;
  for (const char byte : bytes) {
    for (int bit = 7; bit >= 0; --bit) {
      const std::uint32_t in = (static_cast<unsigned char>(byte) >> bit) & 1;
      const std::uint32_t out = (crc >> 15) & 1;
      crc = (crc << 1) & 0xFFFF;
      if (in != out) crc ^= 0x00AF;
    }
  }
  return crc;
}

bool SimulatedBbc::Due(int every, int& counter) const {
  return every > 0 && ++counter % every == 0;
}

void SimulatedBbc::Say(const std::string& text, std::int32_t delay) {
  const std::size_t most =
      Faults.MostBytesSaid < 0 ? text.size() : static_cast<std::size_t>(Faults.MostBytesSaid);
  if (!Faults.Mute && !text.empty()) output_.push_back({delay, text.substr(0, most)});
}

std::vector<SimulatedBbc::Burst> SimulatedBbc::TakeOutput() {
  std::vector<Burst> taken;
  taken.swap(output_);
  return taken;
}

void SimulatedBbc::SayCrc(std::uint32_t crc, std::int32_t delay) {
  if (Due(Faults.NoCrcEvery, missingCrcs_)) return;
  if (Due(Faults.NoiseForCrcEvery, noisyCrcs_)) {
    Say("\x80\xFF", delay);
    return;
  }
  const bool wrong = Due(Faults.WrongCrcEvery, crcReplies_);
  Say(std::to_string(wrong ? (crc ^ 1) : crc) + "\n\r", delay);
}

void SimulatedBbc::Receive(std::uint8_t byte) {
  if (mode_ == Mode::kStream) {
    if (!Due(Faults.LoseIncomingEvery, lostIncoming_)) ReceiveStreamByte(byte);
  } else {
    ReceiveCommandByte(byte);
  }
}

void SimulatedBbc::ReceiveCommandByte(std::uint8_t byte) {
  const char c = static_cast<char>(byte);
  if (escapeInCommand_) {
    escapeInCommand_ = false;
    if (byte == 2) {
      Heard.push_back("ESC2");
      line_.clear();
      return;
    }
  }
  if (c == kEsc) {
    escapeInCommand_ = true;
    return;
  }
  if (line_.empty()) {
    if (c == 'Q') {
      ++Quits;
      Heard.push_back("Q");
      Speed = 1200;
      return;
    }
    if (std::string("SB*Aac-").find(c) == std::string::npos) return;  // noise
  }
  line_ += c;
  if (line_ == kErrorToken) {
    Heard.push_back(line_);
    line_.clear();
    Say(ErrorText);
    return;
  }
  const bool hasFields = line_[0] == 'A' || line_[0] == 'a' || line_[0] == 'c';
  if (line_[0] == '-' || CrsIn(line_) < (hasFields ? 3 : 1)) return;
  const std::string command = line_;
  line_.clear();
  Heard.push_back(Shown(command));
  RunCommand(command);
}

bool SimulatedBbc::ParseFields(const std::string& text) {
  if (std::sscanf(text.c_str() + 1, "%d\r%d\r%d\r", &drive_, &first_, &count_) != 3) return false;
  const auto drive = Drives.find(drive_);
  return drive != Drives.end() && first_ >= 0 && count_ > 0 &&
         static_cast<std::size_t>(first_ + count_) * 256 <= drive->second.size();
}

void SimulatedBbc::RunCommand(const std::string& text) {
  switch (text[0]) {
    case 'S':
      if (text != "S19200\r" && text != "S9600\r" && text != "S4800\r" && text != "S2400\r" &&
          text != "S1200\r") {
        return;
      }
      Speed = std::atoi(text.c_str() + 1);
      // The program on the BBC needs a moment to set its chip.
      Say(Acknowledge, 50);
      return;
    case 'B':
      Say(BufferReply);
      return;
    case '*':
      RunStar(text.substr(1, text.size() - 2));
      return;
    default:
      break;
  }
  if (Due(Faults.SilentEvery, exchanges_)) return;
  if (!ParseFields(text)) {
    Say(kRefusal);
    return;
  }
  if (text[0] == 'A') RunRead();
  if (text[0] == 'a') RunWrite();
  if (text[0] == 'c') RunChecksum();
}

std::string SimulatedBbc::FreeSpaceText() const {
  const auto& disc = Drives.at(mounted_);
  const auto number = [&](std::size_t at) {
    return disc[at] | disc[at + 1] << 8 | disc[at + 2] << 16;
  };
  int free = 0;
  for (std::size_t i = 0; i < disc[510]; i += 3) free += number(256 + i);
  char text[128];
  std::snprintf(text, sizeof text, "%06X Sectors Free\n\r%06X Sectors Used\n\r", free,
                static_cast<int>(disc.size() / 256) - free);
  return text;
}

void SimulatedBbc::RunStar(const std::string& command) {
  const auto scripted = StarReplies.find(command);
  if (scripted != StarReplies.end()) {
    for (const Burst& burst : scripted->second) Say(burst.Bytes, burst.DelayMilliseconds);
    Say(Acknowledge);
  } else if (command == "FADFS") {
    Say(AdfsFails ? kErrorToken + "\r" : Acknowledge);
  } else if (command.rfind("MOUNT ", 0) == 0) {
    mounted_ = std::atoi(command.c_str() + 6);
    Say(MountFails || Drives.count(mounted_) == 0 ? kErrorToken + "\r" : Acknowledge);
  } else if (command == "FREE") {
    if (!FreeIsSilent) Say((FreeReply.empty() ? FreeSpaceText() : FreeReply) + Acknowledge);
  } else {
    Say(kErrorToken + "\n\r");
  }
}

std::string SimulatedBbc::StreamOf(const std::vector<std::uint8_t>& data) const {
  std::string stream;
  for (std::size_t at = 0; at < data.size();) {
    std::size_t run = 1;
    while (at + run < data.size() && run < 255 && data[at + run] == data[at]) ++run;
    const char value = static_cast<char>(data[at]);
    if (run > 2) {
      stream += {kEsc, 0, static_cast<char>(run), value};
      at += run;
    } else {
      stream += value;
      if (value == kEsc) stream += '\1';
      ++at;
    }
  }
  return stream;
}

void SimulatedBbc::RunRead() {
  const auto& disc = Drives[drive_];
  std::vector<std::uint8_t> data;
  for (std::int32_t s = first_; s < first_ + count_; ++s) {
    if (Faults.CannotRead.count(s) != 0) {
      if (count_ == 1) SkippedReads.insert(s);
      Say(StreamOf(data) + kRefusal);
      return;
    }
    data.insert(data.end(), disc.begin() + s * 256, disc.begin() + s * 256 + 256);
  }
  if (Due(Faults.ShortStreamEvery, shortStreams_)) data.pop_back();
  if (Due(Faults.LongStreamEvery, longStreams_)) data.insert(data.end(), {1, 2, 3});
  std::string stream = StreamOf(data);
  if (Due(Faults.WrongEscapeEvery, wrongEscapes_)) stream.insert(0, {kEsc, 4});
  stream += {kEsc, 3};
  const std::uint32_t crc = BbcCrc(stream);
  if (Due(Faults.GarbageEvery, garbage_)) stream.insert(0, "\x80\x01gar\xFF");
  std::string sent;
  for (const char byte : stream) {
    if (!Due(Faults.LoseOutgoingEvery, outgoing_)) sent += byte;
  }
  if (Due(Faults.BurstEvery, bursts_)) {
    Say(sent.substr(0, sent.size() / 2));
    Say(sent.substr(sent.size() / 2), 1000);
  } else {
    Say(sent);
  }
  SectorsSent += count_;
  SayCrc(crc);
}

void SimulatedBbc::RunChecksum() {
  const auto& disc = Drives[drive_];
  for (std::int32_t s = first_; s < first_ + count_; ++s) {
    if (Faults.CannotRead.count(s) == 0) continue;
    Say(kRefusal);
    return;
  }
  SayCrc(BbcCrc({disc.begin() + first_ * 256, disc.begin() + (first_ + count_) * 256}));
}

void SimulatedBbc::RunWrite() {
  if (Due(Faults.NoAcknowledgeEvery, writes_)) return;
  mode_ = Mode::kStream;
  escape_ = Escape::kNone;
  incoming_.clear();
  incomingCrc_ = 0;
  Say(Acknowledge);
}

void SimulatedBbc::ReceiveStreamByte(std::uint8_t byte) {
  for (int bit = 7; bit >= 0; --bit) {
    const bool differ = ((byte >> bit) & 1) != static_cast<int>(incomingCrc_ >> 15);
    incomingCrc_ = (incomingCrc_ << 1) & 0xFFFF;
    if (differ) incomingCrc_ ^= 0x00AF;
  }
  switch (escape_) {
    case Escape::kNone:
      if (byte == kEsc) {
        escape_ = Escape::kCode;
      } else {
        incoming_.push_back(byte);
      }
      break;
    case Escape::kCode:
      escape_ = byte == 0 ? Escape::kCount : Escape::kNone;
      if (byte == 1) incoming_.push_back(kEsc);
      if (byte == 2) {
        Heard.push_back("ESC2");
        mode_ = Mode::kCommand;
      }
      if (byte == 3) EndStream();
      break;
    case Escape::kCount:
      runCount_ = byte;
      escape_ = Escape::kValue;
      break;
    case Escape::kValue:
      incoming_.insert(incoming_.end(), runCount_, byte);
      escape_ = Escape::kNone;
      break;
  }
  if (incoming_.size() > 1u << 20) incoming_.resize(1u << 20);
}

void SimulatedBbc::EndStream() {
  mode_ = Mode::kCommand;
  if (incoming_.size() == static_cast<std::size_t>(count_) * 256) {
    auto& disc = Drives[drive_];
    for (std::int32_t i = 0; i < count_; ++i) {
      if (Faults.CannotWrite.count(first_ + i) != 0) {
        if (count_ == 1) SkippedWrites.insert(first_);
        Say(kRefusal);
        return;
      }
      std::copy_n(incoming_.begin() + i * 256, 256, disc.begin() + (first_ + i) * 256);
      ++SectorsWritten;
    }
  }
  SayCrc(incomingCrc_);
}

}  // namespace sectorbox::testing
