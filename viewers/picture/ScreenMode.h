#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "disc/store/Disc.h"
#include "viewers/picture/Picture.h"

// A file as a dump of the BBC's screen memory in MODE 0, 1, 2, 4 or 5.
//
// Screen memory lies in character cells: eight bytes in a row are the eight pixel rows of a column
// as wide as one byte's pixels; columns follow each other from left to right, and text rows of
// eight pixel rows from the top. All five modes fill 32 text rows of a picture of 640 by 512, in
// which each pixel row is two picture rows.
namespace sectorbox {

struct ScreenMode {
  int Mode;
  const char* Caption;  // the window's title before the file's name
  int BytesPerTextRow;
  int SizeLimit;  // bytes; the rest of a longer file is ignored
  int PixelsPerByte;
  int ColumnsPerPixel;  // picture columns
  int BaseColours;      // logical colours that the palette holds: 2, 4 or 8
};

inline constexpr std::array<ScreenMode, 5> kScreenModes = {{
    {0, "View Mode 0 File - ", 640, 20480, 8, 1, 2},
    {1, "View Mode 1 File - ", 640, 20480, 4, 2, 4},
    {2, "View Mode 2 File - ", 640, 20480, 2, 4, 8},
    {4, "View Mode 4 File - ", 320, 10240, 8, 2, 2},
    {5, "View Mode 5 File - ", 320, 10240, 4, 4, 4},
}};

inline constexpr int kScreenWidth = 640;
inline constexpr int kScreenHeight = 512;

// The mode of that number; null where the program doesn't show its screens.
[[nodiscard]] const ScreenMode* FindScreenMode(int mode);

// The logical colours of all modes. A window keeps one palette for as long as it lives, so each
// mode's changes are still there when the user comes back to the mode.
class ScreenPalette {
 public:
  ScreenPalette();
  // Sets the colours of one mode to the BBC's own. The other modes keep theirs.
  void Reset(const ScreenMode& mode);
  Colour Get(const ScreenMode& mode, int logical) const;
  // logical is from 0 to mode.BaseColours - 1.
  void Set(const ScreenMode& mode, int logical, Colour colour);

 private:
  std::array<std::array<Colour, 8>, 6> colours_{};  // by mode number
};

// The colour of each value that a pixel can have. In MODE 2 the values 8 to 15 flash: with flashOn
// they are the colours 7 to 0, else 0 to 7, so a changed palette entry also changes the flashing
// colour that shares it. In the other modes the values beyond BaseColours are black, and no pixel
// has them.
using CurrentColours = std::array<Colour, 16>;
CurrentColours FindCurrentColours(const ScreenMode& mode, const ScreenPalette& palette,
                                  bool flashOn);

// The bytes of the screen in a file of size bytes at startSector: at most mode.SizeLimit. Bytes
// past the image's end are zeros.
std::vector<std::uint8_t> ReadScreen(Disc& disc, const ScreenMode& mode, std::int32_t startSector,
                                     std::uint32_t size);

// Draws the whole text rows of bytes, at most 32. An incomplete last row isn't drawn, and the rest
// of the picture is black. The picture is 640 by 512 for any number of bytes.
Picture DrawScreen(const ScreenMode& mode, std::span<const std::uint8_t> bytes,
                   const CurrentColours& colours);

}  // namespace sectorbox
