#include <QCheckBox>
#include <QRadioButton>
#include <algorithm>
#include <filesystem>

#include "disc/store/DiscImg.h"
#include "tests/shell/commands/FilesFixture.h"
#include "toolkit/FileLists.h"

// A .dat is in its file when a command ends, as another program sees it.
namespace sectorbox::testing {
namespace {

class DatFileTest : public FileCommandsTest {
 protected:
  std::string Path() const { return folder_ / "x.dat"; }
  // Reads the file as another program does, and compares it with what the window's disc holds.
  void ExpectInItsFile(const char* after) {
    const std::vector<std::uint8_t> file = ReadAll(Path());
    std::vector<std::uint8_t> disc(file.size());
    disc_->TheDisc.FetchBytes(0, disc);
    EXPECT_EQ(file.size(), std::size_t{32 * 4 * 33 * 256});
    const auto differ = std::mismatch(file.begin(), file.end(), disc.begin());
    EXPECT_TRUE(differ.first == file.end()) << after << ": byte " << differ.first - file.begin();
    EXPECT_FALSE(std::filesystem::exists(Path() + "-journal")) << after;
  }
  void Run(const char* entry) {
    Choose(entry);
    ExpectInItsFile(entry);
  }
};

TEST_F(DatFileTest, EveryCommandHasWrittenWhatItChangedWhenItEnds) {
  Start();
  player_.ExpectFileDialog(Path());
  Run("mnuDiscNew1M");
  EXPECT_EQ(ReadAll(Path())[513], 'H');
  for (const char* name : {"ALPHA", "BETA", "GAMMA"}) {
    WriteText(folder_ / name, std::string(1500, name[0]));
    window_->ThePanes().List().Dropped(*FileListData({folder_ / name}));
    Settle();
    ExpectInItsFile(name);
  }
  Run("mnuDirectoryNew");
  ClickNode(QStringLiteral("$"));
  Select({"ALPHA"});
  player_.Expect([](QWidget& dialog) {
    In<QCheckBox>(dialog, "chkRead").click();
    Push(dialog, "cmdOK");
  });
  Run("mnuFileAttributes");
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtLoad", QStringLiteral("1900"));
    Push(dialog, "cmdOK");
  });
  Run("mnuFileAddresses");
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtTitle", QStringLiteral("A disc"));
    Push(dialog, "cmdOK");
  });
  Run("mnuDirectoryTitle");
  player_.Expect([](QWidget& dialog) {
    In<QRadioButton>(dialog, "optExec").click();
    Push(dialog, "cmdOK");
  });
  Run("mnuDiscBoot");
  Select({"GAMMA"});
  Choose("mnuFileRename");
  Rename(QStringLiteral("OMEGA"));
  ExpectInItsFile("rename");
  Select({"ALPHA"});
  Run("mnuFileDelete");
  Run("mnuDiscCompact");
  EXPECT_EQ(Names(), List({"BETA", "NewFolder", "OMEGA"}));
}

}  // namespace
}  // namespace sectorbox::testing
