#include <QHeaderView>
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

// --- What the user has dragged -----------------------------------------------------------------

class WidthsTest : public LayoutTest {
 protected:
  QHeaderView& Header() { return *window_->ThePanes().List().Header(); }
  // Drags the right edge of a heading, as a user does.
  void DragColumn(int column, int by) {
    const int edge = Header().sectionViewportPosition(column) + Header().sectionSize(column) - 1;
    QWidget& headings = *Header().viewport();
    QTest::mousePress(&headings, Qt::LeftButton, {}, {edge, 5});
    QTest::mouseMove(&headings, {edge + by, 5});
    Settle();
    QTest::mouseRelease(&headings, Qt::LeftButton, {}, {edge + by, 5});
  }
};

TEST_F(WidthsTest, AFreshStartHasTheGivenWidths) {
  Start();
  EXPECT_EQ(Tree(), 200);
  const int given[] = {80, 47, 33, 67, 67, 67, 67};  // 1200, 700, 500, 1000 twips
  for (int column = 0; column < kColumns; ++column) {
    EXPECT_EQ(Header().sectionSize(column), given[column]) << column;
  }
  window_->close();
  for (const char* key : {"Splitter", "ColumnFilename", "ColumnAttr", "ColumnSector"}) {
    EXPECT_FALSE(SettingsStore().Has(key)) << key;
  }
}

TEST_F(WidthsTest, TheSplitterAndColumnsThatTheUserDraggedComeBackAtTheNextStart) {
  SettingsStore().PutTwips("MainWidth", 800 * 15);
  Start();
  Drag(0, 100);
  DragColumn(kColAttr, 30);
  ASSERT_EQ(Tree(), 300);
  ASSERT_EQ(Header().sectionSize(kColAttr), 77);
  window_->close();
  StartAgain();
  EXPECT_EQ(Tree(), 300);
  EXPECT_EQ(Header().sectionSize(kColAttr), 77);
  EXPECT_EQ(Header().sectionSize(kColSeq), 33);
  EXPECT_FALSE(SettingsStore().Has("ColumnSeq"));
  window_->close();
  StartAgain();
  EXPECT_EQ(Tree(), 300) << "also where nobody has dragged anything meanwhile";
  EXPECT_EQ(Header().sectionSize(kColAttr), 77);
}

TEST_F(WidthsTest, AColumnThatTheUserDraggedStaysWhenAnotherDiscIsOpened) {
  Start();
  DragColumn(kColName, 40);
  window_->ThePanes().RebuildTree();
  EXPECT_EQ(Header().sectionSize(kColName), 120);
}

TEST_F(WidthsTest, StoredWidthsThatNoWindowHasAreBounded) {
  SettingsStore().PutTwips("Splitter", 1e9);
  SettingsStore().PutTwips("ColumnAttr", -500);
  SettingsStore().PutTwips("ColumnSeq", 1e12);
  Start();
  EXPECT_EQ(Tree(), 233);
  EXPECT_EQ(Header().sectionSize(kColAttr), 16);
  EXPECT_EQ(Header().sectionSize(kColSeq), 2000);
}

TEST_F(WidthsTest, NothingKeepsTheViewMode) {
  Start();
  Find<QAction>("View List").trigger();
  window_->close();
  StartAgain();
  EXPECT_EQ(window_->ThePanes().List().Mode(), ListLook::kReport);
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
