#pragma once

#include <QObject>

namespace sectorbox {

class frmMain;

// The ADFS Xfer menu.
class XferCommands : public QObject {
 public:
  explicit XferCommands(frmMain& window);

  // At the start of the program, after the port's number was read: line settings "1200,N,8,1" and
  // RTS handshaking. The port stays closed.
  void SetUpPort();
  // At its end: "Q" goes out on an open port, which is then closed.
  void ClosePort();
  // Closes the trace log, if one is open.
  void CloseTrace();
};

}  // namespace sectorbox
