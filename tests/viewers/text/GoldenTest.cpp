// Every file in a view's input folder, and what the view makes of it. See README.md beside this.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "tests/viewers/text/ViewTest.h"
#include "viewers/text/BasicLister.h"
#include "viewers/text/CatalogueViews.h"
#include "viewers/text/Disassembler.h"
#include "viewers/text/TextAndHexViews.h"
#include "viewers/wordwise/Wordwise.h"

namespace sectorbox {
namespace {

namespace fs = std::filesystem;
using testing::BytesOf;
using testing::ImageBuilder;

const fs::path kFolder = VIEWER_TESTS_FOLDER;

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A disc from its description, a line each:
//   file PATH ATTR LOAD EXEC LENGTH    dir PATH ATTR    hole SECTORS    boot N    title PATH TEXT
// A path is a directory's and a name, "$" being the root; attributes are letters, "-" for none.
class Description {
 public:
  explicit Description(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) Add(line);
  }
  const ImageBuilder& Image() const { return image_; }

 private:
  void Add(const std::string& line) {
    std::istringstream words(line);
    std::string what;
    std::string path;
    std::string attr;
    words >> what;
    if (what == "hole" || what == "boot") {
      int number = 0;
      words >> number;
      if (what == "hole") {
        image_.AddHole(number);
      } else {
        image_.SetBootOption(static_cast<std::uint8_t>(number));
      }
      return;
    }
    words >> path;
    if (what == "title") {
      std::string title;
      std::getline(words >> std::ws, title);
      image_.SetTitle(dirs_.at(path), title);
      return;
    }
    words >> attr;
    const auto dot = path.rfind('.');
    const std::int32_t parent = dirs_.at(path.substr(0, dot));
    const std::string name = path.substr(dot + 1);
    if (what == "dir") {
      dirs_[path] = image_.AddDirectory(parent, name, attr);
      return;
    }
    ImageBuilder::File file{name, {}, 0, 0, attr};
    std::size_t length = 0;
    words >> std::hex >> file.Load >> file.Exec >> length;
    file.Bytes.assign(length, 0xE5);
    image_.AddFile(parent, file);
  }

  ImageBuilder image_{640};
  std::map<std::string, std::int32_t> dirs_{{"$", 2}};
};

struct View {
  const char* Name;
  const char* Load;  // what a file of this view is given as both addresses
  void (*ShowFile)(Disc&, const ListRow&, TextView&);
  void (*ShowDisc)(Disc&, TextView&);
};

const View kViews[] = {
    {"text", "00000000", ShowText, nullptr},
    {"hex", "00000000", ShowHex, nullptr},
    {"basic", "FFFF1900", Show_Basic, nullptr},
    {"dis", "FFFF1900", ShowDis, nullptr},
    {"wordwise", "FFFFFFFF", ShowWordwise, nullptr},
    {"cat", "", nullptr, [](Disc& disc, TextView& view) { ShowCat(disc, 2, view); }},
    {"ex", "", nullptr, [](Disc& disc, TextView& view) { ShowEx(disc, 2, view); }},
    {"catall", "", nullptr, [](Disc& disc, TextView& view) { ShowCatAll(disc, 2, "$", view); }},
    {"exall", "", nullptr, [](Disc& disc, TextView& view) { ShowExAll(disc, 2, "$", view); }},
    {"map", "", nullptr, ShowMap},
};

struct Case {
  const View* Of;
  std::string Stem;
  fs::path Input;
};

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const View& view : kViews) {
    for (const auto& entry : fs::directory_iterator(kFolder / view.Name / "input")) {
      cases.push_back({&view, entry.path().stem().string(), entry.path()});
    }
  }
  return cases;
}

class GoldenTest : public testing::ViewTest, public ::testing::WithParamInterface<Case> {
 protected:
  std::string Shown() {
    const Case& test = GetParam();
    const std::string input = ReadAll(test.Input);
    if (test.Of->ShowDisc != nullptr) {
      Open(Description(input).Image());
      test.Of->ShowDisc(disc_, view_);
    } else {
      test.Of->ShowFile(disc_, RowOf(BytesOf(input), test.Of->Load, test.Of->Load), view_);
    }
    return view_.Text;
  }
};

TEST_P(GoldenTest, ShowsWhatItShould) {
  const fs::path golden = kFolder / GetParam().Of->Name / "golden" / (GetParam().Stem + ".txt");
  const std::string shown = Shown();
  if (std::getenv("SECTORBOX_UPDATE_GOLDENS") != nullptr) {
    fs::create_directories(golden.parent_path());
    std::ofstream(golden, std::ios::binary) << shown;
    return;
  }
  ASSERT_TRUE(fs::exists(golden)) << "no golden for " << GetParam().Input;
  EXPECT_EQ(shown, ReadAll(golden));
}

INSTANTIATE_TEST_SUITE_P(Views, GoldenTest, ::testing::ValuesIn(AllCases()), [](const auto& test) {
  return std::string(test.param.Of->Name) + "_" + test.param.Stem;
});

// A golden whose input was renamed or removed would be compared with nothing.
TEST(GoldenFolderTest, EveryGoldenHasItsInput) {
  const std::vector<Case> cases = AllCases();
  for (const View& view : kViews) {
    for (const auto& entry : fs::directory_iterator(kFolder / view.Name / "golden")) {
      EXPECT_TRUE(std::any_of(cases.begin(), cases.end(), [&](const Case& test) {
        return test.Of == &view && test.Stem == entry.path().stem();
      })) << entry.path();
    }
  }
}

}  // namespace
}  // namespace sectorbox
