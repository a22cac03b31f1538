// Any bytes as a file and as a directory, in every text view. The first byte chooses the view, the
// second how much of the rest is the file; the others fill a disc from its first file sector on.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "disc/catalogue/Adfs.h"
#include "tests/support/QuietHost.h"
#include "viewers/text/BasicLister.h"
#include "viewers/text/CatalogueViews.h"
#include "viewers/text/Disassembler.h"
#include "viewers/text/TextAndHexViews.h"
#include "viewers/wordwise/Wordwise.h"

namespace {

using namespace sectorbox;

constexpr std::int32_t kTracks = 8;
constexpr std::int32_t kStart = 7;

class CountingView final : public TextView {
 public:
  CountingView() : TextView(style_) {}
  void SetCaption(const std::string&) override {}
  // A user with some patience.
  void ShowMessage(const std::string&) override {
    if (++boxes_ > 1000) Finished = true;
  }
  void WidenWindow(int) override {}
  void CloseWindow() override {}

 protected:
  void Append(const std::string&) override {}

 private:
  TextStyle style_;
  int boxes_ = 0;
};

void Show(Disc& disc, int view, const ListRow& row) {
  CountingView sink;
  switch (view) {
    case 0:
      return ShowText(disc, row, sink);
    case 1:
      return ShowHex(disc, row, sink);
    case 2:
      return Show_Basic(disc, row, sink);
    case 3:
      return ShowDis(disc, row, sink);
    case 4:
      return ShowCat(disc, kStart, sink);
    case 5:
      return ShowEx(disc, kStart, sink);
    case 6:
      return ShowCatAll(disc, kStart, "$", sink);
    case 7:
      return ShowExAll(disc, kStart, "$", sink);
    case 8:
      ReadFreeMap(disc);
      return ShowMap(disc, sink);
    default:
      return ShowWordwise(disc, row, sink);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static sectorbox::testing::QuietHost host;
  static Disc disc(host);
  disc.TheDisc.OpenFile("/nonexistent", kAdf, kTracks, 1, 16);
  const std::span<const std::uint8_t> bytes(data + 2, size - 2);
  disc.TheDisc.StoreBytes(SectorOffset(kStart), bytes);
  ListRow row;
  const std::size_t length = bytes.size() * data[1] / 255;
  row.Columns = {"F",           "WR",       "(00)",
                 "FFFFFFFF",    "FFFFFFFF", data[1] == 254 ? "FFFFFFFF" : Hex(length, 8),
                 Hex(kStart, 6)};
  Show(disc, data[0] % 16, row);
  return 0;
}
