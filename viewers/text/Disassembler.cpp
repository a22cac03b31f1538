#include "viewers/text/Disassembler.h"

#include <cstddef>

#include "viewers/text/HexText.h"
#include "viewers/text/Opcodes.h"

namespace sectorbox {
namespace {

// Columns of a line: address, the bytes from column 6 on, the mnemonic, the operand, characters.
constexpr std::size_t kBytesColumn = 6;
constexpr std::size_t kMnemonicColumn = 18;
constexpr std::size_t kOperandColumn = 23;
constexpr int kOperandColumns = 12;
constexpr std::uint8_t kVectorPage = 0xFF;

std::uint32_t BranchTarget(ByteReader& reader, std::int64_t pointer, std::uint32_t address) {
  const auto displacement = static_cast<std::int8_t>(reader.At(pointer + 1));
  return address + 2 + static_cast<std::uint32_t>(displacement);
}

// Appends the operand and gives the columns that it takes.
int AppendOperand(ByteReader& reader, std::int64_t pointer, std::uint32_t address,
                  std::string_view form, std::string& text) {
  const std::size_t before = text.size();
  for (const char c : form) {
    switch (c) {
      case 'r':
        AppendHex(text, BranchTarget(reader, pointer, address), 4);
        break;
      case 'l':
        AppendHex(text, reader.At(pointer + 1), 2);
        break;
      case 'h':
        AppendHex(text, reader.At(pointer + 2), 2);
        break;
      default:
        text += c;
    }
  }
  return static_cast<int>(text.size() - before);
}

// The lowest byte that is shown as its character is 31 here and 32 in the hex view. Listings have
// always been like that, so it stays.
char Character(std::uint8_t byte) {
  const std::uint8_t low = byte & format::kLowBits;
  return low < 31 || low == 127 ? '.' : static_cast<char>(low);
}

bool LooksLikeBasic(ByteReader& reader, const FileExtent& file) {
  return reader.At(file.Start) == 13 && reader.At(file.Start + file.Length - 1) == 255;
}

}  // namespace

int OSLabel(ByteReader& reader, std::int64_t pointer, std::string& text) {
  if (reader.At(pointer + 2) != kVectorPage) return 0;
  const std::uint8_t low = reader.At(pointer + 1);
  for (const VectorLabel& entry : kVectorLabels) {
    if (entry.LowByte != low) continue;
    text += "os";
    text += entry.Label;
    return 6;
  }
  return 0;
}

int DisassembleLine(ByteReader& reader, std::int64_t pointer, std::uint32_t address,
                    std::string& text) {
  const std::uint8_t opcode = reader.At(pointer);
  const Instruction& instruction = kInstructions[opcode];
  const std::size_t start = text.size();
  text.append(kOperandColumn, ' ');
  char* const line = text.data() + start;
  PutHex(line, address, 4);
  for (int i = 0; i < instruction.Length; ++i) {
    PutHex(line + kBytesColumn + std::ptrdiff_t{3} * i, reader.At(pointer + i), 2);
  }
  instruction.Mnemonic.copy(line + kMnemonicColumn, instruction.Mnemonic.size());
  int used = 0;
  if (opcode == kJsr || opcode == kJmp) used = OSLabel(reader, pointer, text);
  if (used == 0) used = AppendOperand(reader, pointer, address, instruction.Template, text);
  text.append(static_cast<std::size_t>(kOperandColumns - used), ' ');
  for (int i = 0; i < instruction.Length; ++i) text += Character(reader.At(pointer + i));
  if (opcode == kRti || opcode == kRts) text += '\r';
  return instruction.Length;
}

void ShowDis(Disc& disc, const ListRow& row, TextView& view) {
  SetFileCaption(view, "Disassemble File - ", row.Name());
  std::uint32_t address = row.Item.Load() & 0xFFFF;
  const FileExtent file = ExtentOf(disc, row);
  ByteReader reader(disc);
  if (LooksLikeBasic(reader, file)) {
    view.ShowData("This appears to be a BASIC program\r");
    view.Finished = true;
    return;
  }
  std::string text;
  for (std::int64_t pointer = file.Start; pointer < file.Start + file.Length && !view.Finished;) {
    text.clear();
    const int length = DisassembleLine(reader, pointer, address, text);
    text += '\r';
    view.ShowData(text);
    reader.Forget();
    address += static_cast<std::uint32_t>(length);
    pointer += length;
  }
  EndView(view);
}

}  // namespace sectorbox
