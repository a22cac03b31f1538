#pragma once

#include <string>

// The temporary files that this program is making at the moment. A signal that ends the program
// removes them (HostSignals.h). The journal of a change is no temporary file and is never listed.
namespace sectorbox {

// Makes a new, empty file with a name of its own, and lists it. pattern is the path, whose last six
// characters are "XXXXXX"; they are replaced by those of the new name. The file is closed if
// another program is started. Gives the host's number of the open file, or -1; errno tells why.
[[nodiscard]] int CreateTemporaryFile(std::string& pattern);
// Takes a file off the list: it has been removed, or it has got its final name. Nothing happens if
// it isn't listed.
void ForgetTemporaryFile(const std::string& path);
// Removes every file that is listed. A signal handler may call it: it uses fixed memory, takes no
// lock, and calls nothing but the host's own removal.
void RemoveTemporaryFiles() noexcept;

}  // namespace sectorbox
