#pragma once

#include "tests/support/WindowFixture.h"

namespace sectorbox::testing {

class PanesTest : public WindowTest {
 protected:
  // $ with ALPHA (3 bytes), DIR (INNER, with DEEP; FILE), EMPTY and ZED.
  PanesTest() {
    image_.AddFile(2, {"ALPHA", {1, 2, 3}, 0xFFFF1900, 0x8023, "LWR"});
    dir_ = image_.AddDirectory(2, "DIR");
    image_.AddDirectory(2, "EMPTY");
    image_.AddFile(2, {"ZED", {9}, 0x1000, 0x2000, "WR"});
    const auto inner = image_.AddDirectory(dir_, "INNER");
    image_.AddDirectory(inner, "DEEP");
    image_.AddFile(dir_, {"FILE", std::vector<std::uint8_t>(300, 7)});
  }
  ListRow RowOf(const QString& name) {
    return window_->ThePanes().List().Model().Rows()[static_cast<std::size_t>(Row(name))];
  }
  void ClickHeading(int column) { window_->ThePanes().List().HeadingClicked(column); }
  void Tool(const char* key) { Find<QAction>(key).trigger(); }

  ImageBuilder image_{2560};
  std::int32_t dir_ = 0;
};

}  // namespace sectorbox::testing
