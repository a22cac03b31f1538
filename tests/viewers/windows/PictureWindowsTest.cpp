#include <QCoreApplication>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTest>
#include <filesystem>

#include "shell/commands/PictureCommands.h"
#include "tests/support/WindowFixture.h"
#include "viewers/picture/Colours.h"
#include "viewers/picture/PictureFile.h"
#include "viewers/picture/Teletext.h"
#include "viewers/windows/frmMode.h"
#include "viewers/windows/frmPalette.h"
#include "viewers/windows/frmTeletext.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

constexpr char kFont[] = TELETEXT_FONT_PATH;

Bytes Striped(std::size_t count, int step) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<std::uint8_t>(i * static_cast<std::size_t>(step));
  }
  return bytes;
}

class PictureWindowsTest : public WindowTest {
 protected:
  PictureWindowsTest() {
    std::filesystem::copy_file(kFont, Font());
    ImageBuilder image(2560);
    image.AddFile(2, {"AEMPTY", {}});
    image.AddFile(2, {"PAGE", page_});
    image.AddFile(2, {"SCREEN", screen_});
    StartWith(image);
    window_->Pictures().SetFontFolder(folder_.Path());
  }

  std::string Font() const { return folder_ / kTeletextFontFile; }

  static std::string Recovered() {
    return (SettingsStore().Folder() + QStringLiteral("/Recovered1.adl")).toStdString();
  }

  static frmMode& Screen() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (auto* screen = qobject_cast<frmMode*>(window)) return *screen;
    }
    throw std::runtime_error("no screen is shown");
  }
  static const Picture& Shown(QWidget& window) {
    return window.findChild<PictureBox*>(QStringLiteral("Picture1"))->Shown();
  }
  template <typename T = QPushButton>
  static T& Child(QWidget& window, const QString& name) {
    T* found = window.findChild<T*>(name);
    if (found == nullptr) throw std::runtime_error("no such child: " + name.toStdString());
    return *found;
  }
  static void Tick(QWidget& window) {
    QTimer& timer = Child<QTimer>(window, QStringLiteral("Timer1"));
    ASSERT_TRUE(timer.isActive());
    EXPECT_EQ(timer.interval(), 500);
    QMetaObject::invokeMethod(&timer, "timeout");
  }
  // What the window prints from now on goes to the file.
  static void PrintTo(QWidget& window, const std::string& pdf) {
    auto* menu = window.findChild<PictureMenu*>();
    ASSERT_NE(menu, nullptr);
    QObject::connect(menu, &PictureMenu::AboutToPrint, [pdf](QPrinter& printer) {
      printer.setOutputFormat(QPrinter::PdfFormat);
      printer.setOutputFileName(QString::fromStdString(pdf));
    });
  }
  Bytes PixelsOf(int number, const ScreenPalette& palette, bool flash) const {
    const ScreenMode& mode = *FindScreenMode(number);
    return EncodeBmp(DrawScreen(mode, screen_, FindCurrentColours(mode, palette, flash)));
  }
  Bytes Page(std::int16_t phase) const {
    return EncodeBmp(DrawTeletext(page_, LoadTeletextFont(kFont).value(), phase));
  }
  frmMode& OpenScreen(const char* entry) {
    ClickRow(QStringLiteral("SCREEN"));
    Choose(entry);
    return Screen();
  }

  // Middle of the box in pixels of a screen of that scale.
  static QPointF MiddleOf(const QWidget& box, double scale) {
    return QPointF(box.width(), box.height()) * scale / 2;
  }
  // How many pixels of target differ from the picture drawn in squares around middle.
  static int WrongPixels(const Picture& picture, const QImage& target, int square, QPointF middle) {
    const QPointF half = QPointF(picture.Width, picture.Height) * square / 2;
    const QPoint corner = (middle - half).toPoint();
    int wrong = 0;
    for (int y = 0; y < picture.Height * square; ++y) {
      for (int x = 0; x < picture.Width * square; ++x) {
        const Colour there = target.pixel(corner.x() + x, corner.y() + y) & kWhite;
        wrong += there != picture.At(x / square, y / square) ? 1 : 0;
      }
    }
    return wrong;
  }

  Bytes page_ = Striped(960, 7);
  Bytes screen_ = Striped(20480, 31);
};

