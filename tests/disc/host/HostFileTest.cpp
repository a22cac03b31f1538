#include "disc/host/HostFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<std::uint8_t>;

TEST(RandomAccessFile, BytesAreWrittenWhereTheyBelongAndReadBack) {
  const TempFolder folder;
  RandomAccessFile file(folder / "file", FileAccess::kCreate);
  EXPECT_EQ(file.Length(), 0U);
  file.WriteAt(4, Bytes{1, 2, 3});
  file.WriteAt(5, Bytes{9});
  EXPECT_EQ(file.Length(), 7U);
  file.Sync();
  file.Close();
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(ReadHostFile(folder / "file"), (Bytes{0, 0, 0, 0, 1, 9, 3}));
}

TEST(RandomAccessFile, ReadsAreShortOnlyAtTheEndOfTheFile) {
  const TempFolder folder;
  WriteText(folder / "file", "abcd");
  const RandomAccessFile file(folder / "file", FileAccess::kRead);
  Bytes bytes(3, 7);
  EXPECT_EQ(file.ReadAt(0, bytes), 3U);
  EXPECT_EQ(bytes, (Bytes{'a', 'b', 'c'}));
  EXPECT_EQ(file.ReadAt(3, bytes), 1U);
  EXPECT_EQ(bytes, (Bytes{'d', 'b', 'c'}));
  EXPECT_EQ(file.ReadAt(100, bytes), 0U);
}

TEST(RandomAccessFile, OnlyCreateMakesAFileThatIsMissing) {
  const TempFolder folder;
  EXPECT_THROW(RandomAccessFile(folder / "a", FileAccess::kRead), HostError);
  EXPECT_THROW(RandomAccessFile(folder / "a", FileAccess::kWrite), HostError);
  EXPECT_FALSE(HostFileExists(folder / "a"));
  RandomAccessFile(folder / "a", FileAccess::kCreateOrFallBack).Close();
  EXPECT_TRUE(HostFileIsPlain(folder / "a"));
}

TEST(RandomAccessFile, AFileThatMayOnlyBeReadSaysWhy) {
  const TempFolder folder;
  WriteText(folder / "file", "abcd");
  fs::permissions(folder / "file", fs::perms{0444});
  fs::permissions(folder.Path(), fs::perms{0755});
  const OrdinaryUser user;
  EXPECT_THROW(RandomAccessFile(folder / "file", FileAccess::kCreate), HostError);
  RandomAccessFile file(folder / "file", FileAccess::kCreateOrFallBack);
  EXPECT_EQ(file.WriteError(), EACCES);
  EXPECT_EQ(file.Length(), 4U);
  EXPECT_THROW(file.WriteAt(0, Bytes{1}), HostError);
}

TEST(RandomAccessFile, AMovedFileIsOpenInOnePlace) {
  const TempFolder folder;
  RandomAccessFile one(folder / "one", FileAccess::kCreate);
  RandomAccessFile other(folder / "other", FileAccess::kCreate);
  EXPECT_EQ(one.Identity(), RequireIdentity(folder / "one"));
  EXPECT_NE(one.Identity(), other.Identity());
  other = std::move(one);
  EXPECT_EQ(other.Identity(), RequireIdentity(folder / "one"));
  EXPECT_EQ(other.Path(), folder / "one");
}

TEST(RandomAccessFile, AFullDiscIsAnErrorAndNoEndlessLoop) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device on this machine";
  RandomAccessFile file("/dev/full", FileAccess::kWrite);
  EXPECT_THROW(file.WriteAt(0, Bytes(10)), HostError);
}

TEST(ReadHostBytes, AFileThatEndsTooSoonIsAnError) {
  const TempFolder folder;
  WriteText(folder / "file", "abcd");
  EXPECT_EQ(ReadHostBytes(folder / "file", 1, 3), (Bytes{'b', 'c', 'd'}));
  try {
    (void)ReadHostBytes(folder / "file", 1, 4);
    ADD_FAILURE() << "no error";
  } catch (const HostError& error) {
    EXPECT_EQ(error.SystemText(), "Unexpected end of file");
  }
}

TEST(OutputFile, APipeThatNobodyReadsIsAnErrorAndNoEndlessWait) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  try {
    (void)CreateOutputFile(folder / "pipe");
    ADD_FAILURE() << "no error";
  } catch (const HostError& error) {
    EXPECT_EQ(std::string(error.what()), (folder / "pipe") + ": No such device or address");
  }
}

