#pragma once

#include <QObject>

#include "disc/change/Outcome.h"

namespace sectorbox {

class History;
class MainWindow;
class Panes;

// The Tools menu: taking back what was done to the disc, and doing it again.
class ToolsCommands : public QObject {
 public:
  ToolsCommands(MainWindow& window, Panes& panes);

  // Undo and Redo show the names of their steps, and are grey where there is none.
  void ShowSteps();

 private:
  void mnuToolsUndo();
  void mnuToolsRedo();
  // Runs undo or redo and brings the panes up to date. The directory that was current stays so, and
  // the rows that have come back are selected. said is noted when it is done.
  void Swap(Outcome (History::*run)(), const QString& said);
  void ShowStep(const char* entry, const QString& verb, const QString& name);

  MainWindow& window_;
  Panes& panes_;
};

}  // namespace sectorbox
