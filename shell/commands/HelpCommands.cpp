#include "shell/commands/HelpCommands.h"

#include "shell/dialogs/frmAbout.h"
#include "shell/window/MainWindow.h"
#include "toolkit/Boxes.h"

namespace sectorbox {

HelpCommands::HelpCommands(MainWindow& window) : window_(window) {
  for (const char* name : {"mnuHelpContents", "mnuHelpSearch"}) {
    window.OnCommand(name, [this] {
      ShowBox(&window_,
              QStringLiteral("Unable to display Help Contents. There is no Help associated with "
                             "this project."),
              window_.windowTitle(), BoxIcon::kInformation);
    });
  }
  window.OnCommand("mnuHelpAbout", [this] {
    if (about_ == nullptr) about_ = new frmAbout(&window_);
    about_->exec();
  });
}

}  // namespace sectorbox
