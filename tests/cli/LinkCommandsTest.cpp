#include <gtest/gtest.h>

#include "tests/support/NoiseDiscs.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

class LinkCommandsTest : public ::testing::TestWithParam<DiscKind> {
 protected:
  SbxResult Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--port", line.Device()});
    line.Start();
    SbxResult result = RunSbx(arguments);
    line.Stop();
    return result;
  }

  PtyBbc line;
  TempFolder folder;
};

TEST_P(LinkCommandsTest, ADiscComesAcrossWithFaultsOnTheLine) {
  const DiscKind& kind = GetParam();
  line.Bbc.Drives[0] = NoiseDisc(kind.Sectors, {{kind.Sectors / 2, 9}});
  line.Bbc.SetBuffer(64);
  line.Bbc.Faults.WrongCrcEvery = kind.Sectors / 128 + 3;  // once: each costs five seconds
  const std::string file = folder / (std::string("x") + kind.Extension);
  const std::string log = folder / "trace.log";
  const SbxResult result = Run({"receive", "0", file, "--trace", log});
  EXPECT_EQ(result.Status, 0) << result.Err;
  EXPECT_EQ(result.Err, "");
  EXPECT_EQ(result.Out, "");
  EXPECT_EQ(ReadAll(file), FileOf(kind, line.Bbc.Drives[0]));
  EXPECT_NE(ReadText(log).find("Mismatch in CRC\r\n"), std::string::npos);
  EXPECT_EQ(line.Bbc.Quits, 1);
}

TEST_P(LinkCommandsTest, ADiscGoesAcrossWithFaultsOnTheLine) {
  const DiscKind& kind = GetParam();
  line.Bbc.Drives[1] = Bytes(static_cast<std::size_t>(kind.Sectors) * 256);
  line.Bbc.SetBuffer(128);
  line.Bbc.Faults.WrongCrcEvery = 4;
  const Bytes disc = NoiseDisc(kind.Sectors, {{kind.Sectors / 2, 9}}, 2);
  const std::string file = folder / (std::string("x") + kind.Extension);
  const std::string log = folder / "trace.log";
  WriteAll(file, FileOf(kind, disc));
  const SbxResult result = Run({"send", "1", file, "--trace", log});
  EXPECT_EQ(result.Status, 0) << result.Err;
  EXPECT_EQ(result.Err, "");
  EXPECT_EQ(line.Bbc.Drives[1], disc);
  EXPECT_NE(ReadText(log).find("Mismatch in CRC\r\n"), std::string::npos);
  EXPECT_EQ(line.Bbc.Quits, 1);
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, LinkCommandsTest, ::testing::ValuesIn(kDiscKinds),
                         [](const auto& test) { return test.param.Name; });

class LinkCommandTest : public LinkCommandsTest {};

TEST_F(LinkCommandTest, AStarCommandPrintsWhatTheBbcPrints) {
  line.Bbc.StarReplies["CAT"] = {{0, "Disc title\n\r"}, {300, "!BOOT\n\rELITE\n\r"}};
  const SbxResult result = Run({"star", "CAT"});
  EXPECT_EQ(result.Status, 0) << result.Err;
  EXPECT_EQ(result.Out, "Disc title\n!BOOT\nELITE\n");
  EXPECT_EQ(line.Bbc.Heard, (std::vector<std::string>{"S19200|", "*CAT|", "Q"}));
}

