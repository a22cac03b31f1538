// Any bytes are an image of any kind, which is opened, walked, listed and checked. Looking changes
// nothing.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/health/Check.h"
#include "disc/image/OpenImage.h"
#include "fuzz/Require.h"
#include "tests/support/QuietHost.h"

namespace {

using namespace sectorbox;

void Use(const std::string& path) {
  sectorbox::testing::QuietHost host;
  Disc disc(host);
  OpenImage(disc, path);
  std::size_t left = 64;
  for (const TreeNode& node : WalkTree(disc)) {
    if (left-- == 0) break;
    for (const ListRow& row : ReadRows(disc, node.Tag)) (void)FindPath(disc, row.Name());
    (void)GetDirTitle(disc, node.Tag);
  }
  ShowFreeSpace(disc);
  (void)CheckDisc(disc);
}

// A file in memory, with a path that opens it.
class MemoryFile {
 public:
  MemoryFile() : file_(::memfd_create("image", 0)) {}
  void Fill(const std::uint8_t* data, std::size_t size) {
    if (::ftruncate(file_, 0) != 0 || ::pwrite(file_, data, size, 0) < 0) ::abort();
  }
  // True if the file holds these bytes and no more.
  bool Holds(const std::uint8_t* data, std::size_t size) const {
    std::vector<std::uint8_t> bytes(size + 1);
    const ssize_t length = ::pread(file_, bytes.data(), bytes.size(), 0);
    return length == static_cast<ssize_t>(size) && std::equal(data, data + size, bytes.begin());
  }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(file_); }

 private:
  int file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static MemoryFile file;
  file.Fill(data, size);
  Use(file.Path());
  fuzz::Require(file.Holds(data, size), "the image's bytes");
  return 0;
}
