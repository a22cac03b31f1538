#pragma once

#include <vector>

#include "cfcard/cards/BlockDevices.h"

namespace sectorbox::testing {

// A machine to which no block device is attached. No test looks at the drives of the machine that
// it runs on.
class NoBlockDevices final : public BlockDevices {
 public:
  std::vector<BlockDevice> List() const override { return {}; }
};

}  // namespace sectorbox::testing
