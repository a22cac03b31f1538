#include "disc/image/ImageFiles.h"

#include "disc/format/Text.h"

namespace sectorbox {
namespace {

bool IsFile(const MediumKind& kind) {
  return kind.Recognise != nullptr;
}

std::string PatternOf(const MediumKind& kind) {
  return std::string("*.") + kind.Name;
}

std::string MakeFilter(const std::string& label, const std::string& patterns) {
  return label + " (" + patterns + ")|" + patterns;
}

}  // namespace

std::string FilterOfImageFiles() {
  std::string patterns;
  for (const MediumKind& kind : MediumKinds()) {
    if (!IsFile(kind)) continue;
    if (!patterns.empty()) patterns += ';';
    patterns += PatternOf(kind);
  }
  return MakeFilter("ADFS Disc", patterns);
}

std::string FilterOfKind(const std::string& label, DiscType type) {
  return MakeFilter(label, PatternOf(KindOf(type)));
}

DiscType KindOfDiscSize(std::int32_t sectors) {
  for (const MediumKind& kind : MediumKinds()) {
    // A floppy is known by its size alone. A hard disc has every other size.
    if (!IsFile(kind) || kind.HasCompanion) continue;
    if (kind.Recognise({"", sectors})) return kind.Type;
  }
  return kDat;
}

const MediumKind* KindOfExtension(const std::string& fileName) {
  const std::string upper = UpperCase(fileName);
  for (const MediumKind& kind : MediumKinds()) {
    if (IsFile(kind) && upper.ends_with(UpperCase(std::string(".") + kind.Name))) return &kind;
  }
  return nullptr;
}

}  // namespace sectorbox
