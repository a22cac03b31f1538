#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// The instructions of the 65C02, without the bit instructions of some makes.
namespace sectorbox {

// An addressing form: the template of its operand and the length of the whole instruction. In a
// template "l" is the byte after the opcode, "h" the one after that, "r" the target of a branch;
// "&" is the BBC's sign for hexadecimal, and everything else is printed as it stands.
struct AddressingForm {
  std::string_view Template;
  int Length;
};

inline constexpr std::array<AddressingForm, 15> kForms = {{
    {"", 1},
    {"#&l", 2},
    {"&l", 2},
    {"&hl", 3},
    {"&l,X", 2},
    {"&l,Y", 2},
    {"&hl,X", 3},
    {"&hl,Y", 3},
    {"(&l,X)", 2},
    {"(&l),Y", 2},
    {"A", 1},
    {"(&hl)", 3},
    {"&r", 2},
    {"(&hl,X)", 3},
    {"(&l)", 2},
}};

// Mnemonic and template of every opcode, sixteen to a row of two lines. "???" is an undefined
// opcode, one byte long; &F4 is a NOP of one byte.
inline constexpr std::array<std::string_view, 256> kOpcodes = {
    // clang-format off
    /* &00 */ "BRK",        "ORA (&l,X)", "???",        "???",        "TSB &l",     "ORA &l",     "ASL &l",     "???",
    /* &08 */ "PHP",        "ORA #&l",    "ASL A",      "???",        "TSB &hl",    "ORA &hl",    "ASL &hl",    "???",
    /* &10 */ "BPL &r",     "ORA (&l),Y", "ORA (&l)",   "???",        "TRB &l",     "ORA &l,X",   "ASL &l,X",   "???",
    /* &18 */ "CLC",        "ORA &hl,Y",  "INC A",      "???",        "TRB &hl",    "ORA &hl,X",  "ASL &hl,X",  "???",
    /* &20 */ "JSR &hl",    "AND (&l,X)", "???",        "???",        "BIT &l",     "AND &l",     "ROL &l",     "???",
    /* &28 */ "PLP",        "AND #&l",    "ROL A",      "???",        "BIT &hl",    "AND &hl",    "ROL &hl",    "???",
    /* &30 */ "BMI &r",     "AND (&l),Y", "AND (&l)",   "???",        "BIT &l,X",   "AND &l,X",   "ROL &l,X",   "???",
    /* &38 */ "SEC",        "AND &hl,Y",  "DEC A",      "???",        "BIT &hl,X",  "AND &hl,X",  "ROL &hl,X",  "???",
    /* &40 */ "RTI",        "EOR (&l,X)", "???",        "???",        "???",        "EOR &l",     "LSR &l",     "???",
    /* &48 */ "PHA",        "EOR #&l",    "LSR A",      "???",        "JMP &hl",    "EOR &hl",    "LSR &hl",    "???",
    /* &50 */ "BVC &r",     "EOR (&l),Y", "EOR (&l)",   "???",        "???",        "EOR &l,X",   "LSR &l,X",   "???",
    /* &58 */ "CLI",        "EOR &hl,Y",  "PHY",        "???",        "???",        "EOR &hl,X",  "LSR &hl,X",  "???",
    /* &60 */ "RTS",        "ADC (&l,X)", "???",        "???",        "STZ &l",     "ADC &l",     "ROR &l",     "???",
    /* &68 */ "PLA",        "ADC #&l",    "ROR A",      "???",        "JMP (&hl)",  "ADC &hl",    "ROR &hl",    "???",
    /* &70 */ "BVS &r",     "ADC (&l),Y", "ADC (&l)",   "???",        "STZ &l,X",   "ADC &l,X",   "ROR &l,X",   "???",
    /* &78 */ "SEI",        "ADC &hl,Y",  "PLY",        "???",        "JMP (&hl,X)","ADC &hl,X",  "ROR &hl,X",  "???",
    /* &80 */ "BRA &r",     "STA (&l,X)", "???",        "???",        "STY &l",     "STA &l",     "STX &l",     "???",
    /* &88 */ "DEY",        "BIT #&l",    "TXA",        "???",        "STY &hl",    "STA &hl",    "STX &hl",    "???",
    /* &90 */ "BCC &r",     "STA (&l),Y", "STA (&l)",   "???",        "STY &l,X",   "STA &l,X",   "STX &l,Y",   "???",
    /* &98 */ "TYA",        "STA &hl,Y",  "TXS",        "???",        "STZ &hl",    "STA &hl,X",  "STZ &hl,X",  "???",
    /* &A0 */ "LDY #&l",    "LDA (&l,X)", "LDX #&l",    "???",        "LDY &l",     "LDA &l",     "LDX &l",     "???",
    /* &A8 */ "TAY",        "LDA #&l",    "TAX",        "???",        "LDY &hl",    "LDA &hl",    "LDX &hl",    "???",
    /* &B0 */ "BCS &r",     "LDA (&l),Y", "LDA (&l)",   "???",        "LDY &l,X",   "LDA &l,X",   "LDX &l,Y",   "???",
    /* &B8 */ "CLV",        "LDA &hl,Y",  "TSX",        "???",        "LDY &hl,X",  "LDA &hl,X",  "LDX &hl,Y",  "???",
    /* &C0 */ "CPY #&l",    "CMP (&l,X)", "???",        "???",        "CPY &l",     "CMP &l",     "DEC &l",     "???",
    /* &C8 */ "INY",        "CMP #&l",    "DEX",        "???",        "CPY &hl",    "CMP &hl",    "DEC &hl",    "???",
    /* &D0 */ "BNE &r",     "CMP (&l),Y", "CMP (&l)",   "???",        "???",        "CMP &l,X",   "DEC &l,X",   "???",
    /* &D8 */ "CLD",        "CMP &hl,Y",  "PHX",        "???",        "???",        "CMP &hl,X",  "DEC &hl,X",  "???",
    /* &E0 */ "CPX #&l",    "SBC (&l,X)", "???",        "???",        "CPX &l",     "SBC &l",     "INC &l",     "???",
    /* &E8 */ "INX",        "SBC #&l",    "NOP",        "???",        "CPX &hl",    "SBC &hl",    "INC &hl",    "???",
    /* &F0 */ "BEQ &r",     "SBC (&l),Y", "SBC (&l)",   "???",        "NOP",        "SBC &l,X",   "INC &l,X",   "???",
    /* &F8 */ "SED",        "SBC &hl,Y",  "PLX",        "???",        "???",        "SBC &hl,X",  "INC &hl,X",  "???",
    // clang-format on
};

struct Instruction {
  std::string_view Mnemonic;  // always three characters
  std::string_view Template;
  int Length = 0;  // 0 where the template is none of kForms, which never happens (see below)
};

constexpr Instruction DecodeCell(std::string_view cell) {
  Instruction instruction;
  instruction.Mnemonic = cell.substr(0, 3);
  instruction.Template = cell.size() > 3 ? cell.substr(4) : std::string_view();
  for (const AddressingForm& form : kForms) {
    if (form.Template == instruction.Template) instruction.Length = form.Length;
  }
  return instruction;
}

inline constexpr std::array<Instruction, 256> kInstructions = [] {
  std::array<Instruction, 256> all;
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = DecodeCell(kOpcodes[i]);
  return all;
}();

static_assert([] {
  for (const Instruction& instruction : kInstructions) {
    if (instruction.Mnemonic.size() != 3 || instruction.Length == 0) return false;
  }
  return true;
}());

inline constexpr std::uint8_t kJsr = 0x20;
inline constexpr std::uint8_t kRti = 0x40;
inline constexpr std::uint8_t kJmp = 0x4C;
inline constexpr std::uint8_t kRts = 0x60;

// The entries of the operating system at &FFxx. A call of one shows "os" and the label as its
// operand. All labels are four characters wide.
struct VectorLabel {
  std::uint8_t LowByte;
  std::string_view Label;
};

inline constexpr std::array<VectorLabel, 15> kVectorLabels = {{
    {0xB9, "rdrm"},
    {0xC2, "even"},
    {0xCE, "find"},
    {0xD1, "gbpb"},
    {0xD4, "bput"},
    {0xD7, "bget"},
    {0xDA, "args"},
    {0xDD, "file"},
    {0xE0, "rdch"},
    {0xE3, "asci"},
    {0xE7, "newl"},
    {0xEE, "wrch"},
    {0xF1, "word"},
    {0xF4, "byte"},
    {0xF7, "cli "},
}};

}  // namespace sectorbox
