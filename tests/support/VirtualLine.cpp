#include "tests/support/VirtualLine.h"

#include <algorithm>
#include <cstdlib>

#include "disc/host/HostError.h"

namespace sectorbox::testing {

void VirtualPort::Note(const std::string& line) {
  if (log_ != nullptr) log_->push_back(line);
}

void VirtualPort::CountByte() {
  if (--BytesUntilItVanishes > 0) return;
  open_ = false;
  BytesUntilItVanishes = std::numeric_limits<std::int64_t>::max();
  throw HostError("/dev/virtual", "No such device");
}

void VirtualPort::Settings(const std::string& settings) {
  Note("settings " + settings);
  settings_ = settings;
  speed_ = std::atoi(settings.c_str());
}

void VirtualPort::Open() {
  Advance();
  if (CannotOpen) throw HostError("/dev/virtual", "No such device");
  Note("open " + settings_);
  open_ = true;
  ++Opens;
}

void VirtualPort::Close() {
  if (!open_) return;
  // First the queued bytes go out, however long that takes.
  clock_.Nanoseconds = std::max(clock_.Nanoseconds, outFree_);
  Advance();
  Note("close");
  open_ = false;
  received_.clear();
}

// The BBC may answer each byte at once, at the speed that it has then.
void VirtualPort::Deliver(const Travelling& item) {
  if (Echoes) {
    toPc_.push_back(item);
    return;
  }
  if (item.Speed == bbc_.Speed) bbc_.Receive(item.Byte);
  for (const auto& burst : bbc_.TakeOutput()) {
    inFree_ = std::max(inFree_, item.Arrival) + burst.DelayMilliseconds * std::int64_t{1'000'000};
    for (const char byte : burst.Bytes) {
      inFree_ += ByteTime(bbc_.Speed);
      NanosecondsBusy += ByteTime(bbc_.Speed);
      toPc_.push_back({inFree_, static_cast<std::uint8_t>(byte), bbc_.Speed});
    }
  }
}

void VirtualPort::Drip() {
  toPc_.clear();
  if (nextDrip_ == 0) nextDrip_ = clock_.Nanoseconds;
  for (; nextDrip_ <= clock_.Nanoseconds; nextDrip_ += DripEvery) {
    if (open_) received_.push_back(DripByte());
  }
}

void VirtualPort::Advance() {
  while (!toBbc_.empty() && toBbc_.front().Arrival <= clock_.Nanoseconds) {
    const Travelling item = toBbc_.front();
    toBbc_.pop_front();
    Deliver(item);
  }
  if (DripEvery > 0) Drip();
  while (!toPc_.empty() && toPc_.front().Arrival <= clock_.Nanoseconds) {
    const Travelling item = toPc_.front();
    toPc_.pop_front();
    if (open_ && item.Speed == speed_) received_.push_back(item.Byte);
  }
}

std::size_t VirtualPort::InBufferCount() {
  Advance();
  return open_ ? received_.size() : 0;
}

std::uint8_t VirtualPort::Input() {
  if (received_.empty()) return 0;
  CountByte();
  ++BytesFromBbc;
  const std::uint8_t byte = received_.front();
  received_.pop_front();
  return byte;
}

std::size_t VirtualPort::OutBufferCount() {
  Advance();
  return open_ ? toBbc_.size() : 0;
}

void VirtualPort::Output(std::string_view bytes) {
  if (!open_) return;
  Written += bytes;
  for (const char byte : bytes) {
    CountByte();
    outFree_ = std::max(outFree_, clock_.Nanoseconds) + ByteTime(speed_);
    toBbc_.push_back({outFree_, static_cast<std::uint8_t>(byte), speed_});
  }
}

}  // namespace sectorbox::testing
