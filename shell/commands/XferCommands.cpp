#include "shell/commands/XferCommands.h"

#include <QMenu>
#include <string>
#include <utility>

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
#include "shell/program/SerialPorts.h"
#include "shell/program/frmMain.h"
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

// Sets a flag for as long as it lives, however that ends.
class Flagged {
 public:
  explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }
  ~Flagged() { flag_ = false; }
  Flagged(const Flagged&) = delete;
  Flagged& operator=(const Flagged&) = delete;

 private:
  bool& flag_;
};

}  // namespace

XferCommands::XferCommands(frmMain& window) : window_(window), host_(window) {
  host_.Attach(link_);
  ConnectSerialMenu();
  ConnectTransfers("mnuXferRX", [this](std::int32_t drive) { Receive(drive, false); });
  ConnectTransfers("mnuXferDRX", [this](std::int32_t drive) { Receive(drive, true); });
  ConnectTransfers("mnuXferTX", [this](std::int32_t drive) { SendImage(link_, drive, false); });
  ConnectTransfers("mnuXferDTX", [this](std::int32_t drive) { SendImage(link_, drive, true); });
  window.OnCommand("mnuXferBasic", Exclusive([this] { frmFirst(link_, &window_).exec(); }));
  window.OnCommand("mnuXferFormat", Exclusive([this] { frmFormat(link_, &window_).exec(); }));
  window.OnCommand("mnuXferCli",
                   Exclusive([this] { frmCLI(link_, window_.Views().Search(), &window_).exec(); }));
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
  window_.OnCommand("mnuXferSerialReconnect", Exclusive([this] { Reconnect(link_); }));
  // Adapters come and go while the program runs.
  connect(window_.Action("mnuXferSerial")->menu(), &QMenu::aboutToShow, this,
          [this] { ShowDevices(); });
}

void XferCommands::ConnectTransfers(const char* stem,
                                    const std::function<void(std::int32_t drive)>& run) {
  for (const std::int32_t drive : {0, 1, 4, 5}) {
    window_.OnCommand((stem + std::to_string(drive)).c_str(),
                      Exclusive([run, drive] { run(drive); }));
  }
}

std::function<void()> XferCommands::Exclusive(std::function<void()> command) {
  return [this, command = std::move(command)] {
    if (busy_) return;
    const Flagged busy(busy_);
    if (!port_.PortOpen()) SelectDevice();
    command();
  };
}

void XferCommands::Receive(std::int32_t drive, bool dataOnly) {
  std::string fileName;
  if (!ReceiveImage(link_, drive, dataOnly, fileName)) return;
  if (window_.Checked("mnuOptionsAutoLoad")) OpenImage(window_.TheDisc(), fileName);
}

void XferCommands::ChooseCom(std::int16_t number) {
  port_.Close();
  window_.SetComPort(number);
  for (std::int16_t n = 1; n <= kComEntries; ++n) {
    window_.Action(ComEntry(n).c_str())->setChecked(n == number);
  }
  SelectDevice();
}

// The settings stay as they are: a closed port makes the next transfer connect, and that reads the
// tick.
void XferCommands::ChooseSpeed(std::int32_t speed) {
  for (const std::int32_t one : wire::kSpeeds) {
    window_.Action(SpeedEntry(one).c_str())->setChecked(one == speed);
  }
  port_.Close();
}

void XferCommands::ShowDevices() {
  for (std::int16_t n = 1; n <= kComEntries; ++n) {
    const std::string device = DeviceOfCom(n);
    window_.Action(ComEntry(n).c_str())
        ->setStatusTip(device.empty()
                           ? QStringLiteral("No serial device (setting Com%1Device)").arg(n)
                           : FromHost(device));
  }
}

// A port without a device still has a name that its failure can tell.
void XferCommands::SelectDevice() {
  const std::string device = DeviceOfCom(window_.ComPort());
  port_.SelectDevice(device.empty() ? "Com " + std::to_string(window_.ComPort()) : device);
}

void XferCommands::SetUpPort() {
  SelectDevice();
  ShowDevices();
  port_.Settings(wire::LineSettings(wire::kBootstrapSpeed));
}

void XferCommands::ClosePort() {
  Disconnect(link_);
}

void XferCommands::CloseTrace() {
  link_.TraceFile.Close();
}

}  // namespace sectorbox
