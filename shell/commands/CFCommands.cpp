#include "shell/commands/CFCommands.h"

#include "cfcard/windows/frmCF.h"
#include "cfcard/windows/frmFormatCF.h"
#include "shell/program/WindowHost.h"
#include "shell/program/frmMain.h"

namespace sectorbox {

CFCommands::CFCommands(frmMain& window) : window_(window) {
  OnCommand("mnuCFCardOpen", RunCFCardOpen);
  OnCommand("mnuCFFormat", RunCFFormat);
  OnCommand("mnuCFCardBackup",
            [](Disc& disc, CardDialogs& dialogs) { RunCFCardBackup(disc, dialogs, false); });
  OnCommand("mnuCFCardFullBackup",
            [](Disc& disc, CardDialogs& dialogs) { RunCFCardBackup(disc, dialogs, true); });
  OnCommand("mnuCFCardRestore", RunCFCardRestore);
}

void CFCommands::OnCommand(const char* name, void (*run)(Disc& disc, CardDialogs& dialogs)) {
  window_.OnCommand(name, [this, run] { run(window_.TheDisc(), *this); });
}

void CFCommands::FormatBySize(const SizedFormat& format) {
  window_.Guarded([&] { RunSizedFormat(window_.TheDisc(), *this, format); });
}

void CFCommands::ShowCF() {
  frmCF dialog(&window_, window_.TheDisc(), window_.Host().Drives);
  dialog.exec();
}

void CFCommands::ShowFormatCF() {
  frmFormatCF dialog(&window_, window_.TheDisc(), window_.Host().Drives);
  dialog.exec();
}

}  // namespace sectorbox
