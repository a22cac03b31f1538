#pragma once

#include <QDialog>
#include <QRadioButton>
#include <array>
#include <cstdint>

namespace sectorbox {

// "Set Boot Attributes": shows the low two bits of the map's boot byte. After OK the caller reads
// the choice and writes it over the whole byte.
class frmBoot : public QDialog {
 public:
  // bootByte is the map's boot byte as it stands.
  frmBoot(QWidget* parent, std::uint8_t bootByte);

  // The choice: 0 to 3.
  [[nodiscard]] std::uint8_t Option() const;

 private:
  std::array<QRadioButton*, 4> options_{};
};

}  // namespace sectorbox
