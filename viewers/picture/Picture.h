#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sectorbox {

// A colour as 0x00RRGGBB.
using Colour = std::uint32_t;

// A drawn picture: Width x Height pixels, rows from the top, left to right. The window only paints
// it. The functions that save it write it unchanged.
struct Picture {
  int Width = 0;
  int Height = 0;
  std::vector<Colour> Pixels;

  Picture() = default;
  Picture(int width, int height, Colour colour = 0)
      : Width(width),
        Height(height),
        Pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), colour) {}

  Colour At(int x, int y) const {
    return Pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) +
                  static_cast<std::size_t>(x)];
  }
};

}  // namespace sectorbox
