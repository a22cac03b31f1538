#include "toolkit/WindowPlace.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <algorithm>

#include "toolkit/Twips.h"

namespace sectorbox {
namespace {

QByteArray Key(const WindowPlace& place, const char* side) {
  return QByteArray(place.Prefix) + side;
}

// In pixels.
constexpr int kStrip = 24;  // about the height of a title bar
constexpr int kFrame = 8;   // room for a frame, which isn't there before the window is shown
constexpr int kGrip = 64;   // as much of the title bar's width as one needs to move a window

// True if the user can take hold of a window at that place: its top edge, with enough of its title
// bar, lies on the screen.
bool IsWithinReach(const QRect& window, const QRect& screen) {
  const QRect top(window.topLeft(), QSize(window.width(), kStrip));
  const QRect seen = top.intersected(screen);
  return screen.top() <= top.top() && seen.height() == kStrip &&
         seen.width() >= std::min(kGrip, top.width());
}

int Distance(int at, int length, int start, int end) {
  return std::max({start - at, at + length - end, 0});
}

// How far a window at that place is away from being on the screen.
int Distance(const QRect& window, const QRect& screen) {
  return Distance(window.left(), window.width(), screen.left(), screen.left() + screen.width()) +
         Distance(window.top(), window.height(), screen.top(), screen.top() + screen.height());
}

// The place, moved onto the screen that is nearest, and no larger than that screen.
QRect MovedOnto(QRect window, const QRect& screen) {
  window.setSize(window.size().boundedTo(screen.size()));
  const int left = std::max(screen.left() + screen.width() - window.width(), screen.left());
  const int top = std::max(screen.top() + screen.height() - window.height(), screen.top());
  window.moveTo(std::clamp(window.left(), screen.left(), left),
                std::clamp(window.top(), screen.top(), top));
  return window;
}

// A place may be stored from a screen that is no longer there. Such a window is brought onto the
// screen that is nearest to its place, and so is one that is larger than all screens together. A
// window that the user can reach stays where it was left.
void BringOntoAScreen(QWidget& window) {
  const QRect place(window.pos(), window.size());
  QRect nearest;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect area = screen->availableGeometry();
    const QSize all = screen->availableVirtualGeometry().size();
    const bool fits = place.width() <= all.width() && place.height() <= all.height();
    if (fits && IsWithinReach(place, area)) return;
    if (nearest.isNull() || Distance(place, area) < Distance(place, nearest)) nearest = area;
  }
  if (nearest.isNull()) return;
  const QRect moved = MovedOnto(place, nearest.adjusted(0, 0, -kFrame, -kFrame - kStrip));
  window.move(moved.topLeft());
  if (moved.size() != place.size()) window.resize(moved.size());
}

}  // namespace

void RestorePlace(QWidget& window, const WindowPlace& place) {
  const SettingsStore settings;
  const double left = settings.GetTwips(Key(place, "Left").constData(), place.Left);
  const double top = settings.GetTwips(Key(place, "Top").constData(), place.Top);
  window.move(PixelsFromTwips(left), PixelsFromTwips(top));
  if (place.Width == 0) {
    // The window gets its size now and not when it is shown. When it is shown, Qt would size it
    // after the window exists and before its frame does. The stored place would then count for the
    // window without its frame, and the window would come up higher each time, by the frame's
    // height.
    if (!window.testAttribute(Qt::WA_Resized)) window.adjustSize();
    BringOntoAScreen(window);
    return;
  }
  const double width = settings.GetTwips(Key(place, "Width").constData(), place.Width);
  const double height = settings.GetTwips(Key(place, "Height").constData(), place.Height);
  window.resize(PixelsFromTwips(width), PixelsFromTwips(height));
  BringOntoAScreen(window);
}

void SavePlace(const QWidget& window, const WindowPlace& place) {
  if (window.isMinimized()) return;
  SettingsStore settings;
  settings.PutTwips(Key(place, "Left").constData(), TwipsFromPixels(window.x()));
  settings.PutTwips(Key(place, "Top").constData(), TwipsFromPixels(window.y()));
  if (place.Width == 0) return;
  settings.PutTwips(Key(place, "Width").constData(), TwipsFromPixels(window.width()));
  settings.PutTwips(Key(place, "Height").constData(), TwipsFromPixels(window.height()));
}

}  // namespace sectorbox
