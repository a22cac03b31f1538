#include <QTest>

#include "shell/panes/PaneLayout.h"
#include "tests/support/WindowFixture.h"

namespace sectorbox::testing {
namespace {

class LayoutTest : public WindowTest {
 protected:
  // All in pixels of 15 twips.
  int Tree() { return Find("tvwDB").width(); }
  void Drag(int from, int to) {
    QWidget& strip = Find("imgSplitter");
    const QPoint start(from, 20);
    QTest::mousePress(&strip, Qt::LeftButton, {}, start);
    QTest::mouseMove(&strip, start + QPoint(to, 0));
    Settle();
    QTest::mouseRelease(&strip, Qt::LeftButton, {}, start + QPoint(to, 0));
  }
};

TEST_F(LayoutTest, PanesStandBelowTheToolBarWithTheirGaps) {
  Start();
  window_->resize(600, 400);
  EXPECT_EQ(Tree(), 200);
  QWidget& list = Find("lvwDB");
  EXPECT_EQ(Find("tvwDB").y(), 28);
  EXPECT_EQ(list.y(), 28);
  EXPECT_EQ(list.x(), 203);      // 3000 + 40 twips
  EXPECT_EQ(list.width(), 391);  // 9000 - (3000 + 140)
  EXPECT_EQ(list.height(), Find("tvwDB").height());
  EXPECT_EQ(Find("imgSplitter").x(), 200);
}

TEST_F(LayoutTest, AWindowNarrowerThan3000IsWidenedTo3000) {
  Start();
  window_->resize(150, 300);
  EXPECT_EQ(window_->width(), 200);
}

TEST_F(LayoutTest, InANarrowWindowTheSecondRuleMakesTheTreeNarrow) {
  Start();
  window_->resize(333, 300);
  EXPECT_EQ(Tree(), 133);
  window_->resize(600, 300);
  EXPECT_EQ(Tree(), 200);
}

TEST_F(LayoutTest, HeightHasNoMinimum) {
  Start();
  window_->resize(433, 60);
  EXPECT_LE(window_->height(), 60);
}

TEST_F(LayoutTest, TheSplitterMovesTheBorderToWhereTheBarIsLetGo) {
  Start();
  window_->resize(800, 400);
  Drag(0, 100);
  EXPECT_EQ(Tree(), 300);
}

TEST_F(LayoutTest, ABarLetGoNearAnEdgeSnapsBackTo3000) {
  Start();
  window_->resize(800, 400);
  Drag(0, -190);
  EXPECT_EQ(Tree(), 200);
  Drag(0, 580);
  EXPECT_EQ(Tree(), 600);
}

TEST_F(LayoutTest, TheBarStops500FromTheEdgesWhileItIsDragged) {
  Start();
  window_->resize(800, 400);
  QWidget& strip = Find("imgSplitter");
  QWidget& bar = Find("picSplitter");
  EXPECT_FALSE(bar.isVisible());
  QTest::mousePress(&strip, Qt::LeftButton, {}, {0, 20});
  EXPECT_TRUE(bar.isVisible());
  EXPECT_EQ(bar.x(), strip.x());
  EXPECT_EQ(bar.width(), strip.width() / 2);
  QTest::mouseMove(&strip, {-1000, 20});
  Settle();
  EXPECT_EQ(bar.x(), 33);
  QTest::mouseMove(&strip, {2000, 20});
  Settle();
  EXPECT_EQ(bar.x(), 767);
  QTest::mouseRelease(&strip, Qt::LeftButton, {}, {2000, 20});
  EXPECT_FALSE(bar.isVisible());
}

TEST_F(LayoutTest, AMinimisedWindowIsLaidOutWithoutHarm) {
  Start();
  window_->showMinimized();
  window_->ThePanes().Form_Resize();
  double x = -5000;
  window_->ThePanes().SizeControls(x);
  EXPECT_LE(x, 3000);
}

}  // namespace
}  // namespace sectorbox::testing
