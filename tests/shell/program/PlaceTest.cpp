#include <QDialog>
#include <QLabel>
#include <QVBoxLayout>

#include "cfcard/windows/frmCF.h"
#include "link/windows/frmRX.h"
#include "shell/commands/XferCommands.h"
#include "shell/dialogs/frmSave.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/WindowPlace.h"

// A window that keeps its place must have its size before it is shown. If it gets its size only
// when it is shown, a window manager that draws frames puts the inside where the frame was, and the
// window creeps up the screen from one use to the next. The offscreen platform draws no frames, so
// these tests look at the cause: whether showing a window changes its size.
namespace sectorbox::testing {
namespace {

class PlaceTest : public WindowTest {
 protected:
  PlaceTest() { player_.PassOverProgress = true; }

  void ExpectSizedBeforeShown(QWidget& window) {
    const QSize before = window.size();
    EXPECT_TRUE(window.testAttribute(Qt::WA_Resized));
    window.show();
    Settle();
    EXPECT_EQ(window.size(), before);
    window.close();
  }
};

TEST_F(PlaceTest, ADialogWithoutAStoredSizeIsMovedAndSizedByItsLayout) {
  constexpr WindowPlace kPlace{"Test", 1500, 3000};
  QDialog dialog;
  auto* layout = new QVBoxLayout(&dialog);
  layout->addWidget(new QLabel(QStringLiteral("text"), &dialog));
  RestorePlace(dialog, kPlace);
  EXPECT_EQ(dialog.size(), dialog.sizeHint());
  EXPECT_EQ(dialog.pos(), QPoint(100, 200));
  ExpectSizedBeforeShown(dialog);
}

TEST_F(PlaceTest, AFixedSizeStays) {
  QDialog dialog;
  dialog.setFixedSize(300, 200);
  RestorePlace(dialog, kModePlace);
  EXPECT_EQ(dialog.size(), QSize(300, 200));
}

TEST_F(PlaceTest, TheTransferWindowIsSizedBeforeItIsShown) {
  Start();
  frmRX dialog(window_->Xfer().TheLink(), QStringLiteral("Send Image"), window_.get());
  dialog.setAttribute(Qt::WA_DeleteOnClose, false);
  ExpectSizedBeforeShown(dialog);
}

TEST_F(PlaceTest, TheSaveWindowIsSizedBeforeItIsShown) {
  Start();
  frmSave dialog(window_.get(), *disc_);
  ExpectSizedBeforeShown(dialog);
}

TEST_F(PlaceTest, TheCardWindowIsSizedBeforeItIsShown) {
  Start();
  frmCF dialog(window_.get(), *disc_, host_->Drives);
  ExpectSizedBeforeShown(dialog);
}

}  // namespace
}  // namespace sectorbox::testing
