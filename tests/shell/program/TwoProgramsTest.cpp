// The window has a disc open, and sbx changes it: the user is told, and no change is lost.

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "disc/change/Change.h"
#include "disc/host/FileLock.h"
#include "tests/support/RunSbx.h"
#include "tests/support/WindowFixture.h"

namespace sectorbox::testing {
namespace {

class TwoPrograms : public WindowTest {
 protected:
  TwoPrograms() {
    WriteText(folder_ / "HELLO", "Hello, Beeb");
    WriteText(folder_ / "OTHER", "x");
  }
  // A disc with the files A and B.
  static ImageBuilder WithAAndB(std::int32_t sectors) {
    ImageBuilder image(sectors);
    image.AddFile(2, {"A", {1}});
    image.AddFile(2, {"B", {2}});
    return image;
  }
  void StartOn(const std::string& name) { Start("\"" + (folder_ / name) + "\""); }
  int Sbx(const std::vector<std::string>& words) { return RunSbx(words).Status; }
  std::string FilesOf(const std::string& path) {
    std::string names;
    for (const std::string& line : Lines(RunSbx({"ls", path}).Out)) {
      names += line.substr(0, line.find('\t')) + " ";
    }
    return names;
  }
  void DeleteA() {
    SelectRows({QStringLiteral("A")});
    Choose("mnuFileDelete");
  }
};

TEST_F(TwoPrograms, AHardDiscThatSbxHasChangedIsToldAndNotChangedHere) {
  const std::string path = folder_ / "disc.dat";
  WithAAndB(4224).WriteTo(path);
  StartOn("disc.dat");
  ASSERT_EQ(Sbx({"add", path, "$", folder_ / "HELLO"}), 0);
  const auto changed = ReadAll(path);
  player_.ExpectBox(QStringLiteral("disc.dat was changed by another program. Open it again"));
  DeleteA();
  EXPECT_EQ(ReadAll(path), changed);
  // Opened again, it is changed here, and both changes are there.
  player_.ExpectFileDialog(path);
  Choose("mnuDiscOpen");
  EXPECT_EQ(Names(), List({"A", "B", "HELLO"}));
  DeleteA();
  EXPECT_EQ(Names(), List({"B", "HELLO"}));
  disc_->TheDisc.CloseFile();
  EXPECT_EQ(FilesOf(path), "B HELLO ");
  EXPECT_EQ(Sbx({"check", path}), 0);
}

TEST_F(TwoPrograms, AHardDiscThatTheWindowChangesIsInUseForSbx) {
  const std::string path = folder_ / "disc.dat";
  WithAAndB(4224).WriteTo(path);
  StartOn("disc.dat");
  DeleteA();
  const SbxResult result = RunSbx({"add", path, "$", folder_ / "HELLO"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "disc.dat is in use by another program\n");
  // Another disc is opened here, and sbx may go on.
  WithAAndB(640).WriteTo(folder_ / "else.adf");
  player_.ExpectFileDialog(folder_ / "else.adf");
  Choose("mnuDiscOpen");
  EXPECT_EQ(Sbx({"add", path, "$", folder_ / "HELLO"}), 0);
  EXPECT_EQ(FilesOf(path), "B HELLO ");
}

TEST_F(TwoPrograms, ADiscThatAnotherProgramIsChangingIsToldAndStays) {
  const std::string path = folder_ / "disc.dat";
  WithAAndB(4224).WriteTo(path);
  StartOn("disc.dat");
  const auto before = ReadAll(path);
  FileLock other;
  ASSERT_TRUE(other.Take(path, std::chrono::milliseconds(0)));
  player_.ExpectBox(QStringLiteral("disc.dat is in use by another program"));
  DeleteA();
  EXPECT_EQ(Names(), List({"A", "B"}));
  EXPECT_EQ(ReadAll(path), before);
}

TEST_F(TwoPrograms, AFloppyThatSbxHasChangedIsReplacedOnlyAfterAQuestion) {
  const std::string path = folder_ / "disc.adf";
  WithAAndB(640).WriteTo(path);
  StartOn("disc.adf");
  ASSERT_EQ(Sbx({"add", path, "$", folder_ / "HELLO"}), 0);
  DeleteA();
  for (const bool replace : {false, true}) {
    player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), true);
    player_.ExpectFileDialog(path);
    player_.ExpectYesNo(QStringLiteral("disc.adf was changed by another program. Replace it ?"),
                        replace);
    Choose("mnuDiscSave");
    EXPECT_EQ(FilesOf(path), replace ? "B " : "A B HELLO ");
  }
}

// The real program, without a user.
TEST(WindowProgram, CatchesTheSignalsThatEndItAndEndsByThem) {
  TempFolder folder;
  for (const char* name : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "TMPDIR"}) {
    qputenv(name, QByteArray::fromStdString(folder.Path()));
  }
  for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
    SbxProcess program({}, folder.Path(), SECTORBOX_PATH);
    const auto isCaught = [&] {
      std::ifstream status("/proc/" + std::to_string(program.Id()) + "/status");
      for (std::string line; std::getline(status, line);) {
        if (!line.starts_with("SigCgt:")) continue;
        return (std::stoull(line.substr(8), nullptr, 16) >> (signal - 1) & 1) != 0;
      }
      return false;
    };
    for (int i = 0; i < 1000 && !isCaught(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(isCaught());
    program.Signal(signal);
    EXPECT_EQ(program.Wait().Status, 128 + signal);
  }
  for (const char* name : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "TMPDIR"}) qunsetenv(name);
}

}  // namespace
}  // namespace sectorbox::testing
