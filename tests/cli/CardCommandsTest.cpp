// Cards at the prompt: a raw card in a plain file is made, formatted, filled, backed up and
// restored.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/CardAccount.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

namespace fs = std::filesystem;

class CardCommands : public ::testing::Test {
 protected:
  std::string MakeCard(std::uint64_t bytes, const std::string& name = "my,card") {
    WriteAll(folder / name, {});
    fs::resize_file(folder / name, bytes);
    return folder / name;
  }
  std::uint8_t Peek(const std::string& path, std::uint64_t offset) {
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    return static_cast<std::uint8_t>(file.get());
  }
  TempFolder folder;
  static constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
};

TEST_F(CardCommands, FormatFillBackUpRestoreAndRead) {
  const std::string card = MakeCard(5 * kGibibyte / 2);
  WriteText(folder / "HELLO", "Hello, Beeb");
  for (const char* p : {"0", "1"}) {
    const std::string name = card + "," + p;
    EXPECT_EQ(RunSbx({"cf", "format", name, "1MB", "--quick"}).Status, 0);
    EXPECT_EQ(RunSbx({"add", "cf:" + name, "$", folder / "HELLO"}).Status, 0);
    EXPECT_EQ(RunSbx({"check", "cf:" + name}).Status, 0);
    EXPECT_EQ(RunSbx({"get", "cf:" + name, "HELLO"}).Out, "Hello, Beeb");
  }
  EXPECT_EQ(RunSbx({"cf", "scan", card}).Out,
            card + ": - Partition 0\n" + card + ": - Partition 1\n");
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",1", folder / "b.dat"}).Status, 0);
  const std::string other = MakeCard(4096 * 512, "other");
  EXPECT_EQ(RunSbx({"cf", "restore", other + ",0", folder / "b.dat"}).Status, 0);
  EXPECT_EQ(RunSbx({"get", "cf:" + other + ",0", "HELLO"}).Out, "Hello, Beeb");
  EXPECT_EQ(RunSbx({"check", "cf:" + other + ",0"}).Status, 0);
}

TEST_F(CardCommands, WhatIsNoAdfsDiscIsRestoredAndBackedUpOnlyByForce) {
  const std::string card = MakeCard(100 * 512);
  WriteAll(folder / "photo.jpg", std::vector<std::uint8_t>(256, 0x5A));
  SbxResult result = RunSbx({"cf", "restore", card + ",0", folder / "photo.jpg"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "photo.jpg Is No ADFS Disc\n");
  EXPECT_EQ(Peek(card, 0), 0);
  result = RunSbx({"cf", "restore", card + ",0", folder / "photo.jpg", "--force"});
  EXPECT_EQ(result.Status, 0) << result.Err;
  EXPECT_EQ(result.Err, "photo.jpg Is No ADFS Disc\n");
  EXPECT_EQ(Peek(card, 0), 0x5A);

  result = RunSbx({"cf", "backup", card + ",0", folder / "b.dat"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "my,card,0 Is No ADFS Disc\n");
  EXPECT_FALSE(fs::exists(folder / "b.dat"));
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",0", folder / "b.dat", "--full"}).Status, 0);
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",0", folder / "c.dat", "--force"}).Status, 0);
  EXPECT_EQ(fs::file_size(folder / "c.dat"), 100u * 256);
  EXPECT_EQ(RunSbx({"cf", "format", card + ",0", "1MB", "--force"}).Status, 2);
}

