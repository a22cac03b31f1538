#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>
#include <filesystem>

#include "cfcard/windows/frmCF.h"
#include "link/windows/frmRX.h"
#include "shell/commands/PictureCommands.h"
#include "shell/commands/XferCommands.h"
#include "shell/dialogs/frmSave.h"
#include "tests/support/WindowFixture.h"
#include "toolkit/Twips.h"
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

class StoredPlace : public PlaceTest {
 protected:
  static void Store(double left, double top, double width, double height) {
    SettingsStore settings;
    settings.PutTwips("MainLeft", TwipsFromPixels(1) * left);
    settings.PutTwips("MainTop", TwipsFromPixels(1) * top);
    settings.PutTwips("MainWidth", TwipsFromPixels(1) * width);
    settings.PutTwips("MainHeight", TwipsFromPixels(1) * height);
  }
  // The screen of these tests has 800 by 800 pixels.
  QRect Screen() { return window_->screen()->availableGeometry(); }
};

TEST_F(StoredPlace, AWindowThatWasOffTheScreenIsBroughtOntoIt) {
  for (const auto& [left, top] : std::vector<std::pair<int, int>>{
           {5000, 100}, {-5000, 100}, {100, 5000}, {100, -5000}, {-400, -30}, {780, 100}}) {
    Store(left, top, 400, 300);
    StartAgain();
    EXPECT_TRUE(Screen().contains(window_->geometry())) << left << " " << top;
    EXPECT_EQ(window_->size(), QSize(400, 300));
  }
}

TEST_F(StoredPlace, AWindowThatIsLargerThanTheScreenIsMadeSmaller) {
  Store(20, 20, 90000, 90000);
  Start();
  EXPECT_TRUE(Screen().contains(window_->geometry()));
}

TEST_F(StoredPlace, AWindowThatTheUserCanReachStaysWhereItWas) {
  for (const auto& [left, top] :
       std::vector<std::pair<int, int>>{{100, 200}, {-300, 0}, {700, 700}}) {
    Store(left, top, 400, 300);
    StartAgain();
    EXPECT_EQ(window_->pos(), QPoint(left, top));
    EXPECT_EQ(window_->size(), QSize(400, 300));
  }
}

TEST_F(StoredPlace, ADialogThatWasOffTheScreenIsBroughtOntoIt) {
  SettingsStore().PutTwips("SaveLeft", 1e9);
  SettingsStore().PutTwips("SaveTop", -1e9);
  Start();
  frmSave dialog(window_.get(), *disc_);
  EXPECT_TRUE(Screen().contains(dialog.geometry()));
}

// Each window that keeps its place, by the entry that opens it.
struct PlacedWindow {
  const char* Entry;
  const char* Prefix;
  const char* Name;
  bool IsModal;
};

class EveryPlacedWindow : public StoredPlace, public ::testing::WithParamInterface<PlacedWindow> {};

TEST_P(EveryPlacedWindow, IsBroughtOntoTheScreenWhenItsPlaceIsOffIt) {
  const QByteArray prefix(GetParam().Prefix);
  SettingsStore().PutTwips((prefix + "Left").constData(), 1e9);
  SettingsStore().PutTwips((prefix + "Top").constData(), -1e9);
  ImageBuilder image(2560);
  image.AddFile(2, {"FILE", std::vector<std::uint8_t>(1000, 65)});
  StartWith(image);
  int looks = 0;
  const auto look = [&](QWidget& window) {
    ++looks;
    EXPECT_EQ(window.objectName(), QString::fromLatin1(GetParam().Name));
    EXPECT_TRUE(Screen().contains(window.geometry())) << GetParam().Name;
    window.close();
  };
  window_->Pictures().SetFontFolder(
      std::filesystem::path(TELETEXT_FONT_PATH).parent_path().string() + "/");
  if (GetParam().IsModal) player_.Expect(look);
  window_->Action(GetParam().Entry)->trigger();
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->objectName() == QLatin1String(GetParam().Name))
      look(*window);
  }
  EXPECT_EQ(looks, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Windows, EveryPlacedWindow,
    ::testing::Values(PlacedWindow{"mnuFileViewHex", "View", "frmView", false},
                      PlacedWindow{"mnuFileViewTeletext", "Teletext", "frmTeletext", true},
                      PlacedWindow{"mnuFileViewMode4", "Mode", "frmMode", false},
                      PlacedWindow{"mnuXferTracewindow", "Trace", "frmTrace", false},
                      PlacedWindow{"mnuXferCli", "CLI", "frmCLI", true},
                      PlacedWindow{"mnuCFCardOpen", "CF", "frmCF", true},
                      PlacedWindow{"mnuCFFormat", "CF", "frmFormatCF", true}),
    [](const auto& window) { return std::string(window.param.Name); });

// Notes the windows of views that change their size after they are shown.
class SizeWatch : public QObject {
 public:
  SizeWatch() { QApplication::instance()->installEventFilter(this); }
  int Shown = 0;
  int SizedAfterShown = 0;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    auto* window = qobject_cast<QWidget*>(watched);
    if (window == nullptr || window->objectName() != QStringLiteral("frmView")) return false;
    if (event->type() == QEvent::Show) {
      ++Shown;
      size_ = window->size();
    }
    if (event->type() == QEvent::Resize && Shown > 0 && window->size() != size_) ++SizedAfterShown;
    return false;
  }

 private:
  QSize size_;
};

TEST_F(PlaceTest, TheWindowOfAWordwiseDocumentIsWidenedBeforeItIsShown) {
  ImageBuilder image(2560);
  image.AddFile(2, {"LETTER", {'H', 'i', 13}, 0xFFFFFFFF, 0xFFFFFFFF});
  StartWith(image);
  const SizeWatch watch;
  Choose("mnuFileViewWordwise");
  EXPECT_EQ(watch.Shown, 1);
  EXPECT_EQ(watch.SizedAfterShown, 0);
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() != QStringLiteral("frmView")) continue;
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->width(), PixelsFromTwips(kViewPlace.Width) + PixelsFromTwips(50));
    window->close();
  }
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