TEST_F(PictureWindowsTest, ATeletextPageFlashesTwiceASecond) {
  ClickRow(QStringLiteral("PAGE"));
  player_.Expect([&](QWidget& window) {
    EXPECT_EQ(window.objectName(), QStringLiteral("frmTeletext"));
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(window.windowTitle(), QStringLiteral("View Teletext File - PAGE"));
    EXPECT_EQ(window.size(), QSize(520, 24 * 20 + 110));
    EXPECT_EQ(Child<PictureBox>(window, QStringLiteral("Picture1")).size(), QSize(484, 484));
    EXPECT_EQ(EncodeBmp(Shown(window)), Page(0));
    Tick(window);
    EXPECT_EQ(EncodeBmp(Shown(window)), Page(1));
    Tick(window);
    EXPECT_EQ(EncodeBmp(Shown(window)), Page(0));
    Child<QAction>(window, QStringLiteral("mnuFileClose")).trigger();
  });
  Choose("mnuFileViewTeletext");
  EXPECT_NE(Page(0), Page(1));
}

TEST_F(PictureWindowsTest, AnEmptyFileIsAnEmptyPage) {
  ClickRow(QStringLiteral("AEMPTY"));
  player_.Expect([&](QWidget& window) {
    EXPECT_EQ(window.size(), QSize(520, 110));
    EXPECT_EQ(Child<PictureBox>(window, QStringLiteral("Picture1")).size(), QSize(484, 4));
    EXPECT_EQ(Shown(window).Height, 4);
    window.close();
  });
  Choose("mnuFileViewTeletext");
}

TEST_F(PictureWindowsTest, ThePageIsSavedInThePhaseThatShows) {
  ClickRow(QStringLiteral("PAGE"));
  // The player can't answer one dialog from within the answer to another, so the window acts after.
  player_.Expect([&](QWidget& window) {
    Tick(window);
    Child<QTimer>(window, QStringLiteral("Timer1")).stop();
    QTimer::singleShot(0, &window, [&window] {
      Child<QAction>(window, QStringLiteral("mnuFileSave")).trigger();
      Child<QAction>(window, QStringLiteral("mnuFileSave")).trigger();
      window.close();
    });
  });
  player_.ExpectFileDialog(folder_ / "PAGE.bmp");
  player_.ExpectFileDialog("");
  Choose("mnuFileViewTeletext");
  EXPECT_EQ(ReadAll(folder_ / "PAGE.bmp"), Page(1));
}

TEST_F(PictureWindowsTest, ThePageIsPrintedAtTheTopLeftOfOnePage) {
  ClickRow(QStringLiteral("PAGE"));
  const std::string pdf = folder_ / "page.pdf";
  player_.Expect([&](QWidget& window) {
    PrintTo(window, pdf);
    Child<QAction>(window, QStringLiteral("mnuFilePrint")).trigger();
    window.close();
  });
  Choose("mnuFileViewTeletext");
  const std::string text = ReadText(pdf);
  EXPECT_EQ(text.rfind("%PDF-", 0), 0U);
  EXPECT_NE(text.find("/Width 480"), std::string::npos);
  EXPECT_NE(text.find("/Height 480"), std::string::npos);
  EXPECT_NE(text.find("/Count 1"), std::string::npos);
}

TEST_F(PictureWindowsTest, WithoutAPrinterPrintingIsTold) {
  if (!QPrinterInfo::defaultPrinter().isNull()) GTEST_SKIP() << "this machine has a printer";
  frmMode& window = OpenScreen("mnuFileViewMode0");
  player_.ExpectBox(QStringLiteral("No printer is set up."), QStringLiteral("Sectorbox"));
  Child<QAction>(window, QStringLiteral("mnuFilePrint")).trigger();
}

