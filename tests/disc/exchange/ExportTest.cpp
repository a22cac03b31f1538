// Files and directories on their way to the host.
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/disc/exchange/HostExchangeFixture.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

using ExportFilesTest = HostExchangeFixture;

TEST_F(ExportFilesTest, ExportWritesEachFileWithItsSidecar) {
  ImageBuilder image(2560);
  image.AddFile(2, {"PROG", Pattern(700), 0xFFFF1900, 0xFFFF8023, "LWR"});
  image.AddFile(2, {"Z/TXT", {}, 1, 2, "R"});
  Open(image);
  const Bytes before = Image();
  ExportDisc(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "PROG PROG.INF Z.TXT Z.TXT.INF");
  EXPECT_EQ(ReadAll(OutFile("PROG")), Pattern(700));
  EXPECT_EQ(ReadText(OutFile("PROG.INF")), "PROG       FFFF1900 FFFF8023 000002BC LWR\r\n");
  EXPECT_EQ(ReadAll(OutFile("Z.TXT")), Bytes());
  EXPECT_EQ(ReadText(OutFile("Z.TXT.INF")), "Z/TXT      00000001 00000002 00000000 R\r\n");
  EXPECT_EQ(Image(), before);
  EXPECT_EQ(host_.Log.front(), "pointer busy");
  EXPECT_EQ(host_.Log.back(), "pointer normal");
}

TEST_F(ExportFilesTest, ADragAndTheCommandExportTheSameAndTheCommandShowsTheHourglass) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  Open(image);
  DragDropExportFiles(disc_, folder_ / "drag", 2, nullptr);
  EXPECT_EQ(Listed(folder_ / "drag"), "A A.INF");
  EXPECT_EQ(host_.Log, std::vector<std::string>());
  ExportDisc(disc_, folder_ / "all", 2);
  EXPECT_EQ(Listed(folder_ / "all"), "A A.INF");
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"pointer busy", "pointer normal"}));
}

TEST_F(ExportFilesTest, ADirectorysSidecarLiesBesideItsFolder) {
  ImageBuilder image(2560);
  image.AddFile(image.AddDirectory(2, "COMIC", "LR"), {"X", Pattern(3), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "COM_IC COM_IC.INF");
  EXPECT_EQ(ReadText(OutFile("COM_IC.INF")), "COMIC      DLR\r\n");
  EXPECT_EQ(Listed(OutFile("COM_IC")), "X X.INF");
}

TEST_F(ExportFilesTest, ExistingFilesAreReplacedWithoutAQuestion) {
  ImageBuilder image(2560);
  image.AddFile(2, {"X", Pattern(3), 0, 0, "WR"});
  Open(image);
  MakeFolder("out");
  WriteText(OutFile("X"), "something longer than three bytes");
  WriteText(OutFile("X.INF"), std::string(1000, '?'));
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(ReadAll(OutFile("X")), Pattern(3));
  EXPECT_EQ(ReadText(OutFile("X.INF")).size(), 42U);
}

TEST_F(ExportFilesTest, ACyclicDiscIsExportedOnceAndTheLoopNoted) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", Pattern(9), 0, 0, "WR"});
  image.AddDirectory(dir, "LOOP");
  image.Poke(dir * 256 + 5 + 26 + 22, 2);
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "DIR DIR.INF");
  EXPECT_EQ(Listed(OutFile("DIR")), "A A.INF LOOP.INF");
  EXPECT_EQ(host_.LogOf("note").size(), 1U);
}

TEST_F(ExportFilesTest, ADirectoryWithoutItsMarkExportsAsAnEmptyFolder) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", Pattern(9), 0, 0, "WR"});
  image.Poke(dir * 256 + 1, 'X');
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(OutFile("DIR")), "");
}

TEST_F(ExportFilesTest, WhatLiesBehindTheEndOfTheStoreIsCountedAndNotHandedOn) {
  Open(ImageBuilder(640));
  const auto end = static_cast<std::int32_t>(disc_.TheDisc.EndOfData() / 256);
  std::size_t handedOn = 0;
  const auto sink = [&](std::span<const std::uint8_t> bytes) { handedOn += bytes.size(); };
  EXPECT_EQ(ReadContents(disc_, end - 2, 1000, sink), 488U);
  EXPECT_EQ(handedOn, 512U);
  EXPECT_EQ(ReadContents(disc_, end, 10, sink), 10U);
  EXPECT_EQ(ReadContents(disc_, end + 1, 10, sink), 10U);
  EXPECT_EQ(handedOn, 512U);
}

TEST_F(ExportFilesTest, ALengthOfFourGigabytesTakesNoRoomOnTheHost) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  for (int i = 18; i < 22; ++i) image.Poke(517 + i, 0xFF);
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(fs::file_size(OutFile("A")), 0xFFFFFFFFU);
  struct stat info {};
  ASSERT_EQ(::stat(OutFile("A").c_str(), &info), 0);
  EXPECT_LT(info.st_blocks * 512, 1000000);
}

TEST_F(ExportFilesTest, AHostDiscThatFillsUpIsAFailureAndLeavesTheOldFile) {
  ImageBuilder image(2560);
  image.AddFile(2, {"BIG", Pattern(200000), 0, 0, "WR"});
  Open(image);
  MakeFolder("out");
  WriteText(OutFile("BIG"), "old");
  struct rlimit former {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit limit = former;
  limit.rlim_cur = 100000;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  EXPECT_THROW(ExportFiles(disc_, Out(), 2), HostError);
  ::setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(Listed(Out()), "BIG");
  EXPECT_EQ(ReadText(OutFile("BIG")), "old");
}

TEST_F(ExportFilesTest, AFileInPlaceOfTheFolderIsAFailure) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  Open(image);
  HostFile("out", "x");
  EXPECT_THROW(ExportFiles(disc_, Out(), 2), HostError);
  EXPECT_EQ(ReadText(Out()), "x");
}

}  // namespace
}  // namespace sectorbox
