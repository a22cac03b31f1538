// How fast the link's inner loops are, and how busy it keeps a line. The line is simulated, in
// virtual time: 19200 baud, a server that answers at once, a disc of noise that doesn't compress.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <random>

#include "link/transfer/ReceiveImage.h"
#include "link/wire/Compression.h"
#include "link/wire/WireCRC.h"
#include "tests/support/InertLinkHost.h"
#include "tests/support/SimulatedBbc.h"
#include "tests/support/VirtualLine.h"

namespace sectorbox {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kMegabyte = std::size_t{1} << 20;

Bytes Noise(std::size_t size) {
  std::mt19937 random(1);
  Bytes bytes(size);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

// Bytes such as discs hold: text, code and empty space.
Bytes DiscLike(std::size_t size) {
  Bytes bytes = Noise(size);
  for (std::size_t at = 0; at + 1024 < size; at += 2048) {
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 1024, std::uint8_t{0});
  }
  return bytes;
}

void Compress(benchmark::State& state, const Bytes& data) {
  for (auto _ : state) benchmark::DoNotOptimize(CompressBytes(data));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.size()));
}

void Check(benchmark::State& state, const Bytes& data) {
  for (auto _ : state) {
    std::uint32_t crc = 0;
    UpdateCRC(crc, data);
    benchmark::DoNotOptimize(crc);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.size()));
}

// Notes the time when the dialog comes up: the first chunk is sent right after that.
class NotingHost final : public testing::InertLinkHost {
 public:
  NotingHost(testing::VirtualClock& clock, const testing::VirtualPort& port, std::string file)
      : InertLinkHost(clock, std::move(file)), clock_(clock), port_(port) {}

  // The time, and how long the line had been busy by then; both in nanoseconds.
  std::int64_t Started() const { return started_; }
  std::int64_t BusyBefore() const { return busyBefore_; }

  void ShowMessage(const std::string& text, const std::string&) override { ShowWarning(text); }
  void ShowWarning(const std::string& text) override { std::fprintf(stderr, "%s\n", text.c_str()); }
  void OpenTransfer(const std::string&) override {
    started_ = clock_.Nanoseconds;
    busyBefore_ = port_.NanosecondsBusy;
  }

 private:
  const testing::VirtualClock& clock_;
  const testing::VirtualPort& port_;
  std::int64_t started_ = 0;
  std::int64_t busyBefore_ = 0;
};

// Sends a whole 640K disc. The protocol demands a tenth of a second of silence behind each reply.
// Apart from these waits the line should always be busy.
void ShowLine(std::int32_t chunk) {
  constexpr std::int32_t kSectors = 2560;
  const std::string file =
      (std::filesystem::temp_directory_path() / "sectorbox-link-bench.adl").string();
  testing::VirtualClock clock;
  testing::SimulatedBbc bbc;
  bbc.SetBuffer(chunk);
  auto& disc = bbc.Drives[0] = Noise(kSectors * 256);
  std::fill_n(disc.begin(), 512, std::uint8_t{0});
  disc[253] = kSectors >> 8;
  testing::VirtualPort port(clock, bbc);
  NotingHost host(clock, port, file);
  Link link(port, host);
  std::string fileName;
  const bool done = ReceiveImage(link, 0, false, fileName);
  const double whole = static_cast<double>(clock.Nanoseconds - host.Started()) / 1e9;
  const double busy = static_cast<double>(port.NanosecondsBusy - host.BusyBefore()) / 1e9;
  const double waits = 0.1 * kSectors / chunk;
  std::printf("%6d  %8.1f s  %8.1f s  %8.1f s  %6.1f %%  %6.1f %%%s\n", chunk, whole, busy, waits,
              100 * busy / (whole - waits), 100 * busy / whole, done ? "" : "  FAILED");
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace sectorbox

int main(int argc, char** argv) {
  using namespace sectorbox;
  std::printf("A 640K disc of noise at 19200 baud\n");
  std::printf("sectors     whole        busy       waits   busy of   busy of\n");
  std::printf("a chunk     time                            the rest  the whole\n");
  for (const std::int32_t chunk : {4, 16, 64}) ShowLine(chunk);
  benchmark::RegisterBenchmark("CompressNoise", Compress, Noise(kMegabyte));
  benchmark::RegisterBenchmark("CompressADisc", Compress, DiscLike(kMegabyte));
  benchmark::RegisterBenchmark("CompressOnlyEscapes", Compress, Bytes(kMegabyte, 27));
  benchmark::RegisterBenchmark("Crc", Check, Noise(kMegabyte));
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
