#include "shell/commands/CFCommands.h"

#include "cfcard/windows/frmCF.h"
#include "cfcard/windows/frmFormatCF.h"
#include "shell/window/MainWindow.h"

namespace sectorbox {

CFCommands::CFCommands(MainWindow& window, CardDrives& drives) : window_(window), drives_(drives) {
  OnCommand("mnuCFCardOpen", RunCFCardOpen);
  OnCommand("mnuCFFormat", RunCFFormat);
  OnCommand("mnuCFCardBackup",
            [](Disc& disc, CardDialogs& dialogs) { RunCFCardBackup(disc, dialogs, false); });
  OnCommand("mnuCFCardFullBackup",
            [](Disc& disc, CardDialogs& dialogs) { RunCFCardBackup(disc, dialogs, true); });
  OnCommand("mnuCFCardRestore", RunCFCardRestore);
}

void CFCommands::OnCommand(const char* name, void (*run)(Disc& disc, CardDialogs& dialogs)) {
  window_.OnCommand(name, [this, run] { run(window_.OpenDisc(), *this); });
}

void CFCommands::FormatBySize(const SizedFormat& format) {
  (void)window_.Start(CommandKind::kChange,
                      [&] { RunSizedFormat(window_.OpenDisc(), *this, format); });
}

void CFCommands::ShowCF() {
  frmCF dialog(&window_, window_.OpenDisc(), drives_);
  dialog.exec();
}

void CFCommands::ShowFormatCF() {
  frmFormatCF dialog(&window_, window_.OpenDisc(), drives_);
  dialog.exec();
}

}  // namespace sectorbox
