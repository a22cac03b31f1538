// A host that fails in the middle of a command, at every write: afterwards the window shows what is
// on the disc.

#include <QApplication>
#include <filesystem>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/image/OpenImage.h"
#include "tests/support/FaultyMedium.h"
#include "tests/support/NoBlockDevices.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/FileLists.h"
#include "toolkit/Text.h"

namespace sectorbox::testing {
namespace {

class FailedChange : public WindowTest {
 protected:
  FailedChange() {
    ImageBuilder image(4224);
    const auto dir = image.AddDirectory(2, "DIR");
    image.AddFile(dir, {"INNER", {1}});
    image.AddDirectory(dir, "DEEP");
    for (const char* name : {"A", "B", "C"}) {
      image.AddFile(2, {name, std::vector<std::uint8_t>(3000, 7)});
    }
    image.WriteTo(folder_ / "sound.dat");
    std::filesystem::create_directory(folder_ / "HOST");
    for (const char* name : {"ONE", "TWO"})
      WriteText(folder_ / (std::string("HOST/") + name), "text");
  }

  // A window on a fresh copy of the disc, whose medium follows the plan.
  void StartOnACopy() {
    window_.reset();
    disc_.reset();
    host_.reset();
    plan_ = {};
    std::filesystem::remove(folder_ / "disc.dat-journal");
    std::filesystem::copy_file(folder_ / "sound.dat", folder_ / "disc.dat",
                               std::filesystem::copy_options::overwrite_existing);
    host_ = std::make_unique<WindowHost>();
    host_->Drives = CardDrives(std::make_unique<NoBlockDevices>());
    disc_ = std::make_unique<Disc>(*host_, MakeHostDevice(), std::make_unique<FaultyMaker>(plan_));
    window_ = std::make_unique<frmMain>(*disc_, *host_, end_);
    window_->Load("\"" + (folder_ / "disc.dat") + "\"");
    Settle();
  }

  void ExpectShown() {
    QStringList rows;
    for (const ListRow& row : ReadRows(*disc_, window_->ThePanes().CurrentSector())) {
      rows.append(FromBbc(row.Name()));
    }
    QStringList shown = Names();
    rows.sort();
    shown.sort();
    EXPECT_EQ(shown, rows);
    QStringList nodes;
    for (const TreeNode& node : WalkTree(*disc_)) nodes.append(FromBbc(node.Text));
    shown = Nodes();
    nodes.sort();
    shown.sort();
    EXPECT_EQ(shown, nodes);
    const auto free = FreeSectors(*disc_) * format::kSectorSize;
    EXPECT_TRUE(Panel(1).startsWith(QStringLiteral(" %1 Bytes Free").arg(free)))
        << Panel(1).toStdString() << " for " << free;
    EXPECT_EQ(window_->windowTitle().endsWith(u'*'), disc_->ImageChanged);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  }

  // Runs the command, first without a fault, then with one at each write in turn.
  void FailEverywhere(const std::function<void()>& command) {
    StartOnACopy();
    const int before = plan_.Writes;
    command();
    const int writes = plan_.Writes - before;
    ASSERT_GT(writes, 2);
    for (int at = 0; at < writes; ++at) {
      SCOPED_TRACE(at);
      StartOnACopy();
      plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail, at);
      player_.ExpectBox(QStringLiteral("faulty medium: Input/output error"));
      command();
      EXPECT_TRUE(player_.AllPlayed());
      ExpectShown();
    }
  }

  FaultPlan plan_;
};

TEST_F(FailedChange, DeletingFilesAndADirectory) {
  FailEverywhere([this] {
    SelectRows({QStringLiteral("A"), QStringLiteral("C"), QStringLiteral("DIR")});
    Choose("mnuFileDelete");
  });
}

TEST_F(FailedChange, DeletingADirectoryOfTheTree) {
  FailEverywhere([this] {
    ClickNode(QStringLiteral("DIR"));
    Choose("mnuDirectoryDelete");
  });
}

TEST_F(FailedChange, MakingADirectory) {
  FailEverywhere([this] {
    ClickNode(QStringLiteral("DIR"));
    Choose("mnuDirectoryNew");
  });
}

TEST_F(FailedChange, DroppingFiles) {
  FailEverywhere([this] {
    ClickNode(QStringLiteral("DIR"));
    window_->ThePanes().List().Dropped(
        *FileListData({folder_ / "HOST/ONE", folder_ / "HOST/TWO", folder_ / "HOST"}));
    Settle();
  });
}

TEST_F(FailedChange, DroppingAFolderOnTheTree) {
  FailEverywhere([this] {
    window_->ThePanes().Tree().SetDropHighlight(&Node(QStringLiteral("DEEP")));
    window_->ThePanes().Tree().Dropped(*FileListData({folder_ / "HOST"}));
    Settle();
  });
}

TEST_F(FailedChange, Compacting) {
  // A hole in front of B, so that there is something to move.
  ImageBuilder image(4224);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddHole(5);
  image.AddDirectory(dir, "DEEP");
  image.AddFile(2, {"B", std::vector<std::uint8_t>(3000, 7)});
  image.WriteTo(folder_ / "sound.dat");
  FailEverywhere([this] { Choose("mnuDiscCompact"); });
}

TEST_F(FailedChange, TheDirectoryThatWasCurrentStaysCurrent) {
  StartOnACopy();
  ClickNode(QStringLiteral("DEEP"));
  plan_.Set(FaultPlan::Operation::kWrite, FaultPlan::Kind::kFail, 0);
  player_.ExpectBox(QStringLiteral("faulty medium: Input/output error"));
  Choose("mnuDirectoryNew");
  EXPECT_EQ(window_->CurrentNode()->Text, "DEEP");
  EXPECT_EQ(Panel(2), QStringLiteral("$.DIR.DEEP"));
}

}  // namespace
}  // namespace sectorbox::testing
