#pragma once

#include <QObject>
#include <QPointer>
#include <string>
#include <vector>

#include "viewers/windows/frmPicture.h"

namespace sectorbox {

class MainWindow;
class frmMode;

// The teletext and screen mode views of the File menu.
class PictureCommands : public QObject, private CurrentRow {
 public:
  explicit PictureCommands(MainWindow& window);
  // Closes the screens that are still open.
  ~PictureCommands() override;

  // The folder that the teletext font lies in: the program's own, until this is called.
  void SetFontFolder(const std::string& folder) { fontFolder_ = folder; }

 private:
  // The pictures call this at each drawing.
  const ListRow* CurrentItem() const override;
  void mnuFileViewTeletext();
  void mnuFileViewMode(int mode);

  MainWindow& window_;
  std::string fontFolder_;
  std::vector<QPointer<frmMode>> screens_;
};

}  // namespace sectorbox
