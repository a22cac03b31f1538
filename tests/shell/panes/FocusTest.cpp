#include <QImage>
#include <QScrollBar>
#include <QTest>

#include "tests/shell/panes/PanesFixture.h"

// Which pane has the focus can be seen, and the current node of the tree is in view.
namespace sectorbox::testing {
namespace {

class FocusTest : public PanesTest {
 protected:
  DirTree& Tree() { return window_->ThePanes().Tree(); }
  FileList& Rows() { return window_->ThePanes().List(); }
  static QImage Picture(QAbstractItemView& pane) {
    Settle();
    return pane.viewport()->grab().toImage();
  }
  QRect CurrentRowRect() { return Rows().visualRect(Rows().currentIndex()); }
  QRect CurrentNodeRect() { return Tree().visualItemRect(Tree().Selected()); }
  // How many pixels of the area have that colour.
  static int Count(const QImage& picture, const QRect& area, const QColor& colour) {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
      for (int x = area.left(); x <= area.right(); ++x) {
        if (picture.rect().contains(x, y) && picture.pixelColor(x, y).rgb() == colour.rgb())
          ++count;
      }
    }
    return count;
  }
  static QColor Highlight(const QWidget& pane, QPalette::ColorGroup group) {
    return pane.palette().color(group, QPalette::Highlight);
  }
  static void Settle() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }
};

TEST_F(FocusTest, ThePaneWithoutTheFocusShowsItsSelectionInTheInactiveColours) {
  StartWith(image_);
  QPalette palette = window_->palette();
  palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(120, 130, 140));
  window_->setPalette(palette);
  ClickNode(QStringLiteral("$"));
  ClickRow(QStringLiteral("ZED"));
  const QColor active = Highlight(Rows(), QPalette::Active);
  const QColor inactive = Highlight(Rows(), QPalette::Inactive);
  ASSERT_NE(active, inactive);
  EXPECT_GT(Count(Picture(Rows()), CurrentRowRect(), active), 200);
  EXPECT_EQ(Count(Picture(Rows()), CurrentRowRect(), inactive), 0);
  EXPECT_EQ(Count(Picture(Tree()), CurrentNodeRect(), active), 0);
  EXPECT_GT(Count(Picture(Tree()), CurrentNodeRect(), inactive), 200);
  Tree().setFocus();
  EXPECT_EQ(Count(Picture(Rows()), CurrentRowRect(), active), 0);
  EXPECT_GT(Count(Picture(Rows()), CurrentRowRect(), inactive), 200);
  EXPECT_GT(Count(Picture(Tree()), CurrentNodeRect(), active), 200);
  EXPECT_EQ(Count(Picture(Tree()), CurrentNodeRect(), inactive), 0);
}

TEST_F(FocusTest, APaletteWithOneHighlightForBothStillTellsThePanesApart) {
  StartWith(image_);
  QPalette palette = Rows().palette();
  palette.setColor(QPalette::All, QPalette::Highlight, QColor(200, 30, 30));
  palette.setColor(QPalette::All, QPalette::HighlightedText, Qt::white);
  Rows().setPalette(palette);
  ClickRow(QStringLiteral("ZED"));
  EXPECT_GT(Count(Picture(Rows()), CurrentRowRect(), QColor(200, 30, 30)), 200);
  Tree().setFocus();
  EXPECT_EQ(Count(Picture(Rows()), CurrentRowRect(), QColor(200, 30, 30)), 0);
}

TEST_F(FocusTest, APaneKeepsItsColoursWhileOneOfItsNamesIsEdited) {
  StartWith(image_);
  ClickRow(QStringLiteral("ZED"));
  Press(Rows(), Qt::Key_F2);
  ASSERT_TRUE(Rows().IsEditing());
  EXPECT_GT(Count(Picture(Rows()), CurrentRowRect(), Highlight(Rows(), QPalette::Active)), 200);
}

TEST_F(FocusTest, TheCurrentRowHasAVisibleFrameWhileItsPaneHasTheFocus) {
  StartWith(image_);
  ClickRow(QStringLiteral("ZED"));
  const auto edge = [this] {
    const QRect row = CurrentRowRect();
    return QRect(row.left(), row.top(), row.width(), 1);
  };
  const QColor frame = Rows().palette().color(QPalette::Active, QPalette::HighlightedText);
  EXPECT_GT(Count(Picture(Rows()), edge(), frame), 50);
  Tree().setFocus();
  EXPECT_EQ(Count(Picture(Rows()), edge(), frame), 0);
  const QRect node = CurrentNodeRect();
  const QRect top(node.left(), node.top(), node.width(), 1);
  EXPECT_GT(Count(Picture(Tree()), top, frame), 20);
}

class TallTree : public FocusTest {
 protected:
  TallTree() {
    for (int i = 10; i < 50; ++i) tall_.AddDirectory(2, "DIR" + std::to_string(i));
  }
  bool InView(DirNode& node) {
    return Tree().viewport()->rect().contains(Tree().visualItemRect(&node).center());
  }
  ImageBuilder tall_{2560};
};

TEST_F(TallTree, AfterARebuildTheCurrentNodeIsInView) {
  StartWith(tall_);
  ClickNode(QStringLiteral("DIR49"));
  ASSERT_FALSE(InView(Node(QStringLiteral("$"))));
  Press(Tree(), Qt::Key_F5);
  EXPECT_EQ(window_->CurrentNode()->Tag, 2);
  EXPECT_TRUE(InView(Node(QStringLiteral("$"))));
}

TEST_F(TallTree, AfterACommandOfAScrolledTreeRebuildsItTheCurrentNodeIsInView) {
  StartWith(tall_);
  Tree().verticalScrollBar()->setValue(Tree().verticalScrollBar()->maximum());
  Choose("mnuDiscCompact");
  EXPECT_TRUE(InView(Node(QStringLiteral("$"))));
}

TEST_F(TallTree, ADirectoryThatIsCurrentAgainAfterTheDiscIsReadIsInView) {
  StartWith(tall_);
  ClickNode(QStringLiteral("DIR49"));
  window_->ThePanes().ShowDiscAgain();
  EXPECT_EQ(window_->CurrentNode()->Text, "DIR49");
  EXPECT_TRUE(InView(Node(QStringLiteral("DIR49"))));
  ASSERT_EQ(Tree().horizontalScrollBar()->value(), 0);
}

TEST_F(FocusTest, ANodeDeepInTheTreeIsScrolledIntoViewSideways) {
  std::int32_t sector = 2;
  for (int depth = 0; depth < 14; ++depth) {
    sector = image_.AddDirectory(sector, "D" + std::to_string(depth));
  }
  StartWith(image_);
  window_->ThePanes().tvwDB_NodeClick(Node(QStringLiteral("D13")));
  EXPECT_TRUE(Tree().viewport()->rect().contains(CurrentNodeRect().topLeft() +
                                                 QPoint(4, CurrentNodeRect().height() / 2)));
  window_->ThePanes().tvwDB_NodeClick(Node(QStringLiteral("$")));
  EXPECT_TRUE(Tree().viewport()->rect().contains(CurrentNodeRect().topLeft() + QPoint(4, 4)));
}

}  // namespace
}  // namespace sectorbox::testing
