#include "disc/health/Identify.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

void Put(Bytes& bytes, std::size_t at, const std::string& text) {
  for (const char c : text) bytes.at(at++) = static_cast<std::uint8_t>(c);
}

void PutNumber(Bytes& bytes, std::size_t at, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) {
    bytes.at(at++) = static_cast<std::uint8_t>(value >> (8 * i));
  }
}

FileLook LookAt(const Bytes& bytes) {
  return Identify(bytes, bytes.size());
}

std::string TextOfBytes(const Bytes& bytes) {
  const FileLook look = LookAt(bytes);
  EXPECT_EQ(look.Size, bytes.size());
  return TextOf(look) + "|" + look.Title;
}

Bytes Disc(std::int32_t sectors, const std::string& title = "My disc") {
  ImageBuilder image(sectors);
  image.SetTitle(2, title);
  return image.Bytes();
}

Bytes Doubled(const Bytes& flat) {
  Bytes card(flat.size() * 2, 0xEE);
  for (std::size_t i = 0; i < flat.size(); ++i) card[2 * i] = flat[i];
  return card;
}

// --- ADFS of the 8-bit machines ------------------------------------------------------------------

TEST(Identify, TellsTheDiscsOfThe8BitMachinesByTheSizeInTheirMap) {
  EXPECT_EQ(TextOfBytes(Disc(640)), "ADFS S|My disc");
  EXPECT_EQ(TextOfBytes(Disc(1280)), "ADFS M|My disc");
  EXPECT_EQ(TextOfBytes(Disc(2560)), "ADFS L|My disc");
  EXPECT_EQ(TextOfBytes(Disc(4224)), "ADFS hard disc|My disc");
  EXPECT_EQ(TextOfBytes(Disc(641)), "ADFS hard disc|My disc");
}

TEST(Identify, TellsAnInterleavedDiscOfTwoSides) {
  ImageBuilder image(2560);
  EXPECT_EQ(TextOfBytes(image.InterleavedBytes()), "ADFS L|$");
}

TEST(Identify, SaysThatAFileEndsBeforeItsDisc) {
  Bytes bytes = Disc(2560);
  bytes.resize(7 * 256);
  EXPECT_EQ(TextOfBytes(bytes), "ADFS L, trimmed|My disc");
  EXPECT_TRUE(LookAt(bytes).IsTrimmed);
  bytes.resize(1280 * 256);  // the length of another floppy
  EXPECT_EQ(TextOfBytes(bytes), "ADFS L, trimmed|My disc");
  bytes = Disc(4224);
  bytes.pop_back();
  EXPECT_EQ(TextOfBytes(bytes), "ADFS hard disc, trimmed|My disc");
  bytes.resize(bytes.size() + 1000);
  EXPECT_FALSE(LookAt(bytes).IsTrimmed);
}

TEST(Identify, TellsADiscInTheEvenBytesOfACard) {
  const Bytes card = Doubled(Disc(4224));
  EXPECT_EQ(TextOfBytes(card), "ADFS hard disc, byte-doubled|My disc");
  EXPECT_TRUE(LookAt(card).IsDoubled);
  Bytes cut = card;
  cut.pop_back();
  EXPECT_EQ(TextOfBytes(cut), "ADFS hard disc, byte-doubled, trimmed|My disc");
  cut.resize(8192);
  EXPECT_EQ(TextOfBytes(cut), "ADFS hard disc, byte-doubled, trimmed|My disc");
  EXPECT_EQ(TextOfBytes(Doubled(Disc(1280))), "ADFS M, byte-doubled|My disc");
}

TEST(Identify, BelievesTheLengthOfAFloppyWhoseMapHasAWrongSum) {
  Bytes bytes = Disc(1280);
  PutNumber(bytes, 252, 77, 3);
  EXPECT_EQ(TextOfBytes(bytes), "ADFS M|My disc");
  // A hard disc's length says nothing, so that its map is all there is.
  bytes = Disc(4224);
  bytes[255] ^= 1;
  EXPECT_EQ(TextOfBytes(bytes), "ADFS hard disc|My disc");
}

TEST(Identify, WithoutTheMarkOfTheRootADiscIsUnknown) {
  Bytes bytes = Disc(640);
  bytes[513] = 'h';
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
}

TEST(Identify, AMapThatBeginsLikeAnArchiveIsStillADisc) {
  Bytes bytes = Disc(640);
  Put(bytes, 0, "PK\3\4");
  EXPECT_EQ(TextOfBytes(bytes), "ADFS S|My disc");
}

