#include "shell/commands/XferCommands.h"

#include <QMenu>

#include "disc/image/OpenImage.h"
#include "link/transfer/ReceiveImage.h"
#include "link/transfer/SendImage.h"
#include "link/windows/frmCLI.h"
#include "link/windows/frmFirst.h"
#include "link/windows/frmFormat.h"
#include "link/wire/Commands.h"
#include "link/wire/Protocol.h"
#include "link/wire/Trace.h"
#include "shell/commands/ViewCommands.h"
#include "shell/window/MainWindow.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr std::int16_t kComEntries = 4;

std::string ComEntry(std::int16_t number) {
  return "mnuXferSerialCom" + std::to_string(number);
}

std::string SpeedEntry(std::int32_t speed) {
  return "mnuXferSerial" + std::to_string(speed);
}

}  // namespace

template <typename Command>
void XferCommands::OnTransfer(const std::string& name, Command command) {
  window_.OnCommand(name.c_str(), [this, command] {
    if (!port_->PortOpen()) SelectDevice();
    command();
  });
}

template <typename Command>
void XferCommands::OnDrives(const std::string& stem, Command command) {
  for (const std::int32_t drive : {0, 1, 4, 5}) {
    OnTransfer(stem + std::to_string(drive), [command, drive] { command(drive); });
  }
}

XferCommands::XferCommands(MainWindow& window, ViewCommands& views, DeviceOfPort deviceOfPort)
    : window_(window), views_(views), deviceOfPort_(deviceOfPort), host_(window) {
  host_.Attach(link_);
  ConnectSerialMenu();
  OnDrives("mnuXferRX", [this](std::int32_t drive) { Receive(drive, false); });
  OnDrives("mnuXferDRX", [this](std::int32_t drive) { Receive(drive, true); });
  OnDrives("mnuXferTX", [this](std::int32_t drive) { SendImage(link_, drive, false); });
  OnDrives("mnuXferDTX", [this](std::int32_t drive) { SendImage(link_, drive, true); });
  OnTransfer("mnuXferBasic", [this] { frmFirst(link_, &window_).exec(); });
  OnTransfer("mnuXferFormat", [this] { frmFormat(link_, &window_).exec(); });
  OnTransfer("mnuXferCli",
             [this] { frmCLI(link_, window_.OpenDisc(), views_.Search(), &window_).exec(); });
  window.OnCommand("mnuXferTracewindow", [this] { host_.OpenTraceWindow(); });
  window.OnCommand("mnuXferTraceFile", [this] { ChooseTraceFile(link_); });
}

void XferCommands::ConnectSerialMenu() {
  for (std::int16_t n = 1; n <= kComEntries; ++n) {
    window_.OnCommand(ComEntry(n).c_str(), [this, n] { ChooseCom(n); });
  }
  for (const std::int32_t speed : wire::kSpeeds) {
    window_.OnCommand(SpeedEntry(speed).c_str(), [this, speed] { ChooseSpeed(speed); });
  }
  OnTransfer("mnuXferSerialReconnect", [this] { (void)Reconnect(link_); });
  // Users plug adapters in and out while the program runs.
  connect(window_.Action("mnuXferSerial")->menu(), &QMenu::aboutToShow, this,
          [this] { ShowDevices(); });
}

void XferCommands::Receive(std::int32_t drive, bool dataOnly) {
  std::string fileName;
  const bool done = ReceiveImage(link_, drive, dataOnly, fileName);
  Disc& disc = window_.OpenDisc();
  // The image that is open has become another disc, if only in part. What the window shows and the
  // store holds in memory is of the former one, so it is opened anew also without Auto Load.
  const bool isOpen = !fileName.empty() && disc.TheDisc.IsOpenMedium(fileName);
  if (!isOpen && (!done || !window_.Checked("mnuOptionsAutoLoad"))) return;
  // From here on the command opens another disc, so it counts as a change.
  const CommandGuard::Running opening(window_.Guard(), CommandKind::kChange);
  OpenImage(disc, fileName);
}

void XferCommands::ChooseCom(std::int16_t number) {
  port_->Close();
  comPort_ = number;
  for (std::int16_t n = 1; n <= kComEntries; ++n) {
    window_.Action(ComEntry(n).c_str())->setChecked(n == number);
  }
  SelectDevice();
}

// This leaves the port's settings as they are. The next transfer finds the port closed, so it
// connects, and it reads then which speed is ticked.
void XferCommands::ChooseSpeed(std::int32_t speed) {
  for (const std::int32_t one : wire::kSpeeds) {
    window_.Action(SpeedEntry(one).c_str())->setChecked(one == speed);
  }
  port_->Close();
}

void XferCommands::ShowDevices() {
  for (std::int16_t n = 1; n <= kComEntries; ++n) {
    const std::string device = deviceOfPort_(n);
    window_.Action(ComEntry(n).c_str())
        ->setStatusTip(device.empty()
                           ? QStringLiteral("No serial device (setting Com%1Device)").arg(n)
                           : FromHost(device));
  }
}

// A port gets a name even if there is no device for it, so that an error message can name the port.
void XferCommands::SelectDevice() {
  const std::string device = deviceOfPort_(comPort_);
  port_->SelectDevice(device.empty() ? "Com " + std::to_string(comPort_) : device);
}

void XferCommands::SetUpPort() {
  SelectDevice();
  ShowDevices();
  port_->Settings(wire::LineSettings(wire::kBootstrapSpeed));
}

void XferCommands::ClosePort() {
  Disconnect(link_);
}

void XferCommands::CloseTrace() {
  link_.TraceFile.Close();
}

}  // namespace sectorbox