TEST_F(PictureWindowsTest, AMissingFontEndsTheProgram) {
  std::filesystem::remove(Font());
  ClickRow(QStringLiteral("PAGE"));
  player_.Expect([&](QWidget& box) {
    const auto& message = dynamic_cast<QMessageBox&>(box);
    EXPECT_EQ(message.text(), QStringLiteral("Cannot open Teletext font file teletext.fnt"));
    EXPECT_EQ(message.windowTitle(), QStringLiteral("WindowTitle"));
    EXPECT_EQ(message.icon(), QMessageBox::Critical);
    box.close();
  });
  Choose("mnuFileViewTeletext");
  EXPECT_EQ(ends_, std::vector<int>{1});
  EXPECT_FALSE(std::filesystem::exists(Recovered()));
}

TEST_F(PictureWindowsTest, AShortFontEndsTheProgramTooAndKeepsWhatIsNotSaved) {
  WriteAll(Font(), Bytes(3455));
  constexpr std::size_t kPlace = 5000;
  disc_->TheDisc.Store(kPlace, 0x77);
  disc_->ImageChanged = true;
  ClickRow(QStringLiteral("PAGE"));
  player_.Expect([&](QWidget& box) {
    EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(),
              QStringLiteral("Cannot open Teletext font file teletext.fnt\n\n"
                             "The disc with your unsaved changes was kept in ") +
                  QString::fromStdString(Recovered()));
    box.close();
  });
  Choose("mnuFileViewTeletext");
  EXPECT_EQ(ends_, std::vector<int>{1});
  // The kept file opens as the disc that was in memory, the change in it.
  Disc kept(disc_->Host);
  kept.TheDisc.OpenFile(Recovered(), kAdl, 80, 2, 16);
  Bytes there(disc_->TheDisc.ImageBytes());
  Bytes before(there.size());
  kept.TheDisc.FetchBytes(0, there);
  disc_->TheDisc.FetchBytes(0, before);
  EXPECT_EQ(there, before);
  EXPECT_EQ(there[kPlace], 0x77);
}

TEST_F(PictureWindowsTest, TheTeletextWindowComesBackWhereItWas) {
  ClickRow(QStringLiteral("PAGE"));
  player_.Expect([&](QWidget& window) {
    EXPECT_EQ(window.pos(), QPoint(6, 6));
    window.move(120, 80);
    window.close();
  });
  Choose("mnuFileViewTeletext");
  EXPECT_EQ(SettingsStore().GetTwips("TeletextLeft", 0), 1800);
  EXPECT_EQ(SettingsStore().GetTwips("TeletextTop", 0), 1200);
  player_.Expect([&](QWidget& window) {
    EXPECT_EQ(window.pos(), QPoint(120, 80));
    window.close();
  });
  Choose("mnuFileViewTeletext");
}

TEST_F(PictureWindowsTest, EveryModeEntryShowsItsScreen) {
  for (const ScreenMode& mode : kScreenModes) {
    frmMode& window = OpenScreen(("mnuFileViewMode" + std::to_string(mode.Mode)).c_str());
    EXPECT_EQ(window.windowTitle(), QStringLiteral("View Mode %1 File - SCREEN").arg(mode.Mode));
    EXPECT_FALSE(window.isModal());
    EXPECT_EQ(window.size(), QSize(680, 662));
    EXPECT_EQ(Child<PictureBox>(window, QStringLiteral("Picture1")).size(), QSize(644, 516));
    EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(mode.Mode, {}, false));
    for (int i = 0; i < 8; ++i) {
      auto& button = Child<ColourButton>(window, QStringLiteral("cmdPalet%1").arg(i));
      EXPECT_EQ(button.isEnabled(), i < mode.BaseColours);
      EXPECT_EQ(button.BackColour(),
                i < mode.BaseColours ? static_cast<int>(ScreenPalette().Get(mode, i)) : -1);
    }
    window.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(PictureWindowsTest, OnlyMode2FlashesAndLeavingItStopsTheTimer) {
  frmMode& window = OpenScreen("mnuFileViewMode2");
  Tick(window);
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(2, {}, true));
  Tick(window);
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(2, {}, false));
  Tick(window);
  for (const int mode : {0, 1, 4, 5}) {
    Child(window, QStringLiteral("cmdMode%1").arg(mode)).click();
    EXPECT_FALSE(Child<QTimer>(window, QStringLiteral("Timer1")).isActive());
    EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(mode, {}, false));
  }
  Child(window, QStringLiteral("cmdMode2")).click();
  EXPECT_TRUE(Child<QTimer>(window, QStringLiteral("Timer1")).isActive());
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(2, {}, false));
}

