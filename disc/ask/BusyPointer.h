#pragma once

#include "disc/ask/DiscHost.h"

namespace sectorbox {

// The hourglass for the length of a scope: it goes on every way out, a host failure included.
class BusyPointer {
 public:
  explicit BusyPointer(DiscHost& host) : host_(host) { host_.SetBusyPointer(true); }
  ~BusyPointer() { host_.SetBusyPointer(false); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  DiscHost& host_;
};

}  // namespace sectorbox
