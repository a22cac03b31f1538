#pragma once

#include "disc/ask/StatusLine.h"

namespace sectorbox {

// Shows the hourglass for the length of a scope. It goes away on every way out, also after a host
// failure.
class BusyPointer {
 public:
  explicit BusyPointer(StatusLine& status) : status_(status) { status_.SetBusyPointer(true); }
  ~BusyPointer() { status_.SetBusyPointer(false); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  StatusLine& status_;
};

}  // namespace sectorbox
