#include "disc/health/Fault.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "disc/format/DiscLimits.h"
#include "disc/format/Text.h"

namespace sectorbox {
namespace {

struct KindLine {
  FaultKind Kind;
  Severity Weight;
  const char* Word;
  // What is wrong; "{is}" and "{should}" stand for the numbers as decimals, "{is2}" and so on for
  // that many hexadecimal digits, "{other}" for the other thing touched.
  const char* Text;
};

constexpr Severity kError = Severity::kError;
constexpr Severity kWarning = Severity::kWarning;

constexpr std::array kLines = std::to_array<KindLine>({
    {FaultKind::kLargerThanCard, kError, "larger-than-card",
     "the disc has {is} sectors, and the card room for {should}"},
    {FaultKind::kWrongMapSum, kError, "map-sum", "the checksum is {is2} and should be {should2}"},
    {FaultKind::kMapEndNoMultiple, kError, "map-end-no-multiple",
     "the end of the free list is no multiple of 3: {is}"},
    {FaultKind::kMapEndTooHigh, kError, "map-end-too-high",
     "the end of the free list is above 246: {is}"},
    {FaultKind::kRunOutOfOrder, kError, "run-out-of-order", "starts before the run in front of it"},
    {FaultKind::kRunOverlapsFormer, kError, "run-overlaps", "overlaps the run in front of it"},
    {FaultKind::kRunTouchesFormer, kError, "run-touches", "touches the run in front of it"},
    {FaultKind::kNoMark, kError, "no-mark", "is no directory: the mark at its start is missing"},
    {FaultKind::kMarksDiffer, kError, "marks-differ", "the marks at its start and its end differ"},
    {FaultKind::kSequencesDiffer, kError, "sequences-differ",
     "the sequence numbers at its start and its end differ"},
    {FaultKind::kWrongParent, kError, "wrong-parent",
     "names sector {is6} as its parent instead of sector {should6}"},
    {FaultKind::kTooMany, kError, "too-many",
     "lists more than the disc has room for: not looked at any further"},
    {FaultKind::kTooDeep, kError, "too-deep", "lies too deep: not looked at any further"},
    {FaultKind::kNameTwice, kWarning, "name-twice", "the name is there twice"},
    {FaultKind::kNameOutOfOrder, kWarning, "name-out-of-order", "stands out of order"},
    {FaultKind::kNameUntypable, kWarning, "name-untypable",
     "the name holds characters that can't be typed"},
    {FaultKind::kCircle, kError, "circle", "leads back to a directory that it lies in"},
    {FaultKind::kStartsPastEnd, kError, "starts-past-end", "starts past the end of the disc"},
    {FaultKind::kRunsPastEnd, kError, "runs-past-end", "runs past the end of the disc"},
    {FaultKind::kOverlap, kError, "overlap", "overlaps {other}"},
    {FaultKind::kUnowned, kWarning, "unowned", "{is} sectors from here belong to nothing"},
    {FaultKind::kTooLargeForBbc, kWarning, "too-large-for-bbc", format::kTooLargeForTheBbc},
    {FaultKind::kCompanionTooSmall, kWarning, "companion-too-small",
     "tells of {is} sectors, and the disc has {should}"},
    {FaultKind::kMore, kWarning, "more", "{is} more faults are not listed"},
});

// The lines stand in the order of the kinds.
constexpr bool LinesAreInOrder() {
  for (std::size_t i = 0; i < kLines.size(); ++i) {
    if (kLines[i].Kind != static_cast<FaultKind>(i)) return false;
  }
  return kLines.back().Kind == FaultKind::kMore;
}
static_assert(LinesAreInOrder());

const KindLine& LineOf(FaultKind kind) {
  return kLines[static_cast<std::size_t>(kind)];
}

// A number as word asks for it: "is" as a decimal, "is6" with six hexadecimal digits.
std::string NumberText(std::int64_t number, std::string_view digits) {
  if (digits.empty()) return std::to_string(number);
  return Hex(static_cast<std::uint64_t>(number), digits[0] - '0');
}

std::string ValueOf(const Fault& fault, std::string_view word) {
  constexpr std::string_view kIs = "is";
  constexpr std::string_view kShould = "should";
  if (word.starts_with(kIs)) return NumberText(fault.Is, word.substr(kIs.size()));
  if (word.starts_with(kShould)) return NumberText(fault.Should, word.substr(kShould.size()));
  return (fault.Other.Kind == TouchedKind::kRun ? "free " : "") + fault.Other.Text();
}

}  // namespace

std::string Touched::Text() const {
  switch (Kind) {
    case TouchedKind::kMapSector:
      return "sector " + std::to_string(Number);
    case TouchedKind::kMap:
      return "the free space map";
    case TouchedKind::kSectors:
      return "sector " + Hex(static_cast<std::uint32_t>(Number), 6);
    case TouchedKind::kRun:
      return "run " + std::to_string(Number);
    case TouchedKind::kDirectory:
    case TouchedKind::kEntry:
    case TouchedKind::kCompanion:
      break;
  }
  return Path;
}

std::string Fault::Text() const {
  std::string text;
  std::string_view rest = LineOf(Kind).Text;
  for (std::size_t open = rest.find('{'); open != std::string_view::npos; open = rest.find('{')) {
    const std::size_t close = rest.find('}');
    text += rest.substr(0, open);
    text += ValueOf(*this, rest.substr(open + 1, close - open - 1));
    rest.remove_prefix(close + 1);
  }
  text += rest;
  return text;
}

Severity SeverityOf(FaultKind kind) {
  return LineOf(kind).Weight;
}

Fault MakeFault(FaultKind kind, Touched at, std::int64_t is, std::int64_t should) {
  return {kind, SeverityOf(kind), std::move(at), is, should, {}};
}

const char* WordOf(FaultKind kind) {
  return LineOf(kind).Word;
}

}  // namespace sectorbox
