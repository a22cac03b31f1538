#pragma once

namespace sectorbox {

class frmMain;

// Reads port, speed and the nine flags from the store and sets the check marks. Throws
// SettingsError.
void LoadSettings(frmMain& window);
// Writes them back into the store. If no speed is checked, the stored speed stays as it is.
void SaveSettings(frmMain& window);

}  // namespace sectorbox
