#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/text/TextView.h"

// The table of the text views. The text window, both front ends and the golden tests read it, so a
// new view is its generator, a line in the table and a golden file.
namespace sectorbox {

// What a view shows.
enum class ViewSubject {
  kFile,       // one file
  kEntry,      // one file or one directory, as an entry
  kDirectory,  // the contents of a directory
  kDisc,       // the disc as a whole
};

// What a view is run on. A view of a file or an entry takes Row, a view of a directory takes
// Sector, a view of the disc takes neither.
struct ViewTarget {
  ListRow Row;
  std::int32_t Sector = -1;  // the directory's start sector
};

// The target that a row of the list stands for.
ViewTarget TargetOf(const ListRow& row);

// The generators of the three kinds of targets.
using RowGenerator = void (*)(Disc& disc, const ListRow& row, TextView& view);
using DirectoryGenerator = void (*)(Disc& disc, std::int32_t sector, TextView& view);
using DiscGenerator = void (*)(Disc& disc, TextView& view);

inline constexpr int kNoNumber = -1;

// One text view. The generator sets the window's caption itself.
struct TextViewKind {
  // What the view is called, in capitals and small letters. Each front end makes its own names from
  // it. The folder of the golden files is SmallNameOf it.
  std::string_view Name;
  // What a launcher writes into the Tag of the text window. A view of a directory has a second
  // number, for its launch on the current directory and not on a row. There is no number 13.
  int Number;
  int DirectoryNumber;
  ViewSubject Subject;
  // What the view shows, in a few words for a user.
  std::string_view Description;
  std::variant<RowGenerator, DirectoryGenerator, DiscGenerator> Generator;
};

// All views, in the order in which a user reads their names.
std::span<const TextViewKind> TextViews();

// The view that has that number as one of its two; null if no view has it.
[[nodiscard]] const TextViewKind* FindTextView(int number);
// The view of that small name; null if there is none.
[[nodiscard]] const TextViewKind* FindTextView(std::string_view smallName);
// The view's name in small letters.
std::string SmallNameOf(const TextViewKind& kind);

// Runs the view's generator on target, to its end or to a close request.
void ShowTextView(const TextViewKind& kind, Disc& disc, const ViewTarget& target, TextView& view);

}  // namespace sectorbox
