#pragma once

#include <cstdint>
#include <string>

#include "disc/store/Disc.h"
#include "viewers/text/TextView.h"

// Directories in the layout of the BBC's own *CAT and *EX, and the free-space table. A sector is a
// directory's start sector; a sector without a directory's mark gives one line that says so, and
// DefaultName is then whatever stands where its name would be. All numbers are hexadecimal.
namespace sectorbox {

// The head that the four directory views share: title, option, directory name, an empty line.
void ShowHeader(Disc& disc, std::int32_t sector, TextView& view);

// Four entries to a line, 20 columns each.
void ShowCat(Disc& disc, std::int32_t sector, TextView& view);

// One entry to a line with its addresses, length and start sector. It doesn't test for a close
// request and doesn't set Finished; its caller sets it. If a request comes meanwhile, it is lost,
// and the user has to close the window again. This view has always been like that.
void ShowEx(Disc& disc, std::int32_t sector, TextView& view);

// The same for a directory and all below it: each directory whole, behind a banner with its path,
// then its subdirectories in entry order. path is the banner of the outermost one. A close request
// takes effect at the next entry. The two views are recursive. They don't close the window and
// don't set Finished; their caller does both. A walk that has no end of its own stops at the bounds
// of WalkDirectories.
void ShowCatAll(Disc& disc, std::int32_t sector, const std::string& path, TextView& view);
void ShowExAll(Disc& disc, std::int32_t sector, const std::string& path, TextView& view);

// The free list in memory, in sectors. The disc isn't read again.
void ShowMap(Disc& disc, TextView& view);

}  // namespace sectorbox
