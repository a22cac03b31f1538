// What the reading commands give as JSON, read back by a strict reader.

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/StrictJson.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class Json : public ::testing::Test {
 protected:
  Json() {
    const auto games = image_.AddDirectory(2, "GAMES");
    image_.AddFile(games, {"Elite", {1, 2, 3}, 0xFFFF1900, 0xFFFF8023, "LWR"});
    image_.AddDirectory(games, "DEEP");
    image_.SetTitle(2, "Test \"disc\"");
    image_.SetBootOption(3);
  }

  // The value that a call prints on the image; the call has to end with that status.
  JsonValue Read(std::vector<std::string> words, int status = 0) {
    image_.WriteTo(disc_);
    words.insert(words.begin() + 1, {"--json", disc_});
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, status) << result.Err;
    EXPECT_EQ(result.Out.back(), '\n');
    return StrictJson::Parse(result.Out);
  }

  TempFolder folder_;
  std::string disc_ = folder_ / "disc.adf";
  ImageBuilder image_{640};
};

TEST_F(Json, TheReaderRefusesWhatIsNoJson) {
  for (const char* text : {"",
                           "[1,]",
                           "[1 2]",
                           "{\"a\":1,}",
                           "{a:1}",
                           "{\"a\" 1}",
                           "{\"a\":1,\"a\":2}",
                           "[1] 2",
                           "01",
                           "+1",
                           ".5",
                           "1.",
                           "1e",
                           "tru",
                           "\"\n\"",
                           "\"\x01\"",
                           "\"\\x41\"",
                           "\"\\u00G1\"",
                           "\"\\u12\"",
                           "\"\\uD800\"",
                           "\"\x80\"",
                           "\"\xC3\"",
                           "\"\xC0\x80\"",
                           "\"\xE0\x80\x80\"",
                           "\"\xED\xA0\x80\"",
                           "\"\xF4\x90\x80\x80\"",
                           "\"",
                           "[",
                           "{"}) {
    EXPECT_THROW((void)StrictJson::Parse(text), std::runtime_error) << text;
  }
  const JsonValue value = StrictJson::Parse(" {\"a\" : [ -1.5e2, true, null, \"\\u00e9\\n\" ] } ");
  ASSERT_EQ(value["a"].Items.size(), 4U);
  EXPECT_EQ(value["a"].Items[0].Whole(), -150);
  EXPECT_TRUE(value["a"].Items[1].Truth);
  EXPECT_TRUE(value["a"].Items[2].IsNull());
  EXPECT_EQ(value["a"].Items[3].Latin(), "\xE9\n");
}

TEST_F(Json, InfoIsOneObject) {
  const JsonValue info = Read({"info"});
  EXPECT_EQ(info.Fields.size(), 11U);
  EXPECT_EQ(info["kind"].Latin(), "adf");
  EXPECT_EQ(info["disctype"].Whole(), 0);
  EXPECT_EQ(info["tracks"].Whole(), 40);
  EXPECT_EQ(info["heads"].Whole(), 1);
  EXPECT_EQ(info["sectors"].Whole(), 16);
  EXPECT_EQ(info["size"].Whole(), 640);
  EXPECT_EQ(info["free"].Whole(), (640 - 18) * 256);
  EXPECT_EQ(info["used"].Whole(), 18 * 256);
  EXPECT_EQ(info["runs"].Whole(), 1);
  EXPECT_EQ(info["boot"].Whole(), 3);
  EXPECT_EQ(info["title"].Latin(), "Test \"disc\"");
}

TEST_F(Json, LsGivesNumbersAsNumbersAndNoAddressesOfADirectory) {
  const JsonValue list = Read({"ls", "GAMES"});
  ASSERT_EQ(list.Items.size(), 2U);
  const JsonValue& deep = list.Items[0];
  EXPECT_EQ(deep.Fields.size(), 7U);
  EXPECT_EQ(deep["name"].Latin(), "DEEP");
  EXPECT_EQ(deep["attr"].Latin(), "DWR");
  EXPECT_TRUE(deep["load"].IsNull());
  EXPECT_TRUE(deep["exec"].IsNull());
  EXPECT_TRUE(deep["size"].IsNull());
  EXPECT_EQ(deep["sector"].Whole(), 13);
  const JsonValue& elite = list.Items[1];
  EXPECT_EQ(elite.Fields.size(), 7U);
  EXPECT_EQ(elite["name"].Latin(), "Elite");
  EXPECT_EQ(elite["attr"].Latin(), "LWR");
  EXPECT_EQ(elite["seq"].Whole(), 0);
  EXPECT_EQ(elite["load"].Whole(), 0xFFFF1900);
  EXPECT_EQ(elite["exec"].Whole(), 0xFFFF8023);
  EXPECT_EQ(elite["size"].Whole(), 3);
  EXPECT_EQ(elite["sector"].Whole(), 12);
  EXPECT_TRUE(Read({"ls", "GAMES.DEEP"}).Items.empty());
}

TEST_F(Json, ASequenceNumberIsTheNumberThatItsDigitsMake) {
  image_.Poke(517 + 25, 0x42);
  EXPECT_EQ(Read({"ls"}).Items.at(0)["seq"].Whole(), 42);
}

TEST_F(Json, TreeGivesPathsAndSectors) {
  const JsonValue list = Read({"tree"});
  ASSERT_EQ(list.Items.size(), 3U);
  EXPECT_EQ(list.Items[0]["path"].Latin(), "$");
  EXPECT_EQ(list.Items[0]["sector"].Whole(), 2);
  EXPECT_EQ(list.Items[2]["path"].Latin(), "$.GAMES.DEEP");
  EXPECT_EQ(list.Items[2]["sector"].Whole(), 13);
}

