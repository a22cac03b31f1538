// Any bytes are a file and a directory, which the text views show. The first byte chooses the view,
// the second says how much of the rest is the file. The other bytes fill a disc from its first file
// sector on. A view changes nothing.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/format/Text.h"
#include "fuzz/Require.h"
#include "tests/support/QuietHost.h"
#include "viewers/table/TextViews.h"

namespace {

using namespace sectorbox;

constexpr std::int32_t kTracks = 8;
constexpr std::int32_t kStart = 7;

class CountingView final : public TextView {
 public:
  CountingView() : TextView(style_) {}
  void SetCaption(const std::string&) override {}
  // The user closes a thousand boxes, and then the view.
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

// Any number chooses one of the views in the table.
void Show(Disc& disc, std::size_t number, const ListRow& row) {
  CountingView sink;
  const auto views = TextViews();
  const TextViewKind& kind = views[number % views.size()];
  if (kind.Subject == ViewSubject::kDisc) ReadFreeMap(disc);
  ShowTextView(kind, disc, {row, kStart}, sink);
}

std::vector<std::uint8_t> BytesOf(Disc& disc) {
  std::vector<std::uint8_t> bytes(disc.TheDisc.ImageBytes());
  disc.TheDisc.FetchBytes(0, bytes);
  return bytes;
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
  const std::vector<std::uint8_t> before = BytesOf(disc);
  Show(disc, data[0], row);
  fuzz::Require(BytesOf(disc) == before, "the disc's bytes");
  return 0;
}
