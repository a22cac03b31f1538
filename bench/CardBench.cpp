// Full format and full backup of a 64 MB partition on a plain file, compared with a plain write and
// a plain read of the same device bytes (the floor). A format and its floor both end when the bytes
// are on the medium. A backup is measured with the card out of the host's cache, as a real card is,
// and with the card in the cache. A backup also writes an image of half the card's bytes, so it is
// compared with a read alone, and with a read and a write.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/Ratio.h"
#include "cfcard/cards/FormatCF.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "disc/store/Disc.h"
#include "tests/support/QuietHost.h"

namespace sectorbox {
namespace {

constexpr std::size_t kDeviceBytes = std::size_t{128} << 20;  // two for each byte of the disc
constexpr std::size_t kTransfer = 32768;

class QuietView final : public FormatView {
 public:
  void FormatStarted() override {}
  void ShowFormat(const std::string&, double) override {}
};

// A card of 64 MB in a plain file, which the destructor removes.
class CardFile {
 public:
  CardFile() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sectorbox-bench-XXXXXX");
    folder_ = ::mkdtemp(pattern.data());
    Write();
    host_.ProgressRunning = &Card.ProgressRunning;
    Card.ImageName = Path() + ",0";
  }
  ~CardFile() { std::filesystem::remove_all(folder_); }
  CardFile(const CardFile&) = delete;
  CardFile& operator=(const CardFile&) = delete;

  std::string Path() const { return folder_ + "/card"; }
  std::string Backup() const { return folder_ + "/backup.dat"; }

  void Write() const {
    const std::vector<char> bytes(kTransfer);
    const int file = ::open(Path().c_str(), O_RDWR | O_CREAT, 0600);
    for (std::size_t at = 0; at < kDeviceBytes; at += kTransfer) {
      if (::pwrite(file, bytes.data(), kTransfer, static_cast<off_t>(at)) < 0) std::abort();
    }
    ::fsync(file);
    ::close(file);
  }
  void Read() const {
    std::vector<char> bytes(kTransfer);
    const int file = ::open(Path().c_str(), O_RDONLY);
    for (std::size_t at = 0; at < kDeviceBytes; at += kTransfer) {
      if (::pread(file, bytes.data(), kTransfer, static_cast<off_t>(at)) < 0) std::abort();
    }
    benchmark::DoNotOptimize(bytes.data());
    ::close(file);
  }
  // Writes as many bytes as a full backup has to the backup's place.
  void WriteBackup(bool replaces) const {
    const std::vector<char> bytes(kTransfer);
    const std::string other = folder_ + "/other";
    const int file = ::open(other.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    for (std::size_t at = 0; at < kDeviceBytes / 2; at += kTransfer) {
      if (::write(file, bytes.data(), kTransfer) < 0) std::abort();
    }
    if (replaces) ::fsync(file);
    ::close(file);
    std::filesystem::rename(other, Backup());
  }
  // Leaves an older backup that is on the medium, or none.
  void PrepareBackup(bool older) const {
    std::filesystem::remove(Backup());
    if (older) WriteBackup(true);
  }
  // Drops the card from the host's cache.
  void Forget() const {
    const int file = ::open(Path().c_str(), O_RDONLY);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    ::close(file);
  }

 private:
  sectorbox::testing::QuietHost host_;
  std::string folder_;

 public:
  Disc Card{host_};
};

void FullFormat(benchmark::State& state) {
  CardFile card;
  QuietView view;
  bench::Compare(state, {[&] {
                   card.Card.ProgressRunning = true;
                   FormatCFDisc(card.Card, view, "64MB", false);
                 }},
                 {[&] { card.Write(); }});
}

// range(0) is 1 if the card's bytes are in the host's cache already.
// range(1) is 1 if there is an older backup of that name; it stays until the new one is on the
// medium. range(2) chooses the floor. 0: a plain read of the card. 1: that and a plain write of as
// many bytes as the backup has, into a new file, or into one that replaces an older file, as
// range(1) says.
void FullBackup(benchmark::State& state) {
  CardFile card;
  const bool isCached = state.range(0) != 0;
  const bool replaces = state.range(1) != 0;
  const bool withWrite = state.range(2) != 0;
  const auto prepare = [&] {
    if (!isCached) card.Forget();
    card.PrepareBackup(replaces);
  };
  bench::Compare(state,
                 {[&] { SaveDatImage(card.Card, card.Backup(), true); },
                  [&] {
                    OpenCFPartition(card.Card, card.Card.ImageName);
                    prepare();
                  }},
                 {[&] {
                    card.Read();
                    if (withWrite) card.WriteBackup(replaces);
                  },
                  prepare});
}

BENCHMARK(FullFormat)->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(2);
BENCHMARK(FullBackup)
    ->ArgNames({"cached", "replaces", "floor_writes"})
    ->ArgsProduct({{0, 1}, {0, 1}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->MinTime(2);

}  // namespace
}  // namespace sectorbox

BENCHMARK_MAIN();
