// Any bytes come over the wire: as sectors, as replies, as a free space map.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "link/transfer/StarCommand.h"
#include "link/transfer/TransferMap.h"
#include "link/wire/Commands.h"
#include "link/wire/Packets.h"
#include "link/wire/Silence.h"
#include "tests/support/InertLinkHost.h"

namespace sectorbox {
namespace {

// The input comes in byte by byte. After it the line is silent.
class InputPort final : public SerialPort {
 public:
  explicit InputPort(std::span<const std::uint8_t> input) : input_(input) {}
  void SelectDevice(const std::string&) override {}
  void Settings(const std::string&) override {}
  void Open() override { open_ = true; }
  void Close() override { open_ = false; }
  bool PortOpen() const override { return open_; }
  // Each tenth byte comes late enough to end a reply.
  std::size_t InBufferCount() override {
    if (at_ % 10 == 9 && ++pause_ % 200 != 0) return 0;
    return input_.size() - at_;
  }
  std::uint8_t Input() override { return input_[at_++]; }
  std::size_t OutBufferCount() override { return 0; }
  void Output(std::string_view) override {}
  bool CTSHolding() override { return true; }
  bool DSRHolding() override { return true; }

 private:
  std::span<const std::uint8_t> input_;
  std::size_t at_ = 0;
  int pause_ = 0;
  bool open_ = true;
};

}  // namespace
}  // namespace sectorbox

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace sectorbox;
  if (size == 0) return 0;
  InputPort port({data + 1, size - 1});
  testing::VirtualClock clock;
  testing::InertLinkHost host(clock);
  Link link(port, host);
  WatchSilence(link);
  std::uint8_t sectors[4 * 256] = {};
  switch (data[0] % 4) {
    case 0:
      try {
        for (;;) (void)ReadSectors(link, sectors, 0, 0, 4);
      } catch (const BbcSilent&) {
        // No other end than the minute: no read is noted as valid here.
      }
      break;
    case 1:
      (void)RunStarCommand(link, "CAT", [](const std::string&) {});
      break;
    case 2:
      (void)Reconnect(link);
      break;
    default:
      std::copy_n(data + 1, std::min<std::size_t>(size - 1, 512), sectors);
      (void)ParseTransferMap(link, std::span<const std::uint8_t, 512>(sectors, 512));
      break;
  }
  return 0;
}
