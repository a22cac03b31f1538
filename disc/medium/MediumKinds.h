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

// The table of the kinds of medium. A new kind is a line here and a file of its own.
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

// What is opened: the path of an image file, or device, comma and partition of a card.
struct MediumRequest {
  std::string Name;
  Geometry Shape;
  std::int32_t Partition = 0;  // of a card: 0 or 1
};

// What the mediums are reached through. All of it outlives them.
struct MediumParts {
  RawDevice& Device;
  StatusLine& Status;
  ImageRules& Rules;
};

// What an image file looks like before it is opened.
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
  // The geometry if an image file is of this kind. The kinds are asked in the order of the table,
  // and the last one that can be a file takes any. Null for a kind that is no file.
  std::optional<Geometry> (*Recognise)(const ImageLook& look);
};

[[nodiscard]] std::span<const MediumKind> MediumKinds();
[[nodiscard]] const MediumKind& KindOf(DiscType type);

// Makes the mediums that a store opens: by the table, or, in a test, something around those.
class MediumMaker {
 public:
  virtual ~MediumMaker() = default;
  [[nodiscard]] virtual std::unique_ptr<Medium> Make(DiscType type, const MediumRequest& request,
                                                     const MediumParts& parts);
};

}  // namespace sectorbox
