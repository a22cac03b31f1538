#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// Time, and the events that run while the link waits. Tests have a clock of their own, so that no
// test waits for real seconds.
class LinkClock {
 public:
  virtual ~LinkClock() = default;

  // A steady clock in milliseconds; only differences count. Asked at every poll of a wait.
  [[nodiscard]] virtual std::int64_t Milliseconds() = 0;
  // Waits without running events: a millisecond at every poll of a wait, and longer where the BBC
  // needs a pause.
  virtual void Sleep(std::int32_t milliseconds) = 0;
  // Lets waiting user actions run: at every poll of a wait, and at fixed points of a send. What
  // runs there may only set flags of the Link; it starts no other operation of the link.
  virtual void PumpEvents() = 0;
  // Date and time as the locale writes them. Asked for each line of the trace.
  [[nodiscard]] virtual std::string DateAndTime() = 0;
};

}  // namespace sectorbox
