#include "tests/support/failing/FailingInProcess.h"

#include <dlfcn.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

namespace sectorbox::testing {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

// The calls of one sort.
struct Calls {
  std::int64_t Made = 0;
  std::int64_t First = kNever;  // the first that fails
  std::int64_t Last = 0;        // the last that fails

  // Counts a call. True if it fails.
  bool Fails() {
    ++Made;
    return Made >= First && Made <= Last;
  }
  void Arm(std::int64_t at, Failing which) {
    Made = 0;
    First = at;
    Last = which == Failing::kOne ? at : kNever;
  }
  void Disarm() { First = kNever; }
};

constinit Calls allocations;
constinit Calls reads;

void* Allocate(std::size_t size, std::size_t alignment) {
  if (allocations.Fails()) return nullptr;
  if (size == 0) size = 1;
  if (alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__) return std::malloc(size);
  return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
  void* bytes = Allocate(size, alignment);
  if (bytes == nullptr) throw std::bad_alloc();
  return bytes;
}

}  // namespace

FailingMemory::FailingMemory(std::int64_t at, Failing which) {
  allocations.Arm(at, which);
}
FailingMemory::~FailingMemory() {
  allocations.Disarm();
}
std::int64_t FailingMemory::Count() {
  return allocations.Made;
}

FailingReads::FailingReads(std::int64_t at, Failing which) {
  reads.Arm(at, which);
}
FailingReads::~FailingReads() {
  reads.Disarm();
}
std::int64_t FailingReads::Count() {
  return reads.Made;
}

}  // namespace sectorbox::testing

// --- What the program calls
// -----------------------------------------------------------------------

namespace {

using sectorbox::testing::Allocate;
using sectorbox::testing::AllocateOrThrow;

constexpr std::size_t kPlain = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

std::size_t Number(std::align_val_t alignment) {
  return static_cast<std::size_t>(alignment);
}

}  // namespace

void* operator new(std::size_t size) {
  return AllocateOrThrow(size, kPlain);
}
void* operator new[](std::size_t size) {
  return AllocateOrThrow(size, kPlain);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, kPlain);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, kPlain);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return AllocateOrThrow(size, Number(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return AllocateOrThrow(size, Number(alignment));
}
void operator delete(void* bytes) noexcept {
  std::free(bytes);
}
void operator delete[](void* bytes) noexcept {
  std::free(bytes);
}
void operator delete(void* bytes, std::size_t) noexcept {
  std::free(bytes);
}
void operator delete[](void* bytes, std::size_t) noexcept {
  std::free(bytes);
}
void operator delete(void* bytes, const std::nothrow_t&) noexcept {
  std::free(bytes);
}
void operator delete[](void* bytes, const std::nothrow_t&) noexcept {
  std::free(bytes);
}
void operator delete(void* bytes, std::align_val_t) noexcept {
  std::free(bytes);
}
void operator delete[](void* bytes, std::align_val_t) noexcept {
  std::free(bytes);
}
void operator delete(void* bytes, std::size_t, std::align_val_t) noexcept {
  std::free(bytes);
}
void operator delete[](void* bytes, std::size_t, std::align_val_t) noexcept {
  std::free(bytes);
}

extern "C" ssize_t pread(int file, void* bytes, size_t size, off_t offset) {
  static auto* const real =
      reinterpret_cast<ssize_t (*)(int, void*, size_t, off_t)>(::dlsym(RTLD_NEXT, "pread"));
  if (sectorbox::testing::reads.Fails()) {
    errno = EIO;
    return -1;
  }
  return real(file, bytes, size, offset);
}
