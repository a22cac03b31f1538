#pragma once

#include <string>
#include <vector>

namespace sectorbox {

// The machine's serial devices, as names that SerialPort::SelectDevice takes. Ports of USB adapters
// come first, as the user has plugged them in on purpose; then the built-in ones that have hardware
// behind them. Each kind is in rising order of its number. Empty if there are none.
[[nodiscard]] std::vector<std::string> ListSerialDevices();

}  // namespace sectorbox
