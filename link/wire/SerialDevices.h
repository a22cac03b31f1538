#pragma once

#include <string>
#include <vector>

namespace sectorbox {

// The machine's serial devices as paths, ports of USB adapters first (they were plugged in on
// purpose), then the built-in ones that have hardware behind them; each kind in rising order of
// its number. Empty when there are none.
std::vector<std::string> ListSerialDevices();

// The same over other folders than /sys/class/tty and /dev.
std::vector<std::string> ListSerialDevices(const std::string& classFolder,
                                           const std::string& deviceFolder);

}  // namespace sectorbox
