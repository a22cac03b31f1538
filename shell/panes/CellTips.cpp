#include "shell/panes/CellTips.h"

#include <array>
#include <cstdint>

namespace sectorbox {
namespace {

struct KnownAddress {
  std::uint32_t Address;
  const char* Meaning;
};

// The high half of an address names the processor: FFFF is the BBC itself, everything else a second
// processor if there is one.
constexpr std::uint32_t kLowHalf = 0xFFFF;
constexpr std::uint32_t kInBbc = 0xFFFF0000;
constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;

constexpr std::array<KnownAddress, 4> kExecAddresses = {{
    {0x8023, "BASIC"},
    {0x802B, "BASIC"},
    {0x801F, "BASIC"},
    {0x8000, "a language or service ROM"},
}};

constexpr std::array<KnownAddress, 9> kLoadAddresses = {{
    {0x0E00, "where programs begin on a Master"},
    {0x1900, "where programs begin on a Model B with a DFS"},
    {0x1D00, "where programs begin on a Model B with ADFS"},
    {0x3000, "the screen of MODE 0, 1 and 2"},
    {0x4000, "the screen of MODE 3"},
    {0x5800, "the screen of MODE 4 and 5"},
    {0x6000, "the screen of MODE 6"},
    {0x7C00, "the screen of MODE 7"},
    {0x8000, "a sideways ROM"},
}};

template <std::size_t Count>
QString MeaningOf(const std::array<KnownAddress, Count>& known, std::uint32_t address) {
  for (const KnownAddress& one : known) {
    if (one.Address == (address & kLowHalf)) return QString::fromLatin1(one.Meaning);
  }
  return {};
}

QString AddressTip(std::uint32_t address, const QString& meaning) {
  QString tip = QString::number(address);
  if ((address & kInBbc) == kInBbc && address != kAllOnes) {
    tip = QStringLiteral("%1 (&%2 in the BBC itself)")
              .arg(address & kLowHalf)
              .arg(QString::number(address & kLowHalf, 16).toUpper().rightJustified(4, u'0'));
  }
  return meaning.isEmpty() ? tip : tip + QStringLiteral(": ") + meaning;
}

}  // namespace

QString TipOfCell(const ListRow& row, int column) {
  if (row.IsDirectory()) return {};
  const Entry& entry = row.Item;
  const bool isWordwise = entry.Load() == kAllOnes && entry.Exec() == kAllOnes;
  const QString wordwise = QStringLiteral("a Wordwise document");
  switch (column) {
    case kColLoad:
      return AddressTip(entry.Load(),
                        isWordwise ? wordwise : MeaningOf(kLoadAddresses, entry.Load()));
    case kColExec:
      return AddressTip(entry.Exec(),
                        isWordwise ? wordwise : MeaningOf(kExecAddresses, entry.Exec()));
    case kColSize:
      return QStringLiteral("%1 bytes").arg(entry.Length());
    case kColSector:
      return QStringLiteral("Sector %1").arg(entry.Start());
    default:
      return {};
  }
}

}  // namespace sectorbox
