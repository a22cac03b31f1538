// Finding embedded commands and their arguments, and running them now or later.
#include <algorithm>

#include "disc/format/Text.h"
#include "viewers/wordwise/WordwiseFormatter.h"

namespace sectorbox {

using namespace wordwise;

namespace {

constexpr std::int32_t kCommandLength = 3;  // the start and two letters

bool IsDigit(std::uint8_t c) {
  return c >= '0' && c <= '9';
}

}  // namespace

void WordwiseFormatter::DoCommand() {
  const Command* command = ParseCommand();
  if (command != nullptr) return ExecCommand(*command);
  ++Pos;
  SkipArgs();
}

// Gives the command that starts at Pos. If there is no such command, the result is null, EndFlag is
// set, and a box names the two letters. No box comes if the first of the two is a control
// character.
const WordwiseFormatter::Command* WordwiseFormatter::ParseCommand() {
  EndFlag = true;
  const std::uint8_t first = ByteOrZero(std::int64_t{Pos} + 1);
  if (first < 32) return nullptr;
  const std::uint8_t second = ByteOrZero(std::int64_t{Pos} + 2);
  const std::string letters =
      UpperCase(std::string{static_cast<char>(first), static_cast<char>(second)});
  for (const Command& command : kCommands) {
    if (std::string_view(letters).substr(0, command.Letters.size()) != command.Letters) continue;
    EndFlag = false;
    return &command;
  }
  // After a close request no more boxes are shown.
  if (!view_.Finished) {
    view_.ShowMessage("Unrecognised Command " + letters);
    reader_.Forget();
  }
  return nullptr;
}

void WordwiseFormatter::ExecCommand(const Command& command) {
  switch (command.Class) {
    case WordwiseClass::kAtOnce:
      Pos += kCommandLength;
      command.Run(*this);
      SkipArgs();
      return;
    case WordwiseClass::kAtLineStart:
      if (LineIsEmpty()) {
        Pos += kCommandLength;
        command.Run(*this);
        return;
      }
      // Pos stands on the command's start, so SkipArgs skips nothing and leaves Pos one before it.
      // The line ends here, and the next line begins with the same command.
      SkipArgs();
      Ch = kLineBroken;
      EndFlag = true;
      return;
    case WordwiseClass::kDeferred:
      Defer();
      return;
  }
}

// Notes the command for the moment when the cell at LinePos has been printed.
void WordwiseFormatter::Defer() {
  std::uint8_t& cell = CellAt(line_.LinePos);
  const bool newGroup = (cell & format::kTopBit) == 0;
  if (newGroup && deferred_.DeferredIndex != 0) ++deferred_.DeferredIndex;
  SetDeferred(deferred_.DeferredIndex, Pos);
  SetDeferred(deferred_.DeferredIndex + 1, 0);
  ++deferred_.DeferredIndex;
  ++Pos;
  SkipArgs();
  cell |= format::kTopBit;
  EndFlag = false;
}

// Runs one group of deferred commands. It ends with DeferredIndex on the group's closing zero, and
// no step passes that zero. The second group of a line therefore first runs the zero as if it were
// a command at the document's start, and takes the bytes at offsets 1 and 2 for its letters. If
// these aren't the letters of a command, a box appears. For a line with US and UE at two places
// this box has always appeared.
void WordwiseFormatter::RunDeferred() {
  const SavedPos saved = SavePos();
  do {
    Pos = DeferredAt(deferred_.DeferredIndex);
    if (const Command* command = ParseCommand()) {
      Pos += kCommandLength;
      command->Run(*this);
      SkipArgs();
    }
    ++deferred_.DeferredIndex;
  } while (DeferredAt(deferred_.DeferredIndex) != 0);
  RestorePos(saved);
}

std::int32_t WordwiseFormatter::DeferredAt(std::size_t index) const {
  return index < deferred_.Deferred.size() ? deferred_.Deferred[index] : 0;
}

void WordwiseFormatter::SetDeferred(std::size_t index, std::int32_t pos) {
  if (index >= deferred_.Deferred.size()) deferred_.Deferred.resize(index + 1);
  deferred_.Deferred[index] = pos;
}

void WordwiseFormatter::SkipArgs() {
  do {
    SkipArg();
  } while (EndFlag);
}

// Moves Pos to the end of the argument. That is the byte that ends the command, or one before the
// start of another command, or the byte behind a comma. Only the comma sets EndFlag.
void WordwiseFormatter::SkipArg() {
  EndFlag = false;
  if (Pos >= DocLen) return;
  const auto stop =
      static_cast<std::int32_t>(argumentScan_.Search(Pos, DocLen, [this](std::int64_t at) {
        const std::uint8_t c = Byte(at);
        return c == kCommandEnd || c == kParagraphEnd || c == kCommandStart || c == ',';
      }));
  Ch = Byte(std::min(stop, DocLen - 1));
  Pos = stop;
  if (stop == DocLen) return;
  if (Ch == kCommandStart) --Pos;
  if (Ch != ',') return;
  ++Pos;
  EndFlag = true;
}

// Gives the number of up to three digits at Pos. Pos stays, and Count is the number of digits. If
// there is no digit, EndFlag is set.
std::int16_t WordwiseFormatter::ReadNumber() {
  std::int16_t number = 0;
  for (Count = 0; Count < 3; ++Count) {
    const std::uint8_t digit = ByteOrZero(std::int64_t{Pos} + Count);
    if (!IsDigit(digit)) break;
    number = static_cast<std::int16_t>(number * 10 + (digit - '0'));
  }
  EndFlag = Count == 0;
  return number;
}

}  // namespace sectorbox
