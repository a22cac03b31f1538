#pragma once

#include <QObject>
#include <QString>

namespace sectorbox {

class frmAddr;
class frmAttr;
class MainWindow;
class Panes;

// The File menu without its views.
class FileCommands : public QObject {
 public:
  FileCommands(MainWindow& window, Panes& panes);

 private:
  void mnuFileAttributes();
  void mnuFileAddresses();
  void mnuFileDelete();
  void mnuFileRename();
  void mnuFileExport();
  void lvwDB_AfterLabelEdit(int row, const QString& text);
  enum class Applied { kDone, kNoEntry };
  [[nodiscard]] Applied ApplyAttributes(int row);
  void ApplyAddresses(int row);

  MainWindow& window_;
  Panes& panes_;
  // Made at the first use and used again.
  frmAttr* attr_ = nullptr;
  frmAddr* addr_ = nullptr;
};

}  // namespace sectorbox
