#pragma once

#include <QObject>

namespace sectorbox {

class frmMain;

// The Options menu and Check Before Transfer. Choosing an entry flips its check mark, and that is
// all: who honours an option reads the mark when it is needed, and the settings get it at exit.
class OptionCommands : public QObject {
 public:
  explicit OptionCommands(frmMain& window);
};

}  // namespace sectorbox
