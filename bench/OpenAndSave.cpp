// Opening a big disc and saving discs. Each is compared with a floor that is measured in the same
// run: plain reads of the sectors that a walk has to read, or a plain copy of the bytes that a save
// writes. The counter "ratio" is the engine's time divided by the floor's.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

#include "bench/Ratio.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "disc/store/Disc.h"
#include "tests/support/QuietHost.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace sectorbox;
using namespace sectorbox::bench;
using namespace sectorbox::testing;
void Put(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value, int width) {
  for (int i = 0; i < width; ++i)
    bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> 8 * i);
}

// A 512 MB image with 20,000 directories of five files each, written as a sparse file: 20 groups of
// 25 groups of 40. Gives the start sectors of all directories in the order of the walk.
class BigDisc {
 public:
  static constexpr std::uint32_t kSectors = 2162688;

  explicit BigDisc(const std::string& path) {
    file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    if (file_ < 0 || ::ftruncate(file_, std::int64_t{kSectors} * 256) != 0) {
      throw std::runtime_error("no room for the big disc");
    }
    WriteDirectory(2, 0, 0);
    std::vector<std::uint8_t> map(512);
    Put(map, 0, next_, 3);
    Put(map, 252, kSectors, 3);
    Put(map, 256, kSectors - next_, 3);
    map[510] = 3;
    Write(0, map);
    ::close(file_);
  }
  std::vector<std::uint32_t> Directories;

 private:
  static constexpr int kFiles = 5;
  static constexpr int kFanOut[] = {20, 25, 39, 0};

  void Write(std::uint32_t sector, const std::vector<std::uint8_t>& bytes) {
    if (::pwrite(file_, bytes.data(), bytes.size(), std::int64_t{sector} * 256) < 0) {
      throw std::runtime_error("cannot write the big disc");
    }
  }
  static void Entry(std::vector<std::uint8_t>& dir, int slot, char kind, bool isDirectory,
                    std::uint32_t start) {
    const auto at = static_cast<std::size_t>(5 + 26 * slot);
    dir[at] = static_cast<std::uint8_t>(kind);
    dir[at + 1] = static_cast<std::uint8_t>('A' + slot / 10);
    dir[at + 2] = static_cast<std::uint8_t>('0' + slot % 10);
    dir[at + 3] = static_cast<std::uint8_t>(13 | (isDirectory ? 0x80 : 0));
    Put(dir, at + 18, 1280, 4);
    Put(dir, at + 22, start, 3);
  }
  void WriteDirectory(std::uint32_t sector, std::uint32_t parent, int level) {
    Directories.push_back(sector);
    std::vector<std::uint8_t> dir(1280);
    std::copy_n("Hugo", 4, dir.begin() + 1);
    std::copy_n("Hugo", 4, dir.begin() + 1275);
    Put(dir, 1238, parent, 3);
    int slot = 0;
    for (int i = 0; i < kFanOut[level]; ++i) {
      const std::uint32_t child = next_;
      next_ += 5;
      Entry(dir, slot++, 'D', true, child);
      WriteDirectory(child, sector, level + 1);
    }
    for (int i = 0; i < kFiles; ++i) Entry(dir, slot++, 'F', false, next_++);
    Write(sector, dir);
  }

  int file_ = -1;
  std::uint32_t next_ = 7;
};

void OpenAndWalk512M(benchmark::State& state) {
  const TempFolder folder;
  const std::string path = folder / "big.dat";
  const BigDisc big(path);
  std::size_t nodes = 0;
  Compare(
      state, {[&] {
        QuietHost host;
        Disc disc(host);
        OpenImage(disc, path);
        nodes = WalkTree(disc).size();
      }},
      {[&] {
        const int file = ::open(path.c_str(), O_RDONLY);
        std::vector<std::uint8_t> bytes(1280);
        for (const std::uint32_t sector : big.Directories) {
          benchmark::DoNotOptimize(::pread(file, bytes.data(), 1280, std::int64_t{sector} * 256));
        }
        ::close(file);
      }});
  state.counters["directories"] = static_cast<double>(nodes);
  if (nodes != big.Directories.size()) state.SkipWithError("the walk missed directories");
}
BENCHMARK(OpenAndWalk512M)->UseManualTime()->Unit(benchmark::kMillisecond);

void PlainCopy(const std::string& from, const std::string& to) {
  const int in = ::open(from.c_str(), O_RDONLY);
  const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::vector<std::uint8_t> part(131072);
  for (;;) {
    const ssize_t done = ::read(in, part.data(), part.size());
    if (done <= 0) break;
    if (::write(out, part.data(), static_cast<std::size_t>(done)) != done) break;
  }
  ::close(in);
  ::close(out);
}

// A disc whose bytes are all in use, saved as a file that isn't there yet.
void Save(benchmark::State& state, const std::string& name, std::uint32_t sectors) {
  const TempFolder folder;
  std::vector<std::uint8_t> bytes(std::size_t{sectors} * 256, 0x5A);
  std::fill_n(bytes.begin(), 512, std::uint8_t{0});
  Put(bytes, 252, sectors, 3);
  WriteAll(folder / name, bytes);
  const std::string copy = folder / "copy";
  const std::string saved = folder / "saved";
  Compare(state, {[&] {
            std::filesystem::remove(saved);
            QuietHost host;
            Disc disc(host);
            host.ProgressRunning = &disc.ProgressRunning;
            OpenImage(disc, folder / name);
            SaveImageTo(disc, saved);
          }},
          {[&] {
            std::filesystem::remove(copy);
            PlainCopy(folder / name, copy);
          }});
  if (std::filesystem::file_size(saved) != bytes.size()) state.SkipWithError("a short save");
}
void Save640K(benchmark::State& state) {
  Save(state, "x.adl", 2560);
}
void Save64M(benchmark::State& state) {
  Save(state, "x.dat", 270336);
}
BENCHMARK(Save640K)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Save64M)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
