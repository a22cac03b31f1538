#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "viewers/text/ByteReader.h"
#include "viewers/text/ScanMemory.h"
#include "viewers/text/TextView.h"
#include "viewers/wordwise/WordwiseState.h"

namespace sectorbox {

// One document on its way to the printer. The formatter takes small steps over one state, which
// WordwiseState.h groups by topic. Three values carry the logic from step to step: EndFlag, Ch and
// Pos. They stand in WordwiseReading, whose fields are the formatter's own.
class WordwiseFormatter : private WordwiseReading {
 public:
  WordwiseFormatter(Disc& disc, const FileExtent& document, TextView& view);

  // Formats the whole document into the view, up to and without the end of its last line.
  void Format();

 private:
  // Pages (WordwisePages.cpp).
  void BeginPage();
  bool FormatLine();
  void EmitLineEnds();
  void PageHead();
  void PageFoot();
  void PageEdge(std::int16_t lines, const std::int16_t& textLine, const std::int32_t& textPos);
  void NewLine();

  // For a page head, a page foot or a deferred command the formatter reads elsewhere in the
  // document for a while. It keeps the place where it was in 16 bits, since no document of the BBC
  // was longer. A place from 32768 on comes back 65536 lower, and the formatter goes on with what
  // stands there on the disc. See RestorePos.
  struct SavedPos {
    std::int16_t Value;
    bool Lost;
  };
  SavedPos SavePos() const;
  void RestorePos(const SavedPos& saved);

  // Reading a line (WordwiseReader.cpp).
  void ReadLine();
  void Tab();
  void NextChar();
  void EndDocument();
  void MarkBreak();
  std::int16_t UsableIndent(std::int16_t indent) const;

  // An embedded command.
  struct Command {
    std::string_view Letters;  // compared over its own length, so "*" matches on its letter alone
    WordwiseClass Class;
    void (*Run)(WordwiseFormatter& formatter);
  };
  // All commands, in the order in which they are compared (WordwiseDirectives.cpp).
  static const std::array<Command, 39> kCommands;

  // Finding and running embedded commands (WordwiseCommands.cpp).
  void DoCommand();
  const Command* ParseCommand();
  void ExecCommand(const Command& command);
  void Defer();
  void RunDeferred();
  std::int32_t DeferredAt(std::size_t index) const;
  void SetDeferred(std::size_t index, std::int32_t pos);
  void SkipArgs();
  void SkipArg();
  std::int16_t ReadNumber();

  // What each command does (WordwiseDirectives.cpp).
  std::int16_t NumberOr(std::int16_t fallback);
  std::int16_t NumberWithin(std::int16_t least, std::int16_t below, std::int16_t fallback);
  std::int16_t EdgeLines(std::int16_t fallback);
  void DoIN();
  void DoTI();
  void DoCI();
  void DoLL();
  void DoCE();
  void DoFI();
  void DoSP();
  void DoBP();
  void DoCP();
  void BreakPage();
  void BeginLineOver();
  void DefineText(std::int32_t& textPos);
  void DoDT();
  void DoGF();
  void DoOC();
  void DoPP();
  void DoPL();
  void DoPN();
  void DoDP();
  void DoLM();
  void DoPC();
  void FillIndent(std::int16_t n);

  // Finished lines (WordwiseLines.cpp).
  void AdjustLine();
  void RightFlushLine();
  void CentreLine();
  void JustifyLine();
  bool Sweep();
  void InsertSpace(std::int32_t k);
  void OutputLine();
  void EmitChar(std::int32_t code);

  bool LineIsEmpty() const { return line_.LinePos == line_.LineStart; }
  std::uint8_t& CellAt(std::int32_t index) {
    return line_.LineBuffer[static_cast<std::uint8_t>(index)];
  }
  // A byte of the document. Behind the document's end Byte gives what stands there on the disc,
  // while ByteOrZero, which reads a command's letters and digits, gives 0.
  std::uint8_t Byte(std::int64_t pos) { return reader_.At(start_ + pos); }
  std::uint8_t ByteOrZero(std::int64_t pos) { return pos < DocLen ? Byte(pos) : 0; }

  Disc& disc_;
  std::int64_t start_;  // store offset of the document
  std::int32_t DocLen;
  TextView& view_;
  ByteReader reader_;
  std::string character_;
  WordwisePage page_;
  WordwiseMargins margins_;
  WordwiseAlignment align_;
  WordwiseOutput output_;
  WordwiseLine line_;
  WordwiseDeferred deferred_;
  bool positionLost_ = false;  // RestorePos has lost a place before
  ScanMemory argumentScan_;
  ScanMemory paragraphScan_;
  ScanMemory quoteScan_;
};

}  // namespace sectorbox
