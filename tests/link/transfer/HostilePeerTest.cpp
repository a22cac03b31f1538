// Peers that send without end, too slowly, too little, or what was sent to them. Each operation
// ends, within a time that doesn't depend on the peer.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>

#include "link/transfer/Bootstrap.h"
#include "link/transfer/ReceiveImage.h"
#include "link/transfer/SendImage.h"
#include "link/transfer/StarCommand.h"
#include "link/wire/Commands.h"
#include "link/wire/Packets.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "tests/link/LinkRig.h"

namespace sectorbox::testing {
namespace {

constexpr std::int64_t kAtLineSpeed = 10'000'000'000 / 19200;
constexpr std::int64_t kEvery80Milliseconds = 80'000'000;
constexpr std::int64_t kEvery500Milliseconds = 500'000'000;
const std::string kSilent = "The BBC Has Stopped Answering";

// What comes in turn, for ever.
std::function<std::uint8_t()> Repeat(std::string bytes) {
  auto at = std::make_shared<std::size_t>(0);
  return [bytes, at] { return static_cast<std::uint8_t>(bytes[(*at)++ % bytes.size()]); };
}

std::function<std::uint8_t()> Noise() {
  auto random = std::make_shared<std::mt19937>(5U);
  return [random] { return static_cast<std::uint8_t>((*random)()); };
}

// Runs a transfer to its end; true if it has been done.
bool Transferred(LinkRig& rig, bool sends) {
  std::string fileName;
  if (!sends) return ReceiveImage(rig.TheLink, 0, false, fileName);
  SendImage(rig.TheLink, 0, false);
  return rig.Host.DialogFinished;
}

struct Peer {
  const char* Name;
  std::function<void(LinkRig&)> TurnBad;
};

Peer Dripping(const char* name, std::int64_t every, std::function<std::uint8_t()> byte) {
  return {name, [every, byte](LinkRig& rig) {
            rig.Port.DripByte = byte;
            rig.Port.DripEvery = every;
          }};
}

Peer With(const char* name, std::function<void(BbcFaults&)> fault) {
  return {name, [fault](LinkRig& rig) { fault(rig.Bbc.Faults); }};
}

const std::string kEsc = "\x1B";

// These send for ever, or nothing: no operation can come to its end.
std::vector<Peer> EndlessPeers() {
  return {
      Dripping("noise", kAtLineSpeed, Noise()),
      Dripping("letters", kAtLineSpeed, Repeat("x")),
      Dripping("digits", kAtLineSpeed, Repeat("4096")),
      Dripping("acknowledges", kAtLineSpeed, Repeat("-----BBC-----PC-----\n\r")),
      Dripping("runs of nothing", kAtLineSpeed, Repeat(kEsc + std::string("\0\0x", 3))),
      Dripping("long runs", kAtLineSpeed, Repeat(kEsc + std::string("\0\xFFx", 3))),
      Dripping("noise every 80 ms", kEvery80Milliseconds, Noise()),
      Dripping("letters every 80 ms", kEvery80Milliseconds, Repeat("x")),
      Dripping("letters every 500 ms", kEvery500Milliseconds, Repeat("x")),
      {"an echo", [](LinkRig& rig) { rig.Port.Echoes = true; }},
      With("silence", [](BbcFaults& f) { f.Mute = true; }),
  };
}

// These do the same thing wrong each time.
std::vector<Peer> StubbornPeers(bool sends) {
  std::vector<Peer> peers = {
      With("no CRC", [](BbcFaults& f) { f.NoCrcEvery = 1; }),
      With("a wrong CRC", [](BbcFaults& f) { f.WrongCrcEvery = 1; }),
      With("noise for a CRC", [](BbcFaults& f) { f.NoiseForCrcEvery = 1; }),
      With("no answer", [](BbcFaults& f) { f.SilentEvery = 1; }),
  };
  if (sends) {
    peers.push_back(With("no acknowledge", [](BbcFaults& f) { f.NoAcknowledgeEvery = 1; }));
    return peers;
  }
  peers.push_back(With("short streams", [](BbcFaults& f) { f.ShortStreamEvery = 1; }));
  peers.push_back(With("long streams", [](BbcFaults& f) { f.LongStreamEvery = 1; }));
  peers.push_back(With("unknown escapes", [](BbcFaults& f) { f.WrongEscapeEvery = 1; }));
  peers.push_back(With("garbage in front", [](BbcFaults& f) { f.GarbageEvery = 1; }));
  return peers;
}

// A transfer of 40 sectors in chunks of 16, with a peer that turns bad when the dialog opens.
class BadTransfer {
 public:
  BadTransfer(const Peer& peer, bool sends, bool check) : peer_(peer), sends_(sends) {
    rig.Bbc.Drives[0] = NoiseDisc(40, {});
    rig.Host.Check = check;
    rig.Host.OnLog = [this](const std::string& line) {
      if (!line.starts_with("dialog")) return;
      opened = rig.Clock.Milliseconds();
      peer_.TurnBad(rig);
    };
    WriteAll(rig.Folder / "x.dat", NoiseDisc(40, {}, 9));
    rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
  }

