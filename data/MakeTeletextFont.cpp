// Turns the drawn characters of teletext.txt into teletext.fnt, the font that the teletext view
// loads: 96 characters from code 32 on, 18 rows each, a row a little-endian 16-bit word whose bit 9
// is the leftmost of ten pixels.
//
// Usage: make_teletext_font DRAWING FONT

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int kFirstCode = 32;
constexpr int kGlyphs = 96;
constexpr int kDotColumns = 5;
constexpr int kDotRows = 9;
constexpr int kPixelColumns = 2 * kDotColumns;
constexpr int kPixelRows = 2 * kDotRows;

struct Drawing {
  bool Drawn = false;
  std::array<std::string, kDotRows> Rows;

  // Everything outside the character is dark.
  bool Lit(int x, int y) const {
    if (x < 0 || x >= kDotColumns || y < 0 || y >= kDotRows) return false;
    return Rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#';
  }
};

using Alphabet = std::array<Drawing, kGlyphs>;

[[noreturn]] void Refuse(int line, const std::string& why) {
  throw std::runtime_error("line " + std::to_string(line) + ": " + why);
}

// The words of the next line of the drawing that isn't a remark; none at the end of the file.
std::vector<std::string> ReadWords(std::istream& in, int& line) {
  for (std::string text; std::getline(in, text);) {
    ++line;
    if (text.empty() || text[0] == ';') continue;
    std::istringstream words(text);
    std::vector<std::string> found;
    for (std::string word; words >> word;) found.push_back(word);
    if (!found.empty()) return found;
  }
  return {};
}

void ReadBand(std::istream& in, const std::vector<std::string>& heading, int& line,
              Alphabet& alphabet) {
  if (heading[0] != "=") Refuse(line, "a band begins with =");
  std::vector<Drawing*> band;
  for (std::size_t i = 1; i < heading.size(); ++i) {
    const int code = std::stoi(heading[i]);
    if (code < kFirstCode || code >= kFirstCode + kGlyphs) Refuse(line, "no such code");
    band.push_back(&alphabet[static_cast<std::size_t>(code - kFirstCode)]);
    if (band.back()->Drawn) Refuse(line, "code " + heading[i] + " is there twice");
    band.back()->Drawn = true;
  }
  for (std::size_t row = 0; row < kDotRows; ++row) {
    const std::vector<std::string> dots = ReadWords(in, line);
    if (dots.size() != band.size()) Refuse(line, "a row needs dots for each code of its band");
    for (std::size_t i = 0; i < band.size(); ++i) {
      if (dots[i].size() != kDotColumns || dots[i].find_first_not_of("#.") != std::string::npos) {
        Refuse(line, "a row of a character is five of # and .");
      }
      band[i]->Rows[row] = dots[i];
    }
  }
}

Alphabet ReadDrawings(std::istream& in) {
  Alphabet alphabet;
  int line = 0;
  for (auto words = ReadWords(in, line); !words.empty(); words = ReadWords(in, line)) {
    ReadBand(in, words, line, alphabet);
  }
  for (std::size_t g = 0; g < alphabet.size(); ++g) {
    if (!alphabet[g].Drawn) Refuse(line, "code " + std::to_string(g + kFirstCode) + " is missing");
  }
  return alphabet;
}

// A pixel is a quarter of a dot. The quarter of a dark dot is lit too if the dot beside it and the
// dot above or below it are lit, and the dot in the corner between these two is dark. A stroke then
// runs past diagonally, and the lit quarter makes it smooth.
bool PixelLit(const Drawing& glyph, int px, int py) {
  const int x = px / 2;
  const int y = py / 2;
  const int besideX = px % 2 == 0 ? x - 1 : x + 1;
  const int besideY = py % 2 == 0 ? y - 1 : y + 1;
  return glyph.Lit(x, y) ||
         (glyph.Lit(besideX, y) && glyph.Lit(x, besideY) && !glyph.Lit(besideX, besideY));
}

std::string MakeFont(const Alphabet& alphabet) {
  std::string font;
  for (const Drawing& glyph : alphabet) {
    for (int y = 0; y < kPixelRows; ++y) {
      unsigned word = 0;
      for (int x = 0; x < kPixelColumns; ++x) word = word << 1 | (PixelLit(glyph, x, y) ? 1U : 0U);
      font += static_cast<char>(word & 0xFF);
      font += static_cast<char>(word >> 8);
    }
  }
  return font;
}

void Run(const char* drawing, const char* font) {
  std::ifstream in(drawing);
  if (!in) throw std::runtime_error("cannot be read");
  const std::string bytes = MakeFont(ReadDrawings(in));
  std::ofstream out(font, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error(std::string("cannot write ") + font);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("Usage: make_teletext_font DRAWING FONT\n", stderr);
    return 2;
  }
  try {
    Run(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
    return 1;
  }
  return 0;
}
