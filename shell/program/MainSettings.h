#pragma once

namespace sectorbox {

class frmMain;

// Port, speed and the nine flags, from the store into the check marks. Throws SettingsError.
void LoadSettings(frmMain& window);
// Back into the store. With no speed checked the stored speed stays as it is.
void SaveSettings(const frmMain& window);

}  // namespace sectorbox
