#include "disc/Adfs.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using testing::ImageBuilder;
using testing::ScriptedHost;
using testing::TempFolder;

class AdfsTest : public ::testing::Test {
 protected:
  void Open(const ImageBuilder& image) {
    image.WriteTo(folder_ / "disc.adf");
    disc_.TheDisc.OpenFile(folder_ / "disc.adf", kAdf, 40, 1, 16);
    ReadFreeMap(disc_);
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(AdfsTest, EmptyDiscOf640SectorsShowsFreeAndUsedBytes) {
  Open(ImageBuilder(640));
  ShowFreeSpace(disc_);
  EXPECT_EQ(host_.Statuses.back(), " 162048 Bytes Free,  1792 Bytes Used");
}

}  // namespace
}  // namespace sectorbox
