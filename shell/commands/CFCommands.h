#pragma once

#include <QObject>

#include "cfcard/cards/CardMenu.h"

namespace sectorbox {

class CardDrives;
class MainWindow;

// The CF Card menu. drives outlives it.
class CFCommands : public QObject, private CardDialogs {
 public:
  CFCommands(MainWindow& window, CardDrives& drives);

  // The formats by size. No menu entry runs them.
  void FormatBySize(const SizedFormat& format);

 private:
  void OnCommand(const char* name, void (*run)(Disc& disc, CardDialogs& dialogs));
  void ShowCF() override;
  void ShowFormatCF() override;

  MainWindow& window_;
  CardDrives& drives_;
};

}  // namespace sectorbox
