// Full format and full backup of a 64 MB partition on a plain file, beside a plain write and read
// of the same device bytes in transfers of the same size. Both ends go to the medium: every write
// is followed by a sync, and every read starts with the file out of the host's cache, as a card is.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "cfcard/FormatCF.h"
#include "disc/Disc.h"
#include "disc/OpenImage.h"
#include "disc/SaveImage.h"

namespace sectorbox {
namespace {

constexpr std::size_t kDeviceBytes = std::size_t{128} << 20;  // two for each byte of the disc
constexpr std::size_t kTransfer = 32768;

class QuietHost final : public DiscHost {
 public:
  bool* ProgressRunning = nullptr;
  void ShowMessage(const std::string&) override {}
  bool AskYesNo(const std::string&, const std::string&) override { return true; }
  std::string AskOpenFileName(const FileQuestion&) override { return {}; }
  std::string AskSaveFileName(const FileQuestion&) override { return {}; }
  void SetStatus(const std::string&, bool) override {}
  void Note(const std::string&) override {}
  void SetBusyPointer(bool) override {}
  void RefreshCaption() override {}
  void RebuildTree() override {}
  void SetTreeReady() override {}
  void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>&) override {}
  void EnableDiscEntries() override {}
  void StoreRoot(const std::string&) override {}
  void PumpEvents() override {}
  void OpenProgress(const std::string&) override { *ProgressRunning = true; }
  void ShowProgress(const std::string&, double) override {}
  void CloseProgress() override {}
  bool PadDiscImages() const override { return false; }
  bool InterleavedDisc() const override { return true; }
  bool OverwriteLocked() const override { return true; }
};

class QuietView final : public FormatView {
 public:
  void FormatStarted() override {}
  void ShowFormat(const std::string&, double) override {}
};

// A card of 64 MB in a plain file that goes with the object.
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
  // Out of the host's cache.
  void Forget() const {
    const int file = ::open(Path().c_str(), O_RDONLY);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    ::close(file);
  }

 private:
  QuietHost host_;
  std::string folder_;

 public:
  Disc Card{host_};
};

void PlainWrite(benchmark::State& state) {
  const CardFile card;
  for (auto _ : state) card.Write();
}

void FullFormat(benchmark::State& state) {
  CardFile card;
  QuietView view;
  for (auto _ : state) {
    card.Card.ProgressRunning = true;
    FormatCFDisc(card.Card, view, "64MB", false);
  }
}

// range(0): whether the card's bytes are in the host's cache already.
void PlainRead(benchmark::State& state) {
  const CardFile card;
  for (auto _ : state) {
    state.PauseTiming();
    if (state.range(0) == 0) card.Forget();
    state.ResumeTiming();
    card.Read();
  }
}

void FullBackup(benchmark::State& state) {
  CardFile card;
  for (auto _ : state) {
    state.PauseTiming();
    OpenCFPartition(card.Card, card.Card.ImageName);
    if (state.range(0) == 0) card.Forget();
    state.ResumeTiming();
    SaveDatImage(card.Card, card.Backup(), true);
  }
}

BENCHMARK(PlainWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(FullFormat)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PlainRead)
    ->ArgName("cached")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(FullBackup)
    ->ArgName("cached")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace sectorbox

BENCHMARK_MAIN();
