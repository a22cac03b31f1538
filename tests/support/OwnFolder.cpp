// Each test program works in a folder of its own, with a state folder of its own in it, so that no
// test finds what another program or the user keeps there. Two programs that ran in one folder
// would also lock each other's blank disc, which has the same name everywhere.

#include <cstdlib>
#include <filesystem>

#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

class OwnFolder {
 public:
  OwnFolder() {
    ::setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
    const std::filesystem::path work = folder_ / "work";
    std::filesystem::create_directory(work);
    std::filesystem::current_path(work);
  }

 private:
  TempFolder folder_;
};

const OwnFolder kOwnFolder;

}  // namespace
}  // namespace sectorbox::testing
