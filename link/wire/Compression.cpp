#include "link/wire/Compression.h"

#include <algorithm>

#include "link/wire/Protocol.h"

namespace sectorbox {
namespace {

constexpr std::size_t kLongestRun = 255;  // the count is one byte
constexpr std::size_t kShortestRun = 4;   // a coded run takes four bytes itself

std::size_t RunLength(std::span<const std::uint8_t> data) {
  const std::size_t most = std::min(data.size(), kLongestRun);
  std::size_t length = 1;
  while (length < most && data[length] == data[0]) ++length;
  return length;
}

}  // namespace

std::vector<std::uint8_t> CompressBytes(std::span<const std::uint8_t> data) {
  std::vector<std::uint8_t> stream(LongestStream(data.size()));
  std::uint8_t* out = stream.data();
  for (std::size_t position = 0; position < data.size();) {
    const std::uint8_t byte = data[position];
    const std::size_t run = RunLength(data.subspan(position));
    if (run >= kShortestRun) {
      *out++ = wire::kEscape;
      *out++ = wire::kStreamRun;
      *out++ = static_cast<std::uint8_t>(run);
      *out++ = byte;
    } else {
      for (std::size_t i = 0; i < run; ++i) {
        *out++ = byte;
        if (byte == wire::kEscape) *out++ = wire::kStreamLiteral;
      }
    }
    position += run;
  }
  stream.resize(static_cast<std::size_t>(out - stream.data()));
  return stream;
}

}  // namespace sectorbox
