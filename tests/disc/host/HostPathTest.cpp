#include "disc/host/HostPath.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

namespace fs = std::filesystem;

TEST(HostPath, OneSeparatorStandsBetweenAFolderAndAName) {
  EXPECT_EQ(JoinHostPath("/a/b", "c"), "/a/b/c");
  EXPECT_EQ(JoinHostPath("/a/b/", "c"), "/a/b/c");
  EXPECT_EQ(JoinHostPath("/", "c"), "/c");
  EXPECT_EQ(JoinHostPath(".", "c"), "./c");
}

TEST(HostPath, TheBaseNameIsTheLastPart) {
  EXPECT_EQ(HostBaseName("/a/b"), "b");
  EXPECT_EQ(HostBaseName("/a/b//"), "b");
  EXPECT_EQ(HostBaseName("b"), "b");
  EXPECT_EQ(HostBaseName("/a/.b"), ".b");
  EXPECT_EQ(HostBaseName("/a/.."), "..");
  EXPECT_EQ(HostBaseName("///"), "");
  EXPECT_EQ(HostBaseName(""), "");
}

TEST(HostPath, AFileLiesInTheFolderBeforeItsName) {
  EXPECT_EQ(HostFolderOf("/a/b"), "/a");
  EXPECT_EQ(HostFolderOf("a/b"), "a");
  EXPECT_EQ(HostFolderOf("/b"), "/");
  EXPECT_EQ(HostFolderOf("b"), ".");
}

TEST(HostPath, AResolvedPathEndsInTheNameThatTheFolderHas) {
  const TempFolder folder;
  const fs::path root = fs::canonical(folder.Path());
  fs::create_directories(root / "one" / "two");
  const std::string one = (root / "one").string();
  EXPECT_EQ(ResolveHostPath(one), one);
  EXPECT_EQ(ResolveHostPath(one + "//"), one);
  EXPECT_EQ(ResolveHostPath(one + "/."), one);
  EXPECT_EQ(ResolveHostPath(one + "/./"), one);
  EXPECT_EQ(ResolveHostPath(one + "/two/.."), one);
  EXPECT_EQ(ResolveHostPath("/"), "/");
  EXPECT_EQ(ResolveHostPath("x"), (fs::current_path() / "x").string());
  EXPECT_THROW((void)ResolveHostPath(""), HostError);
  EXPECT_THROW((void)ResolveHostPath(one + "/three/.."), HostError);
}

TEST(HostPath, TwoNamesOfOneFileAreTheSameFile) {
  const TempFolder folder;
  const std::string file = folder / "file";
  WriteText(file, "x");
  WriteText(folder / "other", "x");
  fs::create_symlink(file, folder / "link");
  fs::create_hard_link(file, folder / "second");
  EXPECT_TRUE(NameSameFile(file, folder / "link"));
  EXPECT_TRUE(NameSameFile(file, folder / "second"));
  EXPECT_FALSE(NameSameFile(file, folder / "other"));
  EXPECT_FALSE(NameSameFile(folder / "none", folder / "none"));
  EXPECT_FALSE(IdentityOfPath(folder / "none"));
  EXPECT_THROW((void)RequireIdentity(folder / "none"), HostError);
}

}  // namespace
}  // namespace sectorbox::testing
