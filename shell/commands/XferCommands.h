#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "link/wire/Link.h"
#include "link/wire/SerialPort.h"
#include "shell/commands/LinkWindowHost.h"

namespace sectorbox {

class MainWindow;
class ViewCommands;

// The ADFS Xfer menu. It owns the program's one serial port and the state of its link.
class XferCommands : public QObject {
 public:
  // Gives the path of the device that "Com 1" to "Com 4" stand for now. Empty if there is none.
  using DeviceOfPort = std::string (*)(std::int16_t number);

  // views holds the program's one search text; it outlives this.
  XferCommands(MainWindow& window, ViewCommands& views, DeviceOfPort deviceOfPort);

  // The number of the serial port: setting "ComPort".
  std::int16_t ComPort() const { return comPort_; }
  void SetComPort(std::int16_t port) { comPort_ = port; }
  // The program calls this at its start, after it has read the port's number. It sets the line to
  // "1200,N,8,1" and RTS handshaking. The port stays closed.
  void SetUpPort();
  // The program calls this at its end. It sends "Q" on an open port and closes it.
  void ClosePort();
  // Closes the trace log, if one is open.
  void CloseTrace();

  Link& TheLink() { return link_; }

 private:
  void ConnectSerialMenu();
  // Connects an entry that talks to the BBC. The command runs on the device that the ticked port
  // stands for at that moment.
  template <typename Command>
  void OnTransfer(const std::string& name, Command command);
  // The entries of the drives: the stem of their names, followed by the drive's number.
  template <typename Command>
  void OnDrives(const std::string& stem, Command command);
  void Receive(std::int32_t drive, bool dataOnly);
  void ChooseCom(std::int16_t number);
  void ChooseSpeed(std::int32_t speed);
  void ShowDevices();
  void SelectDevice();

  MainWindow& window_;
  ViewCommands& views_;
  DeviceOfPort deviceOfPort_;
  LinkWindowHost host_;
  std::unique_ptr<SerialPort> port_ = MakeSerialPort();
  Link link_{*port_, host_};
  std::int16_t comPort_ = 1;
};

}  // namespace sectorbox
