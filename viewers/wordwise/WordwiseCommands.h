#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace sectorbox {

// When an embedded command of a Wordwise document acts.
enum class WordwiseClass : std::uint8_t {
  kAtOnce = 1,       // where it stands
  kAtLineStart = 2,  // on an empty line; on one that has text it ends the line first
  kDeferred = 3,     // when the character before it is printed
};

// clang-format off
enum class WordwiseDirective : std::uint8_t {
  kIN, kTI, kCI, kFL, kLL, kPL, kTS, kBS, kLS, kCE, kSP, kBP, kPN, kCP, kPC, kDH, kDF, kJO, kNJ,
  kSS, kCO, kEP, kDT, kGF, kOC, kHP, kFP, kDP, kEM, kDM, kPP, kLM, kUS, kUE, kDS, kDE, kES,
  kComment, kFI,
};
// clang-format on

struct WordwiseCommand {
  std::string_view Name;  // compared over its own length, so "*" matches on its letter alone
  WordwiseClass Class;
  WordwiseDirective Directive;
};

// In the order in which they are compared.
inline constexpr std::array<WordwiseCommand, 39> kWordwiseCommands = {{
    {"IN", WordwiseClass::kAtOnce, WordwiseDirective::kIN},       // number: indent
    {"TI", WordwiseClass::kAtLineStart, WordwiseDirective::kTI},  // number: indent one line
    {"CI", WordwiseClass::kAtOnce, WordwiseDirective::kCI},       // cancel indent
    {"FL", WordwiseClass::kAtOnce, WordwiseDirective::kFL},       // number: left margin
    {"LL", WordwiseClass::kAtOnce, WordwiseDirective::kLL},       // number: line length
    {"PL", WordwiseClass::kAtOnce, WordwiseDirective::kPL},       // number: page length
    {"TS", WordwiseClass::kAtOnce, WordwiseDirective::kTS},       // number: top space
    {"BS", WordwiseClass::kAtOnce, WordwiseDirective::kBS},       // number: bottom space
    {"LS", WordwiseClass::kAtOnce, WordwiseDirective::kLS},       // number: line spacing
    {"CE", WordwiseClass::kAtLineStart, WordwiseDirective::kCE},  // number: centre lines
    {"SP", WordwiseClass::kAtLineStart, WordwiseDirective::kSP},  // number: empty lines
    {"BP", WordwiseClass::kAtLineStart, WordwiseDirective::kBP},  // begin a new page
    {"PN", WordwiseClass::kAtOnce, WordwiseDirective::kPN},       // number: page number
    {"CP", WordwiseClass::kAtLineStart, WordwiseDirective::kCP},  // number: conditional page
    {"PC", WordwiseClass::kAtOnce, WordwiseDirective::kPC},       // character: the hard blank
    {"DH", WordwiseClass::kAtOnce, WordwiseDirective::kDH},       // line: header
    {"DF", WordwiseClass::kAtOnce, WordwiseDirective::kDF},       // line: footer
    {"JO", WordwiseClass::kAtOnce, WordwiseDirective::kJO},       // justification on
    {"NJ", WordwiseClass::kAtOnce, WordwiseDirective::kNJ},       // and off
    {"SS", WordwiseClass::kAtOnce, WordwiseDirective::kSS},       // single spacing
    {"CO", WordwiseClass::kAtOnce, WordwiseDirective::kCO},       // continuous: no page heads
    {"EP", WordwiseClass::kAtOnce, WordwiseDirective::kEP},       // paged: page heads
    {"DT", WordwiseClass::kAtOnce, WordwiseDirective::kDT},       // numbers: tab stops
    {"GF", WordwiseClass::kDeferred, WordwiseDirective::kGF},     // "name": get a file
    {"OC", WordwiseClass::kDeferred, WordwiseDirective::kOC},     // numbers: output codes
    {"HP", WordwiseClass::kAtOnce, WordwiseDirective::kHP},       // number: header line
    {"FP", WordwiseClass::kAtOnce, WordwiseDirective::kFP},       // number: footer line
    {"DP", WordwiseClass::kAtOnce, WordwiseDirective::kDP},       // number: code for a backquote
    {"EM", WordwiseClass::kAtOnce, WordwiseDirective::kEM},       // messages on
    {"DM", WordwiseClass::kAtOnce, WordwiseDirective::kDM},       // and off
    {"PP", WordwiseClass::kAtOnce, WordwiseDirective::kPP},       // print the page number
    {"LM", WordwiseClass::kAtOnce, WordwiseDirective::kLM},       // number: left margin
    {"US", WordwiseClass::kDeferred, WordwiseDirective::kUS},     // underline starts
    {"UE", WordwiseClass::kDeferred, WordwiseDirective::kUE},     // and ends
    {"DS", WordwiseClass::kDeferred, WordwiseDirective::kDS},     // double strike starts
    {"DE", WordwiseClass::kDeferred, WordwiseDirective::kDE},     // and ends
    {"ES", WordwiseClass::kDeferred, WordwiseDirective::kES},     // escape sequence
    {"*", WordwiseClass::kAtOnce, WordwiseDirective::kComment},   // comment
    {"FI", WordwiseClass::kAtLineStart, WordwiseDirective::kFI},  // right-align the next line
}};

}  // namespace sectorbox
