// The text views write into a sink that collects the text. Measured are source bytes a second, and
// "ratio": the view's time divided by the time of a plain read of the same bytes through the store.
// Each Wordwise row shows a document of twice the length of the row in front; their "best_MB_s"
// should agree. Their text holds nothing that would keep a place in 16 bits.

#include <benchmark/benchmark.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "disc/format/Text.h"
#include "tests/support/QuietHost.h"
#include "viewers/text/BasicLister.h"
#include "viewers/text/Disassembler.h"
#include "viewers/text/TextAndHexViews.h"
#include "viewers/wordwise/Wordwise.h"

namespace sectorbox {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kFileBytes = 512 * 1024;
constexpr std::int32_t kStart = 7;

class Collector final : public TextView {
 public:
  Collector() : TextView(style_) {}
  void SetCaption(const std::string&) override {}
  void ShowMessage(const std::string&) override {}
  void WidenWindow(int) override {}
  void CloseWindow() override {}
  std::string Text;

 protected:
  void Append(const std::string& text) override { Text += text; }

 private:
  TextStyle style_;
};

void AddText(Bytes& bytes, const std::string& text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

Bytes TextFile() {
  Bytes bytes;
  while (bytes.size() < kFileBytes) AddText(bytes, "The quick brown fox jumps over the dog.\r");
  return bytes;
}

Bytes Program() {
  Bytes bytes = {13};
  for (int line = 1; bytes.size() < kFileBytes; ++line) {
    AddText(bytes, {static_cast<char>(line >> 8 & 127), static_cast<char>(line), 30});
    AddText(bytes,
            "\xE3I%=1\xB8"
            "10:\xF1\"Hello, world\";I%:\xED:\xE5\x8D\x54\x64\x40\r");
  }
  bytes.push_back(255);
  return bytes;
}

Bytes Code() {
  std::mt19937 random(1);
  Bytes bytes(kFileBytes);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  bytes[0] = 0xEA;
  return bytes;
}

Bytes Document(std::size_t size) {
  Bytes bytes;
  AddText(bytes,
          "\x02"
          "BS0\x07\x02JO\r");
  while (bytes.size() < size) {
    AddText(bytes,
            "It was a bright cold day, and the clocks were being mended by a man who had mended "
            "clocks all his life and meant to go on.\r");
  }
  return bytes;
}

// A floppy image in memory that is as large as the file needs.
class Image {
 public:
  explicit Image(const Bytes& file) {
    const auto tracks = static_cast<std::int32_t>(file.size() / 4096) + 2;
    disc_.TheDisc.OpenFile("no such file", kAdf, tracks, 1, 16);
    disc_.TheDisc.StoreBytes(SectorOffset(kStart), file);
    row_.Columns = {"FILE",        "WR", "(00)", "FFFFFFFF", "FFFFFFFF", Hex(file.size(), 8),
                    Hex(kStart, 6)};
    size_ = file.size();
  }

  double ReadSeconds() {
    std::uint8_t sum = 0;
    const auto start = Clock::now();
    for (std::size_t i = 0; i < size_; ++i) {
      sum = static_cast<std::uint8_t>(
          sum + disc_.TheDisc.Fetch(SectorOffset(kStart) + static_cast<std::int64_t>(i)));
    }
    benchmark::DoNotOptimize(sum);
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

  void Measure(benchmark::State& state, void (*show)(Disc&, const ListRow&, TextView&)) {
    double best = 1e9;
    double bestRead = 1e9;
    Collector view;
    for (auto _ : state) {
      view.Text.clear();
      view.Finished = false;
      const auto start = Clock::now();
      show(disc_, row_, view);
      const double taken = std::chrono::duration<double>(Clock::now() - start).count();
      state.SetIterationTime(taken);
      best = std::min(best, taken);
      bestRead = std::min(bestRead, ReadSeconds());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(size_) * state.iterations());
    state.counters["best_MB_s"] = static_cast<double>(size_) / best / 1e6;
    state.counters["ratio"] = best / bestRead;
    if (view.Text.size() < size_ / 2) state.SkipWithError("the view is not whole");
  }

 private:
  sectorbox::testing::QuietHost host_;
  Disc disc_{host_};
  ListRow row_;
  std::size_t size_ = 0;
};

void Text(benchmark::State& state) {
  Image(TextFile()).Measure(state, ShowText);
}
void Hex(benchmark::State& state) {
  Image(Code()).Measure(state, ShowHex);
}
void Basic(benchmark::State& state) {
  Image(Program()).Measure(state, Show_Basic);
}
void Disassembly(benchmark::State& state) {
  Image(Code()).Measure(state, ShowDis);
}
void Wordwise(benchmark::State& state) {
  Image(Document(static_cast<std::size_t>(state.range(0)))).Measure(state, ShowWordwise);
}

BENCHMARK(Text)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Hex)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Basic)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Disassembly)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Wordwise)
    ->RangeMultiplier(2)
    ->Range(1 << 16, 1 << 20)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace sectorbox

BENCHMARK_MAIN();
