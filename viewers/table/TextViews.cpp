#include "viewers/table/TextViews.h"

#include <algorithm>
#include <array>

#include "disc/catalogue/Adfs.h"
#include "viewers/text/BasicLister.h"
#include "viewers/text/CatalogueViews.h"
#include "viewers/text/Disassembler.h"
#include "viewers/text/TextAndHexViews.h"
#include "viewers/wordwise/Wordwise.h"

namespace sectorbox {
namespace {

// The recursive views of a whole tree leave the end to their caller. The banner of the outermost
// directory shows the directory's own name and no path.
void ShowWholeCat(Disc& disc, std::int32_t sector, TextView& view) {
  ShowCatAll(disc, sector, GetDirName(disc, sector), view);
  EndView(view);
}

void ShowWholeEx(Disc& disc, std::int32_t sector, TextView& view) {
  ShowExAll(disc, sector, GetDirName(disc, sector), view);
  EndView(view);
}

using enum ViewSubject;

// clang-format off
constexpr TextViewKind kTextViews[] = {
    {"Map", 3, kNoNumber, kDisc, "the free space map", ShowMap},
    {"Cat", 4, 8, kDirectory, "a directory, as *CAT shows it", ShowCat},
    {"Ex", 6, 10, kDirectory, "a directory, as *EX shows it", ShowEx},
    {"CatAll", 5, 9, kDirectory, "a directory and all below it, as *CAT", ShowWholeCat},
    {"ExAll", 7, 11, kDirectory, "a directory and all below it, as *EX", ShowWholeEx},
    {"Text", 0, kNoNumber, kFile, "a file as text", ShowText},
    {"Hex", 1, kNoNumber, kEntry, "a file or directory in hexadecimal", ShowHex},
    {"Basic", 2, kNoNumber, kFile, "a BASIC program as a listing", Show_Basic},
    {"Dis", 12, kNoNumber, kFile, "machine code, disassembled", ShowDis},
    {"Wordwise", 14, kNoNumber, kFile, "a Wordwise document, formatted", ShowWordwise},
};
// clang-format on

constexpr bool TakesTarget(const TextViewKind& kind) {
  switch (kind.Subject) {
    case kDirectory:
      return std::holds_alternative<DirectoryGenerator>(kind.Generator);
    case kDisc:
      return std::holds_alternative<DiscGenerator>(kind.Generator);
    default:
      return std::holds_alternative<RowGenerator>(kind.Generator);
  }
}

constexpr bool HasNumber(const TextViewKind& kind, int number) {
  return number != kNoNumber && (kind.Number == number || kind.DirectoryNumber == number);
}

static_assert(std::ranges::all_of(kTextViews, TakesTarget));
static_assert(std::ranges::all_of(kTextViews, [](const TextViewKind& kind) {
  const auto owners = [](int number) {
    return std::ranges::count_if(
        kTextViews, [number](const TextViewKind& other) { return HasNumber(other, number); });
  };
  return owners(kind.Number) == 1 && owners(kind.DirectoryNumber) <= 1 && !HasNumber(kind, 13);
}));

}  // namespace

ViewTarget TargetOf(const ListRow& row) {
  return {row, row.StartSector()};
}

std::span<const TextViewKind> TextViews() {
  return kTextViews;
}

const TextViewKind* FindTextView(int number) {
  const auto* found = std::ranges::find_if(
      kTextViews, [number](const TextViewKind& kind) { return HasNumber(kind, number); });
  return found == std::end(kTextViews) ? nullptr : found;
}

const TextViewKind* FindTextView(std::string_view smallName) {
  const auto* found = std::ranges::find_if(
      kTextViews, [smallName](const TextViewKind& kind) { return SmallNameOf(kind) == smallName; });
  return found == std::end(kTextViews) ? nullptr : found;
}

std::string SmallNameOf(const TextViewKind& kind) {
  std::string name(kind.Name);
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

void ShowTextView(const TextViewKind& kind, Disc& disc, const ViewTarget& target, TextView& view) {
  if (const auto* ofRow = std::get_if<RowGenerator>(&kind.Generator)) {
    (*ofRow)(disc, target.Row, view);
  } else if (const auto* ofDirectory = std::get_if<DirectoryGenerator>(&kind.Generator)) {
    (*ofDirectory)(disc, target.Sector, view);
  } else {
    std::get<DiscGenerator>(kind.Generator)(disc, view);
  }
}

}  // namespace sectorbox
