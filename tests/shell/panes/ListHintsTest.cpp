#include <QApplication>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QToolTip>

#include "tests/shell/panes/PanesFixture.h"
#include "toolkit/FileLists.h"

// What the list says besides its rows.
namespace sectorbox::testing {
namespace {

class ListHintsTest : public PanesTest {
 protected:
  FileList& Rows() { return window_->ThePanes().List(); }
  QImage Picture() {
    Settle();
    return Rows().viewport()->grab().toImage();
  }
  static int Count(const QImage& picture, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixelColor(x, y).rgb() == colour.rgb()) ++count;
      }
    }
    return count;
  }
  void Over(QEvent::Type type) {
    const auto data = FileListData({folder_ / "FILE"});
    if (type == QEvent::DragEnter) {
      QDragEnterEvent enter({5, 5}, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(Rows().viewport(), &enter);
    } else if (type == QEvent::DragLeave) {
      QDragLeaveEvent leave;
      QApplication::sendEvent(Rows().viewport(), &leave);
    } else {
      QDropEvent drop(QPointF(5, 5), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(Rows().viewport(), &drop);
    }
  }
  // The tip under the pointer in the middle of a cell.
  QString TipOf(const char* name, int column) {
    const QModelIndex row = Rows().Model().index(Row(QString::fromLatin1(name)), 0);
    const QPoint at = Rows().CellRect(Rows().visualRect(row), column).center();
    QToolTip::hideText();
    QHelpEvent help(QEvent::ToolTip, at, Rows().viewport()->mapToGlobal(at));
    QApplication::sendEvent(Rows().viewport(), &help);
    return help.isAccepted() ? QToolTip::text() : QString();  // a tip that goes needs a moment
  }
};

TEST_F(ListHintsTest, AnEmptyListSaysThatFilesCanBeDroppedOnIt) {
  StartWith(image_);
  const QColor base = Rows().palette().color(QPalette::Base);
  ClickNode(QStringLiteral("EMPTY"));
  Settle();
  const QImage empty = Picture();
  EXPECT_LT(Count(empty, base), empty.width() * empty.height());
  window_->ThePanes().tvwDB_NodeClick(Node(QStringLiteral("DIR")));
  const QRect middle(0, empty.height() / 2 - 10, empty.width(), 20);
  EXPECT_EQ(Count(Picture().copy(middle), base), middle.width() * middle.height())
      << "a list with rows says nothing";
}

TEST_F(ListHintsTest, TheListHasAFrameWhileFilesAreDraggedOverIt) {
  StartWith(image_);
  WriteText(folder_ / "FILE", "x");
  const QColor frame = Rows().palette().color(QPalette::Active, QPalette::Highlight);
  const auto edge = [&] {
    return Count(Picture().copy(0, 0, 2, Rows().viewport()->height()), frame);
  };
  EXPECT_EQ(edge(), 0);
  Over(QEvent::DragEnter);
  EXPECT_GT(edge(), 100);
  Over(QEvent::DragLeave);
  EXPECT_EQ(edge(), 0);
  Over(QEvent::DragEnter);
  Over(QEvent::Drop);
  Settle();
  EXPECT_EQ(edge(), 0);
  EXPECT_TRUE(Names().contains(QStringLiteral("FILE")));
}

TEST_F(ListHintsTest, SizesAndAddressesHaveATipWithTheDecimalValueAndWhatIsKnownOfThem) {
  image_.AddFile(2, {"BASPROG", std::vector<std::uint8_t>(1792, 7), 0xFFFF0E00, 0xFFFF8023});
  image_.AddFile(2, {"LETTER", {1}, 0xFFFFFFFF, 0xFFFFFFFF});
  StartWith(image_);
  window_->resize(790, 400);
  Settle();
  EXPECT_EQ(TipOf("BASPROG", kColSize), QStringLiteral("1792 bytes"));
  EXPECT_EQ(TipOf("BASPROG", kColExec), QStringLiteral("32803 (&8023 in the BBC itself): BASIC"));
  EXPECT_EQ(TipOf("BASPROG", kColLoad),
            QStringLiteral("3584 (&0E00 in the BBC itself): where programs begin on a Master"));
  EXPECT_EQ(TipOf("ZED", kColLoad), QStringLiteral("4096"));
  EXPECT_EQ(TipOf("LETTER", kColExec), QStringLiteral("4294967295: a Wordwise document"));
  EXPECT_EQ(TipOf("ZED", kColSector),
            QStringLiteral("Sector %1").arg(RowOf(QStringLiteral("ZED")).StartSector()));
  EXPECT_EQ(TipOf("ZED", kColName), QString());
  EXPECT_EQ(TipOf("DIR", kColLoad), QString());
}

}  // namespace
}  // namespace sectorbox::testing
