// An image may hold any bytes. Opening, walking, listing, checking and saving it always end, and
// stay within their memory (the sanitizers watch that).

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/health/Check.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

struct Outcome {
  std::size_t Nodes = 0;
  std::size_t Rows = 0;  // of the root
  std::int16_t Runs = 0;
  bool HasError = false;
};

// Takes an image file through all of these steps.
Outcome Use(const std::string& path) {
  ScriptedHost host;
  Disc disc(host);
  host.ProgressRunning = &disc.ProgressRunning;
  OpenImage(disc, path);
  Outcome outcome;
  outcome.Runs = disc.FreeCount;
  const auto tree = WalkTree(disc);
  outcome.Nodes = tree.size();
  outcome.Rows = ReadRows(disc, format::kRootSector).size();
  for (std::size_t i = 0; i < std::min<std::size_t>(tree.size(), 50); ++i) {
    for (const ListRow& row : ReadRows(disc, tree[i].Tag)) {
      (void)FindPath(disc, row.Name());
      EXPECT_LE(row.Name().size(), 10U);
    }
    EXPECT_LE(GetDirName(disc, tree[i].Tag).size(), 10U);
    EXPECT_LE(GetDirTitle(disc, tree[i].Tag).size(), 19U);
  }
  ShowFreeSpace(disc);
  for (const Fault& fault : CheckDisc(disc)) outcome.HasError |= fault.IsError();
  SaveImageTo(disc, path + ".saved");
  std::filesystem::remove(path + ".saved");
  return outcome;
}

class BadInput : public ::testing::Test {
 protected:
  Outcome Use(const std::string& name, const Bytes& bytes) {
    WriteAll(folder_ / name, bytes);
    return sectorbox::Use(folder_ / name);
  }
  // A disc with $.A.B and files in each.
  static ImageBuilder Sound(std::int32_t sectors) {
    ImageBuilder image(sectors);
    const auto a = image.AddDirectory(2, "A");  // 7
    const auto b = image.AddDirectory(a, "B");  // 12
    image.AddFile(b, {"F", Bytes(5000, 'x')});
    image.AddFile(2, {"G", Bytes(300, 'y')});
    return image;
  }

  TempFolder folder_;
};

TEST_F(BadInput, TableOfChanges) {
  struct Case {
    const char* Name;
    std::function<void(ImageBuilder&)> Change;
    std::size_t Nodes;
    std::size_t Rows;
    bool HasError;
  };
  constexpr int kEntryA = 517;
  constexpr int kEntryB = 7 * 256 + 5;
  const std::vector<Case> cases = {
      {"sound", [](ImageBuilder&) {}, 3, 2, false},
      {"root without its mark", [](ImageBuilder& i) { i.Poke(513, 0); }, 1, 0, true},
      {"A lists itself", [](ImageBuilder& i) { i.Poke(kEntryB + 22, 7); }, 3, 2, true},
      {"A lists the root", [](ImageBuilder& i) { i.Poke(kEntryB + 22, 2); }, 3, 2, true},
      {"the root lists itself", [](ImageBuilder& i) { i.Poke(kEntryA + 22, 2); }, 2, 2, true},
      {"A starts past the end", [](ImageBuilder& i) { i.Poke(kEntryA + 24, 0xFF); }, 2, 2, true},
      {"B starts at the map", [](ImageBuilder& i) { i.Poke(kEntryB + 22, 0); }, 3, 2, true},
      {"G of the largest length",
       [](ImageBuilder& i) {
         for (int k = 18; k < 22; ++k) i.Poke(kEntryA + 26 + k, 0xFF);
       },
       3, 2, true},
      {"size 0", [](ImageBuilder& i) { i.Poke(252, 0), i.Poke(253, 0); }, 3, 2, true},
      {"the largest size",
       [](ImageBuilder& i) {
         for (int k = 252; k < 255; ++k) i.Poke(k, 0xFF);
       },
       3, 2, true},
      {"all runs of the largest start and length",
       [](ImageBuilder& i) {
         for (int k = 0; k < 246; ++k) i.Poke(k, 0xFF), i.Poke(256 + k, 0xFF);
         i.Poke(510, 246);
       },
       3, 2, true},
  };
  for (const std::int32_t sectors : {640, 1280, 2560, 4224}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.Name) + " on " + std::to_string(sectors));
      ImageBuilder image = Sound(sectors);
      c.Change(image);
      const Outcome outcome =
          Use("x.dat", sectors == 2560 ? image.InterleavedBytes() : image.Bytes());
      EXPECT_EQ(outcome.Nodes, c.Nodes);
      EXPECT_EQ(outcome.Rows, c.Rows);
      EXPECT_EQ(outcome.HasError, c.HasError);
    }
  }
}

TEST_F(BadInput, AnEmptyFileAndFilesBelowASector) {
  for (const char* name : {"x.adf", "x.adl", "x.dat", "x"}) {
    for (const std::size_t length : {0, 1, 4, 252, 253, 254, 255}) {
      SCOPED_TRACE(std::string(name) + " of " + std::to_string(length));
      const Outcome outcome = Use(name, Bytes(length, 0xFF));
      EXPECT_EQ(outcome.Nodes, 1U);
      EXPECT_EQ(outcome.Rows, 0U);
      EXPECT_TRUE(outcome.HasError);
    }
  }
}

TEST_F(BadInput, AnImageCutAnywhere) {
  for (const char* name : {"x.adf", "x.adl", "x.dat"}) {
    const Bytes whole = Sound(1280).Bytes();
    for (std::size_t length = 0; length < 9000; length += 311) {
      SCOPED_TRACE(std::string(name) + " of " + std::to_string(length));
      const Outcome outcome =
          Use(name, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
      EXPECT_LE(outcome.Nodes, 3U);
    }
  }
}

TEST_F(BadInput, AnyEndPointer) {
  for (int value = 0; value < 256; value += 5) {
    SCOPED_TRACE(value);
    ImageBuilder image = Sound(640);
    image.Poke(510, static_cast<std::uint8_t>(value));
    const Outcome outcome = Use("x.adf", image.Bytes());
    EXPECT_LE(outcome.Runs, 83);
    EXPECT_EQ(outcome.Nodes, 3U);
  }
}

TEST_F(BadInput, RandomBytes) {
  std::mt19937 random(1);
  for (int round = 0; round < 12; ++round) {
    SCOPED_TRACE(round);
    Bytes bytes(20000 + random() % 20000);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    // Most of the time with a map and marks that lead into the noise.
    if (round % 3 != 0) {
      bytes[252] = round % 2 == 0 ? 0x80 : 0x00;
      bytes[253] = round % 2 == 0 ? 0x02 : 0x05;
      bytes[254] = 0;
      for (std::size_t at = 512; at + 5 < bytes.size(); at += 256) {
        std::copy_n("Hugo", 4, bytes.begin() + static_cast<std::ptrdiff_t>(at) + 1);
      }
    } else {
      bytes[254] = 0;
    }
    const Outcome outcome = Use(round % 2 == 0 ? "x.adf" : "x.adl", bytes);
    EXPECT_TRUE(outcome.HasError);
  }
}

TEST_F(BadInput, ADirectoryTreeDeeperThanTheBoundEndsThere) {
  ImageBuilder image(4224);
  std::int32_t dir = 2;
  for (int depth = 0; depth < 300; ++depth) dir = image.AddDirectory(dir, "D");
  const Outcome outcome = Use("x.dat", image.Bytes());
  EXPECT_EQ(outcome.Nodes, 257U);
  EXPECT_TRUE(outcome.HasError);
}

}  // namespace
}  // namespace sectorbox
