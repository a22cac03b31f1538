#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"
#include "viewers/picture/Colours.h"
#include "viewers/picture/PictureFile.h"
#include "viewers/picture/ScreenMode.h"
#include "viewers/picture/Teletext.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

constexpr char kFont[] = TELETEXT_FONT_PATH;

class PictureCommandsTest : public ::testing::Test {
 protected:
  PictureCommandsTest() {
    for (std::size_t i = 0; i < page_.size(); ++i) page_[i] = static_cast<std::uint8_t>(i * 7);
    for (std::size_t i = 0; i < screen_.size(); ++i) screen_[i] = static_cast<std::uint8_t>(i * 31);
    ImageBuilder image(1280);
    image.AddFile(2, {"PAGE", page_});
    image.AddFile(2, {"SCREEN", screen_});
    image.AddDirectory(2, "DIR");
    image.WriteTo(disc_);
  }

  Bytes Teletext(std::int16_t phase) const {
    return EncodeBmp(DrawTeletext(page_, LoadTeletextFont(kFont).value(), phase));
  }
  Picture Screen(int number, const ScreenPalette& palette, bool flash) const {
    const ScreenMode& mode = *FindScreenMode(number);
    return DrawScreen(mode, screen_, FindCurrentColours(mode, palette, flash));
  }
  void ExpectUsage(const std::vector<std::string>& words, const std::string& complaint) const {
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, 2);
    EXPECT_EQ(result.Err, complaint + "\n");
    EXPECT_FALSE(std::filesystem::exists(out_));
  }

  TempFolder folder_;
  const std::string disc_ = folder_ / "disc.adf";
  const std::string out_ = folder_ / "out.bmp";
  Bytes page_ = Bytes(960);
  Bytes screen_ = Bytes(20480);
};

TEST_F(PictureCommandsTest, WritesATeletextPageInPhase0UnlessTold) {
  const SbxResult result = RunSbx({"teletext", disc_, "page", "-o", out_});
  EXPECT_EQ(result.Status, 0) << result.Err;
  EXPECT_EQ(result.Out + result.Err, "");
  EXPECT_EQ(ReadAll(out_), Teletext(0));
  EXPECT_EQ(RunSbx({"teletext", disc_, "$.PAGE", "--phase", "1", "-o", out_}).Status, 0);
  EXPECT_EQ(ReadAll(out_), Teletext(1));
  EXPECT_NE(Teletext(0), Teletext(1));
}

TEST_F(PictureCommandsTest, WritesEveryMode) {
  for (const ScreenMode& mode : kScreenModes) {
    const SbxResult result =
        RunSbx({"mode", std::to_string(mode.Mode), disc_, "$.SCREEN", "-o", out_});
    EXPECT_EQ(result.Status, 0) << result.Err;
    EXPECT_EQ(ReadAll(out_), EncodeBmp(Screen(mode.Mode, {}, false)));
  }
}

TEST_F(PictureCommandsTest, WritesAPngWhereTheNameEndsInIt) {
  const std::string png = folder_ / "out.png";
  EXPECT_EQ(RunSbx({"mode", "2", disc_, "SCREEN", "--flash", "1", "-o", png}).Status, 0);
  EXPECT_EQ(ReadAll(png), EncodePng(Screen(2, {}, true)));
}

TEST_F(PictureCommandsTest, TakesAPalette) {
  ScreenPalette palette;
  palette.Set(*FindScreenMode(1), 0, kBlue);
  palette.Set(*FindScreenMode(1), 3, kCyan);
  EXPECT_EQ(RunSbx({"mode", "1", disc_, "SCREEN", "--palette", "0=blue,3=cyan", "-o", out_}).Status,
            0);
  EXPECT_EQ(ReadAll(out_), EncodeBmp(Screen(1, palette, false)));
}

TEST_F(PictureCommandsTest, SaysWhichWordsAreOff) {
  ExpectUsage({"teletext", disc_, "PAGE"}, "teletext: -o OUT is missing");
  ExpectUsage({"teletext", disc_, "PAGE", "--phase", "2", "-o", out_}, "--phase takes 0 or 1");
  ExpectUsage({"mode", "3", disc_, "SCREEN", "-o", out_}, "mode: no such mode: 3");
  ExpectUsage({"mode", "10", disc_, "SCREEN", "-o", out_}, "mode: no such mode: 10");
  ExpectUsage({"mode", "2", disc_, "SCREEN", "--flash", "on", "-o", out_}, "--flash takes 0 or 1");
  for (const std::string change : {"2=red", "0=pink", "red", "", "0=", "0:red", "00=red"}) {
    ExpectUsage({"mode", "0", disc_, "SCREEN", "--palette=" + change, "-o", out_},
                "--palette: no such colour: " + change);
  }
  ExpectUsage({"mode", "0", disc_, "SCREEN", "--palette", "0=red,", "-o", out_},
              "--palette: no such colour: ");
}

TEST_F(PictureCommandsTest, ADirectoryOrAMissingFileIsRefused) {
  const SbxResult directory = RunSbx({"teletext", disc_, "$.DIR", "-o", out_});
  EXPECT_EQ(directory.Status, 1);
  EXPECT_EQ(directory.Err, "Not a file: $.DIR\n");
  const SbxResult missing = RunSbx({"mode", "0", disc_, "NONE", "-o", out_});
  EXPECT_EQ(missing.Status, 1);
  EXPECT_EQ(missing.Err, "Not found: NONE\n");
  EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(PictureCommandsTest, AMissingOrShortFontIsToldAndNoPictureWritten) {
  const std::string program = folder_ / "sbx";
  std::filesystem::copy_file(SBX_PATH, program);
  const std::string font = folder_ / "teletext.fnt";
  for (const bool isShort : {false, true}) {
    if (isShort) WriteAll(font, Bytes(3455));
    const SbxResult result = RunSbx({"teletext", disc_, "PAGE", "-o", out_}, "", program);
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Err, "Cannot open Teletext font file teletext.fnt\n");
    EXPECT_FALSE(std::filesystem::exists(out_));
  }
  std::filesystem::copy_file(kFont, font, std::filesystem::copy_options::overwrite_existing);
  EXPECT_EQ(RunSbx({"teletext", disc_, "PAGE", "-o", out_}, "", program).Status, 0);
}

TEST_F(PictureCommandsTest, AFolderThatIsntThereIsAHostFailure) {
  const SbxResult result = RunSbx({"teletext", disc_, "PAGE", "-o", folder_ / "none/x.bmp"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Err.find("No such file or directory"), std::string::npos) << result.Err;
}

}  // namespace
}  // namespace sectorbox
