#!/usr/bin/env bash
# clang-tidy over the files that changed last: what git doesn't have yet, then the files of the last
# twenty commits, the newest first. A file that was clean is not checked again until it changes, or a
# header of the tree that it includes, directly or through others, or .clang-tidy.
#
# Usage: tests/tidy.sh [--all] [--build FOLDER] [FILE...]
#   --all     every source that FOLDER builds, without a limit of time (more than an hour)
#   --build   a configured build folder (build/asan)
#   FILE      these files only, by their paths from the top of the tree
# Environment: TIDY_SECONDS, after which no more files are begun (240; without --all only), and
# TIDY_JOBS, how many run at a time (1).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rooms='disc viewers link cfcard cli shell toolkit bench fuzz data tests'
build=build/asan all= files=()
while [ $# -gt 0 ]; do
  case $1 in
    --all) all=1 ;;
    --build) build=$2; shift ;;
    *) files+=("$1") ;;
  esac
  shift
done

command -v clang-tidy >/dev/null || { echo "tidy: no clang-tidy: run ./setup test" >&2; exit 1; }
[ -f "$build/compile_commands.json" ] || { echo "tidy: not configured: $build" >&2; exit 1; }
export work=$build/tidy root=$PWD tool
tool=$(clang-tidy --version)
mkdir -p "$work/clean"

# clang can't read the precompiled headers of another compiler. Without them it also sees whether a
# source includes what it uses.
sed -E 's, -include [^ ]*/cmake_pch\.hxx,,; s, -Winvalid-pch,,; s, -fpch-preprocess,,' \
  "$build/compile_commands.json" >"$work/compile_commands.json"
sed -nE "s,^ *\"file\": \"$root/(.*)\".*,\1,p" "$work/compile_commands.json" |
  grep -E "^(${rooms// /|})/.*\.cpp$" | sort -u >"$work/sources"

# The changed files, newest first. Without git's history that is every source.
changed() {
  if git rev-parse -q --verify HEAD^ >/dev/null 2>&1; then
    git diff --name-only HEAD
    git ls-files --others --exclude-standard
    git log -n 20 -m --first-parent --name-only --format=
  else
    cat "$work/sources"
  fi
}

# Reads paths; prints the sources that clang-tidy has to read for them. A header is checked with the
# source of its name, or else with the first one that includes it.
sources_of() {
  local path source
  while read -r path; do
    [ -f "$path" ] || continue
    source=
    case $path in
      *.cpp) source=$path ;;
      *.h)
        source=${path%.h}.cpp
        grep -qxF "$source" "$work/sources" ||
          source=$(xargs -a "$work/sources" grep -lF "#include \"$path\"" | head -n 1 || true)
        ;;
    esac
    if [ -n "$source" ] && grep -qxF "$source" "$work/sources"; then echo "$source"; fi
  done | awk '!seen[$0]++'
}

# Prints the source and all headers of the tree that it includes, directly or through others. Includes
# are written by the path from the top of the tree.
files_of() {
  awk 'function walk(path, line, lines, count, i) {
         if (path in seen) return
         seen[path] = 1
         while ((getline line <path) > 0) {
           if (line ~ /^#include "/) { split(line, lines, "\""); names[path, ++count] = lines[2] }
           found[path] = 1
         }
         close(path)
         if (path in found) print path
         for (i = 1; i <= count; ++i) walk(names[path, i])
       }
       BEGIN { walk(ARGV[1]) }' "$1"
}

# What the answer for a source depends on: the tool, its settings, the source, and all headers of the
# tree that it includes.
key_of() {
  { echo "$tool"; cat .clang-tidy tests/.clang-tidy; files_of "$1" | xargs cat; } | sha256sum | cut -d ' ' -f 1
}

# Checks one source, or notes that there was no time for it.
check() {
  local source=$1 key
  key=$(key_of "$source")
  if [ -f "$work/clean/$key" ]; then return 0; fi
  if [ "$(date +%s)" -ge "$stop" ]; then
    echo "$source" >>"$work/left"
    return 0
  fi
  echo "$source"
  if clang-tidy --quiet -p "$work" "$source" 2>"$work/noise.$$"; then
    touch "$work/clean/$key"
  else
    cat "$work/noise.$$" >&2
    echo "$source" >>"$work/failed"
  fi
  rm -f "$work/noise.$$"
}
export -f files_of key_of check

stop=$(($(date +%s) + ${TIDY_SECONDS:-240}))
[ -z "$all" ] || stop=$(($(date +%s) + 1000000))
export stop
: >"$work/left"
: >"$work/failed"
if [ -n "$all" ]; then
  cat "$work/sources"
elif [ ${#files[@]} -gt 0 ]; then
  printf '%s\n' "${files[@]}" | sources_of
else
  changed | sources_of
fi | xargs -r -P "${TIDY_JOBS:-1}" -I '{}' bash -c 'check "$1"' tidy '{}'

if [ -s "$work/left" ]; then
  echo "tidy: no time for $(wc -l <"$work/left") more changed files; tests/tidy.sh goes on with them"
fi
if [ -s "$work/failed" ]; then
  echo "tidy: warnings in:" >&2
  cat "$work/failed" >&2
  exit 1
fi
