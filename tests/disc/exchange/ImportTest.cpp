// Files and folders of the host on their way to a disc.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/disc/exchange/HostExchangeFixture.h"
#include "tests/support/OrdinaryUser.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

using ImportFilesTest = HostExchangeFixture;

TEST_F(ImportFilesTest, ImportMakesTheFolderAndAllBelowItInByteOrder) {
  MakeFolder("in");
  MakeFolder("in/sub");
  HostFile("in/sub/y", "y");
  HostFile("in/b", "b");
  HostFile("in/B2", "B");
  HostFile("in/a", "a");
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "in"), Outcome::kDone);
  const std::int32_t in = GetEntrySector(disc_, 2, "in");
  EXPECT_EQ(Names(in), "a b B2 sub");
  // B2 comes first, since capitals have lower codes than small letters.
  EXPECT_LT(GetEntrySector(disc_, in, "B2"), GetEntrySector(disc_, in, "a"));
  EXPECT_EQ(Names(GetEntrySector(disc_, in, "sub")), "y");
  EXPECT_EQ(Attr(2, "in"), "DWR");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(ImportFilesTest, ARefusalEndsTheWholeImportAndKeepsWhatWasAdded) {
  MakeFolder("in");
  HostFile("in/a", "1");
  HostFile("in/b", Pattern(2600 * 256));
  HostFile("in/c", "3");
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "a");
  EXPECT_EQ(host_.LogOf("note"),
            std::vector<std::string>{
                "note left out: 2 entries were not added: " + (folder_ / "in/b") + " was refused"});
}

TEST_F(ImportFilesTest, ARefusalDeepInATreeCountsWhatIsLeftOnEveryFloor) {
  for (const char* folder : {"in", "in/b", "in/b/d"}) MakeFolder(folder);
  for (const char* file : {"in/a", "in/b/c", "in/b/d/x", "in/b/d/z", "in/b/e", "in/f"}) {
    HostFile(file, "1");
  }
  HostFile("in/b/d/y\xE9", "1");
  HostFile("in/b/d/z.INF", "Z          00000000 00000000 00000001 WR");
  host_.ExpectedMessages = {"File y\xE9 Contains Illegal Characters"};
  // x is before the refused one in the order of their bytes; z, e and f are behind it.
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(host_.LogOf("note"),
            std::vector<std::string>{"note left out: 4 entries were not added: " +
                                     (folder_ / "in/b/d/y\xE9") + " was refused"});
}

TEST_F(ImportFilesTest, AnExistingDirectoryOfThatNameEndsTheImport) {
  MakeFolder("in");
  EXPECT_EQ(NewDirectory(disc_, 2, "IN"), 7);
  host_.ExpectedMessages = {"Directory in Already Exists"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
}

TEST_F(ImportFilesTest, ASidecarLengthLargerThanTheFileDoesNotStopTheImport) {
  MakeFolder("in");
  HostFile("in/x", "abc");
  HostFile("in/x.INF", "X          00000000 00000000 00001000 WR");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Length(GetEntrySector(disc_, 2, "in"), "X"), 0x1000U);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(ImportFilesTest, ALinkThatLeadsBackUpIsNotedAndNotFollowed) {
  MakeFolder("in");
  MakeFolder("in/sub");
  fs::create_symlink("..", folder_ / "in/sub/up");
  fs::create_symlink(".", folder_ / "in/here");
  HostFile("in/z", "z");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "sub z");
  EXPECT_EQ(host_.LogOf("note").size(), 2U);
  EXPECT_NE(host_.LogOf("note")[0].find("in/here: leads back"), std::string::npos);
}

TEST_F(ImportFilesTest, LinksToFilesAndToOtherFoldersAreFollowed) {
  MakeFolder("in");
  MakeFolder("other");
  HostFile("other/f", "f");
  fs::create_symlink(folder_ / "other", folder_ / "in/l");
  fs::create_symlink(folder_ / "other/f", folder_ / "in/m");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "l m");
  EXPECT_EQ(host_.LogOf("note").size(), 0U);
}

