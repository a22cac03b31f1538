// Compares what a view makes of every file in its input folder with the golden file. See README.md
// beside this.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <sstream>

#include "tests/viewers/text/ViewTest.h"
#include "viewers/table/TextViews.h"

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

// The load and exec addresses that a file gets. A Wordwise document has addresses of its own.
const char* AddressFor(const TextViewKind& kind) {
  return kind.Name == "Wordwise" ? "FFFFFFFF" : "FFFF1900";
}

fs::path FolderOf(const TextViewKind& kind) {
  return kFolder / SmallNameOf(kind);
}

struct Case {
  const TextViewKind* Of;
  std::string Stem;
  fs::path Input;
};

// For the list of tests, in which GoogleTest would show the bytes of the value.
void PrintTo(const Case& one, std::ostream* out) {
  *out << one.Stem;
}

std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
  return files;
}

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const TextViewKind& kind : TextViews()) {
    for (const fs::path& input : FilesIn(FolderOf(kind) / "input")) {
      cases.push_back({&kind, input.stem().string(), input});
    }
  }
  return cases;
}

// Views of a directory and of the disc: their inputs describe a disc.
bool ShowsContents(const TextViewKind& kind) {
  return kind.Subject == ViewSubject::kDirectory || kind.Subject == ViewSubject::kDisc;
}

class GoldenTest : public testing::ViewTest, public ::testing::WithParamInterface<Case> {
 protected:
  std::string Shown() {
    const Case& test = GetParam();
    const std::string input = ReadAll(test.Input);
    ViewTarget target;
    if (ShowsContents(*test.Of)) {
      Open(Description(input).Image());
      target.Sector = 2;
    } else {
      const char* address = AddressFor(*test.Of);
      target.Row = RowOf(BytesOf(input), address, address);
    }
    ShowTextView(*test.Of, disc_, target, view_);
    return view_.Text;
  }
};

TEST_P(GoldenTest, ShowsWhatItShould) {
  const fs::path golden = FolderOf(*GetParam().Of) / "golden" / (GetParam().Stem + ".txt");
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
  return SmallNameOf(*test.param.Of) + "_" + test.param.Stem;
});

TEST(GoldenFolderTest, EveryViewHasGoldens) {
  for (const TextViewKind& kind : TextViews()) {
    EXPECT_FALSE(FilesIn(FolderOf(kind) / "input").empty()) << kind.Name;
  }
}

// A golden whose input was renamed or removed would be compared with nothing.
TEST(GoldenFolderTest, EveryGoldenHasItsInput) {
  const std::vector<Case> cases = AllCases();
  for (const TextViewKind& kind : TextViews()) {
    for (const fs::path& golden : FilesIn(FolderOf(kind) / "golden")) {
      EXPECT_TRUE(std::any_of(cases.begin(), cases.end(), [&](const Case& test) {
        return test.Of == &kind && test.Stem == golden.stem();
      })) << golden;
    }
  }
}

}  // namespace
}  // namespace sectorbox
