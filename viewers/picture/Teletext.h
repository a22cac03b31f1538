#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "disc/store/Disc.h"
#include "viewers/picture/Picture.h"
#include "viewers/picture/TeletextFont.h"

// A file as a MODE 7 screen: its bytes are teletext codes, 40 to a row.
namespace sectorbox {

inline constexpr int kTeletextColumns = 40;
// The window's title before the file's name.
inline constexpr char kTeletextCaption[] = "View Teletext File - ";

// How a page lies in a file of size bytes: rows of 40 codes from an offset on. A screen of 24 rows
// (960 bytes) or one less than a kilobyte begins at the file's first byte. A file of any other
// length, a short one too, counts as a page that a teletext adaptor has stored, with 104 bytes of
// its own before the codes.
struct TeletextLayout {
  int Rows = 0;  // 0 to 25
  int Offset = 0;
};
TeletextLayout FindTeletextLayout(std::uint32_t size);

// The codes of the page in a file of size bytes at startSector, 40 for each row. A page that
// reaches past the file's end because of its offset takes the bytes that lie there. Bytes past the
// image's end are zeros.
std::vector<std::uint8_t> ReadTeletextPage(Disc& disc, std::int32_t startSector,
                                           std::uint32_t size);

// Draws codes, 40 a row, as the BBC's teletext chip does. The picture is 480 pixels wide and 20
// high for each row; without a row it is 480 by 4 black pixels. An incomplete last row isn't drawn.
//
// A row starts as white contiguous text on black. A code from 0 to 31 is the same as one from 128
// to 159 and controls what follows in its row; it shows as a blank or, with Hold in graphics, as
// the last mosaic. flashPhase 0 hides flashing text, 1 shows it.
Picture DrawTeletext(std::span<const std::uint8_t> codes, const TeletextFont& font,
                     std::int16_t flashPhase);

}  // namespace sectorbox
