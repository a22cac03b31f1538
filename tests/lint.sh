#!/usr/bin/env bash
# Every C++ file of the tree obeys .clang-format.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
find disc viewers link cfcard cli shell toolkit tests bench fuzz samples data \
  \( -name node_modules -o -name build \) -prune -o \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 clang-format --dry-run -Werror
