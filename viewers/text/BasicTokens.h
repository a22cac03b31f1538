#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace sectorbox {

inline constexpr std::uint8_t kFirstToken = 0x80;
inline constexpr std::uint8_t kLineNumberToken = 0x8D;  // three bytes of line number follow

// The keyword of each token from &80 to &FF, eight to a row. The empty ones are the line number
// prefix, which the lister decodes itself, and &CE, which BASIC II doesn't use and which lists as
// nothing. &CF to &D3 are the statement forms of &8F to &93.
inline constexpr std::array<std::string_view, 128> kBasicKeywords = {
    // clang-format off
    /* &80 */ "AND",     "DIV",     "EOR",      "MOD",    "OR",       "ERROR",  "LINE",   "OFF",
    /* &88 */ "STEP",    "SPC",     "TAB(",     "ELSE",   "THEN",     "",       "OPENIN", "PTR",
    /* &90 */ "PAGE",    "TIME",    "LOMEM",    "HIMEM",  "ABS",      "ACS",    "ADVAL",  "ASC",
    /* &98 */ "ASN",     "ATN",     "BGET",     "COS",    "COUNT",    "DEG",    "ERL",    "ERR",
    /* &A0 */ "EVAL",    "EXP",     "EXT",      "FALSE",  "FN",       "GET",    "INKEY",  "INSTR(",
    /* &A8 */ "INT",     "LEN",     "LN",       "LOG",    "NOT",      "OPENUP", "OPENOUT", "PI",
    /* &B0 */ "POINT(",  "POS",     "RAD",      "RND",    "SGN",      "SIN",    "SQR",    "TAN",
    /* &B8 */ "TO",      "TRUE",    "USR",      "VAL",    "VPOS",     "CHR$",   "GET$",   "INKEY$",
    /* &C0 */ "LEFT$(",  "MID$(",   "RIGHT$(",  "STR$",   "STRING$(", "EOF",    "AUTO",   "DELETE",
    /* &C8 */ "LOAD",    "LIST",    "NEW",      "OLD",    "RENUMBER", "SAVE",   "",       "PTR",
    /* &D0 */ "PAGE",    "TIME",    "LOMEM",    "HIMEM",  "SOUND",    "BPUT",   "CALL",   "CHAIN",
    /* &D8 */ "CLEAR",   "CLOSE",   "CLG",      "CLS",    "DATA",     "DEF",    "DIM",    "DRAW",
    /* &E0 */ "END",     "ENDPROC", "ENVELOPE", "FOR",    "GOSUB",    "GOTO",   "GCOL",   "IF",
    /* &E8 */ "INPUT",   "LET",     "LOCAL",    "MODE",   "MOVE",     "NEXT",   "ON",     "VDU",
    /* &F0 */ "PLOT",    "PRINT",   "PROC",     "READ",   "REM",      "REPEAT", "REPORT", "RESTORE",
    /* &F8 */ "RETURN",  "RUN",     "STOP",     "COLOUR", "TRACE",    "UNTIL",  "WIDTH",  "OSCLI",
    // clang-format on
};

static_assert(kBasicKeywords[0xE3 - kFirstToken] == "FOR");
static_assert(kBasicKeywords[0xF4 - kFirstToken] == "REM");
static_assert(kBasicKeywords[0xFF - kFirstToken] == "OSCLI");

}  // namespace sectorbox
