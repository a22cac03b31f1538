#pragma once

#include <QApplication>
#include <QDialog>
#include <QFont>
#include <QPalette>
#include <QPushButton>
#include <filesystem>
#include <functional>

#include "link/windows/frmRX.h"
#include "shell/commands/PictureCommands.h"
#include "shell/commands/XferCommands.h"
#include "shell/dialogs/frmSave.h"
#include "shell/dialogs/frmSplash.h"
#include "tests/support/WindowFixture.h"
#include "viewers/windows/frmPalette.h"

namespace sectorbox::testing {

// Every window of the program, in a font and a palette of the test's choice. Where the environment
// names a folder (SECTORBOX_PICTURES), a picture of each window goes there, for people to look at.
class EveryWindowTest : public WindowTest {
 protected:
  using Look = std::function<void(QWidget& window)>;

  EveryWindowTest() {
    image_.AddFile(2, {"ALPHA", std::vector<std::uint8_t>(700, 65), 0xFFFF1900, 0xFFFF8023, "LWR"});
    image_.AddDirectory(2, "GAMES");
    image_.AddFile(2, {"ZED", {9}, 0x1000, 0x2000, "WR"});
  }
  ~EveryWindowTest() override {
    window_.reset();
    QApplication::setFont(font_);
    QApplication::setPalette(palette_);
  }

  static void SetPointSize(double points) {
    QFont font = QApplication::font();
    font.setPointSizeF(points);
    QApplication::setFont(font);
  }
  static void SetDarkPalette() {
    QPalette dark(QColor(53, 53, 53), QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    dark.setColor(QPalette::AlternateBase, QColor(53, 53, 53));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::HighlightedText, QPalette::ToolTipText}) {
      dark.setColor(QPalette::Active, role, Qt::white);
      dark.setColor(QPalette::Inactive, role, Qt::white);
      dark.setColor(QPalette::Disabled, role, QColor(127, 127, 127));
    }
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    dark.setColor(QPalette::PlaceholderText, QColor(160, 160, 160));
    QApplication::setPalette(dark);
  }

  // Starts the program and shows its windows one after the other.
  void LookAtEvery(const Look& look) {
    StartWith(image_);
    window_->Pictures().SetFontFolder(
        std::filesystem::path(TELETEXT_FONT_PATH).parent_path().string() + "/");
    const Look seen = [&](QWidget& window) {
      Settle();
      KeepPicture(window);
      look(window);
    };
    seen(*window_);
    ClickRow(QStringLiteral("ALPHA"));
    LookAtDialogs(seen);
    LookAtViews(seen);
    LookAtRest(seen);
    EXPECT_TRUE(player_.AllPlayed());
  }

  ImageBuilder image_{2560};

 private:
  void LookAtDialogs(const Look& look) {
    for (const char* entry :
         {"mnuFileAttributes", "mnuFileAddresses", "mnuDirectoryTitle", "mnuDiscBoot",
          "mnuDiscResizeUser", "mnuXferCli", "mnuXferBasic", "mnuXferFormat", "mnuHelpAbout",
          "mnuFileViewTeletext", "mnuDiscOpen"}) {
      LookAtDialog(entry, look);
    }
    player_.Expect([&look](QWidget& box) {
      look(box);
      dynamic_cast<QMessageBox&>(box).button(QMessageBox::No)->click();
    });
    Choose("mnuDiscSave");
  }
  void LookAtDialog(const char* entry, const Look& look) {
    player_.Expect([&look](QWidget& dialog) {
      look(dialog);
      dynamic_cast<QDialog&>(dialog).reject();
    });
    Choose(entry);
  }
  void LookAtViews(const Look& look) {
    for (const char* entry : {"mnuFileViewHex", "mnuFileViewMode4", "mnuXferTracewindow"}) {
      Choose(entry);
    }
    QList<QPointer<QWidget>> windows;
    for (QWidget* window : QApplication::topLevelWidgets()) windows.append(window);
    for (const QPointer<QWidget>& window : windows) {
      if (window.isNull()) continue;
      const QString name = window->objectName();
      if (!window->isVisible() || name == QLatin1String("frmMain")) continue;
      look(*window);
      if (name == QLatin1String("frmView")) {
        player_.Expect([&look](QWidget& dialog) {
          look(dialog);
          dynamic_cast<QDialog&>(dialog).reject();
        });
        In<QAction>(*window, "mnuEditFind").trigger();
      }
      window->close();
    }
    Settle();
  }
  void LookAtRest(const Look& look) {
    // After a card dialog the blank image is open.
    for (const char* entry : {"mnuCFCardOpen", "mnuCFFormat"}) LookAtDialog(entry, look);
    frmSave save(window_.get(), *disc_);
    save.Show(QStringLiteral("Restoring Sectors 2097136 Of 2097151"), 50);
    frmRX transfer(window_->Xfer().TheLink(), QStringLiteral("Receive Image"), window_.get());
    transfer.setAttribute(Qt::WA_DeleteOnClose, false);
    transfer.ShowChunk(QStringLiteral("Receiving Sectors 2097136 to 2097151"));
    frmPalette colours(window_.get());
    frmSplash splash;
    for (QWidget* window : {static_cast<QWidget*>(&save), static_cast<QWidget*>(&transfer),
                            static_cast<QWidget*>(&colours), static_cast<QWidget*>(&splash)}) {
      player_.PassOverProgress = true;
      window->show();
      look(*window);
      window->hide();
    }
    transfer.close();
  }
  static void KeepPicture(QWidget& window) {
    const QString folder = qEnvironmentVariable("SECTORBOX_PICTURES");
    if (folder.isEmpty()) return;
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    const QString name = window.objectName().isEmpty() ? window.windowTitle() : window.objectName();
    window.grab().save(folder + QStringLiteral("/") + QString::fromLatin1(test->name()) +
                       QStringLiteral("_") + name + QStringLiteral(".png"));
  }

  QFont font_ = QApplication::font();
  QPalette palette_ = QApplication::palette();
};

}  // namespace sectorbox::testing
