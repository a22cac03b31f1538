#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

#include "link/wire/Link.h"
#include "link/wire/TermiosPort.h"
#include "shell/program/LinkWindowHost.h"

namespace sectorbox {

class frmMain;

// The ADFS Xfer menu, and with it the program's one serial port and the state of its link.
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

  Link& TheLink() { return link_; }

 private:
  void ConnectSerialMenu();
  void ConnectTransfers(const char* stem, const std::function<void(std::int32_t drive)>& run);
  void Receive(std::int32_t drive, bool dataOnly);
  void ChooseCom(std::int16_t number);
  void ChooseSpeed(std::int32_t speed);
  void ShowDevices();
  void SelectDevice();
  // Runs what talks to the BBC, on the device that the ticked port stands for now. While one such
  // command runs, its waits let the menus live, but another one would take its replies away from
  // it: choosing one then does nothing.
  std::function<void()> Exclusive(std::function<void()> command);

  frmMain& window_;
  LinkWindowHost host_;
  TermiosPort port_;
  Link link_{port_, host_};
  bool busy_ = false;
};

}  // namespace sectorbox
