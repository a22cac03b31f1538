// A flash tick redraws a whole picture. This must be so quick that no user notices it.

#include <benchmark/benchmark.h>

#include <random>

#include "viewers/picture/ScreenMode.h"
#include "viewers/picture/Teletext.h"

namespace sectorbox {
namespace {

std::vector<std::uint8_t> RandomBytes(std::size_t count) {
  std::mt19937 random(1);
  std::vector<std::uint8_t> bytes(count);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

TeletextFont BusyFont() {
  return BuildTeletextFont(RandomBytes(kTeletextFontBytes)).value();
}

// The worst page: a control code or an odd pattern in every cell.
void TeletextPageOfRandomCodes(benchmark::State& state) {
  const TeletextFont font = BusyFont();
  const auto codes = RandomBytes(1000);
  for (auto _ : state) benchmark::DoNotOptimize(DrawTeletext(codes, font, 1));
}
BENCHMARK(TeletextPageOfRandomCodes)->Unit(benchmark::kMillisecond);

void TeletextPageOfText(benchmark::State& state) {
  const auto font = LoadTeletextFont(TELETEXT_FONT_PATH).value();
  std::vector<std::uint8_t> codes(1000);
  for (std::size_t i = 0; i < codes.size(); ++i) {
    codes[i] = static_cast<std::uint8_t>(i % 7 == 0 ? ' ' : 'a' + i % 26);
  }
  for (auto _ : state) benchmark::DoNotOptimize(DrawTeletext(codes, font, 1));
}
BENCHMARK(TeletextPageOfText)->Unit(benchmark::kMillisecond);

void Screen(benchmark::State& state) {
  const ScreenMode& mode = *FindScreenMode(static_cast<int>(state.range(0)));
  const auto bytes = RandomBytes(static_cast<std::size_t>(mode.SizeLimit));
  const ScreenPalette palette;
  for (auto _ : state) {
    benchmark::DoNotOptimize(DrawScreen(mode, bytes, FindCurrentColours(mode, palette, true)));
  }
}
BENCHMARK(Screen)->Arg(0)->Arg(1)->Arg(2)->Arg(4)->Arg(5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace sectorbox

BENCHMARK_MAIN();
