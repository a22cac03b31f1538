#include "toolkit/WindowPlace.h"

#include <QByteArray>

#include "toolkit/Twips.h"

namespace sectorbox {
namespace {

QByteArray Key(const WindowPlace& place, const char* side) {
  return QByteArray(place.Prefix) + side;
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
    return;
  }
  const double width = settings.GetTwips(Key(place, "Width").constData(), place.Width);
  const double height = settings.GetTwips(Key(place, "Height").constData(), place.Height);
  window.resize(PixelsFromTwips(width), PixelsFromTwips(height));
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
