#pragma once

#include <QWidget>

#include "toolkit/SettingsStore.h"

// Every window restores its place when it loads and saves it when it unloads, so that windows come
// back to where they were.
namespace sectorbox {

// Keys are the prefix followed by Left, Top, Width and Height; the defaults are in twips. A window
// of fixed size has a Width and Height of 0, and those two keys are neither read nor written.
struct WindowPlace {
  const char* Prefix;
  double Left;
  double Top;
  double Width = 0;
  double Height = 0;
};

// frmCF and frmFormatCF share one place.
inline constexpr WindowPlace kMainPlace{"Main", 1000, 1000, 6500, 6500};
inline constexpr WindowPlace kViewPlace{"View", 105, 105, 10770, 6750};
inline constexpr WindowPlace kTracePlace{"Trace", 9390, 4470, 4920, 3735};
inline constexpr WindowPlace kCLIPlace{"CLI", 9660, 4080, 5430, 5265};
inline constexpr WindowPlace kRXPlace{"RX", 8235, 4005};
inline constexpr WindowPlace kSavePlace{"Save", 8235, 4005};
inline constexpr WindowPlace kCFPlace{"CF", 9660, 4080};
inline constexpr WindowPlace kTeletextPlace{"Teletext", 84, 84};
inline constexpr WindowPlace kModePlace{"Mode", 84, 84};

// Moves the window, and sizes it where its size isn't fixed. The window's layout must be complete
// before. A window that the user couldn't reach at the stored place is brought onto the nearest
// screen, and made no larger than that. Throws SettingsError for a value that is no number.
void RestorePlace(QWidget& window, const WindowPlace& place);
// Stores where the window is. A minimised window stores nothing, so its earlier place stays stored.
void SavePlace(const QWidget& window, const WindowPlace& place);

}  // namespace sectorbox
