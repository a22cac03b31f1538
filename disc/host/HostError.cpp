#include "disc/host/HostError.h"

#include <cstring>

namespace sectorbox {

void ThrowHostError(const std::string& path, int errorNumber) {
  throw HostError(path, std::strerror(errorNumber));
}

void ThrowHostError(const std::string& path, const std::error_code& error) {
  throw HostError(path, error.message());
}

}  // namespace sectorbox
