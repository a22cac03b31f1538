// Whole discs through the menu and its windows, with faults on the line.
#include "tests/shell/commands/XferFixture.h"

namespace sectorbox::testing {
namespace {

// The faults during the transfer of one disc, and the counter that shows them: 1 counts retries, 2
// wrong CRCs.
struct Trouble {
  DiscKind Kind;
  BbcFaults Receive;
  const char* ReceiveCounter;
  BbcFaults Send;
  const char* SendCounter;
};

std::vector<Trouble> Troubles() {
  std::vector<Trouble> all;
  for (const DiscKind& kind : kDiscKinds) all.push_back({kind, {}, "txtCRC", {}, "txtCRC"});
  // A disc is about sixteen chunks. A fault that leads to a reset, which takes seconds, comes only
  // once.
  all[0].Receive.WrongCrcEvery = 12;
  all[0].Send.WrongCrcEvery = 4;
  all[1].Receive.WrongEscapeEvery = 12;
  all[1].Send.NoCrcEvery = 12;
  all[1].SendCounter = "txtRetry";
  all[2].Receive.ShortStreamEvery = 12;
  all[2].Receive.BurstEvery = 15;
  all[2].Send.WrongCrcEvery = 7;
  all[3].Receive.GarbageEvery = 12;
  all[3].Send.NoAcknowledgeEvery = 12;
  all[3].SendCounter = "txtRetry";
  return all;
}

class WholeDiscTest : public XferTest, public ::testing::WithParamInterface<Trouble> {
 protected:
  // Room for the disc, with noise in it.
  void Prepare(const BbcFaults& faults, std::int32_t buffer) {
    line.Bbc.SetBuffer(buffer);
    line.Bbc.Faults = faults;
    file = folder_ / (std::string("x") + GetParam().Kind.Extension);
    StartWired();
    player_.ExpectFileDialog(file);
  }
  void ExpectFinished(const char* caption, const std::string& total, const char* counter) {
    ASSERT_NE(Dialog(), nullptr);
    EXPECT_EQ(Dialog()->windowTitle(), QString::fromLatin1(caption));
    EXPECT_EQ(In<QLabel>(*Dialog(), "lblTot")->text().toStdString(), total);
    EXPECT_EQ(In<QProgressBar>(*Dialog(), "pb")->value(), 100);
    for (const char* one : {"txtRetry", "txtCRC", "txtBadSector"}) {
      EXPECT_EQ(Counter(one) != "0", std::string(one) == counter) << one << " " << Counter(one);
    }
    PressOK();
    EXPECT_EQ(Dialog(), nullptr);
    line.Stop();
  }
  std::string Total(const char* verb) const {
    const std::string sectors = std::to_string(GetParam().Kind.Sectors);
    return verb + (" " + sectors) + " of " + sectors;
  }

  std::string file;
};

TEST_P(WholeDiscTest, ComesAcrossByteForByte) {
  const DiscKind& kind = GetParam().Kind;
  line.Bbc.Drives[0] = NoiseDisc(kind.Sectors, {{kind.Sectors / 2, 9}});
  Prepare(GetParam().Receive, kind.Sectors / 15);
  const QString caption = window_->windowTitle();
  Choose("mnuXferRX0");
  EXPECT_EQ(window_->windowTitle(), caption);  // nobody asked for Auto Load
  ExpectFinished("Receive Image", Total("Read"), GetParam().ReceiveCounter);
  EXPECT_EQ(ReadAll(file), FileOf(kind, line.Bbc.Drives[0]));
}

TEST_P(WholeDiscTest, GoesAcrossByteForByte) {
  const DiscKind& kind = GetParam().Kind;
  const Bytes disc = NoiseDisc(kind.Sectors, {{kind.Sectors / 2, 9}}, 2);
  line.Bbc.Drives[5] = Bytes(static_cast<std::size_t>(kind.Sectors) * 256);
  Prepare(GetParam().Send, kind.Sectors / 15);
  WriteAll(file, FileOf(kind, disc));
  window_->Action("mnuOptionsAutoLoad")->setChecked(true);  // of received images only
  const QString caption = window_->windowTitle();
  Choose("mnuXferTX5");
  EXPECT_EQ(window_->windowTitle(), caption);
  ExpectFinished("Send Image", Total("Written"), GetParam().SendCounter);
  EXPECT_EQ(line.Bbc.Drives[5], disc);
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, WholeDiscTest, ::testing::ValuesIn(Troubles()),
                         [](const auto& test) { return test.param.Kind.Name; });

void PrintTo(const Trouble& trouble, std::ostream* out) {
  PrintTo(trouble.Kind, out);
}

class DataImageTest : public XferTest {};

TEST_F(DataImageTest, MovesOnlyWhatTheMapDoesNotListAsFreeAndBackAgain) {
  const Bytes disc = NoiseDisc(640, {{20, 500}, {600, 40}});
  line.Bbc.Drives[4] = disc;
  line.Bbc.Drives[1] = Bytes(640 * 256);
  line.Bbc.SetBuffer(64);
  StartWired();
  player_.ExpectFileDialog(folder_ / "x.adf");
  Choose("mnuXferDRX4");
  EXPECT_EQ(In<QLabel>(*Dialog(), "lblTot")->text(), QStringLiteral("Read 100 of 100"));
  PressOK();
  player_.ExpectFileDialog(folder_ / "x.adf");
  Choose("mnuXferDTX1");
  EXPECT_EQ(In<QLabel>(*Dialog(), "lblTot")->text(), QStringLiteral("Written 100 of 100"));
  line.Stop();
  EXPECT_EQ(line.Bbc.SectorsSent, 2 + 100);
  EXPECT_EQ(line.Bbc.SectorsWritten, 100);
  Bytes used = disc;
  std::fill(used.begin() + 20 * 256, used.begin() + 520 * 256, std::uint8_t{0});
  std::fill(used.begin() + 600 * 256, used.end(), std::uint8_t{0});
  EXPECT_EQ(line.Bbc.Drives[1], used);
}

TEST_F(DataImageTest, CheckBeforeTransferMovesOnlyTheChunkThatDiffers) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(64);
  const std::string file = folder_ / "x.adf";
  Bytes old = line.Bbc.Drives[0];
  old[100 * 256] ^= 1;
  WriteAll(file, old);
  StartWired();
  Choose("mnuXferCBW");
  EXPECT_TRUE(window_->Checked("mnuXferCBW"));
  player_.ExpectFileDialog(file);
  Choose("mnuXferRX0");
  line.Stop();
  EXPECT_EQ(line.Bbc.SectorsSent, 2 + 64);
  EXPECT_EQ(ReadAll(file), line.Bbc.Drives[0]);
}

}  // namespace
}  // namespace sectorbox::testing
