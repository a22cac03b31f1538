// Whole images: empty ones, and saving under another name.

#include <algorithm>
#include <array>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "disc/host/HostFile.h"
#include "disc/host/HostSignals.h"
#include "disc/image/NewDisc.h"
#include "disc/image/SaveImage.h"

namespace sectorbox::cli {
namespace {

// The words for the sizes, in the order of kNewDiscs.
constexpr std::array<const char*, kNewDiscs.size()> kWords = {
    "40ssd", "80ssd", "80dsd", "1m", "2m", "4m", "8m", "16m", "32m", "64m", "128m", "256m", "512m"};

const NewDiscSize& SizeOf(const std::string& word) {
  const auto found = std::find(kWords.begin(), kWords.end(), word);
  if (found == kWords.end()) throw UsageError("new: unknown kind of disc: " + word);
  return kNewDiscs[static_cast<std::size_t>(found - kWords.begin())];
}

int RunNew(const CommandLine& line) {
  line.Expect(2, 2);
  const NewDiscSize& size = SizeOf(line.Arguments[0]);
  const std::string& file = line.Arguments[1];
  if (HostFileExists(file) && !line.Has("force")) throw Failure(file + ": File exists");
  ImageSession session(line);
  const FileLock lock = LockFile(session, file);
  session.Open.ImageName = file;
  CreateDisc(session.Open, file, size.Tracks, size.Heads, size.Sectors, size.DiscType);
  session.Open.TheDisc.CloseFile();
  return kDone;
}

int RunSave(const CommandLine& line) {
  line.Expect(2, 2);
  ImageSession session(line);
  // A copy of a disc that another program is changing would be no disc.
  LockImage(session, line.Arguments[0]);
  const FileLock lock = LockFile(session, line.Arguments[1]);
  OpenForReading(session, line.Arguments[0]);
  CatchInterrupt();
  SaveImageTo(session.Open, line.Arguments[1]);
  return session.Host.MessageShown ? kRefused : StatusOf(session);
}

}  // namespace

std::vector<Command> ImageCommands() {
  return {
      {"new",
       "KIND FILE [--force]",
       "make an empty disc: 40ssd 80ssd 80dsd 1m 2m 4m 8m 16m 32m 64m 128m 256m 512m",
       {"force"},
       RunNew},
      {"save", "IMAGE OUT", "save the disc as another file, by the disc's size", {}, RunSave},
  };
}

}  // namespace sectorbox::cli
