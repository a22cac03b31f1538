#pragma once

#include <functional>
#include <string>

#include "cli/program/CliHost.h"
#include "cli/program/CommandLine.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"

namespace sectorbox::cli {

// The one disc of a call, and its host. Nothing is open yet.
struct ImageSession {
  explicit ImageSession(const CommandLine& line) : Host(line), Open(Host) {
    Host.ProgressRunning = &Open.ProgressRunning;
  }

  CliHost Host;
  Disc Open;
};

// Opens IMAGE: the path of an image file, or "cf:DEVICE,P". HostError when it can't be opened,
// UsageError when P isn't 0 or 1.
void OpenForReading(Disc& disc, const std::string& image);

// Opens "DEVICE,P", a partition of a card, which becomes ImageName. The same errors.
void OpenCard(Disc& disc, const std::string& name);

// The exit status of a command that only reads: what came from a card that failed is not what is on
// it.
int StatusOf(const Disc& disc);

// Opens IMAGE, runs change and stores the disc back as CloseFile does; gives the exit status.
// change gives false when the engine refused; a message shown meanwhile, or a card that failed,
// counts as a refusal too. After a refusal, or an exception out of change, an .adf or .adl is left
// as it was, while on a .dat or a card what was done before stays.
int RunWriting(const CommandLine& line, const std::string& image,
               const std::function<bool(Disc& disc, CliHost& host)>& change);

// What stands at PATH. Failure "Not found: PATH" when nothing does, "Not a file: PATH" and "Not a
// directory: PATH" when it is the other kind.
PathTarget RequirePath(Disc& disc, const std::string& path);
PathTarget RequireFile(Disc& disc, const std::string& path);
PathTarget RequireDirectory(Disc& disc, const std::string& path);
// The row of the file at PATH. The same failures as RequireFile.
ListRow RequireFileRow(Disc& disc, const std::string& path);

}  // namespace sectorbox::cli