  void Run() {
    EXPECT_FALSE(Transferred(rig, sends_));
    EXPECT_GT(opened, 0);
    EXPECT_FALSE(rig.Host.DialogFinished);
    EXPECT_FALSE(rig.Host.DialogOpen);
    EXPECT_EQ(ReadAll(rig.Folder / "x.dat").size(), 40U * 256);
  }
  std::int64_t SecondsSinceOpened() const { return (rig.Clock.Milliseconds() - opened) / 1000; }

  LinkRig rig;
  std::int64_t opened = 0;

 private:
  const Peer& peer_;
  const bool sends_;
};

template <typename Check>
void ForEachBadTransfer(const Check& check) {
  for (const bool sends : {false, true}) {
    std::vector<Peer> peers = EndlessPeers();
    for (const Peer& peer : StubbornPeers(sends)) peers.push_back(peer);
    for (const Peer& peer : peers) {
      for (const bool compares : {false, true}) {
        SCOPED_TRACE(std::string(peer.Name) + (sends ? ", send" : ", receive") +
                     (compares ? ", with check" : ""));
        BadTransfer transfer(peer, sends, compares);
        check(transfer);
      }
    }
  }
}

TEST(HostilePeer, AWatchedTransferEndsAMinuteAfterTheLastValidAnswer) {
  ForEachBadTransfer([](BadTransfer& transfer) {
    WatchSilence(transfer.rig.TheLink);
    transfer.rig.Host.ExpectedMessages = {kSilent};
    transfer.Run();
    EXPECT_GE(transfer.SecondsSinceOpened(), 60);
    EXPECT_LE(transfer.SecondsSinceOpened(), 66);  // a chunk takes four seconds on the line
  });
}

TEST(HostilePeer, AbortIsAWayOutOfEveryTransferThatNobodyWatches) {
  ForEachBadTransfer([](BadTransfer& transfer) {
    bool pressed = false;
    transfer.rig.Host.OnPump = [&] {
      if (pressed || transfer.opened == 0 || transfer.SecondsSinceOpened() < 100) return;
      pressed = transfer.rig.TheLink.AbortRequested = true;
    };
    transfer.Run();
    EXPECT_GE(transfer.SecondsSinceOpened(), 100);
    EXPECT_LE(transfer.SecondsSinceOpened(), 160);
  });
}

TEST(HostilePeer, EveryOpeningEndsWithItsMessage) {
  for (const Peer& peer : EndlessPeers()) {
    for (const bool sends : {false, true}) {
      SCOPED_TRACE(peer.Name);
      LinkRig rig;
      peer.TurnBad(rig);
      rig.Host.ExpectedMessages = {"Beeb Not Responding"};
      EXPECT_FALSE(Transferred(rig, sends));
      EXPECT_LE(rig.Clock.Milliseconds(), 30'000);
    }
  }
}

// Every answer is cut at that byte: the acknowledges, the buffer's size, the streams, the CRCs.
TEST(HostilePeer, AnswersThatAreCutAnywhereEndTheTransferWithAMessage) {
  for (const bool sends : {false, true}) {
    for (const bool connected : {false, true}) {
      for (int most = 0; most < 60; ++most) {
        SCOPED_TRACE(most);
        LinkRig rig;
        rig.Bbc.Drives[0] = NoiseDisc(40, {});
        rig.Bbc.Faults.MostBytesSaid = connected ? -1 : most;
        rig.Host.OnLog = [&](const std::string& line) {
          if (line.starts_with("dialog")) rig.Bbc.Faults.MostBytesSaid = most;
        };
        WriteAll(rig.Folder / "x.dat", NoiseDisc(40, {}, 9));
        WatchSilence(rig.TheLink);
        rig.Host.AcceptMessages = true;
        rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
        const bool done = Transferred(rig, sends);
        rig.Host.FileAnswers.clear();
        EXPECT_LE(rig.Clock.Milliseconds(), 120'000);
        // A send reads short answers only, so a late cut doesn't disturb it.
        EXPECT_TRUE(!done || (sends && most >= 22));
        EXPECT_EQ(rig.Host.LogOf("message").size(), done ? 0U : 1U);
      }
    }
  }
}

TEST(HostilePeer, AWholeCommandLineOfLiesIsTakenForWhatItIs) {
  // The stream says that it holds far more than was asked for: it is read to its end and no byte
  // of it is believed.
  LinkRig rig;
  rig.Connect();
  std::vector<std::uint8_t> buffer(512, 0xEE);
  rig.Port.DripByte = Repeat(kEsc + std::string("\0\xFFx", 3));
  rig.Port.DripEvery = kAtLineSpeed;
  std::uint32_t crc = 0;
  const std::span<std::uint8_t> front(buffer.data(), 256);
  EXPECT_EQ(ReceivePacket(rig.TheLink, front, crc, 1), SectorStatus::kWrongLength);
  EXPECT_EQ(std::vector<std::uint8_t>(buffer.begin() + 256, buffer.end()),
            std::vector<std::uint8_t>(256, 0xEE));
  EXPECT_LE(rig.Port.BytesFromBbc, 4 * 256 + 3);
}

TEST(HostilePeer, AStreamThatIsTooSlowIsATimeOut) {
  LinkRig rig;
  rig.Connect();
  std::vector<std::uint8_t> buffer(4096);
  rig.Port.DripByte = Repeat("x");
  rig.Port.DripEvery = kEvery80Milliseconds;
  std::uint32_t crc = 0;
  EXPECT_EQ(ReceivePacket(rig.TheLink, buffer, crc, 16), SectorStatus::kTimeOut);
  EXPECT_LE(rig.Clock.Milliseconds(), 31'000);
}

TEST(HostilePeer, AReplyWithoutAnEndIsNoReply) {
  for (const auto& [every, seconds] :
       std::vector<std::pair<std::int64_t, int>>{{kAtLineSpeed, 1}, {kEvery80Milliseconds, 11}}) {
    LinkRig rig;
    rig.Connect();
    rig.Port.DripByte = Repeat("7");
    rig.Port.DripEvery = every;
    std::string reply = "old";
    EXPECT_FALSE(ReadReply(rig.TheLink, reply));
    EXPECT_EQ(reply, "");
    EXPECT_TRUE(rig.Host.Traced("Response without an end"));
    EXPECT_LE(rig.Clock.Milliseconds(), seconds * 1000);
    EXPECT_LE(rig.Port.BytesFromBbc, 1025);
  }
}

TEST(HostilePeer, AResetLeavesALineThatIsNeverSilent) {
  for (const std::int64_t every : {kAtLineSpeed, kEvery80Milliseconds, kEvery500Milliseconds}) {
    LinkRig rig;
    rig.Connect();
    rig.Port.DripEvery = every;
    ResetLink(rig.TheLink);
    EXPECT_TRUE(rig.Port.PortOpen());
    EXPECT_EQ(rig.Port.Opens, 2);
    EXPECT_LE(rig.Clock.Milliseconds(), 12'000);
  }
}

TEST(HostilePeer, AStarCommandEndsWhateverComes) {
  for (const bool watched : {false, true}) {
    for (const Peer& peer : EndlessPeers()) {
      SCOPED_TRACE(peer.Name);
      LinkRig rig;
      rig.Connect();
      if (watched) WatchSilence(rig.TheLink);
      peer.TurnBad(rig);
      rig.Host.AcceptMessages = true;
      std::size_t shown = 0;
      const bool done = RunStarCommand(rig.TheLink, "CAT",
                                       [&](const std::string& text) { shown += text.size(); });
      // An echo is a piece of output, and then comes silence.
      EXPECT_EQ(done, rig.Port.Echoes);
      EXPECT_EQ(rig.Host.LogOf("message").size(), done ? 0U : 1U);
      EXPECT_LT(shown, 200U);
      EXPECT_LE(rig.Clock.Milliseconds(), (watched ? 70 : 1200) * 1000);
    }
  }
}

TEST(HostilePeer, LongOutputAtTheLinesPaceIsShown) {
  LinkRig rig;
  rig.Connect();
  WatchSilence(rig.TheLink);
  rig.Bbc.StarReplies["DUMP"] = {{0, std::string(60'000, 'x')}, {700, std::string(30'000, 'y')}};
  std::size_t shown = 0;
  EXPECT_TRUE(
      RunStarCommand(rig.TheLink, "DUMP", [&](const std::string& text) { shown += text.size(); }));
  EXPECT_EQ(shown, 90'000U);
}

TEST(HostilePeer, ABootstrapThatNobodyTakesEndsAfterAMinuteIfItIsWatched) {
  for (const auto send : {SendBasicProgram, SendFormatProgram}) {
    LinkRig rig;
    rig.Host.Folder = rig.Folder.Path();
    WriteAll(rig.Folder / "aform", NoiseBytes(5738, 4));
    WatchSilence(rig.TheLink);
    rig.Host.OnPump = [&] { rig.Port.CTS = rig.Port.Written.size() < 40; };
    EXPECT_THROW(send(rig.TheLink, [](double) {}), BbcSilent);
    EXPECT_LE(rig.Clock.Milliseconds(), 64'000);
    EXPECT_FALSE(rig.Port.PortOpen());
  }
}

TEST(HostilePeer, ABootstrapThatTakesLongerThanAMinuteIsNoSilence) {
  LinkRig rig;
  rig.Host.Folder = rig.Folder.Path();
  WriteText(rig.Folder / "adfsxfer.bas", [] {
    std::string listing;
    for (int i = 0; i < 400; ++i) listing += std::to_string(i) + " REM A line of this listing\r\n";
    return listing;
  }());
  WatchSilence(rig.TheLink);
  SendBasicProgram(rig.TheLink, [](double) {});
  EXPECT_GE(rig.Clock.Milliseconds(), 90'000);
}

// The filing system of the BBC tries a bad sector for up to 80 seconds, and holds CTS down.
TEST(HostilePeer, ADiscThatWorksForLongIsNoSilence) {
  for (const int seconds : {85, 400}) {
    LinkRig rig;
    rig.Bbc.Drives[0] = NoiseDisc(40, {});
    WatchSilence(rig.TheLink);
    std::int64_t opened = 0;
    rig.Host.OnLog = [&](const std::string& line) {
      if (!line.starts_with("dialog")) return;
      opened = rig.Clock.Milliseconds();
      rig.Bbc.Faults.Mute = true;
      rig.Port.CTS = false;
    };
    rig.Host.OnPump = [&] {
      if (opened == 0 || rig.Clock.Milliseconds() - opened < seconds * 1000) return;
      rig.Bbc.Faults.Mute = false;
      rig.Port.CTS = true;
    };
    rig.Host.FileAnswers.push_back(rig.Folder / "x");
    if (seconds == 400) rig.Host.ExpectedMessages = {kSilent};
    std::string fileName;
    EXPECT_EQ(ReceiveImage(rig.TheLink, 0, false, fileName), seconds == 85);
    EXPECT_LE(rig.Clock.Milliseconds() - opened, 200'000);
  }
}

TEST(HostilePeer, ASlowLineWithFaultsIsNoSilence) {
  for (const bool sends : {false, true}) {
    LinkRig rig;
    rig.Host.Speed = 1200;
    rig.Bbc.Drives[0] = NoiseDisc(160, {});
    rig.Bbc.SetBuffer(80);
    rig.Bbc.Faults.WrongCrcEvery = 2;
    WriteAll(rig.Folder / "x.dat", NoiseDisc(160, {}, 9));
    WatchSilence(rig.TheLink);
    rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
    EXPECT_TRUE(Transferred(rig, sends));
    EXPECT_TRUE(rig.Host.DialogFinished);
    EXPECT_GE(rig.Clock.Milliseconds(), 3 * 171'000);
  }
}

TEST(HostilePeer, SectorsThatWereGivenUpAreCounted) {
  for (const bool sends : {false, true}) {
    LinkRig rig;
    rig.Bbc.Drives[0] = NoiseDisc(40, {});
    rig.Bbc.Faults.CannotRead = {5, 30};
    rig.Bbc.Faults.CannotWrite = {5, 30};
    WriteAll(rig.Folder / "x.dat", NoiseDisc(40, {}, 9));
    rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
    EXPECT_TRUE(Transferred(rig, sends));
    EXPECT_EQ(rig.Host.Counters.GivenUp, 2);
  }
}

}  // namespace
}  // namespace sectorbox::testing
