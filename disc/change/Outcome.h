#pragma once

namespace sectorbox {

// What came out of an operation that changes a disc.
enum class Outcome {
  kDone,     // also where there was nothing to do
  kRefused,  // the operation has told the user why
  kStopped,  // what the user did meanwhile, such as opening another disc, left nothing to go on
             // with
};

}  // namespace sectorbox
