#include "viewers/picture/PictureFile.h"

#include <gtest/gtest.h>
#include <png.h>

#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using testing::ReadAll;
using testing::TempFolder;
using Bytes = std::vector<std::uint8_t>;

Picture Small() {
  Picture picture(3, 2);
  picture.Pixels = {0xFF0000, 0x00FF00, 0x0000FF, 0x123456, 0xFFFFFF, 0x000000};
  return picture;
}

TEST(PictureFileTest, ABitmapHasItsRowsFromTheBottomInBlueGreenRed) {
  const Bytes expected = {
      'B',  'M',  78,   0,    0,    0,    0,    0, 0, 0, 54, 0,  0, 0,  // file header
      40,   0,    0,    0,    3,    0,    0,    0, 2, 0, 0,  0,  1, 0,  // width, height, planes
      24,   0,    0,    0,    0,    0,    24,   0, 0, 0, 19, 11, 0, 0,
      19,   11,   0,    0,    0,    0,    0,    0, 0, 0, 0,  0,   //
      0x56, 0x34, 0x12, 0xFF, 0xFF, 0xFF, 0,    0, 0, 0, 0,  0,   // lower row, padded
      0,    0,    0xFF, 0,    0xFF, 0,    0xFF, 0, 0, 0, 0,  0};  // upper row
  EXPECT_EQ(EncodeBmp(Small()), expected);
}

TEST(PictureFileTest, APngHoldsThePixelsOfThePicture) {
  const Bytes file = EncodePng(Small());
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  ASSERT_NE(png_image_begin_read_from_memory(&image, file.data(), file.size()), 0);
  EXPECT_EQ(image.width, 3U);
  EXPECT_EQ(image.height, 2U);
  image.format = PNG_FORMAT_RGB;
  Bytes rgb(PNG_IMAGE_SIZE(image));
  ASSERT_NE(png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr), 0);
  EXPECT_EQ(rgb,
            (Bytes{255, 0, 0, 0, 255, 0, 0, 0, 255, 0x12, 0x34, 0x56, 255, 255, 255, 0, 0, 0}));
}

TEST(PictureFileTest, TheNameChoosesTheKindOfFile) {
  const TempFolder folder;
  SavePicture(Small(), folder / "a.png");
  SavePicture(Small(), folder / "b.PNG");
  SavePicture(Small(), folder / "c.bmp");
  SavePicture(Small(), folder / "png");
  EXPECT_EQ(ReadAll(folder / "a.png"), EncodePng(Small()));
  EXPECT_EQ(ReadAll(folder / "b.PNG"), EncodePng(Small()));
  EXPECT_EQ(ReadAll(folder / "c.bmp"), EncodeBmp(Small()));
  EXPECT_EQ(ReadAll(folder / "png"), EncodeBmp(Small()));
  SaveBmp(Small(), folder / "a.png");
  EXPECT_EQ(ReadAll(folder / "a.png"), EncodeBmp(Small()));
}

TEST(PictureFileTest, AFileThatCantBeWrittenIsToldAndLeavesNothingBehind) {
  const TempFolder folder;
  EXPECT_THROW(SavePicture(Small(), folder / "none/a.bmp"), HostError);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(PictureFileTest, AnEmptyPictureIsNoPng) {
  EXPECT_THROW(EncodePng(Picture()), HostError);
  EXPECT_EQ(EncodeBmp(Picture()).size(), 54U);
}

}  // namespace
}  // namespace sectorbox
