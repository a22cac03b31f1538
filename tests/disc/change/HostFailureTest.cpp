// Saves that the host stops half-way, and saves that are killed, leave the old file or the new one.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

// Plays a full medium: while it lives, no file of this process grows beyond that many bytes.
class FullMedium {
 public:
  explicit FullMedium(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &former_);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, former_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullMedium() {
    ::setrlimit(RLIMIT_FSIZE, &former_);
    std::signal(SIGXFSZ, handler_);
  }
  FullMedium(const FullMedium&) = delete;
  FullMedium& operator=(const FullMedium&) = delete;

 private:
  rlimit former_{};
  void (*handler_)(int) = nullptr;
};

class HostFailure : public ::testing::Test {
 protected:
  HostFailure() { host_.ProgressRunning = &disc_.ProgressRunning; }

  // A disc of that many sectors with a file of 100,000 bytes, open and changed.
  void OpenChanged(std::int32_t sectors, const std::string& name) {
    ImageBuilder image(sectors);
    image.AddFile(2, {"A", std::vector<std::uint8_t>(100000, 5)});
    if (sectors == 2560) {
      image.WriteInterleavedTo(folder_ / name);
    } else {
      image.WriteTo(folder_ / name);
    }
    OpenImage(disc_, folder_ / name);
    disc_.TheDisc.Store(512 + 1241, 'T');
    disc_.ImageChanged = true;
  }
  std::size_t FilesInFolder() const {
    const std::filesystem::directory_iterator files(folder_.Path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(HostFailure, AFullMediumLeavesTheOldFileWholeAndTheChangesKnown) {
  for (const std::int32_t sectors : {640, 1280, 2560, 4224}) {
    SCOPED_TRACE(sectors);
    OpenChanged(sectors, "x");
    WriteText(folder_ / "target", "the old file");
    const std::size_t files = FilesInFolder();
    {
      const FullMedium full(50000);
      try {
        SaveImageTo(disc_, folder_ / "target");
        ADD_FAILURE() << "saved on a full medium";
      } catch (const HostError& error) {
        EXPECT_EQ(error.Path(), folder_ / "target");
        EXPECT_EQ(error.SystemText(), "File too large");
      }
    }
    EXPECT_EQ(ReadText(folder_ / "target"), "the old file");
    EXPECT_EQ(FilesInFolder(), files);
    EXPECT_TRUE(disc_.ImageChanged);
    EXPECT_EQ(disc_.ImageName, folder_ / "x");
    EXPECT_EQ(host_.LogOf("progress open").size(), host_.LogOf("progress close").size());
    disc_.ImageChanged = false;
  }
}

TEST_F(HostFailure, AFolderThatCannotBeWrittenLeavesTheOldFile) {
  OpenChanged(640, "x.adf");
  std::filesystem::create_directory(folder_ / "locked");
  WriteText(folder_ / "locked/target", "the old file");
  ::chmod((folder_ / "locked").c_str(), 0555);
  ::chmod(folder_.Path().c_str(), 0755);
  {
    const OrdinaryUser user;
    EXPECT_THROW(SaveImageTo(disc_, folder_ / "locked/target"), HostError);
  }
  ::chmod((folder_ / "locked").c_str(), 0755);
  EXPECT_EQ(ReadText(folder_ / "locked/target"), "the old file");
  EXPECT_TRUE(disc_.ImageChanged);
}

TEST_F(HostFailure, AFolderInThePlaceOfTheFileIsTold) {
  OpenChanged(640, "x.adf");
  std::filesystem::create_directory(folder_ / "folder");
  try {
    SaveImageTo(disc_, folder_ / "folder");
    ADD_FAILURE();
  } catch (const HostError& error) {
    EXPECT_EQ(std::string(error.what()), (folder_ / "folder") + ": Is a directory");
  }
}

TEST_F(HostFailure, AFloppyThatCannotBeStoredBackLeavesItsFile) {
  OpenChanged(2560, "x.adl");
  const auto before = ReadAll(folder_ / "x.adl");
  {
    const FullMedium full(50000);
    EXPECT_THROW(disc_.TheDisc.CloseFile(), HostError);
  }
  EXPECT_EQ(ReadAll(folder_ / "x.adl"), before);
  EXPECT_EQ(disc_.TheDisc.Fetch(512 + 1241), 'T');
}

TEST_F(HostFailure, ADirtyBlockThatCannotBeWrittenIsKeptForTheNextTry) {
  OpenChanged(4224, "x.dat");
  disc_.TheDisc.Store(3000 * 1024, 9);
  {
    const FullMedium full(50000);
    EXPECT_THROW(disc_.TheDisc.CloseFile(), HostError);
  }
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.dat")[3000 * 1024], 9);
}

TEST_F(HostFailure, AReadOnlyHardDiscIsReadAndRefusesToBeWritten) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  ::chmod((folder_ / "x.dat").c_str(), 0444);
  ::chmod(folder_.Path().c_str(), 0755);
  const OrdinaryUser user;
  OpenImage(disc_, folder_ / "x.dat");
  EXPECT_EQ(MapDiscSize(disc_), 4224);
  EXPECT_THROW(disc_.TheDisc.Store(0, 1), HostError);
  EXPECT_THROW(disc_.TheDisc.StoreBytes(0, std::vector<std::uint8_t>(4)), HostError);
}

TEST_F(HostFailure, AReplacedFileKeepsItsRightsAndALinkStaysALink) {
  WriteText(folder_ / "real", "old");
  ::chmod((folder_ / "real").c_str(), 0640);
  std::filesystem::create_symlink("real", folder_ / "link");
  OutputFile output = CreateOutputFile(folder_ / "link");
  output.Write(std::string("new"));
  output.Close();
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link"));
  EXPECT_EQ(ReadText(folder_ / "real"), "new");
  struct stat info {};
  ::stat((folder_ / "real").c_str(), &info);
  EXPECT_EQ(info.st_mode & 0777, 0640U);
}

TEST_F(HostFailure, AnOutputThatIsNotClosedLeavesNothingBehind) {
  WriteText(folder_ / "file", "old");
  {
    OutputFile output = CreateOutputFile(folder_ / "file");
    output.Write(std::string("new"));
  }
  EXPECT_EQ(ReadText(folder_ / "file"), "old");
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(HostFailure, AHoleReadsAsZeros) {
  OutputFile output = CreateOutputFile(folder_ / "file");
  output.Write(std::string("a"));
  output.Skip(3);
  output.Write(std::string("b"));
  output.Skip(2);
  output.Close();
  EXPECT_EQ(ReadText(folder_ / "file"), std::string("a\0\0\0b\0\0", 7));
}

TEST_F(HostFailure, AKillAtAnyMomentOfASaveLeavesTheOldFileOrTheNew) {
  OpenChanged(2560, "x.adl");
  const std::string target = folder_ / "target";
  const std::vector<std::uint8_t> oldBytes(655360, 0x11);
  SaveImageTo(disc_, folder_ / "expected");
  const auto newBytes = ReadAll(folder_ / "expected");
  std::mt19937 random(20240229);
  int old = 0;
  int fresh = 0;
  for (int round = 0; round < 16; ++round) {
    WriteAll(target, oldBytes);
    const pid_t child = ::fork();
    if (child == 0) {
      for (;;) SaveAdlImage(disc_, target);
    }
    ::usleep(static_cast<useconds_t>(random() % 6000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const auto now = ReadAll(target);
    if (now == oldBytes) ++old;
    if (now == newBytes) ++fresh;
    ASSERT_EQ(old + fresh, round + 1) << "a file that is neither, of " << now.size() << " bytes";
  }
}

}  // namespace
}  // namespace sectorbox