TEST(Identify, GivesTheBytesOfATitleAsTheyAreWithoutTopBits) {
  Bytes bytes = Disc(640,
                     "A\x01"
                     "B\x7F");
  bytes[512 + 1241] |= 0x80;
  EXPECT_EQ(LookAt(bytes).Title,
            "A\x01"
            "B\x7F");
}

// --- ADFS of the 32-bit machines -----------------------------------------------------------------

// The title of a directory of 2048 bytes stands 2013 bytes behind its start.
void PutLargeRoot(Bytes& bytes, std::size_t at, const std::string& mark) {
  Put(bytes, at + 1, mark);
  Put(bytes, at + 2013, "Large\r");
  Put(bytes, at + 2043, mark);
}

Bytes OldMap32(std::int32_t sectors, const std::string& mark) {
  ImageBuilder image(sectors);
  Bytes bytes = image.Bytes();
  std::fill(bytes.begin() + 512, bytes.begin() + 4096, std::uint8_t{0});
  PutLargeRoot(bytes, 1024, mark);
  return bytes;
}

TEST(Identify, TellsADWithEitherMark) {
  EXPECT_EQ(TextOfBytes(OldMap32(3200, "Nick")), "ADFS D (Archimedes)|Large");
  EXPECT_EQ(TextOfBytes(OldMap32(3200, "Hugo")), "ADFS D (Archimedes)|Large");
}

TEST(Identify, TellsADWithAWrongSumAndACutOne) {
  Bytes bytes = OldMap32(3200, "Nick");
  bytes[255] ^= 1;
  EXPECT_EQ(TextOfBytes(bytes), "ADFS D (Archimedes)|Large");
  bytes.resize(bytes.size() / 2);
  EXPECT_EQ(TextOfBytes(bytes), "ADFS D (Archimedes), trimmed|Large");
}

TEST(Identify, TellsAHardDiscOfThe32BitMachinesByItsSums) {
  Bytes bytes = OldMap32(8448, "Hugo");
  EXPECT_EQ(TextOfBytes(bytes), "ADFS hard disc (Archimedes)|Large");
  bytes[511] ^= 1;
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
}

struct Shape {
  int Shift = 10;
  int Sectors = 5;
  int Heads = 2;
  int IdLength = 15;
  int Zones = 1;
  std::uint32_t Bytes = 819200;
  const char* Name = "";
};

void PutRecord(Bytes& bytes, std::size_t at, const Shape& shape) {
  PutNumber(bytes, at, static_cast<std::uint64_t>(shape.Shift), 1);
  PutNumber(bytes, at + 1, static_cast<std::uint64_t>(shape.Sectors), 1);
  PutNumber(bytes, at + 2, static_cast<std::uint64_t>(shape.Heads), 1);
  PutNumber(bytes, at + 4, static_cast<std::uint64_t>(shape.IdLength), 1);
  PutNumber(bytes, at + 9, static_cast<std::uint64_t>(shape.Zones), 1);
  PutNumber(bytes, at + 16, shape.Bytes, 4);
  Put(bytes, at + 22, shape.Name);
}

TEST(Identify, TellsAnEByTheRecordInItsMap) {
  Bytes bytes(819200);
  PutRecord(bytes, 4, {});
  PutLargeRoot(bytes, 0x800, "Nick");
  EXPECT_EQ(TextOfBytes(bytes), "ADFS E (Archimedes)|Large");
  Put(bytes, 4 + 22, "Named");
  EXPECT_EQ(TextOfBytes(bytes), "ADFS E (Archimedes)|Named");
  bytes.resize(100000);
  EXPECT_EQ(TextOfBytes(bytes), "ADFS E (Archimedes), trimmed|Named");
}

TEST(Identify, ARecordThatTellsOfNoSuchDiscIsNone) {
  for (const Shape& shape : {Shape{.Shift = 9}, Shape{.Shift = 0}, Shape{.Sectors = 0},
                             Shape{.Heads = 0}, Shape{.IdLength = 12}, Shape{.IdLength = 22},
                             Shape{.Zones = 0}, Shape{.Bytes = 819201}, Shape{.Bytes = 0}}) {
    Bytes bytes(819200);
    PutRecord(bytes, 4, shape);
    EXPECT_EQ(TextOfBytes(bytes), "unknown|");
  }
}

// The last byte of a boot block makes its sum right.
void PutBootBlock(Bytes& bytes, const Shape& shape) {
  PutRecord(bytes, 0xDC0, shape);
  unsigned sum = 0;
  for (std::size_t i = 511; i-- > 0;) {
    if (sum > 255) sum = (sum & 255) + 1;
    sum += bytes.at(0xC00 + i);
  }
  bytes.at(0xDFF) = static_cast<std::uint8_t>(sum);
}

