// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The linker sends this program's calls of these functions here (--wrap), and operator new goes to
// malloc. What the sanitizers put in their place is called in turn, so they see all.
#include "faults.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isOn = false;
Fault waiting;
int made = 0;
int faultAt = 0;

// The fault that this call meets, or null.
const Fault *meet(Call call) {
  if (!isOn || call != waiting.call || ++made != faultAt)
    return nullptr;
  if (waiting.effect == Effect::raise)
    raise(waiting.value);
  errno = waiting.value;
  return waiting.effect == Effect::raise ? nullptr : &waiting;
}

bool cutsShort(const Fault *fault) {
  return fault != nullptr && fault->effect == Effect::cutShort;
}

} // namespace

void inject(const Fault &fault, int n) {
  isOn = true;
  waiting = fault;
  made = 0;
  faultAt = n;
}

int endInjection() {
  isOn = false;
  return made;
}

// A function that fails as a whole: its parameters, and the arguments to pass on.
#define FAILING(call, failure, Result, name, parameters, arguments)                                \
  Result __real_##name parameters;                                                                 \
  Result __wrap_##name parameters {                                                                \
    return meet(Call::call) != nullptr ? failure : __real_##name arguments;                        \
  }

extern "C" {
FAILING(allocate, nullptr, void *, malloc, (std::size_t size), (size))
FAILING(allocate, nullptr, void *, calloc, (std::size_t n, std::size_t size), (n, size))
FAILING(allocate, nullptr, void *, realloc, (void *block, std::size_t size), (block, size))
FAILING(open, nullptr, std::FILE *, fopen, (const char *path, const char *mode), (path, mode))
FAILING(open, nullptr, std::FILE *, fdopen, (int file, const char *mode), (file, mode))
FAILING(open, -1, int, open, (const char *path, int flags, mode_t mode), (path, flags, mode))
FAILING(open, -1, int, openat, (int folder, const char *path, int flags, mode_t mode),
        (folder, path, flags, mode))
FAILING(rename, -1, int, renameat, (int from, const char *old, int to, const char *path),
        (from, old, to, path))
FAILING(other, -1, int, stat, (const char *path, struct stat *status), (path, status))
FAILING(other, -1, int, fstat, (int file, struct stat *status), (file, status))
FAILING(other, -1, int, fstatat, (int folder, const char *path, struct stat *status, int flags),
        (folder, path, status, flags))
FAILING(other, -1, off_t, lseek, (int file, off_t offset, int whence), (file, offset, whence))
FAILING(other, -1, ssize_t, readlink, (const char *path, char *target, std::size_t size),
        (path, target, size))
FAILING(other, -1, int, fchown, (int file, uid_t user, gid_t group), (file, user, group))
FAILING(other, -1, int, fchmod, (int file, mode_t mode), (file, mode))

ssize_t __real_read(int file, void *to, std::size_t size);
ssize_t __wrap_read(int file, void *to, std::size_t size) {
  const Fault *fault = meet(Call::read);
  return fault == nullptr || cutsShort(fault)
             ? __real_read(file, to, fault == nullptr ? size : (size + 1) / 2)
             : -1;
}

std::size_t __real_fwrite(const void *from, std::size_t size, std::size_t n, std::FILE *stream);
std::size_t __wrap_fwrite(const void *from, std::size_t size, std::size_t n, std::FILE *stream) {
  const bool isStandard = stream == stdout || stream == stderr;
  const Fault *fault = isStandard ? nullptr : meet(Call::write);
  if (fault == nullptr)
    return __real_fwrite(from, size, n, stream);
  const std::size_t through = cutsShort(fault) ? __real_fwrite(from, size, n / 2, stream) : 0;
  errno = fault->value;
  return through;
}

int __real_fclose(std::FILE *stream);
int __wrap_fclose(std::FILE *stream) {
  const bool isWritten = (fcntl(fileno(stream), F_GETFL) & O_ACCMODE) != O_RDONLY;
  const Fault *fault = isWritten ? meet(Call::close) : nullptr;
  const int closed = __real_fclose(stream);
  if (fault == nullptr)
    return closed;
  errno = fault->value;
  return EOF;
}

// std::random_device::operator() as libstdc++ has it.
unsigned __real__ZNSt13random_device9_M_getvalEv(void *device);
unsigned __wrap__ZNSt13random_device9_M_getvalEv(void *device) {
  if (meet(Call::draw) != nullptr)
    throw std::runtime_error("no random numbers");
  return __real__ZNSt13random_device9_M_getvalEv(device);
}
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}
void *operator new(std::size_t size) {
  if (void *block = operator new(size, std::nothrow))
    return block;
  throw std::bad_alloc();
}
void operator delete(void *block) noexcept {
  std::free(block);
}
void operator delete(void *block, std::size_t) noexcept {
  std::free(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept { // where a constructor throws
  std::free(block);
}
