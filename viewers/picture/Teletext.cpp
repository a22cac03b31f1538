#include "viewers/picture/Teletext.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "viewers/picture/Colours.h"

namespace sectorbox {
namespace {

constexpr std::uint32_t kMaxLength = 1024;
constexpr int kAdaptorHeader = 104;
constexpr int kEmptyHeight = 4;
constexpr int kCellWidth = TeletextFont::kCellWidth;
constexpr int kCellHeight = TeletextFont::kCellHeight;
constexpr int kPageWidth = kTeletextColumns * kCellWidth;
constexpr std::uint8_t kBlank = 32;
constexpr std::uint8_t kFirstControl = 128;
constexpr std::uint8_t kLastControl = 159;
constexpr std::uint8_t kGraphicBit = 32;

enum Control : std::uint8_t {
  kTextRed = 129,  // to 135, white
  kTextWhite = 135,
  kFlash = 136,
  kSteady = 137,
  kNormalHeight = 140,
  kDoubleHeight = 141,
  kMosaicRed = 145,  // to 151, white
  kMosaicWhite = 151,
  kConceal = 152,
  kContiguousBlocks = 153,
  kSeparatedBlocks = 154,
  kBlackBackground = 156,
  kNewBackground = 157,
  kHoldMosaic = 158,
  kReleaseMosaic = 159,
};

// One row of pixels as it grows from left to right. A run of one colour is written in one go when
// the colour changes: a page is mostly wide stretches of background, and each tick of the flashing
// draws all of it again.
class PixelRow {
 public:
  explicit PixelRow(Colour* to) : to_(to) {}

  void Extend(Colour colour, int length) {
    if (colour != colour_) {
      Flush();
      colour_ = colour;
    }
    length_ += length;
  }
  void Flush() {
    std::fill_n(to_, length_, colour_);
    to_ += length_;
    length_ = 0;
  }

 private:
  Colour* to_;
  Colour colour_ = kBlack;
  int length_ = 0;
};

// Adds a pattern's runs of equal bits to the row, from bit 11 down.
void ExtendByPattern(PixelRow& row, unsigned pattern, Colour paint, Colour background) {
  if (pattern == 0) {
    row.Extend(background, kCellWidth);
    return;
  }
  // The pattern stands at the top of 16 bits. The loop counts its runs of zeros and of ones.
  auto bits = static_cast<std::uint16_t>(pattern << 4);
  for (int left = kCellWidth; left > 0;) {
    const bool lit = (bits & 0x8000) != 0;
    const int run = std::min(left, lit ? std::countl_one(bits) : std::countl_zero(bits));
    row.Extend(lit ? paint : background, run);
    bits = static_cast<std::uint16_t>(bits << run);
    left -= run;
  }
}

// The state that control codes change. Each row of the page begins with a new one.
struct RowState {
  Colour Foreground = kWhite;
  Colour Background = kBlack;
  bool Flash = false;
  bool DoubleHeight = false;
  bool Graphics = false;
  bool Separated = false;
  bool Hold = false;
  std::uint8_t HeldChar = kBlank;
  int Variant = kTextSet;
};

class PageDrawer {
 public:
  PageDrawer(const TeletextFont& font, std::int16_t flashPhase)
      : font_(font), flashPhase_(flashPhase) {}

  // Draws one row of codes from pixels on.
  void DrawRow(std::span<const std::uint8_t> codes, Colour* pixels) {
    RowState state;
    std::array<PixelRow, kCellHeight> rows =
        MakeRows(pixels, std::make_index_sequence<kCellHeight>());
    for (const std::uint8_t code : codes) DrawCell(code, state, rows);
    for (PixelRow& row : rows) row.Flush();
    bottomHalf_ = nextBottomHalf_;
    nextBottomHalf_ = false;
  }

 private:
  template <std::size_t... I>
  static std::array<PixelRow, kCellHeight> MakeRows(Colour* pixels, std::index_sequence<I...>) {
    return {PixelRow(pixels + I * kPageWidth)...};
  }

