#include "shell/commands/PictureCommands.h"

#include <QCoreApplication>

#include "disc/host/HostPath.h"
#include "shell/window/MainWindow.h"
#include "toolkit/Text.h"
#include "viewers/windows/frmMode.h"
#include "viewers/windows/frmTeletext.h"

namespace sectorbox {

PictureCommands::PictureCommands(MainWindow& window)
    : window_(window), fontFolder_(ToHost(QCoreApplication::applicationDirPath())) {
  window.OnCommand("mnuFileViewTeletext", [this] { mnuFileViewTeletext(); });
  for (const ScreenMode& mode : kScreenModes) {
    const std::string entry = "mnuFileViewMode" + std::to_string(mode.Mode);
    window.OnCommand(entry.c_str(), [this, number = mode.Mode] { mnuFileViewMode(number); });
  }
}

PictureCommands::~PictureCommands() {
  for (const QPointer<frmMode>& screen : screens_) delete screen.data();
}

const ListRow* PictureCommands::CurrentItem() const {
  return window_.CurrentItem();
}

// The program can't go on without its font. Fail keeps the disc's unsaved changes.
void PictureCommands::mnuFileViewTeletext() {
  if (window_.CurrentItem() == nullptr) return;
  const auto font = LoadTeletextFont(JoinHostPath(fontFolder_, kTeletextFontFile));
  if (!font) {
    window_.Fail(QString::fromLatin1(kTeletextFontMissing),
                 QString::fromLatin1(kTeletextFontTitle));
    return;
  }
  frmTeletext(&window_, window_.OpenDisc(), *this, *font).exec();
}

void PictureCommands::mnuFileViewMode(int mode) {
  if (window_.CurrentItem() == nullptr) return;
  std::erase_if(screens_, [](const QPointer<frmMode>& screen) { return screen.isNull(); });
  auto* view = new frmMode(window_.OpenDisc(), *this);
  screens_.emplace_back(view);
  view->Tag = mode;
  view->show();
  view->Show_File();
}

}  // namespace sectorbox
