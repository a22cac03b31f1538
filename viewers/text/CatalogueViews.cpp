#include "viewers/text/CatalogueViews.h"

#include <array>
#include <utility>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/format/Text.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::size_t kHeaderColumns = 19;
constexpr std::size_t kNameColumns = 10;
constexpr std::size_t kAttrColumns = 3;
constexpr std::int32_t kCellsOfLine = 4;

std::string Padded(std::string text, std::size_t columns) {
  text.resize(columns, ' ');
  return text;
}

std::string BootOptionName(std::uint8_t option) {
  static constexpr std::array<const char*, 4> kNames = {"Off ", "Load", "Run ", "Exec"};
  return option < kNames.size() ? kNames[option] : "    ";
}

// The 20 columns with which all four views begin an entry. The column of the attributes holds three
// letters; the last ones of a longer combination are lost.
std::string Cell(const Entry& entry) {
  return Padded(entry.Name(), kNameColumns) + " " + Padded(entry.Letters(), kAttrColumns) + "(" +
         Hex(entry.Sequence(), 2) + ")  ";
}

std::string ExLine(const Entry& entry) {
  std::string line = Cell(entry);
  if (!entry.IsDirectory()) {
    line +=
        Hex(entry.Load(), 8) + "  " + Hex(entry.Exec(), 8) + "  " + Hex(entry.Length(), 8) + "  ";
  }
  return line + Hex(static_cast<std::uint32_t>(entry.Start()), 6) + "\r";
}

enum class Layout { kCat, kEx };
enum class StopTest { kNone, kBeforeEachEntry };

bool ShowUnlessDirectory(Disc& disc, std::int32_t sector, TextView& view) {
  if (IsDirectory(disc, sector)) return false;
  view.ShowData("This does not appear to be a Directory structure\r");
  view.DefaultName = GetDirName(disc, sector);
  return true;
}

// Shows the entries, and in the four-column layout the end of the last line and an empty line.
// False if a close request has stopped it. The user may change the directory while the view waits,
// so each entry is read when its turn comes.
bool ShowEntries(Disc& disc, std::int32_t sector, Layout layout, StopTest test, TextView& view) {
  bool lineOpen = true;
  for (std::int32_t n = 0; n < kEntryCount; ++n) {
    if (test == StopTest::kBeforeEachEntry && view.Finished) return false;
    const Entry entry = DirectoryAt(disc, sector).At(n);
    if (entry.IsEmpty()) break;
    if (layout == Layout::kEx) {
      view.ShowData(ExLine(entry));
      continue;
    }
    view.ShowData(Cell(entry));
    lineOpen = (n + 1) % kCellsOfLine != 0;
    if (!lineOpen) view.ShowData("\r");
  }
  if (layout == Layout::kEx) return true;
  if (lineOpen) view.ShowData("\r");
  view.ShowData("\r");
  return true;
}

// Shows a directory and then all below it. A subdirectory is shown with the name in its own tail,
// and not with the name in its entry. Each directory sets the name that is offered for saving after
// the directories below it. So the name of the outermost one stays in the end.
class WholeTree : public DirectoryVisitor {
 public:
  WholeTree(Disc& disc, Layout layout, std::string path, TextView& view)
      : disc_(disc), layout_(layout), top_(std::move(path)), view_(view) {}

  Walk Enter(const WalkStep& at, const Directory&) override {
    if (view_.Finished) return Walk::kPassOver;
    paths_.push_back(paths_.empty() ? top_ : paths_.back() + "." + GetDirName(disc_, at.Sector));
    const bool goesOn = ShowDirectory(at.Sector);
    if (!goesOn) paths_.pop_back();
    return goesOn ? Walk::kOn : Walk::kPassOver;
  }
  Walk Meet(const WalkStep&, std::int32_t, const Entry&) override {
    return view_.Finished ? Walk::kStop : Walk::kOn;
  }
  Walk OutOfBounds(const WalkStep&) override { return Walk::kOn; }
  void Leave(const WalkStep& at) override {
    if (!view_.Finished) view_.DefaultName = GetDirName(disc_, at.Sector);
    paths_.pop_back();
  }

