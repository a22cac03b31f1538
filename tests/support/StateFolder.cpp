// Each test program has a state folder of its own, so that no test finds what another program or
// the user keeps there.

#include <cstdlib>

#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

class StateFolder {
 public:
  StateFolder() { ::setenv("XDG_STATE_HOME", folder_.Path().c_str(), 1); }

 private:
  TempFolder folder_;
};

const StateFolder kStateFolder;

}  // namespace
}  // namespace sectorbox::testing
