// Transfers that end early: Abort at each kind of moment, a cable that is pulled, a window that is
// closed. After each of them the menu serves the next transfer.
#include "tests/shell/commands/XferFixture.h"

namespace sectorbox::testing {
namespace {

// The test presses Abort when the trace has shown the text so many times. Last is what the server
// has heard last by then.
struct Moment {
  const char* Name;
  const char* Entry;
  const char* Traced;
  int Times;
  bool Check;
  BbcFaults Faults;
  const char* Last;
};

BbcFaults Fault(int BbcFaults::*fault, int every) {
  BbcFaults faults;
  faults.*fault = every;
  return faults;
}

const std::vector<Moment>& Moments() {
  // A receive first reads the map. That read has no dialog yet, and the faults count it.
  static const std::vector<Moment> all = {
      {"ReceiveInAStream", "mnuXferRX0", "Receiving Sectors 4 to 7", 1, false,
       Fault(&BbcFaults::BurstEvery, 3), "A0|4|4|"},
      {"ReceiveWhileACrcIsAwaited", "mnuXferRX0", "Waiting for CRC", 3, false,
       Fault(&BbcFaults::NoCrcEvery, 3), "A0|4|4|"},
      {"ReceiveInAReset", "mnuXferRX0", "Mismatch in CRC", 1, false,
       Fault(&BbcFaults::WrongCrcEvery, 3), "A0|4|4|"},
      {"ReceiveInACompare", "mnuXferRX0", "Receiving Sectors 4 to 7", 1, true,
       Fault(&BbcFaults::NoCrcEvery, 4), "ESC2"},
      {"SendWhileAnAcknowledgeIsAwaited", "mnuXferTX0", "Sending Sectors 4 to 7", 1, false,
       Fault(&BbcFaults::NoAcknowledgeEvery, 2), "ESC2"},
      {"SendWhileACrcIsAwaited", "mnuXferTX0", "Waiting for CRC", 2, false,
       Fault(&BbcFaults::NoCrcEvery, 2), "ESC2"},
      {"SendInAStream", "mnuXferTX0", "Compressed Packet Size", 2, false, {}, "ESC2"},
      {"SendInACompare", "mnuXferTX0", "Sending Sectors 4 to 7", 1, true,
       Fault(&BbcFaults::NoCrcEvery, 3), "ESC2"},
  };
  return all;
}

class XferAbortTest : public XferTest, public ::testing::WithParamInterface<Moment> {};

TEST_P(XferAbortTest, EndsTheTransferAndTheNextOneRuns) {
  const Moment& moment = GetParam();
  const bool sending = std::string(moment.Entry).find("TX") != std::string::npos;
  const Bytes theirs = NoiseDisc(40, {});
  const Bytes ours = NoiseDisc(40, {}, 2);
  const std::string file = folder_ / "x.dat";
  line.Bbc.Drives[0] = theirs;
  line.Bbc.SetBuffer(4);
  line.Bbc.Faults = moment.Faults;
  WriteAll(file, ours);
  StartWired();
  if (moment.Check) Choose("mnuXferCBW");
  bool pressed = false;
  WhenTraced(
      QString::fromLatin1(moment.Traced),
      [&] {
        pressed = true;
        In<QPushButton>(*Dialog(), "cmdAbort")->click();
        EXPECT_EQ(Dialog(), nullptr);
        EXPECT_TRUE(TheLink().AbortRequested);
      },
      moment.Times);
  player_.ExpectFileDialog(file);
  Choose(moment.Entry);
  EXPECT_TRUE(pressed);
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_TRUE(TheLink().Port.PortOpen());

  line.Stop();
  EXPECT_EQ(line.Bbc.Heard.back(), moment.Last);
  // The side that was written to holds whole sectors only.
  const Bytes got = sending ? line.Bbc.Drives[0] : ReadAll(file);
  for (std::size_t at = 0; at < got.size(); at += 256) {
    const auto same = [&](const Bytes& disc) {
      return std::equal(disc.begin() + static_cast<std::ptrdiff_t>(at),
                        disc.begin() + static_cast<std::ptrdiff_t>(at) + 256,
                        got.begin() + static_cast<std::ptrdiff_t>(at));
    };
    EXPECT_TRUE(same(ours) || same(theirs)) << at / 256;
  }

  line.Bbc.Faults = {};
  line.Start();
  player_.ExpectFileDialog(file);
  Choose(moment.Entry);
  ASSERT_NE(Dialog(), nullptr);
  EXPECT_EQ(In<QProgressBar>(*Dialog(), "pb")->value(), 100);
  line.Stop();
  EXPECT_EQ(sending ? line.Bbc.Drives[0] : ReadAll(file), sending ? ours : theirs);
}

INSTANTIATE_TEST_SUITE_P(At, XferAbortTest, ::testing::ValuesIn(Moments()),
                         [](const auto& test) { return test.param.Name; });

void PrintTo(const Moment& moment, std::ostream* out) {
  *out << moment.Name;
}

class PulledCableTest : public XferTest {
 protected:
  // A second adapter with the same disc behind it.
  void PlugInAnother() {
    another.Bbc.Drives[0] = line.Bbc.Drives[0];
    another.Bbc.SetBuffer(64);
    SettingsStore().PutString("Com3Device", QString::fromStdString(another.Device()));
    another.Start();
    Choose("mnuXferSerialCom3");
  }
  PtyBbc another;
};

TEST_F(PulledCableTest, InAReceiveIsToldAndAnotherPortServesTheNext) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(2);
  StartWired();
  WhenTraced(QStringLiteral("Read 8 of 640"), [&] { line.Unplug(); });
  player_.ExpectFileDialog(folder_ / "x.adf");
  player_.ExpectBox(QString::fromStdString(line.Device()) + QStringLiteral(": Input/output error"),
                    QStringLiteral("Sectorbox"));
  Choose("mnuXferRX0");
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_FALSE(TheLink().Port.PortOpen());
  const Bytes got = ReadAll(folder_ / "x.adf");
  EXPECT_GE(got.size(), 8U * 256);
  EXPECT_TRUE(std::equal(got.begin(), got.end(), line.Bbc.Drives[0].begin()));

