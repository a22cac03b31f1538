#pragma once

#include <cstdint>
#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/text/ByteReader.h"
#include "viewers/text/TextView.h"

namespace sectorbox {

// The file as 65C02 code, an instruction a line, from the file's load address on. The view steps by
// the lengths of the instructions: it doesn't follow the code and doesn't recognise data. A file
// that begins with 13 and ends with 255 gives one line that calls it a BASIC program. The last
// instruction is always shown whole. If the file ends inside it, the rest is taken from the bytes
// behind the file. A close request takes effect at the next line.
void ShowDis(Disc& disc, const ListRow& row, TextView& view);

// Appends the line of one instruction to text, without the final carriage return: address, bytes,
// mnemonic, operand, characters. pointer is the store offset of the instruction, address its place
// in the 6502's memory (the last four digits are shown). Gives the instruction's length. After RTI
// and RTS the text ends in a carriage return, so that an empty line follows each routine.
int DisassembleLine(ByteReader& reader, std::int64_t pointer, std::uint32_t address,
                    std::string& text);

// Appends the label if the instruction at pointer goes to a labelled vector. Gives the count of
// columns appended: 6, or 0 without a label.
int OSLabel(ByteReader& reader, std::int64_t pointer, std::string& text);

}  // namespace sectorbox
