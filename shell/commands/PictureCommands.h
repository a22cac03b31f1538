#pragma once

#include <QObject>
#include <QPointer>
#include <string>
#include <vector>

namespace sectorbox {

class MainWindow;
class frmMode;

// The teletext and screen mode views of the File menu.
class PictureCommands : public QObject {
 public:
  explicit PictureCommands(MainWindow& window);
  // Closes the screens that are still open.
  ~PictureCommands() override;

  // Where the font lies. Empty: in the program's own folder. A test puts its own here.
  static inline std::string FontFolder;

 private:
  void mnuFileViewTeletext();
  void mnuFileViewMode(int mode);

  MainWindow& window_;
  std::vector<QPointer<frmMode>> screens_;
};

}  // namespace sectorbox
