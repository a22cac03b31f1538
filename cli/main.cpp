#include <string>
#include <vector>

#include "cli/Dispatch.h"

int main(int argc, char** argv) {
  return sectorbox::cli::RunSbx(std::vector<std::string>(argv + 1, argv + argc));
}
