#pragma once

#include <QObject>
#include <functional>

#include "cfcard/CardMenu.h"

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
  void Run(const std::function<void()>& command);
  void ShowCF() override;
  void ShowFormatCF() override;

  frmMain& window_;
};

}  // namespace sectorbox
