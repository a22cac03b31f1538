#include "shell/program/MainSettings.h"

#include <array>
#include <string>

#include "link/wire/Protocol.h"
#include "shell/commands/XferCommands.h"
#include "shell/panes/Panes.h"
#include "shell/program/frmMain.h"
#include "toolkit/SettingsStore.h"

namespace sectorbox {
namespace {

struct FlagSetting {
  const char* Key;
  const char* Entry;
  bool ByDefault;
};

constexpr std::array<FlagSetting, 9> kFlags = {{
    {"DeleteLocked", "mnuOptionsDelete", true},
    {"OverwriteLocked", "mnuOptionsOverwrite", true},
    {"DeleteNonEmpty", "mnuOptionsEmpty", true},
    {"PadDiscImages", "mnuOptionsPad", false},
    {"PlayWave", "mnuOptionsPlayWave", false},
    {"AutoLoad", "mnuOptionsAutoLoad", false},
    {"Interleave", "mnuOptionsInterleave", true},
    {"ViewAs", "mnuOptionsViewAs", false},
    {"CheckBeforeWrite", "mnuXferCBW", false},
}};

constexpr std::int16_t kPorts = 4;

QAction* NumberedEntry(const frmMain& window, const char* stem, std::int32_t number) {
  return window.Action((stem + std::to_string(number)).c_str());
}

void CheckPort(const frmMain& window, std::int16_t port) {
  for (std::int16_t n = 1; n <= kPorts; ++n) {
    NumberedEntry(window, "mnuXferSerialCom", n)->setChecked(n == port);
  }
}

void CheckSpeed(const frmMain& window, std::int16_t speed) {
  for (const auto one : wire::kSpeeds)
    NumberedEntry(window, "mnuXferSerial", one)->setChecked(one == speed);
}

// The widths that the user has dragged, in twips. What the user hasn't dragged has no key.
constexpr const char* kSplitterKey = "Splitter";

QByteArray ColumnKey(int column) {
  return QByteArray("Column") + kColumnHeadings.at(static_cast<std::size_t>(column));
}

void LoadWidths(Panes& panes, const SettingsStore& store) {
  if (store.Has(kSplitterKey)) panes.SetDraggedSplitter(store.GetTwips(kSplitterKey, 0));
  for (int column = 0; column < kColumns; ++column) {
    const QByteArray key = ColumnKey(column);
    if (!store.Has(key.constData())) continue;
    panes.List().SetDraggedWidth(column, store.GetTwips(key.constData(), 0));
  }
}

void SaveWidths(Panes& panes, SettingsStore& store) {
  if (const auto splitter = panes.DraggedSplitter()) store.PutTwips(kSplitterKey, *splitter);
  for (int column = 0; column < kColumns; ++column) {
    const auto width = panes.List().DraggedWidth(column);
    if (width) store.PutTwips(ColumnKey(column).constData(), *width);
  }
}

}  // namespace

void LoadSettings(frmMain& window) {
  const SettingsStore store;
  window.Xfer().SetComPort(store.GetInt16("ComPort", 1));
  const std::int16_t speed = store.GetInt16("BaudRate", wire::kDefaultSpeed);
  CheckPort(window, window.Xfer().ComPort());
  // The line itself starts at 1200, whatever the setting is. Until a transfer raises the line to
  // the chosen speed, that speed is only a check mark.
  window.Xfer().SetUpPort();
  CheckSpeed(window, speed);
  for (const auto& flag : kFlags) {
    window.Action(flag.Entry)->setChecked(store.GetFlag(flag.Key, flag.ByDefault));
  }
  LoadWidths(window.ThePanes(), store);
}

void SaveSettings(frmMain& window) {
  SettingsStore store;
  for (const auto& flag : kFlags) store.PutFlag(flag.Key, window.Checked(flag.Entry));
  store.PutInt16("ComPort", window.Xfer().ComPort());
  for (const auto speed : wire::kSpeeds) {
    if (!NumberedEntry(window, "mnuXferSerial", speed)->isChecked()) continue;
    store.PutInt16("BaudRate", static_cast<std::int16_t>(speed));
    break;
  }
  SaveWidths(window.ThePanes(), store);
  store.Sync();
}

}  // namespace sectorbox
