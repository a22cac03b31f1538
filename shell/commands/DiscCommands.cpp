#include "shell/commands/DiscCommands.h"

#include <QInputDialog>
#include <QLineEdit>
#include <array>
#include <cmath>

#include "disc/change/Compaction.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"
#include "disc/image/SaveImage.h"
#include "disc/image/Session.h"
#include "shell/commands/ResizeAnswer.h"
#include "shell/dialogs/frmBoot.h"
#include "shell/panes/Panes.h"
#include "shell/program/frmMain.h"
#include "toolkit/Boxes.h"

namespace sectorbox {
namespace {

// The menu entries of the sizes, in the order of kNewDiscs.
constexpr std::array<const char*, kNewDiscs.size()> kNewDiscEntries = {
    "mnuDiscNew40SSD", "mnuDiscNew80SSD", "mnuDiscNew80DSD", "mnuDiscNew1M",  "mnuDiscNew2M",
    "mnuDiscNew4M",    "mnuDiscNew8M",    "mnuDiscNew16M",   "mnuDiscNew32M", "mnuDiscNew64M",
    "mnuDiscNew128M",  "mnuDiscNew256M",  "mnuDiscNew512M"};

// The geometry that all resized images get.
constexpr std::int32_t kResizeHeads = 4;
constexpr std::int32_t kResizeSectors = 33;

struct ResizeEntry {
  const char* Name;
  std::int32_t Tracks;
};
constexpr std::array<ResizeEntry, 4> kResizes = {{{"mnuDiscResize32M", 1024},
                                                  {"mnuDiscResize64M", 2048},
                                                  {"mnuDiscResize128M", 4096},
                                                  {"mnuDiscResize256M", 8192}}};

}  // namespace

DiscCommands::DiscCommands(frmMain& window) : window_(window) {
  Disc& disc = window.TheDisc();
  window.OnCommand("mnuDiscOpen", [&disc] {
    const std::string name = ChooseImageFile(disc);
    if (!name.empty()) OpenImage(disc, name);
  });
  for (std::size_t i = 0; i < kNewDiscs.size(); ++i) {
    window.OnCommand(kNewDiscEntries[i], [&disc, i] { RunNewDisc(disc, kNewDiscs[i]); });
  }
  window.OnCommand("mnuDiscSave", [&disc] { RunSaveCommand(disc); });
  for (const ResizeEntry& entry : kResizes) {
    window.OnCommand(entry.Name, [this, &entry] { Resize(entry.Tracks); });
  }
  window.OnCommand("mnuDiscResizeUser", [this] { mnuDiscResizeUser(); });
  window.OnCommand("mnuDiscBoot", [this] { mnuDiscBoot(); });
  window.OnCommand("mnuDiscCompact", [this] { mnuDiscCompact(); });
  window.OnCommand("mnuDiscClose", [this] {
    window_.QuerySaveAtExit();
    window_.close();
  });
}

void DiscCommands::mnuDiscBoot() {
  frmBoot dialog(&window_, window_.TheDisc());
  dialog.exec();
}

void DiscCommands::mnuDiscCompact() {
  CompactDisc(window_.TheDisc());
  window_.ThePanes().RebuildTree();
}

void DiscCommands::Resize(std::int32_t tracks) {
  ResizeImage(window_.TheDisc(), tracks, kResizeHeads, kResizeSectors);
}

void DiscCommands::mnuDiscResizeUser() {
  QInputDialog prompt(&window_);
  prompt.setObjectName(QStringLiteral("dlgResize"));
  prompt.setWindowTitle(QStringLiteral("Disc Resize"));
  prompt.setLabelText(QStringLiteral("Enter Size Of Required Image (In MB)"));
  prompt.setTextValue(QStringLiteral("256"));
  if (prompt.exec() != QDialog::Accepted) return;
  const auto tracks = TracksOfAnswer(prompt.textValue());
  if (!tracks) {
    ShowBox(
        &window_,
        QStringLiteral("\"%1\" is not a size in MB. No image was changed.").arg(prompt.textValue()),
        QStringLiteral("Disc Resize"), BoxIcon::kExclamation);
    return;
  }
  Resize(*tracks);
}

}  // namespace sectorbox
