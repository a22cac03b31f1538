#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <filesystem>

#include "disc/change/Mutation.h"
#include "tests/support/WindowFixture.h"

// A hard disc image whose medium fails under the open window.
namespace sectorbox::testing {
namespace {

// Makes each handle that this process has open on that path lead to a file that can't be read.
void Break(const std::string& path) {
  const int broken = open("/proc/self/mem", O_RDWR);
  ASSERT_GE(broken, 0);
  int found = 0;
  for (int handle = 3; handle < 256; ++handle) {
    std::error_code none;
    const std::string link = "/proc/self/fd/" + std::to_string(handle);
    if (std::filesystem::read_symlink(link, none) != path) continue;
    dup2(broken, handle);
    ++found;
  }
  close(broken);
  ASSERT_GT(found, 0);
}

class UnreadableDiscTest : public WindowTest {
 protected:
  UnreadableDiscTest() {
    ImageBuilder image(4224);
    image.AddFile(image.AddDirectory(2, "FIRST"), {"ONE", {1}});
    image.AddFile(image.AddDirectory(2, "SECOND"), {"TWO", {2}});
    path_ = std::filesystem::canonical(folder_.Path()).string() + "/disc.dat";
    image.WriteTo(path_);
    Start("\"" + path_ + "\"");
  }
  void ExpectABox() {
    player_.Expect([](QWidget& dialog) { dynamic_cast<QMessageBox&>(dialog).accept(); });
  }

  std::string path_;
};

TEST_F(UnreadableDiscTest, ADirectoryThatCannotBeReadIsABoxAndTheListLivesOn) {
  const auto before = Names();
  Break(path_);
  ExpectABox();
  ClickNode(QStringLiteral("SECOND"));
  EXPECT_TRUE(Names().isEmpty());
  EXPECT_EQ(window_->CurrentItem(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  disc_->ImageChanged = false;
}

TEST_F(UnreadableDiscTest, ARebuildThatFailsLeavesEmptyPanesThatStillWork) {
  Break(path_);
  ExpectABox();
  Press(window_->ThePanes().Tree(), Qt::Key_F5);
  EXPECT_TRUE(window_->ThePanes().Tree().isVisible());
  EXPECT_FALSE(window_->ThePanes().Tree().signalsBlocked());
  EXPECT_TRUE(Nodes().isEmpty());
  EXPECT_TRUE(Names().isEmpty());
  ImageBuilder other(2560);
  other.AddFile(2, {"HELLO", {1}});
  other.WriteInterleavedTo(folder_ / "other.adl");
  player_.ExpectFileDialog(folder_ / "other.adl");
  Choose("mnuDiscOpen");
  EXPECT_EQ(Names(), QStringList{QStringLiteral("HELLO")});
  ClickRow(QStringLiteral("HELLO"));
  EXPECT_EQ(Panel(2), QStringLiteral("$.HELLO"));
}

}  // namespace
}  // namespace sectorbox::testing
