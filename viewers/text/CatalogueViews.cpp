#include "viewers/text/CatalogueViews.h"

#include <array>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/WalkBudget.h"

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
std::string Cell(Disc& disc, std::int64_t entry, const std::string& name) {
  return Padded(name, kNameColumns) + " " + Padded(GetEntryAttributes(disc, entry), kAttrColumns) +
         "(" + HexByte(disc, entry + kEntrySequence) + ")  ";
}

std::string ExLine(Disc& disc, std::int64_t entry, const std::string& name) {
  std::string line = Cell(disc, entry, name);
  if (!EntryHas(disc, entry, kAttrDirectory)) {
    line += HexDword(disc, entry + kEntryLoad) + "  " + HexDword(disc, entry + kEntryExec) + "  " +
            HexDword(disc, entry + kEntryLength) + "  ";
  }
  return line + HexSector(disc, entry + kEntrySector) + "\r";
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
// False if a close request has stopped it.
bool ShowEntries(Disc& disc, std::int32_t sector, Layout layout, StopTest test, TextView& view) {
  bool lineOpen = true;
  for (std::int32_t n = 0; n < kEntryCount; ++n) {
    if (test == StopTest::kBeforeEachEntry && view.Finished) return false;
    const std::string name = GetEntryName(disc, sector, n);
    if (EntryIsEmpty(name)) break;
    const std::int64_t entry = EntryOffset(sector, n);
    if (layout == Layout::kEx) {
      view.ShowData(ExLine(disc, entry, name));
      continue;
    }
    view.ShowData(Cell(disc, entry, name));
    lineOpen = (n + 1) % kCellsOfLine != 0;
    if (!lineOpen) view.ShowData("\r");
  }
  if (layout == Layout::kEx) return true;
  if (lineOpen) view.ShowData("\r");
  view.ShowData("\r");
  return true;
}

class WholeTree {
 public:
  WholeTree(Disc& disc, Layout layout, TextView& view)
      : disc_(disc), layout_(layout), view_(view) {}

  void Show(std::int32_t sector, const std::string& path) {
    if (view_.Finished || !budget_.Enter()) return;
    ShowDirectory(sector, path);
    budget_.Leave();
  }

 private:
  void ShowDirectory(std::int32_t sector, const std::string& path);
  bool ShowSubdirectories(std::int32_t sector, const std::string& path);

  Disc& disc_;
  Layout layout_;
  TextView& view_;
  WalkBudget budget_;
};

void WholeTree::ShowDirectory(std::int32_t sector, const std::string& path) {
  view_.SetCaption(layout_ == Layout::kCat ? "*CATALL" : "*EXALL");
  if (ShowUnlessDirectory(disc_, sector, view_)) return;
  const std::string stars(40, '*');
  view_.ShowData(stars + "\r");
  view_.ShowData(path + "\r");
  view_.ShowData(stars + "\r");
  ShowHeader(disc_, sector, view_);
  if (!ShowEntries(disc_, sector, layout_, StopTest::kBeforeEachEntry, view_)) return;
  if (layout_ == Layout::kEx) view_.ShowData("\r");
  if (!ShowSubdirectories(sector, path)) return;
  // Every level sets it behind its subdirectories, so the name of the outermost one stays.
  view_.DefaultName = GetDirName(disc_, sector);
}

// The list of entries ends at the first empty one, but this looks at all 47. A subdirectory is
// called by the name in its own tail, and not by the name in its entry.
bool WholeTree::ShowSubdirectories(std::int32_t sector, const std::string& path) {
  for (std::int32_t n = 0; n < kEntryCount; ++n) {
    if (view_.Finished) return false;
    const std::int64_t entry = EntryOffset(sector, n);
    if ((disc_.TheDisc.Fetch(entry) & kLowBits) == 0) continue;
    if (!EntryHas(disc_, entry, kAttrDirectory)) continue;
    const std::int32_t child = Fetch24(disc_, entry + kEntrySector);
    Show(child, path + "." + GetDirName(disc_, child));
    if (budget_.Exhausted()) return true;
  }
  return true;
}

}  // namespace

void ShowHeader(Disc& disc, std::int32_t sector, TextView& view) {
  const std::uint8_t option = disc.TheDisc.Fetch(kMapBootOption);
  view.ShowData(Padded(GetDirTitle(disc, sector), kHeaderColumns) + " (" +
                HexByte(disc, SectorOffset(sector)) + ")\r");
  // An image has no current drive and no library: fixed words stand where the BBC shows them.
  view.ShowData(Padded("Drive:0", kHeaderColumns) + " Option " + HexByte(disc, kMapBootOption) +
                " (" + BootOptionName(option) + ")\r");
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
  WholeTree(disc, Layout::kCat, view).Show(sector, path);
}

void ShowExAll(Disc& disc, std::int32_t sector, const std::string& path, TextView& view) {
  WholeTree(disc, Layout::kEx, view).Show(sector, path);
}

void ShowMap(Disc& disc, TextView& view) {
  view.SetCaption("Free Disc Space Map");
  view.DefaultName = "FreeSpace";
  view.ShowData("Address : Length\r");
  for (std::int16_t i = 0; i < disc.FreeCount; ++i) {
    const auto index = static_cast<std::size_t>(i);
    view.ShowData(Hex(static_cast<std::uint32_t>(disc.FreeStart[index]), 6) + "  : " +
                  Hex(static_cast<std::uint32_t>(disc.FreeLen[index]), 6) + "\r");
  }
  EndView(view);
}

}  // namespace sectorbox
