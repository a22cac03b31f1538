// Files as pictures: teletext pages and screens.

#include <algorithm>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "cli/program/ProgramFolder.h"
#include "disc/host/HostPath.h"
#include "disc/store/OpenDisc.h"
#include "viewers/picture/Colours.h"
#include "viewers/picture/PictureFile.h"
#include "viewers/picture/ScreenMode.h"
#include "viewers/picture/Teletext.h"

namespace sectorbox::cli {
namespace {

std::string RequireOut(const CommandLine& line) {
  std::string out = line.Option("o", "");
  if (out.empty()) throw UsageError(line.Command + ": -o OUT is missing");
  return out;
}

// True if an option is 1. It may be 0 or 1, and is 0 if the call doesn't have it.
bool ZeroOrOne(const CommandLine& line, const std::string& option) {
  const std::string value = line.Option(option, "0");
  if (value != "0" && value != "1") throw UsageError("--" + option + " takes 0 or 1");
  return value == "1";
}

int RunTeletext(const CommandLine& line) {
  line.Expect(2, 2);
  const std::string out = RequireOut(line);
  const std::int16_t phase = ZeroOrOne(line, "phase") ? 1 : 0;
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  RefuseOpenDisc(session.Open, out);
  const ListRow row = RequireFileRow(session.Open, line.Arguments[1]);
  const auto font = LoadTeletextFont(JoinHostPath(ProgramFolder(), kTeletextFontFile));
  if (!font) throw Failure(kTeletextFontMissing);
  const auto codes = ReadTeletextPage(session.Open, row.StartSector(), row.Length());
  SavePicture(DrawTeletext(codes, *font, phase), out);
  return StatusOf(session);
}

const ScreenMode& ModeNamed(const std::string& word) {
  const bool oneDigit = word.size() == 1 && word[0] >= '0' && word[0] <= '9';
  const ScreenMode* mode = oneDigit ? FindScreenMode(word[0] - '0') : nullptr;
  if (mode == nullptr) throw UsageError("mode: no such mode: " + word);
  return *mode;
}

// One "L=COLOUR" of --palette.
void SetColour(ScreenPalette& palette, const ScreenMode& mode, const std::string& change) {
  const auto name = std::find(kColourNames.begin(), kColourNames.end(),
                              change.size() > 2 ? change.substr(2) : "");
  const int logical = change.empty() ? -1 : change[0] - '0';
  const bool known = logical >= 0 && logical < mode.BaseColours && change.find('=') == 1 &&
                     name != kColourNames.end();
  if (!known) throw UsageError("--palette: no such colour: " + change);
  palette.Set(mode, logical,
              kPhysicalColours[static_cast<std::size_t>(name - kColourNames.begin())]);
}

ScreenPalette PaletteOf(const CommandLine& line, const ScreenMode& mode) {
  ScreenPalette palette;
  if (!line.Has("palette")) return palette;
  const std::string changes = line.Option("palette", "");
  for (std::size_t at = 0; at <= changes.size();) {
    const std::size_t comma = std::min(changes.find(',', at), changes.size());
    SetColour(palette, mode, changes.substr(at, comma - at));
    at = comma + 1;
  }
  return palette;
}

int RunMode(const CommandLine& line) {
  line.Expect(3, 3);
  const ScreenMode& mode = ModeNamed(line.Arguments[0]);
  const std::string out = RequireOut(line);
  const CurrentColours colours =
      FindCurrentColours(mode, PaletteOf(line, mode), ZeroOrOne(line, "flash"));
  ImageSession session(line);
  OpenForReading(session, line.Arguments[1]);
  RefuseOpenDisc(session.Open, out);
  const ListRow row = RequireFileRow(session.Open, line.Arguments[2]);
  const auto bytes = ReadScreen(session.Open, mode, row.StartSector(), row.Length());
  SavePicture(DrawScreen(mode, bytes, colours), out);
  return StatusOf(session);
}

}  // namespace

std::vector<Command> PictureCommands() {
  return {
      {"teletext",
       "IMAGE PATH -o OUT [--phase 0|1]",
       "a file as a teletext page, to a .bmp or .png; phase 1 shows flashing text",
       {"o", "phase"},
       RunTeletext},
      {"mode",
       "N IMAGE PATH -o OUT [--flash 0|1] [--palette L=COLOUR,...]",
       "a file as a screen of MODE 0, 1, 2, 4 or 5, to a .bmp or .png",
       {"o", "flash", "palette"},
       RunMode},
  };
}

}  // namespace sectorbox::cli
