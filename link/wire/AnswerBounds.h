#pragma once

#include <cstddef>
#include <cstdint>

#include "link/wire/Link.h"

namespace sectorbox {

// The end of an answer that has none of its own: a BBC that is out of its mind, or noise on the
// line, can send for ever. An answer may have so many bytes and no more. It may take twice the time
// that its bytes take on the line, and a patience on top of that.
class AnswerBounds {
 public:
  // The time counts from this call on. patience is in milliseconds.
  AnswerBounds(Link& link, std::size_t mostBytes, std::int32_t patience);

  // So many more bytes of the answer have come. False if it is now longer or slower than any
  // answer can be; it has failed then.
  [[nodiscard]] bool Take(std::size_t bytes = 1);
  // Tells the two failures apart: true if the answer has too many bytes.
  [[nodiscard]] bool IsTooLong() const { return bytes_ > mostBytes_; }

 private:
  Link& link_;
  const std::size_t mostBytes_;
  const std::int64_t patience_;
  const std::int64_t start_;
  std::size_t bytes_ = 0;
};

}  // namespace sectorbox
