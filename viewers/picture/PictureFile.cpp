#include "viewers/picture/PictureFile.h"

#include <png.h>

#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

constexpr std::size_t kBmpHeader = 54;
constexpr std::uint32_t kBmpInfoHeader = 40;
constexpr std::uint32_t kPixelsPerMetre = 2835;  // 72 dots an inch

void Append(std::vector<std::uint8_t>& to, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::uint8_t Red(Colour colour) {
  return static_cast<std::uint8_t>(colour >> 16);
}
std::uint8_t Green(Colour colour) {
  return static_cast<std::uint8_t>(colour >> 8);
}
std::uint8_t Blue(Colour colour) {
  return static_cast<std::uint8_t>(colour);
}

void SaveBytes(const std::vector<std::uint8_t>& bytes, const std::string& path) {
  OutputFile file = CreateOutputFile(path);
  file.Write(bytes);
  file.Close();
}

bool EndsInPng(const std::string& path) {
  constexpr std::size_t kLength = 4;
  return path.size() >= kLength && UpperCase(path.substr(path.size() - kLength)) == ".PNG";
}

}  // namespace

std::vector<std::uint8_t> EncodeBmp(const Picture& picture) {
  const auto width = static_cast<std::size_t>(picture.Width);
  const auto height = static_cast<std::size_t>(picture.Height);
  const std::size_t padding = (4 - width * 3 % 4) % 4;  // rows end on a multiple of four bytes
  const auto pixelBytes = static_cast<std::uint32_t>((width * 3 + padding) * height);
  std::vector<std::uint8_t> file = {'B', 'M'};
  file.reserve(kBmpHeader + pixelBytes);
  Append(file, static_cast<std::uint32_t>(kBmpHeader) + pixelBytes, 4);
  Append(file, 0, 4);
  Append(file, static_cast<std::uint32_t>(kBmpHeader), 4);
  Append(file, kBmpInfoHeader, 4);
  Append(file, static_cast<std::uint32_t>(width), 4);
  Append(file, static_cast<std::uint32_t>(height), 4);
  Append(file, 1, 2);   // planes
  Append(file, 24, 2);  // bits a pixel
  Append(file, 0, 4);   // not compressed
  Append(file, pixelBytes, 4);
  Append(file, kPixelsPerMetre, 4);
  Append(file, kPixelsPerMetre, 4);
  Append(file, 0, 4);  // no colour table
  Append(file, 0, 4);
  for (std::size_t y = height; y-- > 0;) {
    for (std::size_t x = 0; x < width; ++x) {
      const Colour colour = picture.Pixels[y * width + x];
      file.insert(file.end(), {Blue(colour), Green(colour), Red(colour)});
    }
    file.insert(file.end(), padding, 0);
  }
  return file;
}

std::vector<std::uint8_t> EncodePng(const Picture& picture) {
  std::vector<std::uint8_t> rgb;
  rgb.reserve(picture.Pixels.size() * 3);
  for (const Colour colour : picture.Pixels) {
    rgb.insert(rgb.end(), {Red(colour), Green(colour), Blue(colour)});
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.Width);
  image.height = static_cast<png_uint_32>(picture.Height);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::vector<std::uint8_t> file(size);
  if (png_image_write_to_memory(&image, file.data(), &size, 0, rgb.data(), 0, nullptr) == 0) {
    throw HostError("PNG", image.message);
  }
  file.resize(size);
  return file;
}

void SaveBmp(const Picture& picture, const std::string& path) {
  SaveBytes(EncodeBmp(picture), path);
}

void SavePicture(const Picture& picture, const std::string& path) {
  SaveBytes(EndsInPng(path) ? EncodePng(picture) : EncodeBmp(picture), path);
}

}  // namespace sectorbox
