// Makes the sound that ends a transfer: two soft notes, written as a wave file of 16-bit mono.
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <numbers>
#include <string>

namespace {

constexpr std::uint32_t kRate = 22050;  // samples a second

struct Note {
  double Hertz;
  double Start;  // seconds
};
constexpr std::array<Note, 2> kNotes = {{{659.26, 0.0}, {987.77, 0.14}}};
constexpr double kLength = 0.75;

double SampleAt(double second) {
  double sum = 0;
  for (const Note& note : kNotes) {
    const double at = second - note.Start;
    if (at < 0) continue;
    const double fadeIn = std::fmin(1.0, at / 0.005);  // without it the note begins with a click
    const double angle = 2 * std::numbers::pi * note.Hertz * at;
    sum += fadeIn * std::exp(-6.0 * at) * (std::sin(angle) + 0.25 * std::sin(2 * angle));
  }
  return 0.3 * sum * std::fmin(1.0, (kLength - second) / 0.02);
}

void Append(std::string& bytes, std::uint32_t value, int width) {
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const auto samples = static_cast<std::uint32_t>(kLength * kRate);
  std::string bytes = "RIFF";
  Append(bytes, 36 + 2 * samples, 4);
  bytes += "WAVEfmt ";
  Append(bytes, 16, 4);
  Append(bytes, 1, 2);  // plain samples
  Append(bytes, 1, 2);  // one channel
  Append(bytes, kRate, 4);
  Append(bytes, 2 * kRate, 4);
  Append(bytes, 2, 2);
  Append(bytes, 16, 2);
  bytes += "data";
  Append(bytes, 2 * samples, 4);
  for (std::uint32_t i = 0; i < samples; ++i) {
    const double value = 32767.0 * SampleAt(static_cast<double>(i) / kRate);
    Append(bytes, static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(value))), 2);
  }
  std::ofstream file(argv[1], std::ios::binary);
  file << bytes;
  return file.flush() ? 0 : 1;
}