TEST(Identify, TellsAnFAndAHardDiscByTheBootBlock) {
  Bytes bytes(1638400);
  PutNumber(bytes, 0xC00, 0xFFEEDDCC, 4);
  PutBootBlock(bytes, {.Sectors = 10, .Zones = 4, .Bytes = 1638400, .Name = "Effie     "});
  EXPECT_EQ(TextOfBytes(bytes), "ADFS F (Archimedes)|Effie");
  bytes[0xDFF] ^= 1;
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
  PutBootBlock(bytes, {.Shift = 9, .Sectors = 17, .Heads = 4, .Zones = 9, .Bytes = 1638400});
  EXPECT_EQ(LookAt(bytes).Form, FileForm::kAdfsHardDisc32);
  PutBootBlock(bytes, {.Shift = 9, .Sectors = 17, .Heads = 4, .Zones = 9, .Bytes = 20000000});
  EXPECT_EQ(LookAt(bytes).Form, FileForm::kAdfsHardDisc32);
  EXPECT_TRUE(LookAt(bytes).IsTrimmed);
}

// --- DFS -----------------------------------------------------------------------------------------

// A catalogue with one file, of a disc of that many sectors.
void PutCatalogue(Bytes& bytes, std::size_t at, unsigned sectors, const std::string& title) {
  Put(bytes, at, title.substr(0, 8));
  if (title.size() > 8) Put(bytes, at + 256, title.substr(8));
  Put(bytes, at + 8, "HELLO  $");
  bytes.at(at + 15) |= 0x80;  // locked
  bytes.at(at + 256 + 5) = 8;
  bytes.at(at + 256 + 6) = static_cast<std::uint8_t>(0x30 | sectors >> 8);  // boot option 3
  bytes.at(at + 256 + 7) = static_cast<std::uint8_t>(sectors);
  bytes.at(at + 256 + 15) = 2;
}

TEST(Identify, TellsADfsDiscOfOneSideWholeOrCutShort) {
  Bytes bytes(204800);
  PutCatalogue(bytes, 0, 800, "ELITE");
  EXPECT_EQ(TextOfBytes(bytes), "DFS, one side|ELITE");
  bytes.resize(102400);
  PutCatalogue(bytes, 0, 400, "TWELVE CHARS");
  EXPECT_EQ(TextOfBytes(bytes), "DFS, one side|TWELVE CHARS");
  bytes.resize(3000);
  EXPECT_EQ(TextOfBytes(bytes), "DFS, one side|TWELVE CHARS");
  bytes.resize(511);
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
}

TEST(Identify, TellsADfsDiscOfTwoSidesByItsSecondCatalogue) {
  Bytes bytes(409600);
  PutCatalogue(bytes, 0, 800, "SIDE0");
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
  PutCatalogue(bytes, 2560, 800, "SIDE2");
  EXPECT_EQ(TextOfBytes(bytes), "DFS, two sides|SIDE0");
  bytes.resize(5000);
  EXPECT_EQ(TextOfBytes(bytes), "DFS, two sides|SIDE0");
  bytes.resize(409601);
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
}

TEST(Identify, WhatCanBeNoCatalogueIsNoDfsDisc) {
  Bytes sound(204800);
  PutCatalogue(sound, 0, 800, "ELITE");
  for (const auto& [at, value] : std::vector<std::pair<std::size_t, int>>{
           {261, 9}, {261, 252}, {262, 0}, {263, 0x21}, {9, 7}, {15, 127}}) {
    Bytes bytes = sound;
    bytes.at(at) = static_cast<std::uint8_t>(value);
    EXPECT_EQ(TextOfBytes(bytes), "unknown|") << at;
  }
  Bytes far = sound;
  far[256 + 14] = 3;
  far[256 + 15] = 0xFF;  // starts at sector 1023 of 800
  EXPECT_EQ(TextOfBytes(far), "unknown|");
}

// --- DOS -----------------------------------------------------------------------------------------

Bytes DosDisc(std::uint8_t jump, unsigned sectorSize, unsigned sectors) {
  Bytes bytes(sectorSize * sectors);
  bytes[0] = jump;
  PutNumber(bytes, 11, sectorSize, 2);
  bytes[13] = 2;
  PutNumber(bytes, 14, 1, 2);
  bytes[16] = 2;
  PutNumber(bytes, 19, sectors, 2);
  bytes[21] = 0xF9;
  return bytes;
}

