#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using testing::ImageBuilder;
using testing::RunSbx;
using testing::SbxResult;
using testing::TempFolder;

class ViewCommands : public ::testing::Test {
 protected:
  ViewCommands() {
    ImageBuilder image(640);
    const auto bytes = [](const std::string& text) {
      return std::vector<std::uint8_t>(text.begin(), text.end());
    };
    image.AddFile(2, {"Text", bytes("one\rtwo\xA3\rthree")});
    image.AddFile(2, {"Basic", {13, 0, 10, 5, 0xF1, 13, 0xFF}});
    image.AddFile(2, {"Code", {0x60}, 0x1900, 0x1900});
    image.AddFile(2, {"Word",
                      bytes("a\x02QQ\x07"
                            "b\rc"),
                      0xFFFFFFFF, 0xFFFFFFFF});
    image.AddDirectory(2, "Dir");
    image.WriteTo(disc_);
  }
  std::string Saved() {
    std::ifstream file(out_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TempFolder folder_;
  std::string disc_ = folder_ / "disc.adf";
  std::string out_ = folder_ / "out.txt";
};

TEST_F(ViewCommands, LinesEndInLfOnStandardOutputAndInCrLfInTheFile) {
  EXPECT_EQ(RunSbx({"text", disc_, "$.text"}).Out, "one\ntwo\xA3\nthree");
  EXPECT_EQ(RunSbx({"text", disc_, "Text", "-o", out_}).Out, "");
  EXPECT_EQ(Saved(), "one\r\ntwo\xA3\r\nthree");
}

TEST_F(ViewCommands, EachFileViewShowsItsForm) {
  EXPECT_EQ(RunSbx({"basic", disc_, "Basic"}).Out, "   10PRINT\n");
  EXPECT_EQ(RunSbx({"dis", disc_, "Code"}).Out, "1900  60          RTS              `\n\n");
  EXPECT_EQ(RunSbx({"hex", disc_, "Code"}).Out, "000000 : 60 " + std::string(45, ' ') + " `\n");
}

TEST_F(ViewCommands, AViewThatShowedABoxEndsWithStatusZero) {
  const SbxResult result = RunSbx({"wordwise", disc_, "Word"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Out, "ab\nc");
  EXPECT_EQ(result.Err, "Unrecognised Command QQ\nUnrecognised Command QQ\n");
}

TEST_F(ViewCommands, UnsuitableFilesAreALineOfTheView) {
  const SbxResult result = RunSbx({"basic", disc_, "Text"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Out, "This does not appear to be a BASIC program\n");
}

TEST_F(ViewCommands, HexShowsDirectoriesAndTheOthersRefuseThem) {
  EXPECT_EQ(RunSbx({"hex", disc_, "Dir"}).Out.size(), 80U * 75);
  EXPECT_EQ(RunSbx({"hex", disc_, "$"}).Out.size(), 80U * 75);
  for (const char* command : {"text", "basic", "dis", "wordwise"}) {
    const SbxResult result = RunSbx({command, disc_, "Dir"});
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Err, "Not a file: Dir\n");
  }
}

TEST_F(ViewCommands, DirectoryViewsShowTheRootUnlessToldAndRefuseFiles) {
  for (const char* command : {"cat", "ex", "catall", "exall"}) {
    const std::string root = RunSbx({command, disc_}).Out;
    EXPECT_NE(root.find("Dir. $ "), std::string::npos) << command;
    EXPECT_EQ(RunSbx({command, disc_, "$"}).Out, root);
    EXPECT_NE(RunSbx({command, disc_, "$.DIR"}).Out.find("Dir. Dir "), std::string::npos);
    const SbxResult file = RunSbx({command, disc_, "Text"});
    EXPECT_EQ(file.Status, 1);
    EXPECT_EQ(file.Err, "Not a directory: Text\n");
  }
}

TEST_F(ViewCommands, APathThatIsNotThereLeavesTheFileAlone) {
  std::ofstream(out_) << "kept";
  const SbxResult result = RunSbx({"text", disc_, "None", "-o", out_});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Not found: None\n");
  EXPECT_EQ(Saved(), "kept");
}

TEST_F(ViewCommands, AFileThatCannotBeMadeIsAHostFailure) {
  const SbxResult result = RunSbx({"text", disc_, "Text", "-o", folder_ / "missing/out.txt"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Err.find("out.txt"), std::string::npos);
}

}  // namespace
}  // namespace sectorbox