TEST_F(LinkCommandTest, AStarCommandThatFailsShowsTheBbcsOwnText) {
  const SbxResult result = Run({"star", "WHAT"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Out, "");
  EXPECT_EQ(result.Err, "Bad command\n");
  EXPECT_EQ(line.Bbc.Quits, 1);
}

TEST_F(LinkCommandTest, ASilentBbcIsSaidSo) {
  line.Bbc.Faults.Mute = true;
  const SbxResult result = Run({"star", "CAT", "--speed", "9600"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Beeb Not Responding\n");
  EXPECT_EQ(line.Bbc.Heard.at(0), "S9600|");
}

TEST_F(LinkCommandTest, ADataImageMovesOnlyWhatIsUsed) {
  line.Bbc.Drives[0] = NoiseDisc(640, {{20, 620}});
  const std::string file = folder / "x.adf";
  EXPECT_EQ(Run({"receive", "0", file, "--data-only"}).Status, 0);
  EXPECT_EQ(line.Bbc.SectorsSent, 22);
  EXPECT_EQ(ReadAll(file),
            Bytes(line.Bbc.Drives[0].begin(), line.Bbc.Drives[0].begin() + 20 * 256));
}

TEST_F(LinkCommandTest, CheckBeforeTransferMovesNothingWhereNothingChanged) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(64);
  const std::string file = folder / "x.adf";
  WriteAll(file, line.Bbc.Drives[0]);
  EXPECT_EQ(Run({"send", "0", file, "--check"}).Status, 0);
  EXPECT_EQ(line.Bbc.SectorsWritten, 0);
}

TEST_F(LinkCommandTest, AnUnreadableSectorIsToldAndTheRestArrives) {
  line.Bbc.Drives[0] = NoiseDisc(640, {{9, 631}});
  line.Bbc.SetBuffer(2);
  line.Bbc.Faults.CannotRead = {5};
  const std::string file = folder / "x.adf";
  const std::string log = folder / "trace.log";
  const SbxResult result = Run({"receive", "0", file, "--data-only", "--trace", log});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Bad Sectors: 2; given up: 1\n");
  EXPECT_NE(ReadText(log).find("Error reading sector 000005, 5\r\n"), std::string::npos);
}

TEST_F(LinkCommandTest, ASectorThatCannotBeWrittenIsToldAndTheRestGoesAcross) {
  line.Bbc.Drives[0] = Bytes(640 * 256);
  line.Bbc.SetBuffer(2);
  line.Bbc.Faults.CannotWrite = {5};
  const Bytes disc = NoiseDisc(640, {{9, 631}});
  const std::string file = folder / "x.adf";
  WriteAll(file, disc);
  const SbxResult result = Run({"send", "0", file, "--data-only"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Bad Sectors: 2; given up: 1\n");
  Bytes expected = disc;
  std::fill_n(expected.begin() + 5 * 256, 256, std::uint8_t{0});
  std::fill(expected.begin() + 9 * 256, expected.end(), std::uint8_t{0});
  EXPECT_EQ(line.Bbc.Drives[0], expected);
}

TEST_F(LinkCommandTest, AnImageThatDoesNotFitIsRefusedInTheEnginesWords) {
  line.Bbc.Drives[0] = Bytes(1000 * 256);
  const std::string file = folder / "x.adf";
  WriteAll(file, NoiseDisc(1280, {}));
  const SbxResult result = Run({"send", "0", file});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Drive 0 is too small for the image\n");
  EXPECT_EQ(line.Bbc.SectorsWritten, 0);
}

TEST_F(LinkCommandTest, ThePortThatIsNotThereIsNamed) {
  const SbxResult result = RunSbx({"star", "CAT", "--port", folder / "none"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, folder / "none" + ": No such file or directory\n");
}

TEST_F(LinkCommandTest, WordsThatAreOffAreStatusTwo) {
  const std::vector<std::vector<std::string>> calls = {
      {"receive", "2", "x"}, {"receive", "0"},
      {"send", "A", "x"},    {"star"},
      {"star", "a", "b"},    {"bootstrap", "other"},
      {"bootstrap"},         {"star", "x", "--speed", "300"},
  };
  for (auto call : calls) {
    call.insert(call.end(), {"--port", line.Device()});
    const SbxResult result = RunSbx(call);
    EXPECT_EQ(result.Status, 2) << call[0];
    EXPECT_EQ(Lines(result.Err).size(), 1U);
  }
}

}  // namespace
}  // namespace sectorbox::testing
