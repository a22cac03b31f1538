#pragma once

#include <functional>
#include <string>

#include "cli/program/CliHost.h"
#include "cli/program/CommandLine.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/host/FileLock.h"
#include "disc/store/Disc.h"

namespace sectorbox::cli {

// The one disc of a call, and its host. Nothing is open yet.
struct ImageSession {
  explicit ImageSession(const CommandLine& line) : Host(line), Open(Host) {
    Host.ProgressRunning = &Open.ProgressRunning;
  }

  CliHost Host;
  Disc Open;
  bool IsNoDisc = false;  // what was opened for reading is no ADFS disc
};

// Opens IMAGE: the path of an image file, or "cf:DEVICE,P". HostError if it can't be opened,
// UsageError if P isn't 0 or 1. If it is no ADFS disc, the user is told, and IsNoDisc is set.
void OpenForReading(ImageSession& session, const std::string& image);

// Locks an image file before it is opened, so that no program changes it until the session ends. A
// card isn't locked here. Waits while another program changes it, at most five seconds, and then
// fails with "NAME is in use by another program".
void LockImage(ImageSession& session, const std::string& image);
// The same for a file that will be replaced, for as long as the lock lives. A pipe isn't locked.
[[nodiscard]] FileLock LockFile(ImageSession& session, const std::string& path);

// LockImage and OpenForReading, for a command that changes the disc. What is no ADFS disc is opened
// without a word: the change itself is refused.
void OpenForChanges(ImageSession& session, const std::string& image);

// Opens "DEVICE,P", a partition of a card, which becomes ImageName. The same errors.
void OpenCard(Disc& disc, const std::string& name);

// The exit status of a command that has done its work: kRefused if a card has failed, since the
// bytes that were read may then be wrong, and kRefused if what was read is no ADFS disc.
int StatusOf(const ImageSession& session);

// Opens IMAGE, runs change and stores the disc back as CloseFile does; gives the exit status.
// change gives false if the engine has refused. If something was left out (CliHost::LeftOut), the
// disc is stored and the status is kRefused. A message that was shown meanwhile, and a card that
// failed, count as refusals too. After a refusal or an exception from change an .adf or .adl is as
// it was before; on a .dat or a card the changes up to then stay.
int RunWriting(const CommandLine& line, const std::string& image,
               const std::function<bool(Disc& disc, CliHost& host)>& change);

// The file or directory at PATH. Failure "Not found: PATH" if there is none, "Not a file: PATH" or
// "Not a directory: PATH" if it is of the other kind.
PathTarget RequirePath(Disc& disc, const std::string& path);
PathTarget RequireFile(Disc& disc, const std::string& path);
PathTarget RequireDirectory(Disc& disc, const std::string& path);
// The row of the file at PATH. The same failures as RequireFile.
ListRow RequireFileRow(Disc& disc, const std::string& path);

}  // namespace sectorbox::cli
