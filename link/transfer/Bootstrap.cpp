#include "link/transfer/Bootstrap.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "disc/host/HostFile.h"
#include "link/wire/Commands.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"

namespace sectorbox {
namespace {

constexpr char kStars[] = "REM *********************************";
constexpr std::array<const char*, 4> kCompleteLines = {kStars, "REM File Transfer Complete",
                                                       "REM Type SAVE \"ADFSXFER\" to save file",
                                                       "REM Then RUN to start program"};
constexpr std::array<const char*, 2> kAbortedLines = {kStars, "REM File Transfer Aborted"};
constexpr std::array<const char*, 2> kLastLines = {kStars, "*FX 2,0"};

// The loader reads exactly &166A bytes and checks their sum. The PC checks neither.
constexpr std::array<const char*, 6> kLoader = {
    "10CLS:P.\"Please Wait ...\";:*DISC",
    "20T%=0:F.A%=0TO&1669:C%=GET:T%=(T%+C%)AND255:A%?&2FB3=C%",
    "30IF A% MOD 128 = 0 THEN VDU 46",
    "40N.:*FX2,0",
    "50IFT%=206 CALL &2FB3 ELSE PRINT\"TRANSFER CORRUPT - PLEASE TRY AGAIN\"",
    "RUN"};

constexpr std::size_t kBytesBetweenPumps = 50;

// Sets the port to 1200 baud for the time of a bootstrap. However the bootstrap ends, the
// destructor closes the port and sets it to 19200 baud.
class BareLine {
 public:
  explicit BareLine(Link& link) : link_(link) {
    SetSpeed(link, wire::kBootstrapSpeed);
    link.AbortRequested = false;
  }
  ~BareLine() {
    link_.Port.Close();
    SetSpeed(link_, wire::kDefaultSpeed);
  }
  BareLine(const BareLine&) = delete;
  BareLine& operator=(const BareLine&) = delete;

  // This isn't part of the constructor, so that the destructor also runs for a port that can't be
  // opened.
  void Open() {
    if (!link_.Port.PortOpen()) link_.Port.Open();
  }

 private:
  Link& link_;
};

std::string ReadCompanionFile(Link& link, const char* name) {
  const std::string path = JoinHostPath(link.Host.ProgramFolder(), name);
  if (!HostFileExists(path)) RandomAccessFile(path, FileAccess::kCreate).Close();
  const std::vector<std::uint8_t> bytes = ReadHostFile(path);
  return {bytes.begin(), bytes.end()};
}

// The BBC says nothing in a bootstrap. It lives as long as it takes what is sent.
void TypeLine(Link& link, std::string_view line) {
  (void)SendCommand(link, std::string(line) + "\r", false);
  NoteValid(link);
}

template <typename Lines>
void TypeLines(Link& link, const Lines& lines) {
  for (const char* line : lines) TypeLine(link, line);
}

// The line that begins at position. position moves behind the line's end: a CR, an LF, or CR and
// LF.
std::string_view TakeLine(std::string_view text, std::size_t& position) {
  const std::size_t end = std::min(text.find_first_of("\r\n", position), text.size());
  const std::string_view line = text.substr(position, end - position);
  const bool pair = text.substr(end).starts_with("\r\n");
  position = std::min(end + (pair ? 2 : 1), text.size());
  return line;
}

double Percent(std::size_t position, std::size_t length) {
  return static_cast<double>(position) / static_cast<double>(length) * 100.0;
}

}  // namespace

void SendBasicProgram(Link& link, const BootstrapProgress& progress) {
  BareLine line(link);
  line.Open();
  const std::string listing = ReadCompanionFile(link, "adfsxfer.bas");
  progress(0);
  for (std::size_t position = 0; position < listing.size() && !link.AbortRequested;) {
    TypeLine(link, TakeLine(listing, position));
    progress(Percent(position, listing.size()));
    PumpEvents(link);
  }
  if (link.AbortRequested) {
    link.AbortRequested = false;  // or the lines that tell of the Cancel would be refused
    TypeLines(link, kAbortedLines);
  } else {
    TypeLines(link, kCompleteLines);
  }
  TypeLines(link, kLastLines);
}

void SendFormatProgram(Link& link, const BootstrapProgress& progress) {
  BareLine line(link);
  line.Open();
  TypeLines(link, kLoader);
  if (link.AbortRequested) return;
  const std::string program = ReadCompanionFile(link, "aform");
  progress(0);
  for (std::size_t position = 0; position < program.size() && !link.AbortRequested;) {
    SendRaw(link, std::string_view(program).substr(position, 1));
    NoteValid(link);
    ++position;
    progress(Percent(position, program.size()));
    if (position % kBytesBetweenPumps == 0) PumpEvents(link);
  }
}

}  // namespace sectorbox
