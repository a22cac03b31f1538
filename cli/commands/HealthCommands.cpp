// The commands that tell what is wrong with a disc, and what a file is.

#include <optional>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "cli/program/Json.h"
#include "cli/program/TerminalText.h"
#include "disc/health/Check.h"
#include "disc/health/Identify.h"
#include "disc/host/HostError.h"

namespace sectorbox::cli {
namespace {

const char* WeightOf(const Fault& fault) {
  return fault.IsError() ? "error" : "warning";
}

// The fields by which a program finds what a fault touches.
JsonObject JsonOf(const Touched& touched) {
  JsonObject object;
  switch (touched.Kind) {
    case TouchedKind::kMapSector:
    case TouchedKind::kSectors:
      return object.Number("sector", touched.Number);
    case TouchedKind::kMap:
      return object.Number("sector", 0);
    case TouchedKind::kRun:
      return object.Number("run", touched.Number);
    case TouchedKind::kDirectory:
      return object.Bbc("path", touched.Path).Number("sector", touched.Number);
    case TouchedKind::kEntry:
      return object.Bbc("path", touched.Path)
          .Number("directory", touched.Number)
          .Number("slot", touched.Slot);
    case TouchedKind::kCompanion:
      return object.Host("file", touched.Path);
  }
  return object;
}

JsonObject JsonOf(const Fault& fault) {
  JsonObject object;
  object.Host("severity", WeightOf(fault)).Host("kind", WordOf(fault.Kind));
  // Only the companion's name is a text of the host.
  if (fault.At.Kind == TouchedKind::kCompanion) {
    object.Host("place", fault.Place());
  } else {
    object.Bbc("place", fault.Place());
  }
  object.Bbc("text", fault.Text()).Object("touches", JsonOf(fault.At));
  if (fault.Kind == FaultKind::kOverlap) object.Object("overlaps", JsonOf(fault.Other));
  return object;
}

int RunCheck(const CommandLine& line) {
  line.Expect(1, 1);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const bool json = line.Has("json");
  JsonList list;
  int status = kDone;
  CheckDisc(session.Open, [&](const Fault& fault) {
    if (json) {
      list.Add(JsonOf(fault));
    } else {
      PrintLine(std::string(WeightOf(fault)) + ": " + fault.Place() + ": " + fault.Text());
    }
    if (fault.IsError()) status = kRefused;
  });
  if (json) list.End();
  return status == kDone ? StatusOf(session) : status;
}

// None if the file can't be read; the user is told then.
std::optional<FileLook> LookAt(const std::string& path) {
  try {
    return IdentifyFile(path);
  } catch (const HostError& error) {
    PrintErrorLine(error.what());
    return std::nullopt;
  }
}

int RunIdentify(const CommandLine& line) {
  line.Expect(1, SIZE_MAX);
  const bool json = line.Has("json");
  JsonList list;
  int status = kDone;
  for (const std::string& path : line.Arguments) {
    const auto look = LookAt(path);
    if (!look) {
      status = kRefused;
    } else if (json) {
      list.Add(JsonObject()
                   .Host("path", path)
                   .Host("kind", TextOf(*look))
                   .Number("size", static_cast<std::int64_t>(look->Size))
                   .Bbc("title", look->Title));
    } else {
      PrintBytes(ShownOnOutput(path) + "\t" + TextOf(*look) + "\t" + std::to_string(look->Size) +
                 "\t" + ShownOnOutput(look->Title) + "\n");
    }
  }
  if (json) list.End();
  return status;
}

}  // namespace

std::vector<Command> HealthCommands() {
  return {
      {"check",
       "IMAGE [--json]",
       "look the disc over for faults; status 1 if there is an error",
       {"json"},
       RunCheck},
      {"identify",
       "FILE... [--json]",
       "what kind of file each is, its size and title, with TABs between",
       {"json"},
       RunIdentify},
  };
}

}  // namespace sectorbox::cli
