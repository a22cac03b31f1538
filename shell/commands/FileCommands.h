#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>

namespace sectorbox {

class frmAddr;
class frmAttr;
class frmMain;

// The File menu, but for its views.
class FileCommands : public QObject {
 public:
  explicit FileCommands(frmMain& window);
  ~FileCommands() override;

 private:
  void mnuFileAttributes();
  void mnuFileAddresses();
  void mnuFileDelete();
  void mnuFileRename();
  void mnuFileExport();
  void lvwDB_AfterLabelEdit(int row, const QString& text);
  bool ApplyAttributes(int row);
  void ApplyAddresses(int row);

  frmMain& window_;
  // Made at the first use and used again.
  frmAttr* attr_ = nullptr;
  frmAddr* addr_ = nullptr;
};

}  // namespace sectorbox