TEST_F(ImportFilesTest, PipesDevicesAndDanglingLinksAreNotedAndTheRestComesIn) {
  MakeFolder("in");
  ASSERT_EQ(::mkfifo((folder_ / "in/a").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", folder_ / "in/b");
  fs::create_symlink("nowhere", folder_ / "in/c");
  HostFile("in/d", "d");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "d");
  EXPECT_EQ(host_.LogOf("note").size(), 3U);
}

TEST_F(ImportFilesTest, TheProcesssCurrentFolderIsLeftAloneHoweverTheImportEnds) {
  const auto before = fs::current_path();
  MakeFolder("in");
  HostFile("in/a", "1");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(fs::current_path(), before);
  host_.ExpectedMessages = {"Directory in Already Exists"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(fs::current_path(), before);
  EXPECT_THROW((void)ImportFolder(disc_, 2, folder_ / "none"), HostError);
  EXPECT_EQ(fs::current_path(), before);
}

TEST_F(ImportFilesTest, APathThatLeadsNowhereIsAFailureByItsOwnName) {
  for (const std::string& path : {std::string(), folder_ / "none/..", folder_ / "none"}) {
    try {
      (void)AddFile(disc_, 2, path);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const HostError& error) {
      EXPECT_EQ(error.Path(), path);
      EXPECT_EQ(error.SystemText(), "No such file or directory");
    }
  }
}

TEST_F(ImportFilesTest, RelativePathsAreResolvedWhereTheCallIsMade) {
  MakeFolder("in");
  HostFile("in/a", "1");
  const auto before = fs::current_path();
  fs::current_path(folder_ / "in");
  EXPECT_EQ(AddFile(disc_, 2, "."), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, "a"), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, "../in/a"), Outcome::kDone);
  fs::current_path(before);
  EXPECT_EQ(Names(2), "a in");
}

TEST_F(ImportFilesTest, OfMoreThanAThousandFilesNoneIsLeftOutWithoutAWord) {
  MakeFolder("in");
  for (int i = 0; i < 1100; ++i) {
    // 26 prefix directories of 43 files: all of them fit.
    const std::string name =
        std::string(1, static_cast<char>('a' + i % 26)) + ".F" + std::to_string(i);
    WriteText((folder_ / "in/") + name, "");
  }
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  std::size_t files = 0;
  const ReadObject root = Tree();
  for (const ReadObject& dir : root.Contents[0].Contents) files += dir.Contents.size();
  EXPECT_EQ(files, 1100U);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(ImportFilesTest, TheFileTooManyForItsDirectorySaysSo) {
  MakeFolder("in");
  for (int i = 0; i < 1001; ++i) WriteText(folder_ / ("in/F" + std::to_string(i)), "");
  host_.ExpectedMessages = {"Directory Full"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(Tree().Contents[0].Contents.size(), 47U);
}

TEST_F(ImportFilesTest, AFolderWithoutRightsIsAFailureAndMakesNoDirectory) {
  MakeFolder("in");
  ::chmod(folder_.Path().c_str(), 0755);
  ::chmod((folder_ / "in").c_str(), 0);
  {
    const OrdinaryUser user;
    EXPECT_THROW((void)ImportFolder(disc_, 2, folder_ / "in"), HostError);
  }
  EXPECT_EQ(Names(2), "");
  ::chmod((folder_ / "in").c_str(), 0700);
}

TEST_F(ImportFilesTest, FoldersDeeperThanAnyWalkReachesAreAFailure) {
  Open(ImageBuilder(2560), kAdl);
  std::string path = folder_ / "in";
  fs::create_directory(path);
  for (int i = 0; i < 300; ++i) {
    path += "/d";
    fs::create_directory(path);
  }
  EXPECT_THROW((void)ImportFolder(disc_, 2, folder_ / "in"), HostError);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

}  // namespace
}  // namespace sectorbox
