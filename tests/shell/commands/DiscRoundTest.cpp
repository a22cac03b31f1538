// The whole life of a disc, all through the window: made, filled from a host folder, reorganised,
// compacted, exported and saved. If the environment variable KEEP_DISC names a file, the saved disc
// stays there, so that a real filing system can judge it.

#include <QCheckBox>
#include <QRadioButton>
#include <cstdlib>
#include <filesystem>

#include "tests/shell/commands/FilesFixture.h"
#include "tests/support/DiscReading.h"
#include "toolkit/FileLists.h"

namespace sectorbox::testing {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

Bytes Noise(std::size_t length, unsigned seed) {
  Bytes bytes(length);
  for (std::uint8_t& byte : bytes) {
    seed = seed * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(seed >> 24);
  }
  return bytes;
}

class DiscRound : public FileCommandsTest {
 protected:
  // HOME/ONE to HOME/SEVEN and HOME/DEEP/INNER, each with bytes of its own, TWO with a sidecar.
  void MakeHostFolder() {
    unsigned seed = 1;
    fs::create_directories(Home() + "/DEEP");
    for (const char* name : {"ONE", "TWO", "THREE", "FOUR", "FIVE", "SIX", "SEVEN", "DEEP/INNER"}) {
      WriteAll(Home() + "/" + name, Noise(2000 * seed + 7, seed));
      ++seed;
    }
    WriteText(Home() + "/TWO.INF", "TWO        FFFF1900 FFFF8023 00000FA7 WR");
  }
  std::string Home() { return folder_ / "HOME"; }
  std::string Saved() {
    const char* keep = std::getenv("KEEP_DISC");
    return keep != nullptr ? keep : folder_ / "SAVED.adl";
  }
  void Drop(const std::vector<std::string>& paths) {
    window_->ThePanes().List().Dropped(*FileListData(paths));
    Settle();
  }
  void RenameNode(const QString& name) {
    auto* editor = Find("tvwDB").findChild<QLineEdit*>(QStringLiteral("txtName"));
    ASSERT_NE(editor, nullptr);
    editor->setText(name);
    QTest::keyClick(editor, Qt::Key_Return);
    Settle();
  }
  Bytes Flat(const std::string& path) {
    Disc& disc = *disc_;
    EXPECT_EQ(disc.ImageName, path);
    Bytes bytes(2560 * 256);
    disc.TheDisc.FetchBytes(0, bytes);
    return bytes;
  }
};

TEST_F(DiscRound, ADiscIsMadeFilledReorganisedCompactedSavedAndExported) {
  MakeHostFolder();
  Start();
  player_.ExpectFileDialog(folder_ / "FIRST.adl");
  Choose("mnuDiscNew80DSD");

  // A folder and a file from the host, and a directory of its own.
  Drop({Home(), Home() + "/TWO"});
  EXPECT_EQ(Names(), QStringList({QStringLiteral("HOME"), QStringLiteral("TWO")}));
  Choose("mnuDirectoryNew");
  RenameNode(QStringLiteral("WORK"));
  Drop({Home() + "/SIX", Home() + "/SEVEN"});
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtTitle", QStringLiteral("The work"));
    Push(dialog, "cmdOK");
  });
  Choose("mnuDirectoryTitle");

  // Properties, names and holes.
  ClickNode(QStringLiteral("HOME"));
  Select({"FOUR"});
  Press(window_->ThePanes().List(), Qt::Key_F2);
  Rename(QStringLiteral("Fourth"));
  Select({"FIVE"});
  player_.Expect([](QWidget& dialog) {
    Type(dialog, "txtLoad", QStringLiteral("FFFF3000"));
    Type(dialog, "txtExec", QStringLiteral("FFFF3000"));
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAddresses");
  Select({"ONE", "THREE"});
  Choose("mnuFileDelete");
  ClickNode(QStringLiteral("DEEP"));
  Press(window_->ThePanes().Tree(), Qt::Key_F2);
  RenameNode(QStringLiteral("LOWER"));
  ClickNode(QStringLiteral("$"));
  Select({"TWO"});
  player_.Expect([](QWidget& dialog) {
    dialog.findChild<QCheckBox*>(QStringLiteral("chkLocked"))->setChecked(true);
    Push(dialog, "cmdOK");
  });
  Choose("mnuFileAttributes");
  player_.Expect([](QWidget& dialog) {
    dialog.findChild<QRadioButton*>(QStringLiteral("optExec"))->setChecked(true);
    Push(dialog, "cmdOK");
  });
  Choose("mnuDiscBoot");

  EXPECT_GT(disc_->FreeCount, 1);
  Choose("mnuDiscCompact");
  EXPECT_EQ(disc_->FreeCount, 1);
  player_.ExpectYesNo(QStringLiteral("Are You Sure ?"), true);
  player_.ExpectFileDialog(Saved());
  Choose("mnuDiscSave");

  // Another window finds it as it was left.
  StartAgain("\"" + Saved() + "\"");
  EXPECT_EQ(FaultsOf(Flat(Saved())), std::vector<std::string>());
  EXPECT_EQ(Nodes(), QStringList({QStringLiteral("$"), QStringLiteral("HOME"),
                                  QStringLiteral("LOWER"), QStringLiteral("WORK")}));
  EXPECT_EQ(RowOf("TWO").Columns[kColAttr], "LWR");
  EXPECT_EQ(RowOf("TWO").Columns[kColLoad], "FFFF1900");
  EXPECT_EQ(disc_->TheDisc.Fetch(509), 3);
  fs::create_directories(folder_ / "OUT");
  player_.ExpectFileDialog(folder_ / "OUT");
  Choose("mnuDirectoryExport");
  const std::pair<const char*, const char*> files[] = {
      {"TWO", "TWO"},          {"HOME/TWO", "TWO"}, {"HOME/Fourth", "FOUR"},
      {"HOME/FIVE", "FIVE"},   {"HOME/SIX", "SIX"}, {"HOME/LOWER/INNER", "DEEP/INNER"},
      {"WORK/SEVEN", "SEVEN"}, {"WORK/SIX", "SIX"},
  };
  for (const auto& [out, host] : files) {
    EXPECT_TRUE(ReadAll(folder_ / "OUT/" + out) == ReadAll(Home() + "/" + host)) << out;
  }
  EXPECT_FALSE(fs::exists(folder_ / "OUT/HOME/ONE"));
  EXPECT_NE(ReadText(folder_ / "OUT/HOME/FIVE.INF").find("FFFF3000"), std::string::npos);
}

}  // namespace
}  // namespace sectorbox::testing
