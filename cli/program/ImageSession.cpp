#include "cli/program/ImageSession.h"

#include "cli/program/Dispatch.h"
#include "disc/host/HostError.h"
#include "disc/image/NoAdfsDisc.h"
#include "disc/image/OpenImage.h"

namespace sectorbox::cli {
namespace {

constexpr const char* kCardPrefix = "cf:";

void OpenAny(Disc& disc, const std::string& image) {
  if (image.rfind(kCardPrefix, 0) == 0) {
    OpenCard(disc, image.substr(3));
  } else {
    OpenImage(disc, image);
  }
}

bool WritesThrough(const Disc& disc) {
  return !disc.TheDisc.InMemory();
}

}  // namespace

void OpenCard(Disc& disc, const std::string& name) {
  const auto comma = name.rfind(',');
  const std::string partition = comma == std::string::npos ? "" : name.substr(comma + 1);
  if (comma == 0 || (partition != "0" && partition != "1")) {
    throw UsageError("a card is DEVICE,P with a partition P of 0 or 1");
  }
  const std::string device = name.substr(0, comma);
  disc.ImageName = name;
  OpenCFPartition(disc, name);
  if (!disc.TheDisc.DeviceIsOpen()) ThrowHostError(device, disc.TheDisc.DeviceError());
}

void OpenForReading(ImageSession& session, const std::string& image) {
  OpenAny(session.Open, image);
  session.IsNoDisc = !IsAdfsDisc(session.Open);
  if (session.IsNoDisc) session.Host.Note(NoAdfsDiscText(session.Open.ImageName));
}

FileLock LockFile(ImageSession& session, const std::string& path) {
  FileLock lock;
  if (HostFileExists(path) && !HostFileIsPlain(path)) return lock;
  if (!session.Open.TheDisc.Lock().IsOn(path) && !lock.Take(path, session.Host.LockPatience())) {
    throw Failure(HostBaseName(path) + " is in use by another program");
  }
  return lock;
}

// An image is locked before it is read: what another program is about to save would be lost.
void LockImage(ImageSession& session, const std::string& image) {
  if (image.rfind(kCardPrefix, 0) == 0) return;
  session.Open.TheDisc.Lock().Adopt(LockFile(session, image));
}

void OpenForChanges(ImageSession& session, const std::string& image) {
  LockImage(session, image);
  OpenAny(session.Open, image);
}

int StatusOf(const ImageSession& session) {
  return session.Open.TheDisc.CardFaults() == 0 && !session.IsNoDisc ? kDone : kRefused;
}

int RunWriting(const CommandLine& line, const std::string& image,
               const std::function<bool(Disc& disc, CliHost& host)>& change) {
  ImageSession session(line);
  OpenForChanges(session, image);
  bool done = false;
  try {
    done = change(session.Open, session.Host) && !session.Host.MessageShown;
  } catch (...) {
    if (WritesThrough(session.Open)) session.Open.TheDisc.CloseFile();
    throw;
  }
  if (done || WritesThrough(session.Open)) session.Open.TheDisc.CloseFile();
  return done && !session.Host.LeftOut ? StatusOf(session) : kRefused;
}

PathTarget RequirePath(Disc& disc, const std::string& path) {
  PathTarget target = FindPath(disc, path);
  if (!target.Found) throw Failure("Not found: " + path);
  return target;
}

PathTarget RequireFile(Disc& disc, const std::string& path) {
  PathTarget target = RequirePath(disc, path);
  if (target.IsDirectory) throw Failure("Not a file: " + path);
  return target;
}

PathTarget RequireDirectory(Disc& disc, const std::string& path) {
  PathTarget target = RequirePath(disc, path);
  if (!target.IsDirectory) throw Failure("Not a directory: " + path);
  return target;
}

ListRow RequireFileRow(Disc& disc, const std::string& path) {
  const PathTarget file = RequireFile(disc, path);
  return ReadRow(disc, file.DirSector, file.Slot);
}

}  // namespace sectorbox::cli
