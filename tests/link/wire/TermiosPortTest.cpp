#include "link/wire/linux/TermiosPort.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "disc/host/HostError.h"
#include "link/wire/linux/SerialClass.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

// Over a pseudo-terminal, in real time.
class TermiosPortTest : public ::testing::Test {
 protected:
  TermiosPortTest() { port.SelectDevice(line.Device()); }

  std::string Read(std::size_t bytes) {
    std::string text;
    for (int i = 0; i < 2000 && text.size() < bytes; ++i) {
      while (port.InBufferCount() > 0) text += static_cast<char>(port.Input());
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return text;
  }

  PtyBbc line;
  TermiosPort port;
};

TEST_F(TermiosPortTest, EveryByteComesInUnchanged) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  line.Bbc.StarReplies["X"] = {{0, all}};
  line.Bbc.Acknowledge = "";
  port.Settings("19200,N,8,1");
  port.Open();
  line.Start();
  port.Output("*X\r");
  EXPECT_EQ(Read(256), all);
}

TEST_F(TermiosPortTest, WhatIsQueuedWhenThePortClosesStillGoesOut) {
  port.Open();
  const std::string many(20000, 'x');
  std::thread late([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    line.Start();
  });
  port.Output(many);
  port.Close();
  late.join();
  for (int i = 0; i < 1000 && line.Received() < many.size(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_EQ(line.Received(), many.size());
}

TEST_F(TermiosPortTest, ALineThatTakesNothingHoldsTheCloseOnlyForAWhile) {
  port.Open();
  port.Output(std::string(200000, 'x'));  // more than the system holds; nobody reads
  const auto start = std::chrono::steady_clock::now();
  port.Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(TermiosPortTest, ADeviceWithoutModemLinesHasThemUp) {
  port.Open();
  EXPECT_TRUE(port.CTSHolding());
  EXPECT_TRUE(port.DSRHolding());
}

TEST_F(TermiosPortTest, APortThatVanishesThrowsOnceAndIsClosedThen) {
  port.Open();
  line.Unplug();
  EXPECT_THROW(
      for (int i = 0; i < 100; ++i) {
        port.InBufferCount();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      },
      HostError);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(port.InBufferCount(), 0U);
  port.Output("x");
  port.Close();
}

TEST_F(TermiosPortTest, WhatIsNoSerialDeviceIsRefusedWithItsName) {
  TempFolder folder;
  WriteText(folder / "file", "");
  for (const std::string& path : {folder / "none", folder / "file", std::string()}) {
    port.SelectDevice(path);
    try {
      port.Open();
      ADD_FAILURE() << path;
    } catch (const HostError& error) {
      EXPECT_EQ(error.Path(), path);
    }
    EXPECT_FALSE(port.PortOpen());
  }
}

TEST_F(TermiosPortTest, SettingsThatAreNoneAreRefused) {
  for (const char* text : {"", "300,N,8,1", ",N,8,1", "19200", "19200,E,7,1"}) {
    EXPECT_THROW(port.Settings(text), HostError) << text;
  }
}

TEST(SerialDevices, UsbPortsComeFirstThenChipsAndNothingElse) {
  TempFolder folder;
  namespace fs = std::filesystem;
  const auto add = [&](const std::string& name, bool device, const std::string& type) {
    fs::create_directories(folder / ("class/" + name) + (device ? "/device" : ""));
    fs::create_directories(folder / "dev");
    if (!type.empty()) WriteText(folder / ("class/" + name + "/type"), type + "\n");
    WriteText(folder / ("dev/" + name), "");
  };
  add("ttyS0", true, "4");
  add("ttyS1", true, "0");
  add("ttyUSB10", true, "");
  add("ttyUSB2", true, "");
  add("ttyACM0", true, "");
  add("tty1", false, "");
  const std::vector<std::string> expected = {folder / "dev/ttyACM0", folder / "dev/ttyUSB2",
                                             folder / "dev/ttyUSB10", folder / "dev/ttyS0"};
  EXPECT_EQ(ListSerialDevicesIn(folder / "class", folder / "dev"), expected);
  EXPECT_TRUE(ListSerialDevicesIn(folder / "no", folder / "dev").empty());
}

}  // namespace
}  // namespace sectorbox::testing
