#pragma once

#include <QFrame>
#include <QToolBar>
#include <QWidget>
#include <optional>

#include "shell/panes/DirTree.h"
#include "shell/panes/FileList.h"

namespace sectorbox {

// imgSplitter: the invisible strip between the panes. The user drags it to move their border.
// Positions are twips from the strip's own left edge.
class SplitterStrip : public QWidget {
  Q_OBJECT

 public:
  explicit SplitterStrip(QWidget* parent);

 Q_SIGNALS:
  void Pressed();
  void Moved(double x);
  void Released();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
};

// Where things are in the main window below its menus: the toolbar, the tree, the list, and the
// border between them.
class PaneLayout : public QWidget {
 public:
  explicit PaneLayout(QWidget* parent);

  DirTree& Tree() { return *tvwDB_; }
  FileList& List() { return *lvwDB_; }
  QToolBar& Bar() { return *tbToolBar_; }

  // Lays out tree, border and list for a tree that is x twips wide. x becomes the width that the
  // tree has got: at least 3000, and at most the window's width less 3000. In a window narrower
  // than 6000 the second rule holds.
  void SizeControls(double& x);
  // How wide the user has made the tree, in twips; nothing if the user hasn't dragged the border.
  [[nodiscard]] std::optional<double> DraggedSplitter() const;
  // Lays out for the border that had been dragged to x when the program last ended.
  void SetDraggedSplitter(double x);
  // The layout after the window changed its size.
  void Form_Resize();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void StartMoving();
  void MoveTo(double pointerX);
  void StopMoving();
  double WindowWidth() const;

  QToolBar* tbToolBar_;
  DirTree* tvwDB_;
  FileList* lvwDB_;
  QFrame* picSplitter_;
  SplitterStrip* imgSplitter_;
  double splitterLeft_;  // twips
  double barLeft_ = 0;   // twips
  bool SplitterMoving = false;
  bool splitterDragged_ = false;
};

}  // namespace sectorbox