  void DrawCell(std::uint8_t code, RowState& state, std::array<PixelRow, kCellHeight>& rows) {
    // A new foreground shows from the next cell on. A new background shows in this cell already.
    Colour cellFore = state.Foreground;
    if (code < kBlank) code = static_cast<std::uint8_t>(code + kFirstControl);
    if ((code & kGraphicBit) != 0 && state.Graphics) state.HeldChar = code;
    if (code >= kFirstControl && code <= kLastControl) {
      Obey(code, state, cellFore);
      code = state.Hold && state.Graphics ? state.HeldChar : kBlank;
      // The variant depends only on what control codes change.
      state.Variant = !state.Graphics ? kTextSet : state.Separated ? kSeparated : kContiguous;
    }
    // The row below a double-height row shows only lower halves: plain characters there are blanks.
    if (bottomHalf_ && !state.DoubleHeight && (code & 127) >= kBlank) code = kBlank;
    const int glyph = std::max((code & 127) - kBlank, 0);
    const Colour paint = state.Flash && flashPhase_ == 0 ? state.Background : cellFore;
    DrawPattern(font_.Pattern(state.Variant, glyph), paint, state, rows);
  }

  void DrawPattern(const TeletextFont::Cell& cell, Colour paint, const RowState& state,
                   std::array<PixelRow, kCellHeight>& rows) const {
    const std::size_t half = bottomHalf_ ? kCellHeight / 2 : 0;
    for (std::size_t y = 0; y < kCellHeight; ++y) {
      const unsigned pattern = cell[state.DoubleHeight ? y / 2 + half : y];
      ExtendByPattern(rows[y], pattern, paint, state.Background);
    }
  }

  // A control code without a case here does nothing.
  void Obey(std::uint8_t code, RowState& state, Colour& cellFore) {
    if (code >= kTextRed && code <= kTextWhite) SetColour(state, code - kTextRed + 1, false);
    if (code >= kMosaicRed && code <= kMosaicWhite) SetColour(state, code - kMosaicRed + 1, true);
    switch (code) {
      case kFlash:
      case kSteady:
        state.Flash = code == kFlash;
        break;
      case kNormalHeight:
        state.DoubleHeight = false;
        break;
      case kDoubleHeight:
        state.DoubleHeight = true;
        if (!bottomHalf_) nextBottomHalf_ = true;
        break;
      case kConceal:
        cellFore = state.Background;
        break;
      case kContiguousBlocks:
      case kSeparatedBlocks:
        state.Separated = code == kSeparatedBlocks;
        break;
      case kBlackBackground:
        state.Background = kBlack;
        break;
      case kNewBackground:
        state.Background = state.Foreground;
        break;
      case kHoldMosaic:
      case kReleaseMosaic:
        state.Hold = code == kHoldMosaic;
        break;
      default:
        break;
    }
  }

  static void SetColour(RowState& state, int colour, bool graphics) {
    state.Foreground = kPhysicalColours[static_cast<std::size_t>(colour)];
    state.Graphics = graphics;
  }

  const TeletextFont& font_;
  const std::int16_t flashPhase_;
  bool bottomHalf_ = false;      // this row shows the lower halves of double-height characters
  bool nextBottomHalf_ = false;  // the next row shows them
};

}  // namespace

TeletextLayout FindTeletextLayout(std::uint32_t size) {
  const std::uint32_t length = std::min(size, kMaxLength);
  return {static_cast<int>(length / kTeletextColumns),
          length == 960 || length == 1023 ? 0 : kAdaptorHeader};
}

std::vector<std::uint8_t> ReadTeletextPage(Disc& disc, std::int32_t startSector,
                                           std::uint32_t size) {
  const TeletextLayout layout = FindTeletextLayout(size);
  std::vector<std::uint8_t> codes(static_cast<std::size_t>(layout.Rows * kTeletextColumns));
  disc.TheDisc.FetchBytes(SectorOffset(startSector) + layout.Offset, codes);
  return codes;
}

Picture DrawTeletext(std::span<const std::uint8_t> codes, const TeletextFont& font,
                     std::int16_t flashPhase) {
  const std::size_t rows = codes.size() / kTeletextColumns;
  if (rows == 0) return {kPageWidth, kEmptyHeight, kBlack};
  Picture picture(kPageWidth, static_cast<int>(rows) * kCellHeight, kBlack);
  PageDrawer drawer(font, flashPhase);
  for (std::size_t row = 0; row < rows; ++row) {
    drawer.DrawRow(codes.subspan(row * kTeletextColumns, kTeletextColumns),
                   picture.Pixels.data() + row * kCellHeight * kPageWidth);
  }
  return picture;
}

}  // namespace sectorbox
