#include "shell/commands/DiscCommands.h"

#include <QInputDialog>
#include <array>

#include "disc/change/Compaction.h"
#include "disc/change/Mutation.h"
#include "disc/format/Format.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"
#include "disc/image/SaveImage.h"
#include "disc/image/Session.h"
#include "shell/commands/ResizeAnswer.h"
#include "shell/dialogs/frmBoot.h"
#include "shell/panes/Panes.h"
#include "shell/window/MainWindow.h"
#include "toolkit/Boxes.h"

namespace sectorbox {
namespace {

// Which of kNewDiscs an entry creates. No two of them have the same tracks and heads.
struct NewDiscEntry {
  const char* Name;
  const NewDiscSize* Size;
};

consteval const NewDiscSize* NewDiscOf(std::int32_t tracks, std::int32_t heads) {
  for (const NewDiscSize& size : kNewDiscs) {
    if (size.Tracks == tracks && size.Heads == heads) return &size;
  }
  throw "no such disc";  // doesn't compile
}

constexpr std::array<NewDiscEntry, 13> kNewDiscEntries = {
    {{"mnuDiscNew40SSD", NewDiscOf(40, 1)},
     {"mnuDiscNew80SSD", NewDiscOf(80, 1)},
     {"mnuDiscNew80DSD", NewDiscOf(80, 2)},
     {"mnuDiscNew1M", NewDiscOf(32, 4)},
     {"mnuDiscNew2M", NewDiscOf(64, 4)},
     {"mnuDiscNew4M", NewDiscOf(128, 4)},
     {"mnuDiscNew8M", NewDiscOf(256, 4)},
     {"mnuDiscNew16M", NewDiscOf(512, 4)},
     {"mnuDiscNew32M", NewDiscOf(1024, 4)},
     {"mnuDiscNew64M", NewDiscOf(2048, 4)},
     {"mnuDiscNew128M", NewDiscOf(4096, 4)},
     {"mnuDiscNew256M", NewDiscOf(8192, 4)},
     {"mnuDiscNew512M", NewDiscOf(16384, 4)}}};
static_assert(kNewDiscEntries.size() == kNewDiscs.size());

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

DiscCommands::DiscCommands(MainWindow& window, Panes& panes) : window_(window), panes_(panes) {
  Disc& disc = window.OpenDisc();
  window.OnCommand("mnuDiscOpen", [&disc] {
    const std::string name = ChooseImageFile(disc);
    if (!name.empty()) OpenImage(disc, name);
  });
  for (const NewDiscEntry& entry : kNewDiscEntries) {
    window.OnCommand(entry.Name, [&disc, &entry] { RunNewDisc(disc, *entry.Size); });
  }
  window.OnCommand("mnuDiscSave", [&disc] { RunSaveCommand(disc); });
  for (const ResizeEntry& entry : kResizes) {
    window.OnCommand(entry.Name, [this, &entry] { Resize(entry.Tracks); });
  }
  window.OnCommand("mnuDiscResizeUser", [this] { mnuDiscResizeUser(); });
  window.OnCommand("mnuDiscBoot", [this] { mnuDiscBoot(); });
  window.OnCommand("mnuDiscCompact", [this] { mnuDiscCompact(); });
}

void DiscCommands::mnuDiscBoot() {
  Disc& disc = window_.OpenDisc();
  frmBoot dialog(&window_, disc.TheDisc.Fetch(format::kMapBootOption));
  if (dialog.exec() != QDialog::Accepted) return;
  const History::Step step(window_.Steps(), "Set Boot Option", History::Mark::kLeaves);
  // The user has been told of a refusal.
  (void)SetBootOption(disc, dialog.Option(), MapSums::kLeave);
}

void DiscCommands::mnuDiscCompact() {
  Disc& disc = window_.OpenDisc();
  {
    const History::Step step(window_.Steps(), "Compact Disc");
    window_.Steps().Expect(SectorOffset(MapDiscSize(disc)) -
                           FreeSectors(disc) * format::kSectorSize);
    // The user has been told of a refusal.
    (void)CompactDisc(disc);
  }
  panes_.RebuildTree();
}

void DiscCommands::Resize(std::int32_t tracks) {
  ResizeImage(window_.OpenDisc(), tracks, kResizeHeads, kResizeSectors);
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