TEST(OutputFile, RunsOfZerosBecomeHoles) {
  const TempFolder folder;
  Bytes bytes(1 << 20);
  for (const std::size_t at : {5U, 500000U, 1048575U}) bytes[at] = 1;
  for (const std::size_t length : {bytes.size(), bytes.size() - 1, std::size_t{499999}}) {
    bytes.resize(length);
    OutputFile file = CreateOutputFile(folder / "file");
    file.WriteWithHoles(bytes);
    file.Close();
    EXPECT_EQ(ReadAll(folder / "file"), bytes);
    struct stat info {};
    ASSERT_EQ(::stat((folder / "file").c_str(), &info), 0);
    EXPECT_LE(info.st_blocks, 64);
  }
}

TEST(OutputFile, WhatOfTheOlderFileIsLostIsTold) {
  const TempFolder folder;
  const std::string path = folder / "file";
  const auto lost = [&] {
    OutputFile file = CreateOutputFile(path);
    file.Write("new");
    file.Close();
    return file.Unkept();
  };
  EXPECT_EQ(lost(), "");
  EXPECT_EQ(lost(), "");
  fs::create_hard_link(path, folder / "second");
  EXPECT_EQ(lost(), path + ": its other names (hard links) keep the old contents");
  EXPECT_EQ(lost(), "");
  if (::geteuid() != 0) return;
  fs::permissions(folder.Path(), fs::perms::all);
  fs::permissions(path, fs::perms::all);
  const OrdinaryUser user;
  EXPECT_EQ(lost(), path + ": its owner could not be kept");
}

TEST(AppendedFile, WhatIsWrittenGoesBehindWhatIsThere) {
  const TempFolder folder;
  WriteText(folder / "log", "one\n");
  AppendedFile log;
  EXPECT_FALSE(log.IsOpen());
  log.Open(folder / "log");
  AppendedFile second;
  second.Open(folder / "log");
  log.Append("two\n");
  second.Append("three\n");
  log.Append("four\n");
  const auto bytes = ReadHostFile(folder / "log");
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "one\ntwo\nthree\nfour\n");
  EXPECT_THROW(log.Open(folder.Path()), HostError);
  EXPECT_FALSE(log.IsOpen());
}

TEST(HostFolders, AFolderListsAllThatIsInIt) {
  const TempFolder folder;
  CreateHostFolder(folder / "sub");
  CreateHostFolder(folder / "sub");  // it stays as it is
  WriteText(folder / ".hidden", "");
  auto names = ListHostFolder(folder.Path());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{".hidden", "sub"}));
  EXPECT_THROW((void)ListHostFolder(folder / "none"), HostError);
  EXPECT_THROW(CreateHostFolder(folder / "none" + "/sub"), HostError);
}

TEST(HostFolders, ATreeIsRemovedAndNoLinkIsFollowed) {
  const TempFolder folder;
  CreateHostFolder(folder / "mine");
  WriteText(folder / "mine/file", "abc");
  CreateHostFolder(folder / "tree");
  CreateHostFolder(folder / "tree/sub");
  WriteText(folder / "tree/sub/file", "abc");
  fs::create_directory_symlink(folder / "mine", folder / "tree/link");
  RemoveHostTree(folder / "tree");
  EXPECT_FALSE(HostPathIsTaken(folder / "tree"));
  EXPECT_TRUE(HostFileExists(folder / "mine/file"));
  RemoveHostTree(folder / "none");
}

TEST(HostFolders, OnlyALinkIsRemovedAsALink) {
  const TempFolder folder;
  WriteText(folder / "file", "abc");
  fs::create_symlink(folder / "none", folder / "link");
  EXPECT_TRUE(HostPathIsTaken(folder / "link"));
  EXPECT_FALSE(HostPathIsTaken(folder / "none"));
  for (const char* name : {"link", "file", "none"}) RemoveHostLink(folder / name);
  EXPECT_FALSE(HostPathIsTaken(folder / "link"));
  EXPECT_TRUE(HostPathIsTaken(folder / "file"));
}

TEST(HostFiles, TheKindOfAFileIsTold) {
  const TempFolder folder;
  WriteText(folder / "file", "abc");
  EXPECT_EQ(KindOfHostFile(folder / "file"), HostFileKind::kPlain);
  EXPECT_EQ(KindOfHostFile(folder.Path()), HostFileKind::kFolder);
  EXPECT_EQ(KindOfHostFile("/dev/null"), HostFileKind::kOther);
  EXPECT_EQ(HostFileLength(folder / "file"), 3U);
  EXPECT_EQ(HostFileLength("/dev/null"), 0U);
  DeleteHostFile(folder / "file");
  EXPECT_FALSE(HostFileExists(folder / "file"));
  EXPECT_THROW(DeleteHostFile(folder / "file"), HostError);
  try {
    (void)KindOfHostFile(folder / "file");
    FAIL() << "no error";
  } catch (const HostError& error) {
    EXPECT_EQ(error.SystemText(), "No such file or directory");
  }
}

}  // namespace
}  // namespace sectorbox::testing
