// The command that tells what files are. Checking discs is tested with the reading commands.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/StrictJson.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class IdentifyCommand : public ::testing::Test {
 protected:
  IdentifyCommand() {
    ImageBuilder image(2560);
    image.SetTitle(2,
                   "Games\x01"
                   "One");
    image.WriteInterleavedTo(disc_);
    WriteText(zip_, "PK\3\4 and more");
    WriteText(empty_, "");
  }

  TempFolder folder_;
  std::string disc_ = folder_ / "disc.adl";
  std::string zip_ = folder_ / "disc.zip";
  std::string empty_ = folder_ / "none";
};

TEST_F(IdentifyCommand, PrintsALineForEachFile) {
  const SbxResult result = RunSbx({"identify", disc_, zip_, empty_, SBX_PATH});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Err, "");
  const auto lines = Lines(result.Out);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], disc_ +
                          "\tADFS L\t655360\tGames\x01"
                          "One");
  EXPECT_EQ(lines[1], zip_ + "\tZIP archive\t13\t");
  EXPECT_EQ(lines[2], empty_ + "\tempty\t0\t");
  EXPECT_EQ(lines[3].rfind(std::string(SBX_PATH) + "\tunknown\t", 0), 0U);
}

TEST_F(IdentifyCommand, GoesOnAfterAFileThatCanNotBeReadAndEndsWithOne) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const SbxResult result =
      RunSbx({"identify", folder_ / "missing", folder_.Path(), folder_ / "pipe", zip_});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Out, zip_ + "\tZIP archive\t13\t\n");
  const auto lines = Lines(result.Err);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], (folder_ / "missing") + ": No such file or directory");
  EXPECT_EQ(lines[1], folder_.Path() + ": Is a directory");
  EXPECT_EQ(lines[2], (folder_ / "pipe") + ": Not a plain file");
}

TEST_F(IdentifyCommand, WantsAFile) {
  const SbxResult result = RunSbx({"identify"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Err, "identify: an argument is missing\n");
}

TEST_F(IdentifyCommand, GivesTheSameAsJson) {
  const SbxResult result = RunSbx({"identify", "--json", disc_, folder_ / "missing", empty_});
  EXPECT_EQ(result.Status, 1);
  const JsonValue list = StrictJson::Parse(result.Out);
  ASSERT_EQ(list.Items.size(), 2U);
  EXPECT_EQ(list.Items[0]["path"].Latin(), disc_);
  EXPECT_EQ(list.Items[0]["kind"].Latin(), "ADFS L");
  EXPECT_EQ(list.Items[0]["size"].Whole(), 655360);
  EXPECT_EQ(list.Items[0]["title"].Latin(),
            "Games\x01"
            "One");
  EXPECT_EQ(list.Items[1]["kind"].Latin(), "empty");
  EXPECT_EQ(list.Items[1]["title"].Latin(), "");
  EXPECT_TRUE(StrictJson::Parse(RunSbx({"identify", "--json", folder_.Path()}).Out).Items.empty());
}

TEST_F(IdentifyCommand, PathsOfAnyBytesMakeValidJson) {
  // A character of two, three and four bytes each, then bytes that are none: one alone, one cut
  // short, one longer than needed, half of a pair, a control character, and ASCII's own.
  const std::string good = "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x92\xBE";
  const std::string bad = "\xE9.\xC3.\xE0\x80\x80.\xED\xA0\x80.\xC2\x85.\x1B\"\\\x7F\xC3";
  const std::string path = folder_ / (good + bad);
  WriteText(path, "");
  const SbxResult result = RunSbx({"identify", "--json", path});
  EXPECT_EQ(result.Status, 0) << result.Err;
  EXPECT_NE(result.Out.find(good), std::string::npos);
  const std::u32string text = StrictJson::Parse(result.Out).Items.at(0)["path"].Text;
  std::u32string expected = U"\u00E9\u20AC\U0001F4BE";
  for (const char c : bad) expected += static_cast<unsigned char>(c);
  ASSERT_GE(text.size(), expected.size());
  EXPECT_EQ(text.substr(text.size() - expected.size()), expected);
}

}  // namespace
}  // namespace sectorbox
