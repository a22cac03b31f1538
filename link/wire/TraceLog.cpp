#include "link/wire/TraceLog.h"

#include "disc/host/HostError.h"

namespace sectorbox {

void TraceLog::Append(const std::string& text) {
  if (!file_.IsOpen()) return;
  try {
    file_.Append(text);
  } catch (const HostError&) {
    // The trace must never end a transfer.
  }
}

}  // namespace sectorbox