TEST_F(Json, CheckOfASoundDiscIsAnEmptyList) {
  const JsonValue list = Read({"check"});
  EXPECT_EQ(list.What, JsonValue::Kind::kList);
  EXPECT_TRUE(list.Items.empty());
}

TEST_F(Json, CheckGivesEachFaultWithWhatItTouches) {
  image_.SetFreeRuns({{17, 100}, {117, 500}});
  image_.Poke(511, static_cast<std::uint8_t>(image_.Peek(511) ^ 1));
  image_.Poke(7 * 256 + 1238, 9);
  image_.Poke(7 * 256 + 5 + 26, 0x80 | 1);
  const JsonValue list = Read({"check"}, 1);
  std::vector<std::string> words;
  for (const JsonValue& fault : list.Items) words.push_back(fault["kind"].Latin());
  EXPECT_EQ(words,
            (std::vector<std::string>{"map-sum", "run-touches", "wrong-parent", "name-out-of-order",
                                      "name-untypable", "overlap", "unowned"}));
  ASSERT_EQ(list.Items.size(), 7U);
  EXPECT_EQ(list.Items[0]["severity"].Latin(), "error");
  EXPECT_EQ(list.Items[0]["place"].Latin(), "sector 1");
  EXPECT_EQ(list.Items[0]["touches"]["sector"].Whole(), 1);
  EXPECT_EQ(list.Items[1]["touches"]["run"].Whole(), 1);
  EXPECT_EQ(list.Items[2]["touches"]["path"].Latin(), "$.GAMES");
  EXPECT_EQ(list.Items[2]["touches"]["sector"].Whole(), 7);
  EXPECT_EQ(list.Items[4]["severity"].Latin(), "warning");
  EXPECT_EQ(list.Items[4]["place"].Latin(), "$.GAMES.\x01lite");
  EXPECT_EQ(list.Items[4]["touches"]["directory"].Whole(), 7);
  EXPECT_EQ(list.Items[4]["touches"]["slot"].Whole(), 1);
  EXPECT_EQ(list.Items[5]["text"].Latin(), "overlaps free run 0");
  EXPECT_EQ(list.Items[5]["overlaps"]["run"].Whole(), 0);
  EXPECT_FALSE(list.Items[4].Has("overlaps"));
  EXPECT_EQ(list.Items[6]["touches"]["sector"].Whole(), 617);
}

TEST_F(Json, TheFaultsAreThoseOfTheLines) {
  image_.SetFreeRuns({{17, 100}, {117, 500}});
  image_.Poke(7 * 256 + 5 + 26, 0x80 | 1);
  const JsonValue list = Read({"check"}, 1);
  std::string lines;
  for (const JsonValue& fault : list.Items) {
    lines += fault["severity"].Latin() + ": " + fault["place"].Latin() + ": " +
             fault["text"].Latin() + "\n";
  }
  EXPECT_EQ(lines, RunSbx({"check", disc_}).Out);
}

TEST_F(Json, NamesOfAnyBytesMakeValidJson) {
  // All that a name and a title can hold: their top bits are never part of them.
  for (int first = 1; first < 128; first += 8) {
    std::string name;
    for (int c = first; c < first + 8 && c < 128; ++c) {
      if (c != 13) name += static_cast<char>(c);
    }
    SCOPED_TRACE(first);
    ImageBuilder image(640);
    image.AddFile(2, {name, {1}, 0, 0, "WR"});
    image.AddDirectory(2, "D" + name);
    image.SetTitle(2, name);
    image_ = image;
    std::vector<std::string> names;
    for (const JsonValue& row : Read({"ls"}).Items) names.push_back(row["name"].Latin());
    EXPECT_NE(std::find(names.begin(), names.end(), name), names.end());
    EXPECT_EQ(Read({"tree"}).Items.at(1)["path"].Latin(), "$.D" + name);
    EXPECT_EQ(Read({"info"})["title"].Latin(), name);
    for (const JsonValue& fault : Read({"check"}).Items) {
      EXPECT_EQ(fault["severity"].Latin(), "warning");
    }
  }
}

TEST_F(Json, ControlAndHighBytesAreWrittenAsEscapes) {
  image_.AddFile(2, {"A\x1B\x7F~\"\\", {1}, 0, 0, "WR"});
  image_.WriteTo(disc_);
  EXPECT_NE(RunSbx({"ls", "--json", disc_}).Out.find("\"A\\u001B\\u007F~\\\"\\\\\""),
            std::string::npos);
}

TEST_F(Json, WhatIsNoAdfsDiscIsToldAsWell) {
  const std::string photo = folder_ / "photo.jpg";
  WriteAll(photo, std::vector<std::uint8_t>(163840, 0xFF));
  for (const char* command : {"info", "tree", "ls", "check"}) {
    const SbxResult result = RunSbx({command, "--json", photo});
    EXPECT_EQ(result.Status, 1) << command;
    EXPECT_EQ(result.Err, "photo.jpg Is No ADFS Disc\n") << command;
    EXPECT_NO_THROW((void)StrictJson::Parse(result.Out)) << result.Out;
  }
}

TEST_F(Json, OtherCommandsTakeNoJson) {
  image_.WriteTo(disc_);
  const SbxResult result = RunSbx({"map", "--json", disc_});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Err, "map: takes no option --json\n");
  EXPECT_EQ(RunSbx({"info", "--json=1", disc_}).Status, 2);
}

}  // namespace
}  // namespace sectorbox