TEST(Identify, TellsDosDiscsByTheirParameters) {
  EXPECT_EQ(TextOfBytes(DosDisc(0xEB, 512, 1280)), "DOS 640K|");
  EXPECT_EQ(TextOfBytes(DosDisc(0xE9, 1024, 800)), "DOS 800K|");
  EXPECT_EQ(TextOfBytes(DosDisc(0xEB, 512, 1440)), "DOS|");
  Bytes labelled = DosDisc(0xEB, 512, 1280);
  labelled[38] = 0x29;
  Put(labelled, 43, "WORK       ");
  EXPECT_EQ(TextOfBytes(labelled), "DOS 640K|WORK");
  Put(labelled, 43, "NO NAME    ");
  EXPECT_EQ(TextOfBytes(labelled), "DOS 640K|");
}

TEST(Identify, AJumpWithoutParametersIsNoDosDisc) {
  const Bytes sound = DosDisc(0xEB, 512, 1280);
  for (const std::size_t at : {0U, 12U, 13U, 16U, 21U}) {
    Bytes bytes = sound;
    bytes[at] = 0x05;
    EXPECT_EQ(TextOfBytes(bytes), "unknown|") << at;
  }
}

TEST(Identify, TellsADosDiscThatBeginsWithItsTable) {
  Bytes bytes(819200);
  Put(bytes, 0, "\xFD\xFF\xFF");
  EXPECT_EQ(TextOfBytes(bytes), "DOS 800K|");
  bytes.pop_back();
  EXPECT_EQ(TextOfBytes(bytes), "unknown|");
}

// --- Everything else -----------------------------------------------------------------------------

TEST(Identify, TellsContainers) {
  const std::vector<std::pair<std::string, std::string>> containers = {
      {"PK\3\4", "ZIP archive|"},       {"\x1F\x8B", "gzip file|"},
      {"7z\xBC\xAF", "7z archive|"},    {"HXCPICFE", "HFE floppy image|"},
      {"UEF File!", "UEF tape image|"}, {"PK\3", "unknown|"},
      {"HXCPICF", "unknown|"},          {"UEF File", "unknown|"},
  };
  for (const auto& [magic, text] : containers) {
    EXPECT_EQ(TextOfBytes(Bytes(magic.begin(), magic.end())), text);
    Bytes longer(magic.begin(), magic.end());
    longer.resize(100000, 0x55);
    EXPECT_EQ(TextOfBytes(longer), text);
  }
}

TEST(Identify, TellsAnEmptyFileAndWhatItDoesNotKnow) {
  EXPECT_EQ(TextOfBytes({}), "empty|");
  EXPECT_EQ(TextOfBytes({0}), "unknown|");
  EXPECT_EQ(TextOfBytes(Bytes(163840)), "unknown|");
  EXPECT_EQ(TextOfBytes(Bytes(819200, 0xFF)), "unknown|");
}

TEST(Identify, TakesNoHarmFromBytesOfAnyKindAndLength) {
  std::uint32_t state = 1;
  for (std::size_t length = 1; length < 2 * kLookedAt; length += 97) {
    Bytes bytes(length);
    for (std::uint8_t& byte : bytes) {
      state = state * 1664525 + 1013904223;
      byte = static_cast<std::uint8_t>(state >> 24);
    }
    EXPECT_EQ(TextOfBytes(bytes), "unknown|") << length;
  }
}

TEST(Identify, EveryCutOfADiscIsToldAsFarAsItsMarkGoes) {
  const Bytes disc = Disc(2560);
  for (std::size_t length = 1; length < 2000; ++length) {
    const Bytes cut(disc.begin(), disc.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(LookAt(cut).Form, length < 517 ? FileForm::kUnknown : FileForm::kAdfsL) << length;
  }
}

TEST(Identify, ReadsAFileAndRefusesWhatIsNone) {
  const TempFolder folder;
  WriteAll(folder / "disc.adl", Disc(2560));
  WriteAll(folder / "none", {});
  EXPECT_EQ(TextOf(IdentifyFile(folder / "disc.adl")), "ADFS L");
  EXPECT_EQ(IdentifyFile(folder / "disc.adl").Size, 655360U);
  EXPECT_EQ(TextOf(IdentifyFile(folder / "none")), "empty");
  EXPECT_THROW((void)IdentifyFile(folder / "missing"), HostError);
  EXPECT_THROW((void)IdentifyFile(folder.Path()), HostError);
  EXPECT_THROW((void)IdentifyFile("/dev/zero"), HostError);
}

}  // namespace
}  // namespace sectorbox
