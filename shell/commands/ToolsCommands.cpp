#include "shell/commands/ToolsCommands.h"

#include <algorithm>
#include <string>
#include <vector>

#include "disc/host/HostError.h"
#include "disc/undo/History.h"
#include "shell/panes/Panes.h"
#include "shell/window/MainWindow.h"
#include "toolkit/Captions.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

std::vector<std::string> NamesOf(const std::vector<ListRow>& rows) {
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const ListRow& row : rows) names.push_back(row.Name());
  return names;
}

}  // namespace

ToolsCommands::ToolsCommands(MainWindow& window, Panes& panes) : window_(window), panes_(panes) {
  window.OnCommand("mnuToolsUndo", [this] { mnuToolsUndo(); });
  window.OnCommand("mnuToolsRedo", [this] { mnuToolsRedo(); });
  ShowSteps();
}

void ToolsCommands::ShowSteps() {
  const History& steps = window_.Steps();
  ShowStep("mnuToolsUndo", QStringLiteral("&Undo"), FromBbc(steps.UndoName()));
  ShowStep("mnuToolsRedo", QStringLiteral("&Redo"), FromBbc(steps.RedoName()));
}

void ToolsCommands::ShowStep(const char* entry, const QString& verb, const QString& name) {
  QAction* action = window_.Action(entry);
  action->setText(name.isEmpty() ? verb : verb + QLatin1Char(' ') + CaptionOf(name));
  action->setEnabled(!name.isEmpty());
}

void ToolsCommands::mnuToolsUndo() {
  Swap(&History::Undo, QStringLiteral("Undone: ") + FromBbc(window_.Steps().UndoName()));
}

void ToolsCommands::mnuToolsRedo() {
  Swap(&History::Redo, QStringLiteral("Done again: ") + FromBbc(window_.Steps().RedoName()));
}

void ToolsCommands::Swap(Outcome (History::*run)(), const QString& said) {
  const std::vector<std::string> former = NamesOf(panes_.List().Model().Rows());
  if ((window_.Steps().*run)() != Outcome::kDone) return;
  if (panes_.ShowDiscAgain()) {
    panes_.SelectRows([&former](const ListRow& row) {
      return std::ranges::find(former, row.Name()) == former.end();
    });
  }
  window_.OpenDisc().Host.Note(ToHost(said));
}

}  // namespace sectorbox
