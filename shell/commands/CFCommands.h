#pragma once

#include <QObject>

#include "cfcard/cards/CardMenu.h"

namespace sectorbox {

class frmMain;

// The CF Card menu.
class CFCommands : public QObject, private CardDialogs {
 public:
  explicit CFCommands(frmMain& window);

  // The formats by size, to which no entry is bound.
  void FormatBySize(const SizedFormat& format);

 private:
  void OnCommand(const char* name, void (*run)(Disc& disc, CardDialogs& dialogs));
  void ShowCF() override;
  void ShowFormatCF() override;

  frmMain& window_;
};

}  // namespace sectorbox
