// A library that is loaded in front of the system's own. It lets one call of the host fail, or ends
// the program there, as SIGKILL does. The environment says which:
//   FAILING_CALL   pwrite, write, pread, fsync, ftruncate, mkostemp, rename or remove
//   FAILING_AT     the number of the call, counted from 1; 0 for each of them
//   FAILING_HOW    kill, half (half of the bytes, then kill), eio, enospc, nothing (0 bytes) or
//                  short (half of the bytes, and the program goes on)
// Only files outside the standard streams count.

#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace {

enum class How { kNone, kKill, kHalf, kEio, kEnospc, kNothing, kShort };

How HowOf(const char* word) {
  if (std::strcmp(word, "kill") == 0) return How::kKill;
  if (std::strcmp(word, "half") == 0) return How::kHalf;
  if (std::strcmp(word, "eio") == 0) return How::kEio;
  if (std::strcmp(word, "enospc") == 0) return How::kEnospc;
  if (std::strcmp(word, "short") == 0) return How::kShort;
  return How::kNothing;
}

// What happens at this call.
How Meet(const char* call) {
  static std::atomic<int> count{0};
  const char* wanted = std::getenv("FAILING_CALL");
  const char* at = std::getenv("FAILING_AT");
  const char* how = std::getenv("FAILING_HOW");
  if (wanted == nullptr || at == nullptr || how == nullptr) return How::kNone;
  if (std::strcmp(wanted, call) != 0) return How::kNone;
  if (const int number = std::atoi(at); number != 0 && ++count != number) return How::kNone;
  const How what = HowOf(how);
  if (what == How::kKill) ::raise(SIGKILL);
  if (what == How::kEio) errno = EIO;
  if (what == How::kEnospc) errno = ENOSPC;
  return what;
}

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

// A transfer of size bytes; transfer(n) does it for n of them.
template <typename Transfer>
ssize_t Moved(const char* call, size_t size, Transfer transfer) {
  switch (Meet(call)) {
    case How::kEio:
    case How::kEnospc:
      return -1;
    case How::kNothing:
      return 0;
    case How::kHalf:
      (void)transfer(size / 2);
      ::raise(SIGKILL);
      return -1;
    case How::kShort:
      return transfer((size + 1) / 2);
    case How::kNone:
    case How::kKill:
      break;
  }
  return transfer(size);
}

bool Refuses(const char* call) {
  const How what = Meet(call);
  return what == How::kEio || what == How::kEnospc;
}

}  // namespace

extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
  static auto* const real = Real<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  return Moved("pwrite", size, [&](size_t part) { return real(file, bytes, part, offset); });
}

ssize_t pread(int file, void* bytes, size_t size, off_t offset) {
  static auto* const real = Real<ssize_t(int, void*, size_t, off_t)>("pread");
  return Moved("pread", size, [&](size_t part) { return real(file, bytes, part, offset); });
}

ssize_t write(int file, const void* bytes, size_t size) {
  static auto* const real = Real<ssize_t(int, const void*, size_t)>("write");
  if (file <= STDERR_FILENO) return real(file, bytes, size);
  return Moved("write", size, [&](size_t part) { return real(file, bytes, part); });
}

int fsync(int file) {
  static auto* const real = Real<int(int)>("fsync");
  return Refuses("fsync") ? -1 : real(file);
}

int ftruncate(int file, off_t length) {
  static auto* const real = Real<int(int, off_t)>("ftruncate");
  return Refuses("ftruncate") ? -1 : real(file, length);
}

int mkostemp(char* name, int flags) {
  static auto* const real = Real<int(char*, int)>("mkostemp");
  return Refuses("mkostemp") ? -1 : real(name, flags);
}

int rename(const char* from, const char* to) {
  static auto* const real = Real<int(const char*, const char*)>("rename");
  return Refuses("rename") ? -1 : real(from, to);
}

int remove(const char* path) {
  static auto* const real = Real<int(const char*)>("remove");
  return Refuses("remove") ? -1 : real(path);
}

}  // extern "C"