 private:
  // False if the walk must not go on below: there is no directory at sector, or a close request has
  // come.
  bool ShowDirectory(std::int32_t sector);

  Disc& disc_;
  Layout layout_;
  std::string top_;
  TextView& view_;
  std::vector<std::string> paths_;  // of the directories that the walk is in, the top one first
};

bool WholeTree::ShowDirectory(std::int32_t sector) {
  view_.SetCaption(layout_ == Layout::kCat ? "*CATALL" : "*EXALL");
  if (ShowUnlessDirectory(disc_, sector, view_)) return false;
  const std::string stars(40, '*');
  view_.ShowData(stars + "\r");
  view_.ShowData(paths_.back() + "\r");
  view_.ShowData(stars + "\r");
  ShowHeader(disc_, sector, view_);
  if (!ShowEntries(disc_, sector, layout_, StopTest::kBeforeEachEntry, view_)) return false;
  if (layout_ == Layout::kEx) view_.ShowData("\r");
  return true;
}

// The list of entries ends at the first empty slot. This walk looks at all 47 slots.
void ShowTree(Disc& disc, std::int32_t sector, const std::string& path, Layout layout,
              TextView& view) {
  WholeTree tree(disc, layout, path, view);
  (void)WalkDirectories(disc, sector, tree, {.EnterAgain = true, .PastEmptySlots = true});
}

}  // namespace

void ShowHeader(Disc& disc, std::int32_t sector, TextView& view) {
  const std::uint8_t option = ReadMap(disc).BootOption();
  view.ShowData(Padded(GetDirTitle(disc, sector), kHeaderColumns) + " (" +
                Hex(DirectoryAt(disc, sector).Sequence(), 2) + ")\r");
  // An image has no current drive and no library: fixed words stand where the BBC shows them.
  view.ShowData(Padded("Drive:0", kHeaderColumns) + " Option " + Hex(option, 2) + " (" +
                BootOptionName(option) + ")\r");
  view.ShowData(Padded("Dir. " + GetDirName(disc, sector), kHeaderColumns) + " Lib. \"Unset\"\r\r");
}

void ShowCat(Disc& disc, std::int32_t sector, TextView& view) {
  view.SetCaption("*CAT");
  if (!ShowUnlessDirectory(disc, sector, view)) {
    ShowHeader(disc, sector, view);
    ShowEntries(disc, sector, Layout::kCat, StopTest::kNone, view);
    view.DefaultName = GetDirName(disc, sector);
  }
  EndView(view);
}

void ShowEx(Disc& disc, std::int32_t sector, TextView& view) {
  view.SetCaption("*EX");
  if (ShowUnlessDirectory(disc, sector, view)) return;
  ShowHeader(disc, sector, view);
  ShowEntries(disc, sector, Layout::kEx, StopTest::kNone, view);
  view.DefaultName = GetDirName(disc, sector);
}

void ShowCatAll(Disc& disc, std::int32_t sector, const std::string& path, TextView& view) {
  ShowTree(disc, sector, path, Layout::kCat, view);
}

void ShowExAll(Disc& disc, std::int32_t sector, const std::string& path, TextView& view) {
  ShowTree(disc, sector, path, Layout::kEx, view);
}

void ShowMap(Disc& disc, TextView& view) {
  view.SetCaption("Free Disc Space Map");
  view.DefaultName = "FreeSpace";
  view.ShowData("Address : Length\r");
  for (const FreeRun& run : FreeRuns(disc)) {
    view.ShowData(Hex(static_cast<std::uint32_t>(run.Start), 6) + "  : " +
                  Hex(static_cast<std::uint32_t>(run.Length), 6) + "\r");
  }
  EndView(view);
}

}  // namespace sectorbox
