// Any bytes are the .dsc file beside a hard disc image. The image is opened with it, and the
// companion is read and then written with the geometry that its first three bytes make. The bytes
// up to the first 0 are an image's path, too.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/host/HostError.h"
#include "disc/host/HostPath.h"
#include "disc/image/OpenImage.h"
#include "disc/medium/Companion.h"
#include "fuzz/Require.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/QuietHost.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace sectorbox;
using fuzz::Require;
using sectorbox::testing::TempFolder;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kSectors = 100;

// The first 22 bytes; zeros stand for those that a short file lacks.
Bytes Interpreted(Bytes bytes) {
  bytes.resize(kCompanionSize);
  return bytes;
}

void ReadAndWrite(const std::string& image, const Bytes& file) {
  const Bytes known = Interpreted(file);
  const auto read = ReadCompanion(image);
  Require(read && read->Tracks == known[13] * 256 + known[14] && read->Heads == known[15],
          "what was read");
  const CompanionGeometry geometry = {known[0] * 256 + known[1], known[2]};
  const bool isCompanion = file.empty() || file.size() == kCompanionSize;
  try {
    WriteCompanion(image, geometry);
  } catch (const HostError&) {
    Require(!isCompanion, "a companion is replaced");
    Require(testing::ReadAll(CompanionName(image)) == file, "another file stays");
    return;
  }
  Require(isCompanion, "another file isn't replaced");
  const auto back = ReadCompanion(image);
  Require(back && back->Tracks == geometry.Tracks && back->Heads == geometry.Heads,
          "what was written");
  Bytes expected = known;
  std::copy_n(known.begin(), 3, expected.begin() + 13);
  Require(testing::ReadAll(CompanionName(image)) == expected, "the other bytes");
}

// Whatever the companion says, the image is opened and its bytes stay.
void Open(const std::string& image, const Bytes& bytes) {
  testing::QuietHost host;
  Disc disc(host);
  OpenImage(disc, image);
  Require(disc.TheDisc.disctype() == kDat && MapDiscSize(disc) == kSectors, "a hard disc");
  disc.TheDisc.CloseFile();
  Require(testing::ReadAll(image) == bytes, "the image's bytes");
}

void Name(const std::string& path) {
  // A folder is no image.
  if (path.empty() || path.back() == '/') return;
  const std::string name = CompanionName(path);
  Require(name.ends_with(".dsc"), "the extension");
  Require(HostFolderOf(name) == HostFolderOf(path), "the folder");
  const std::string front = name.substr(0, name.size() - 4);
  Require(path.starts_with(front) && path.size() - front.size() <= 4, "the image's name");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TempFolder folder;
  static const Bytes bytes = [] {
    const Bytes made = testing::ImageBuilder(kSectors).Bytes();
    testing::WriteAll(folder / "x.dat", made);
    return made;
  }();
  const Bytes file(data, data + size);
  testing::WriteAll(folder / "x.dsc", file);
  Open(folder / "x.dat", bytes);
  ReadAndWrite(folder / "x.dat", file);
  Name(std::string(file.begin(), std::find(file.begin(), file.end(), 0)));
  return 0;
}
