// Faults as values: what programs can rely on. What the texts say is proven with the check itself.

#include "disc/health/Fault.h"

#include <set>

#include "disc/health/Check.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

// Opens an image with $.A (7), $.A.F (12, two sectors) and $.G (14), once a test has damaged it.
class FaultTest : public EngineTest {
 protected:
  FaultTest() {
    a_ = image_.AddDirectory(2, "A");
    image_.AddFile(a_, {"F", std::vector<std::uint8_t>(300)});
    image_.AddFile(2, {"G", {1}});
  }

  std::vector<Fault> Check() {
    Open(image_);
    return CheckDisc(disc_);
  }
  // The one fault of the disc.
  Fault TheFault() {
    const std::vector<Fault> faults = Check();
    EXPECT_EQ(faults.size(), 1U);
    return faults.empty() ? Fault() : faults[0];
  }

  ImageBuilder image_{640};
  std::int32_t a_ = 0;
};

constexpr int kEntryG = 517 + 26;

TEST_F(FaultTest, AWrongSumNamesItsSectorAndBothSums) {
  const int right = image_.Peek(511);
  image_.Poke(511, static_cast<std::uint8_t>(right + 1));
  const Fault fault = TheFault();
  EXPECT_EQ(fault.Kind, FaultKind::kWrongMapSum);
  EXPECT_EQ(fault.Weight, Severity::kError);
  EXPECT_EQ(fault.At.Kind, TouchedKind::kMapSector);
  EXPECT_EQ(fault.At.Number, 1);
  EXPECT_EQ(fault.Is, (right + 1) & 255);
  EXPECT_EQ(fault.Should, right);
}

TEST_F(FaultTest, AFaultOfARunNamesTheRun) {
  image_.SetFreeRuns({{15, 100}, {115, 525}});
  const Fault fault = TheFault();
  EXPECT_EQ(fault.Kind, FaultKind::kRunTouchesFormer);
  EXPECT_EQ(fault.At.Kind, TouchedKind::kRun);
  EXPECT_EQ(fault.At.Number, 1);
}

TEST_F(FaultTest, AFaultOfADirectoryNamesItsPathAndSector) {
  image_.Poke(a_ * 256 + 1238, 9);
  const Fault fault = TheFault();
  EXPECT_EQ(fault.Kind, FaultKind::kWrongParent);
  EXPECT_EQ(fault.At.Kind, TouchedKind::kDirectory);
  EXPECT_EQ(fault.At.Number, a_);
  EXPECT_EQ(fault.At.Path, "$.A");
  EXPECT_EQ(fault.Is, 9);
  EXPECT_EQ(fault.Should, 2);
}

TEST_F(FaultTest, AFaultOfAnEntryNamesItsPathAndSlot) {
  image_.Poke(a_ * 256 + 5, 0x80 | 1);
  const Fault fault = TheFault();
  EXPECT_EQ(fault.Kind, FaultKind::kNameUntypable);
  EXPECT_EQ(fault.Weight, Severity::kWarning);
  EXPECT_EQ(fault.At.Kind, TouchedKind::kEntry);
  EXPECT_EQ(fault.At.Number, a_);
  EXPECT_EQ(fault.At.Slot, 0);
  EXPECT_EQ(fault.At.Path, "$.A.\x01");
}

TEST_F(FaultTest, AnOverlapNamesBothThingsAndSpaceThatNothingOwnsItsSectors) {
  image_.Poke(kEntryG + 22, 13);
  const std::vector<Fault> faults = Check();
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_EQ(faults[0].Kind, FaultKind::kOverlap);
  EXPECT_EQ(faults[0].At.Path, "$.G");
  EXPECT_EQ(faults[0].At.Number, 2);
  EXPECT_EQ(faults[0].At.Slot, 1);
  EXPECT_EQ(faults[0].Other.Path, "$.A.F");
  EXPECT_EQ(faults[0].Other.Number, a_);
  EXPECT_EQ(faults[0].Other.Slot, 0);
  EXPECT_EQ(faults[1].Kind, FaultKind::kUnowned);
  EXPECT_EQ(faults[1].At.Kind, TouchedKind::kSectors);
  EXPECT_EQ(faults[1].At.Number, 14);
  EXPECT_EQ(faults[1].Is, 1);
}

TEST_F(FaultTest, AnOverlapWithFreeSpaceNamesTheRun) {
  image_.SetFreeRuns({{14, 626}});
  const Fault fault = TheFault();
  EXPECT_EQ(fault.At.Path, "$.G");
  EXPECT_EQ(fault.Other.Kind, TouchedKind::kRun);
  EXPECT_EQ(fault.Other.Number, 0);
}

TEST_F(FaultTest, ACompanionThatIsTooSmallIsNamed) {
  const std::string path = folder_ / "disc.dat";
  CreateDisc(disc_, path, 32, 4, 33, kDat);
  ResizeImageFile(disc_, path, 64, 4, 33);
  OpenImage(disc_, path);
  const std::vector<Fault> faults = CheckDisc(disc_);
  ASSERT_EQ(faults.size(), 1U);
  EXPECT_EQ(faults[0].Kind, FaultKind::kCompanionTooSmall);
  EXPECT_EQ(faults[0].At.Kind, TouchedKind::kCompanion);
  EXPECT_EQ(faults[0].At.Path, "disc.dsc");
  EXPECT_EQ(faults[0].Is, 4224);
  EXPECT_EQ(faults[0].Should, 8448);
}

TEST(FaultWords, EveryKindHasAWordAndATextOfItsOwn) {
  std::set<std::string> words;
  std::set<std::string> texts;
  const int kinds = static_cast<int>(FaultKind::kMore) + 1;
  for (int kind = 0; kind < kinds; ++kind) {
    const Fault fault = MakeFault(static_cast<FaultKind>(kind), {}, 1, 2);
    words.insert(WordOf(fault.Kind));
    texts.insert(fault.Text());
    EXPECT_EQ(fault.Text().find_first_of("{}"), std::string::npos) << fault.Text();
  }
  EXPECT_EQ(words.size(), static_cast<std::size_t>(kinds));
  EXPECT_EQ(texts.size(), static_cast<std::size_t>(kinds));
}

}  // namespace
}  // namespace sectorbox
