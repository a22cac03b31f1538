#include <gtest/gtest.h>

#include <random>

#include "link/transfer/ReceiveImage.h"
#include "link/transfer/SendImage.h"
#include "tests/link/LinkRig.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Faults that a transfer must get over, chosen at random by a seed. Bytes of commands are never
// lost: a command has no checksum, so the BBC can't tell a cut sector number from a shorter one.
BbcFaults Draw(std::mt19937& random) {
  const auto every = [&](int least, int most) {
    if (random() % 2 == 0) return 0;
    return std::uniform_int_distribution<int>(least, most)(random);
  };
  BbcFaults faults;
  faults.WrongCrcEvery = every(3, 9);
  faults.NoCrcEvery = every(5, 9);
  faults.NoiseForCrcEvery = every(3, 9);
  faults.SilentEvery = every(4, 9);
  faults.NoAcknowledgeEvery = every(3, 9);
  faults.WrongEscapeEvery = every(3, 9);
  faults.ShortStreamEvery = every(3, 9);
  faults.LongStreamEvery = every(3, 9);
  faults.GarbageEvery = every(3, 9);
  faults.BurstEvery = every(2, 9);
  faults.LoseOutgoingEvery = every(9000, 30000);
  faults.LoseIncomingEvery = every(9000, 30000);
  for (int i = 0; i < 3; ++i) {
    faults.CannotRead.insert(2 + static_cast<int>(random() % 94));
    faults.CannotWrite.insert(2 + static_cast<int>(random() % 94));
  }
  return faults;
}

// Half noise, half runs, with many 27s.
Bytes MixedDisc(std::mt19937& random, std::uint32_t seed) {
  Bytes disc = NoiseDisc(96, {{40, 7}, {60, 20}}, seed);
  for (std::size_t at = 512; at < disc.size(); at += 300) {
    const auto length = std::min<std::size_t>(random() % 300, disc.size() - at);
    std::fill_n(disc.begin() + static_cast<std::ptrdiff_t>(at), length,
                static_cast<std::uint8_t>(random() % 3 == 0 ? 27 : random()));
  }
  return disc;
}

bool IsFree(int sector) {
  return (sector >= 40 && sector < 47) || (sector >= 60 && sector < 80);
}

// Both discs agree, except for sectors that were given up. These are counted, and the trace names
// them.
void ExpectSameButFor(const Bytes& got, const Bytes& wanted, const std::set<std::int32_t>& skipped,
                      bool dataOnly, const LinkRig& rig, const char* verb) {
  for (int s = 0; s < 96; ++s) {
    if (skipped.count(s) != 0 || (dataOnly && IsFree(s))) continue;
    EXPECT_TRUE(
        std::equal(got.begin() + s * 256, got.begin() + s * 256 + 256, wanted.begin() + s * 256))
        << "sector " << s;
  }
  const std::string prefix = std::string("trace Error ") + verb + " sector ";
  const auto traced = rig.Host.LogOf(prefix);
  EXPECT_EQ(traced.size(), skipped.size());
  for (const auto s : skipped) {
    const std::string end = ", " + std::to_string(s);
    EXPECT_TRUE(std::any_of(traced.begin(), traced.end(), [&](const std::string& line) {
      return line.ends_with(end);
    })) << s;
  }
  EXPECT_GE(rig.Host.Counters.BadSectors, static_cast<int>(skipped.size()));
}

class FaultsTest : public ::testing::TestWithParam<int> {};

TEST_P(FaultsTest, AReceiveThatClaimsSuccessHasTheDrivesSectors) {
  std::mt19937 random(static_cast<unsigned>(GetParam()));
  LinkRig rig;
  rig.Bbc.SetBuffer(1 + static_cast<int>(random() % 20));
  rig.Bbc.Drives[0] = MixedDisc(random, static_cast<std::uint32_t>(GetParam()));
  rig.Host.Check = random() % 2 == 0;
  const bool dataOnly = random() % 2 == 0;
  // The opening isn't tried a second time, so the line turns bad only after it.
  const BbcFaults faults = Draw(random);
  rig.Host.OnLog = [&](const std::string& line) {
    if (line.starts_with("dialog")) rig.Bbc.Faults = faults;
  };
  WriteAll(rig.Folder / "x", NoiseBytes(96 * 256, 77));
  rig.Host.FileAnswers.push_back(rig.Folder / "x");
  std::string fileName;
  ASSERT_TRUE(ReceiveImage(rig.TheLink, 0, dataOnly, fileName));
  std::set<std::int32_t> skipped = rig.Bbc.SkippedReads;
  ExpectSameButFor(ReadAll(rig.Folder / "x"), rig.Bbc.Drives[0], skipped, dataOnly, rig, "reading");
}

TEST_P(FaultsTest, ASendThatClaimsSuccessLeftTheFilesSectors) {
  std::mt19937 random(static_cast<unsigned>(GetParam()) + 1000);
  LinkRig rig;
  rig.Bbc.SetBuffer(1 + static_cast<int>(random() % 20));
  rig.Bbc.Drives[0] = NoiseDisc(96, {}, 5);
  const Bytes disc = MixedDisc(random, static_cast<std::uint32_t>(GetParam()));
  rig.Host.Check = random() % 2 == 0;
  const bool dataOnly = random() % 2 == 0;
  const BbcFaults faults = Draw(random);
  rig.Host.OnLog = [&](const std::string& line) {
    if (line.starts_with("dialog")) rig.Bbc.Faults = faults;
  };
  WriteAll(rig.Folder / "x.dat", disc);
  rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
  SendImage(rig.TheLink, 0, dataOnly);
  ASSERT_TRUE(rig.Host.DialogFinished);
  ExpectSameButFor(rig.Bbc.Drives[0], disc, rig.Bbc.SkippedWrites, dataOnly, rig, "writing");
}

INSTANTIATE_TEST_SUITE_P(Seeds, FaultsTest, ::testing::Range(0, 60));

}  // namespace
}  // namespace sectorbox::testing