TEST_F(PictureWindowsTest, AChosenColourIsKeptAcrossModesUntilReset) {
  frmMode& window = OpenScreen("mnuFileViewMode1");
  player_.Expect([](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Change Palette"));
    Child(dialog, QStringLiteral("cmdColour6")).click();
  });
  Child(window, QStringLiteral("cmdPalet2")).click();
  ScreenPalette changed;
  changed.Set(*FindScreenMode(1), 2, kCyan);
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(1, changed, false));
  EXPECT_EQ(Child<ColourButton>(window, QStringLiteral("cmdPalet2")).BackColour(),
            static_cast<int>(kCyan));
  Child(window, QStringLiteral("cmdMode5")).click();
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(5, {}, false));
  Child(window, QStringLiteral("cmdReset")).click();
  Child(window, QStringLiteral("cmdMode1")).click();
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(1, changed, false));
  Child(window, QStringLiteral("cmdReset")).click();
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(1, {}, false));
}

TEST_F(PictureWindowsTest, CancellingThePaletteDialogChangesNothing) {
  frmMode& window = OpenScreen("mnuFileViewMode4");
  player_.Expect([](QWidget& dialog) {
    Child(dialog, QStringLiteral("cmdCancel")).click();
    EXPECT_FALSE(static_cast<frmPalette&>(dialog).SelectedColour.has_value());
  });
  Child(window, QStringLiteral("cmdPalet1")).click();
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(4, {}, false));
}

TEST_F(PictureWindowsTest, ReturnTakesTheColourThatHasTheFocus) {
  frmMode& window = OpenScreen("mnuFileViewMode4");
  player_.Expect([](QWidget& dialog) {
    Child(dialog, QStringLiteral("cmdColour2")).setFocus();
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(static_cast<frmPalette&>(dialog).SelectedColour, kGreen);
  });
  Child(window, QStringLiteral("cmdPalet1")).click();
}

TEST_F(PictureWindowsTest, AllButtonsUnderAScreenStandOnOneLine) {
  frmMode& window = OpenScreen("mnuFileViewMode1");
  const auto middle = [&](const char* name) {
    auto& button = Child(window, QString::fromLatin1(name));
    return button.mapTo(&window, button.rect().center()).y();
  };
  for (const char* name : {"cmdMode0", "cmdMode5", "cmdPalet7", "cmdReset"}) {
    EXPECT_NEAR(middle(name), middle("cmdPalet0"), 1) << name;
  }
}

// The tick comes while the dialog, which lives on the stack below it, still waits for its answer.
TEST_F(PictureWindowsTest, AScreenWithoutARowIsNotClosedUnderItsPaletteDialog) {
  const QPointer<frmMode> window = &OpenScreen("mnuFileViewMode2");
  player_.Expect([&](QWidget& dialog) {
    constexpr std::int64_t kFirstEntry = 2 * 256 + 5;
    disc_->TheDisc.Store(kFirstEntry, 0);  // the root is empty now
    disc_->Host.RebuildTree();
    ASSERT_EQ(window_->CurrentItem(), nullptr);
    Tick(*window);
    EXPECT_TRUE(window->isVisible());
    Child(dialog, QStringLiteral("cmdCancel")).click();
  });
  Child(*window, QStringLiteral("cmdPalet1")).click();
  ASSERT_FALSE(window.isNull());
  Tick(*window);
  EXPECT_FALSE(window->isVisible());
}

