#pragma once

#include <cstdint>
#include <string>

#include "viewers/text/ByteReader.h"
#include "viewers/text/ScanMemory.h"
#include "viewers/text/TextView.h"
#include "viewers/wordwise/WordwiseCommands.h"
#include "viewers/wordwise/WordwiseState.h"

namespace sectorbox {

// One document on its way to the printer. Small steps over one block of state; three values of it
// carry the logic from step to step: EndFlag, Ch and Pos.
class WordwiseFormatter : private WordwiseState {
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

  // Page heads, page feet and deferred commands read elsewhere in the document for a while, and
  // keep the place where they were in 16 bits: no document of the BBC was longer. From 32768 on a
  // place comes back 65536 lower, and what stands there on the disc is formatted. See RestorePos.
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

  // Embedded commands (WordwiseCommands.cpp: the table is in WordwiseCommands.h).
  void DoCommand();
  const WordwiseCommand* ParseCommand();
  void ExecCommand(const WordwiseCommand& command);
  void Defer();
  void RunDeferred();
  std::int32_t DeferredAt(std::size_t index) const;
  void SetDeferred(std::size_t index, std::int32_t pos);
  void SkipArgs();
  void SkipArg();
  std::int16_t ReadNumber();

  // What each command does (WordwiseDirectives.cpp).
  void DoDirective(WordwiseDirective directive);
  bool DoLayoutDirective(WordwiseDirective directive);
  bool DoPageDirective(WordwiseDirective directive);
  void DoInlineDirective(WordwiseDirective directive);
  std::int16_t NumberOr(std::int16_t fallback);
  std::int16_t NumberWithin(std::int16_t least, std::int16_t below, std::int16_t fallback);
  void DoIN();
  void DoTI();
  void DoLL();
  void DoSP();
  void DoCP();
  void BreakPage();
  void BeginLineOver();
  void DefineText(std::int32_t& textPos);
  void DoDT();
  void DoGF();
  void DoOC();
  void DoPP();
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

  bool LineIsEmpty() const { return LinePos == LineStart; }
  std::uint8_t& CellAt(std::int32_t index) { return LineBuffer[static_cast<std::uint8_t>(index)]; }
  // A byte of the document; a command's letters and digits read as 0 behind its end.
  std::uint8_t Byte(std::int64_t pos) { return reader_.At(start_ + pos); }
  std::uint8_t ByteOrZero(std::int64_t pos) { return pos < DocLen ? Byte(pos) : 0; }

  Disc& disc_;
  std::int64_t start_;  // store offset of the document
  std::int32_t DocLen;
  TextView& view_;
  ByteReader reader_;
  std::string character_;
  bool positionLost_ = false;
  ScanMemory argumentScan_;
  ScanMemory paragraphScan_;
  ScanMemory quoteScan_;
};

}  // namespace sectorbox
