#pragma once

namespace sectorbox {

// How an operation that changes a disc has ended.
enum class Outcome {
  kDone,     // also where there was nothing to do
  kRefused,  // the operation has told the user why
  kStopped,  // it couldn't go on because of what the user did meanwhile, such as opening another
             // disc
};

}  // namespace sectorbox