TEST_F(CardCommands, EveryByteOfACardIsAccountedForFromTheFormatToTheRestore) {
  CardAccount account(CardAccount::kPartitionStart + 5000);
  account.Fill(0, 5000);
  account.Fill(CardAccount::kPartitionStart - 100, 5100);
  // The second partition's map and root are zero before the quick format.
  account.Put(1, 0, std::vector<std::uint8_t>(7 * 256));
  const std::string card = folder / "card";
  account.WriteTo(card);
  ASSERT_EQ(account.WhatDiffers(card), "");

  EXPECT_EQ(RunSbx({"cf", "format", card + ",0", "1MB"}).Status, 0);
  EXPECT_EQ(RunSbx({"cf", "format", card + ",1", "1MB", "--quick"}).Status, 0);
  account.FormatFully(0, 4096);
  account.FormatQuickly(1, 4096);
  ASSERT_EQ(account.WhatDiffers(card), "");

  const std::vector<std::uint8_t> alpha(1000, 0xA1);
  const std::vector<std::uint8_t> beta(3 * 256, 0xB2);
  WriteAll(folder / "ALPHA", alpha);
  WriteAll(folder / "BETA", beta);
  EXPECT_EQ(RunSbx({"add", "cf:" + card + ",0", "$", folder / "ALPHA"}).Status, 0);
  EXPECT_EQ(RunSbx({"add", "cf:" + card + ",1", "$", folder / "BETA"}).Status, 0);
  const auto first = DiscWithAddedFile(4096, "ALPHA", alpha);
  account.Put(0, 0, first);
  const auto second = DiscWithAddedFile(4096, "BETA", beta);
  account.Put(1, 0, std::span(second).first(10 * 256));
  ASSERT_EQ(account.WhatDiffers(card), "");

  EXPECT_EQ(RunSbx({"cf", "backup", card + ",0", folder / "0.dat"}).Status, 0);
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",1", folder / "1.dat", "--full"}).Status, 0);
  const std::vector<std::uint8_t> used(first.begin(), first.begin() + 11 * 256);
  EXPECT_EQ(ReadAll(folder / "0.dat"), used);
  EXPECT_EQ(ReadAll(folder / "1.dat"), account.DiscBytes(1, 5000));
  ASSERT_EQ(account.WhatDiffers(card), "");

  const CardAccount before = account;
  EXPECT_EQ(RunSbx({"cf", "restore", card + ",1", folder / "0.dat"}).Status, 0);
  account.Put(1, 0, used);
  ASSERT_EQ(account.WhatDiffers(card), "");
  EXPECT_EQ(RunSbx({"get", "cf:" + card + ",1", "ALPHA"}).Out, std::string(1000, '\xA1'));
  EXPECT_EQ(RunSbx({"check", "cf:" + card + ",1"}).Status, 0);

  EXPECT_EQ(RunSbx({"cf", "restore", card + ",1", folder / "1.dat"}).Status, 0);
  ASSERT_EQ(before.WhatDiffers(card), "");
  EXPECT_EQ(RunSbx({"get", "cf:" + card + ",1", "BETA"}).Out, std::string(3 * 256, '\xB2'));
  EXPECT_EQ(RunSbx({"get", "cf:" + card + ",0", "ALPHA"}).Out, std::string(1000, '\xA1'));
  EXPECT_EQ(before.WhatDiffers(card), "");
}

TEST_F(CardCommands, ARestoreFromAPipeIsRefused) {
  const std::string card = MakeCard(8192 * 512);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  const SbxResult result = RunSbx({"cf", "restore", card + ",0", folder / "pipe"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, (folder / "pipe") + ": not a plain file\n");
}

TEST_F(CardCommands, AFullBackupOfAFormatIsASoundDisc) {
  const std::string card = MakeCard(8192 * 512);
  EXPECT_EQ(RunSbx({"cf", "format", card + ",0", "512MB"}).Status, 0);
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",0", folder / "b.dat", "--full"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "b.dat"), ImageBuilder(8192).Bytes());
  const SbxResult check = RunSbx({"check", folder / "b.dat"});
  EXPECT_EQ(check.Status, 0) << check.Out;
  EXPECT_EQ(check.Out, "");
}

TEST_F(CardCommands, ABlankPartitionIsListedOnlyWhenAskedFor) {
  const std::string card = MakeCard(8192 * 512);
  const SbxResult plain = RunSbx({"cf", "scan", card});
  EXPECT_EQ(plain.Status, 0);
  EXPECT_EQ(plain.Out, "");
  EXPECT_EQ(plain.Err, "No CF Card Detected\n");
  EXPECT_EQ(RunSbx({"cf", "scan", "--non-adfs", card}).Out, card + ": - Non ADFS Partition 0\n");
}

TEST_F(CardCommands, ADeviceThatCannotBeOpenedIsTold) {
  const SbxResult scan = RunSbx({"cf", "scan", folder / "absent"});
  EXPECT_EQ(scan.Status, 1);
  EXPECT_NE(scan.Err.find("absent: can't be opened: No such file or directory"), std::string::npos);
  for (const auto& words : std::vector<std::vector<std::string>>{
           {"cf", "format", folder / "absent,0", "1MB"},
           {"cf", "backup", folder / "absent,0", folder / "b.dat"},
           {"ls", "cf:" + (folder / "absent,0")}}) {
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Err, (folder / "absent") + ": No such file or directory\n");
  }
  EXPECT_FALSE(fs::exists(folder / "b.dat"));
  EXPECT_FALSE(fs::exists(folder / "absent"));
}

TEST_F(CardCommands, WordsThatAreOffEndWithStatus2AndTouchNothing) {
  const std::string card = MakeCard(8192 * 512);
  for (const auto& words :
       std::vector<std::vector<std::string>>{{"cf"},
                                             {"cf", "erase", card + ",0"},
                                             {"cf", "format", card, "1MB"},
                                             {"cf", "format", card + ",2", "1MB"},
                                             {"cf", "format", card + ",", "1MB"},
                                             {"cf", "format", card + ",01", "1MB"},
                                             {"cf", "format", card + ",0", "0MB"},
                                             {"cf", "format", card + ",0", "MB"},
                                             {"cf", "format", card + ",0", "1GB"},
                                             {"cf", "format", card + ",0"},
                                             {"cf", "backup", card + ",0"},
                                             {"cf", "restore", card + ",0", "a", "b"}}) {
    if (words.size() > 3 && words[1] == "restore") {
      WriteText(folder / "a", "");
    }
    EXPECT_EQ(RunSbx(words).Status, 2) << words.back();
  }
  EXPECT_EQ(ReadAll(card), std::vector<std::uint8_t>(8192 * 512));
}

