#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "disc/ask/StatusLine.h"
#include "disc/host/RawDevice.h"
#include "disc/medium/ImageRules.h"
#include "disc/medium/Medium.h"

// The table of the kinds of medium. A new kind gets a line in the table and a file of its own.
namespace sectorbox {

enum DiscType : std::int16_t {
  kAdf = 0,  // single-sided floppy image: whole in memory, linear in its file
  kAdl = 1,  // double-sided floppy image: whole in memory, side 0 then side 1
  kDat = 2,  // hard disc image: a flat file behind two cached blocks
  kCF = 3,   // one partition of a card: a raw device behind two cached blocks
};

// Tracks of one side, sides, and sectors of one track. A card has none.
struct Geometry {
  std::int32_t Tracks = 0;
  std::int32_t Heads = 0;
  std::int32_t Sectors = 0;
};

// What the store wants to open.
struct MediumRequest {
  std::string Name;  // path of an image file; for a card its device, a comma and the partition
  Geometry Shape;
  std::int32_t Partition = 0;  // of a card: 0 or 1
};

// What the mediums work with. All of these outlive the mediums.
struct MediumParts {
  RawDevice& Device;
  StatusLine& Status;
  ImageRules& Rules;
};

// What is known of an image file before it is opened.
struct ImageLook {
  std::string Name;
  std::int32_t DiscSize = 0;  // sectors, by the size field of its map
};

struct MediumKind {
  DiscType Type;
  const char* Name;  // one word for the kind, which is also the usual extension of its files
  // The disc is a hard disc: its geometry is recorded in a companion file beside the image.
  bool HasCompanion;
  // The disc is one of several on its device: it has a partition number and no geometry.
  bool IsPartition;
  // Opens the medium. HostError if the host refuses.
  std::unique_ptr<Medium> (*Open)(const MediumRequest& request, const MediumParts& parts);
  // Gives the geometry if an image file is of this kind, else none. The kinds are asked in the
  // order of the table; the last kind that can be a file takes every file. Null for a kind that is
  // no file.
  std::optional<Geometry> (*Recognise)(const ImageLook& look);
};

[[nodiscard]] std::span<const MediumKind> MediumKinds();
[[nodiscard]] const MediumKind& KindOf(DiscType type);

// Makes the mediums that a store opens. This class takes them from the table; a test can derive a
// class that makes others.
class MediumMaker {
 public:
  virtual ~MediumMaker() = default;
  [[nodiscard]] virtual std::unique_ptr<Medium> Make(DiscType type, const MediumRequest& request,
                                                     const MediumParts& parts);
};

}  // namespace sectorbox
