#pragma once

#include "disc/ask/StatusLine.h"

namespace sectorbox {

// The hourglass for the length of a scope: it goes on every way out, a host failure included.
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