TEST_F(CardCommands, APartitionThatTheCardHasNotIsRefused) {
  const std::string card = MakeCard(8192 * 512);
  EXPECT_EQ(RunSbx({"cf", "format", card + ",1", "1MB"}).Status, 1);
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",1", folder / "b.dat", "--full"}).Status, 1);
  EXPECT_EQ(ReadAll(card), std::vector<std::uint8_t>(8192 * 512));
  EXPECT_FALSE(fs::exists(folder / "b.dat"));
}

TEST_F(CardCommands, ARestoreOfALargerFileStaysInsideThePartitionAndEndsWithStatus1) {
  const std::string card = MakeCard(kGibibyte + 100 * 512);
  WriteAll(folder / "big", std::vector<std::uint8_t>(200 * 256, 0x5A));
  const SbxResult result = RunSbx({"cf", "restore", card + ",1", folder / "big", "--force"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "big Is No ADFS Disc\n" + (folder / "big") +
                            ": 200 sectors, of which the first 100 fit on the partition\n");
  EXPECT_EQ(fs::file_size(card), kGibibyte + 100 * 512);
  EXPECT_EQ(Peek(card, 0), 0);
  EXPECT_EQ(Peek(card, kGibibyte), 0x5A);
  EXPECT_EQ(Peek(card, kGibibyte + 100 * 512 - 2), 0x5A);
}

TEST_F(CardCommands, ACardThatIsSmallerThanItsDiscIsAnErrorToEveryCommandThatMeetsItsEnd) {
  ImageBuilder disc(4096);
  disc.AddFile(2, {"SMALL", std::vector<std::uint8_t>(256, 0x41)});
  disc.AddFile(2, {"LARGE", std::vector<std::uint8_t>(100 * 256, 0x42)});
  disc.AddFile(2, {"SCREEN", std::vector<std::uint8_t>(20480, 0x43)});
  disc.WriteTo(folder / "disc.dat");
  const std::string card = MakeCard(100 * 512);
  ASSERT_EQ(RunSbx({"cf", "restore", card + ",0", folder / "disc.dat"}).Status, 1);
  const std::string name = "cf:" + card + ",0";
  const SbxResult check = RunSbx({"check", name});
  EXPECT_EQ(check.Status, 1);
  EXPECT_EQ(check.Out, "error: sector 0: the disc has 4096 sectors, and the card room for 100\n");
  EXPECT_EQ(RunSbx({"ls", name}).Status, 0);
  EXPECT_EQ(RunSbx({"get", name, "SMALL"}).Status, 0);
  for (const auto& words : std::vector<std::vector<std::string>>{
           {"get", name, "LARGE"},
           {"get", name, "LARGE", "-o", folder / "large"},
           {"hex", name, "LARGE"},
           {"mode", "0", name, "SCREEN", "-o", folder / "large.bmp"},
           {"export", name, "LARGE", folder.Path()},
           {"save", name, folder / "copy.dat"}}) {
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, 1) << words[0];
    EXPECT_NE(result.Err.find("can't be read in full\n"), std::string::npos) << words[0];
  }
  const auto before = ReadAll(card);
  WriteAll(folder / "MORE", std::vector<std::uint8_t>(1000));
  const SbxResult add = RunSbx({"add", name, "$", folder / "MORE"});
  EXPECT_EQ(add.Status, 1);
  EXPECT_NE(add.Err.find("lies outside the partition and isn't written"), std::string::npos);
  EXPECT_EQ(fs::file_size(card), before.size());
}

TEST_F(CardCommands, TheCardIsNotItsOwnBackup) {
  const std::string card = MakeCard(8192 * 512);
  EXPECT_EQ(RunSbx({"cf", "backup", card + ",0", card, "--full"}).Status, 1);
  EXPECT_EQ(RunSbx({"cf", "restore", card + ",0", card}).Status, 1);
  EXPECT_EQ(ReadAll(card), std::vector<std::uint8_t>(8192 * 512));
}

TEST_F(CardCommands, ARestoreFromNoFileIsRefusedInTheWindowsWords) {
  const std::string card = MakeCard(8192 * 512);
  const SbxResult result = RunSbx({"cf", "restore", card + ",0", folder / "none.dat"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "File Not Found : " + (folder / "none.dat") + "\n");
}

TEST_F(CardCommands, ReadingACardNeverWritesIt) {
  const std::string card = MakeCard(8192 * 512);
  RunSbx({"cf", "format", card + ",0", "1MB"});
  fs::permissions(card, fs::perms::owner_read | fs::perms::owner_write);
  const auto before = ReadAll(card);
  for (const char* command : {"info", "tree", "ls", "map", "check"}) {
    EXPECT_EQ(RunSbx({command, "cf:" + card + ",0"}).Status, 0) << command;
  }
  EXPECT_EQ(ReadAll(card), before);
  EXPECT_NE(RunSbx({"info", "cf:" + card + ",0"}).Out.find("kind: cf\n"), std::string::npos);
}

}  // namespace
}  // namespace sectorbox::testing
