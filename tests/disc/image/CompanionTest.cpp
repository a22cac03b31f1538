#include "disc/medium/Companion.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

TEST(Companion, LiesBesideTheImage) {
  EXPECT_EQ(CompanionName("/a/disc.dat"), "/a/disc.dsc");
  EXPECT_EQ(CompanionName("/a/disc.DAT"), "/a/disc.dsc");
}

TEST(Companion, OnlyAnExtensionOfThreeCharactersGoes) {
  EXPECT_EQ(CompanionName("/a.b/disc"), "/a.b/disc.dsc");
  EXPECT_EQ(CompanionName("/folder/ab"), "/folder/ab.dsc");
  EXPECT_EQ(CompanionName("/a.bc/d"), "/a.bc/d.dsc");
  EXPECT_EQ(CompanionName("abc"), "abc.dsc");
  EXPECT_EQ(CompanionName("disc.image"), "disc.image.dsc");
  EXPECT_EQ(CompanionName("disc.d"), "disc.d.dsc");
}

TEST(Companion, ANewOneHoldsTheTemplate) {
  const TempFolder folder;
  WriteCompanion(folder / "x.dat", {16384, 4});
  EXPECT_EQ(ReadAll(folder / "x.dsc"),
            (std::vector<std::uint8_t>{0, 0, 0,  8, 0, 0, 0,   0, 0,   0, 1,
                                       0, 1, 64, 0, 4, 0, 128, 0, 128, 0, 1}));
}

TEST(Companion, AnExistingOneKeepsItsOtherBytes) {
  const TempFolder folder;
  std::vector<std::uint8_t> bytes(22);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(100 + i);
  WriteAll(folder / "x.dsc", bytes);
  WriteCompanion(folder / "x.dat", {0x0203, 9});
  bytes[13] = 2;
  bytes[14] = 3;
  bytes[15] = 9;
  EXPECT_EQ(ReadAll(folder / "x.dsc"), bytes);
}

TEST(Companion, AnyLengthIsReadAsFarAsItGoes) {
  const TempFolder folder;
  EXPECT_FALSE(ReadCompanion(folder / "x.dat").has_value());
  for (std::size_t length = 0; length <= 30; ++length) {
    SCOPED_TRACE(length);
    WriteAll(folder / "x.dsc", std::vector<std::uint8_t>(length, 1));
    const auto geometry = ReadCompanion(folder / "x.dat");
    ASSERT_TRUE(geometry.has_value());
    EXPECT_EQ(geometry->Tracks, (length > 13 ? 256 : 0) + (length > 14 ? 1 : 0));
    EXPECT_EQ(geometry->Heads, length > 15 ? 1 : 0);
  }
}

TEST(Companion, OnlyWhatHasItsLengthOrIsEmptyIsReplaced) {
  const TempFolder folder;
  const std::string path = folder / "x.dsc";
  for (std::size_t length = 0; length <= 30; ++length) {
    SCOPED_TRACE(length);
    const std::vector<std::uint8_t> before(length, 1);
    WriteAll(path, before);
    if (length == 0 || length == 22) {
      RequireRoomForCompanion(folder / "x.dat");
      WriteCompanion(folder / "x.dat", {5, 4});
      EXPECT_EQ(ReadAll(path).size(), 22U);
      continue;
    }
    EXPECT_THROW(RequireRoomForCompanion(folder / "x.dat"), HostError);
    try {
      WriteCompanion(folder / "x.dat", {5, 4});
      ADD_FAILURE() << "it was replaced";
    } catch (const HostError& error) {
      EXPECT_EQ(error.what(),
                path + ": stands where the companion goes. Move it to another place first");
    }
    EXPECT_EQ(ReadAll(path), before);
  }
}

TEST(Companion, AFolderOfItsNameIsInTheWay) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "x.dsc");
  EXPECT_THROW(RequireRoomForCompanion(folder / "x.dat"), HostError);
}

TEST(Companion, AnImageOfItsOwnNameIsNotOverwritten) {
  const TempFolder folder;
  WriteText(folder / "x.dsc", "an image");
  RequireRoomForCompanion(folder / "x.dsc");
  WriteCompanion(folder / "x.dsc", {5, 4});
  EXPECT_EQ(ReadText(folder / "x.dsc"), "an image");
}

}  // namespace
}  // namespace sectorbox
