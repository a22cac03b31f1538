// Whole images: empty ones, and saving under another name.

#include <algorithm>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "disc/host/HostFile.h"
#include "disc/host/HostSignals.h"
#include "disc/image/NewDisc.h"
#include "disc/image/SaveImage.h"

namespace sectorbox::cli {
namespace {

const DiscGeometry& GeometryOf(const std::string& kind) {
  const auto found = std::find_if(kNewDiscs.begin(), kNewDiscs.end(),
                                  [&](const DiscGeometry& g) { return kind == g.Kind; });
  if (found == kNewDiscs.end()) throw UsageError("new: unknown kind of disc: " + kind);
  return *found;
}

int RunNew(const CommandLine& line) {
  line.Expect(2, 2);
  const DiscGeometry& geometry = GeometryOf(line.Arguments[0]);
  const std::string& file = line.Arguments[1];
  if (HostFileExists(file) && !line.Has("force")) throw Failure(file + ": File exists");
  ImageSession session(line);
  session.Open.ImageName = file;
  CreateDisc(session.Open, file, geometry.Tracks, geometry.Heads, geometry.Sectors,
             geometry.DiscType);
  session.Open.TheDisc.CloseFile();
  return kDone;
}

int RunSave(const CommandLine& line) {
  line.Expect(2, 2);
  ImageSession session(line);
  OpenForReading(session.Open, line.Arguments[0]);
  CatchInterrupt();
  SaveImageTo(session.Open, line.Arguments[1]);
  return session.Host.MessageShown ? kRefused : StatusOf(session.Open);
}

}  // namespace

std::vector<Command> ImageCommands() {
  return {
      {"new", "KIND FILE [--force]",
       "make an empty disc: 40ssd 80ssd 80dsd 1m 2m 4m 8m 16m 32m 64m 128m 256m 512m", RunNew},
      {"save", "IMAGE OUT", "save the disc as another file, by the disc's size", RunSave},
  };
}

}  // namespace sectorbox::cli