  PlugInAnother();
  player_.ExpectFileDialog(folder_ / "x.adf");
  Choose("mnuXferRX0");
  ASSERT_NE(Dialog(), nullptr);
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), line.Bbc.Drives[0]);
}

TEST_F(PulledCableTest, InASendIsToldAndAPortThatStaysAwayIsNamedAtTheNextTry) {
  line.Bbc.Drives[0] = Bytes(640 * 256);
  line.Bbc.SetBuffer(2);
  const Bytes disc = NoiseDisc(640, {});
  WriteAll(folder_ / "x.adf", disc);
  StartWired();
  WhenTraced(QStringLiteral("Written 8 of 640"), [&] { line.Unplug(); });
  player_.ExpectFileDialog(folder_ / "x.adf");
  const QString device = QString::fromStdString(line.Device());
  player_.ExpectBox(device + QStringLiteral(": Input/output error"), QStringLiteral("Sectorbox"));
  Choose("mnuXferTX0");
  EXPECT_EQ(Dialog(), nullptr);
  EXPECT_GE(line.Bbc.SectorsWritten, 8);
  EXPECT_EQ(ReadAll(folder_ / "x.adf"), disc);
  // The system gives the name of a pseudo-terminal that is gone to the next one: a device that
  // stays away must have another.
  const std::string gone = folder_ / "gone";
  SettingsStore().PutString("Com2Device", QString::fromStdString(gone));
  player_.ExpectBox(QString::fromStdString(gone + ": No such file or directory"),
                    QStringLiteral("Sectorbox"));
  Choose("mnuXferSerialReconnect");
  EXPECT_TRUE(window_->isVisible());
}

TEST_F(XferTest, ClosingTheMainWindowInATransferSaysQAndEndsTheProgram) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(2);
  StartWired();
  WhenTraced(QStringLiteral("Read 8 of 640"), [&] {
    window_->close();
    EXPECT_EQ(ends_, std::vector<int>{0});
    EXPECT_FALSE(TheLink().Port.PortOpen());
    // The real program would have ended here. The test goes on, and would wait for a byte that
    // can't come.
    TheLink().AbortRequested = true;
    TheLink().Timer4.Due = 0;
  });
  player_.ExpectFileDialog(folder_ / "x.adf");
  Choose("mnuXferRX0");
  line.Stop();
  EXPECT_EQ(line.Bbc.Quits, 1);
}

}  // namespace
}  // namespace sectorbox::testing
