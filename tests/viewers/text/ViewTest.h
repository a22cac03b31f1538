#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/format/Text.h"
#include "disc/store/Disc.h"
#include "tests/support/CollectingView.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {

using Bytes = std::vector<std::uint8_t>;

inline Bytes BytesOf(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

// A disc with one file, for the tests of the views.
class ViewTest : public ::testing::Test {
 protected:
  static constexpr std::int32_t kSectors = 640;

  void Open(const ImageBuilder& image) {
    image.WriteTo(folder_ / "disc.adf");
    disc_.TheDisc.OpenFile(folder_ / "disc.adf", kAdf, 40, 1, 16);
    ReadFreeMap(disc_);
  }

  // Puts the file alone on a disc and gives its row. The bytes of behind follow the file, and then
  // zeros.
  ListRow RowOf(const Bytes& bytes, const std::string& load, const std::string& exec,
                const Bytes& behind = {}) {
    ImageBuilder image(kSectors);
    Bytes stored = bytes;
    stored.insert(stored.end(), behind.begin(), behind.end());
    const std::int32_t sector = image.AddFile(2, {"FILE", stored});
    Open(image);
    Entry file;
    file.SetName("FILE");
    file.Set(Attribute::kRead, true);
    file.Set(Attribute::kWrite, true);
    file.SetLoad(ParseHex(load));
    file.SetExec(ParseHex(exec));
    file.SetLength(static_cast<std::uint32_t>(bytes.size()));
    file.SetStart(sector);
    return MakeRow(file);
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
  CollectingView view_;
};

}  // namespace sectorbox::testing
