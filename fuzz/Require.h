#pragma once

#include <cstdio>
#include <cstdlib>

namespace sectorbox::fuzz {

// What a fuzzer expects of the code under test. If it doesn't hold, the run ends as a crash does,
// and libFuzzer keeps the input.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "doesn't hold: %s\n", what);
  std::abort();
}

}  // namespace sectorbox::fuzz