TEST_F(PictureWindowsTest, AScreenShowsTheRowThatIsCurrentAtEachDrawing) {
  frmMode& window = OpenScreen("mnuFileViewMode0");
  ClickRow(QStringLiteral("PAGE"));
  EXPECT_EQ(EncodeBmp(Shown(window)), PixelsOf(0, {}, false));
  Child(window, QStringLiteral("cmdMode4")).click();
  EXPECT_EQ(window.windowTitle(), QStringLiteral("View Mode 4 File - PAGE"));
  const ScreenMode& mode = *FindScreenMode(4);
  EXPECT_EQ(EncodeBmp(Shown(window)),
            EncodeBmp(DrawScreen(mode, page_, FindCurrentColours(mode, {}, false))));
}

TEST_F(PictureWindowsTest, AnotherTagOnlyClearsThePicture) {
  frmMode& window = OpenScreen("mnuFileViewMode1");
  window.Tag = 3;
  window.Show_File();
  EXPECT_EQ(Shown(window).Pixels, std::vector<Colour>(640 * 512, kBlack));
}

TEST_F(PictureWindowsTest, AScreenIsSavedPrintedAndPlacedLikeAPage) {
  frmMode& window = OpenScreen("mnuFileViewMode2");
  EXPECT_EQ(window.pos(), QPoint(6, 6));
  Child<QTimer>(window, QStringLiteral("Timer1")).stop();
  player_.ExpectFileDialog(folder_ / "SCREEN.bmp");
  Child<QAction>(window, QStringLiteral("mnuFileSave")).trigger();
  EXPECT_EQ(ReadAll(folder_ / "SCREEN.bmp"), PixelsOf(2, {}, false));
  const std::string pdf = folder_ / "screen.pdf";
  PrintTo(window, pdf);
  Child<QAction>(window, QStringLiteral("mnuFilePrint")).trigger();
  EXPECT_NE(ReadText(pdf).find("/Width 640"), std::string::npos);
  window.move(60, 45);
  Child<QAction>(window, QStringLiteral("mnuFileClose")).trigger();
  EXPECT_EQ(SettingsStore().GetTwips("ModeLeft", 0), 900);
  EXPECT_EQ(SettingsStore().GetTwips("ModeTop", 0), 675);
}

TEST_F(PictureWindowsTest, TheColourEntriesAreThere) {
  frmMode& window = OpenScreen("mnuFileViewMode1");
  for (const char* name : {"Black", "Red", "Green", "Yellow", "Blue", "Magenta", "Cyan", "White"}) {
    const QString caption = QString::fromLatin1(name);
    EXPECT_EQ(Child<QAction>(window, QStringLiteral("mnuColour") + caption).text(), caption);
  }
}

// At 200 % each pixel of the picture is two by two of the screen's, unblurred. At a scale between
// whole numbers the squares stay even, and the picture stands in the middle of its box.
TEST_F(PictureWindowsTest, PicturesAreCrispAtEveryScale) {
  frmMode& window = OpenScreen("mnuFileViewMode0");
  auto& box = Child<PictureBox>(window, QStringLiteral("Picture1"));
  for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0}) {
    QImage target((QSizeF(box.size()) * scale).toSize(), QImage::Format_RGB32);
    target.setDevicePixelRatio(scale);
    box.render(&target);
    EXPECT_EQ(WrongPixels(box.Shown(), target, static_cast<int>(scale), MiddleOf(box, scale)), 0)
        << "scale " << scale;
  }
}

// A window's parts seldom begin on a whole pixel of a 150 % screen.
TEST_F(PictureWindowsTest, PicturesAreCrispWhereverTheirBoxBegins) {
  frmMode& window = OpenScreen("mnuFileViewMode0");
  auto& box = Child<PictureBox>(window, QStringLiteral("Picture1"));
  constexpr double kScale = 1.5;
  constexpr QPoint kOdd(11, 7);
  QImage target(QSize(1000, 800), QImage::Format_RGB32);
  target.setDevicePixelRatio(kScale);
  box.render(&target, kOdd);
  EXPECT_EQ(WrongPixels(box.Shown(), target, 1, MiddleOf(box, kScale) + QPointF(kOdd) * kScale), 0);
}

}  // namespace
}  // namespace sectorbox
