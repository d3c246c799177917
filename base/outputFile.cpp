// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/outputFile.h"

#include "base/buffer.h"
#include "base/report.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <exception>
#include <iterator>
#include <random>
#include <string_view>

#if __has_include(<unistd.h>)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace seedforest::detail {

#if __has_include(<unistd.h>)

namespace {

class Descriptor {
public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0)
      ::close(number_);
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }

  /// A stream that takes the descriptor over; null where there is no descriptor.
  std::FILE *toStream() {
    std::FILE *stream = isOpen() ? fdopen(number_, "w") : nullptr;
    if (stream != nullptr)
      number_ = -1;
    return stream;
  }

private:
  int number_;
};

constexpr std::string_view prefix = ".seedforest-tmp-";
constexpr std::size_t letters = 13; // of 5 random bits each: names are not guessed and not repeated

// The names of the temporary files that exist now, in static memory, where a signal handler can
// read them at any time. Of more than 64 files at a time, the others are unknown to the handler.
struct Place {
  int folder = -1;
  char name[prefix.size() + letters + 1] = {};
  std::atomic<bool> isTaken = false;
  std::atomic<bool> isFilled = false;
};
Place places[64];

void drawLetters(char *at) {
  try {
    std::random_device random;
    for (std::size_t i = 0; i < letters; ++i)
      *at++ = "abcdefghijklmnopqrstuvwxyz234567"[random() % 32];
  } catch (const std::exception &) {
    fatal(About::file, "the system gives no random numbers, for the name of a temporary file\n");
  }
}

// The name of a temporary file in a folder.
class TemporaryName {
public:
  explicit TemporaryName(int folder) {
    char name[sizeof Place::name] = {};
    drawLetters(std::copy(prefix.begin(), prefix.end(), name));
    for (Place &place : places)
      if (!place.isTaken.exchange(true)) {
        place_ = &place;
        break;
      }
    std::copy(std::begin(name), std::end(name), place_->name);
    place_->folder = folder;
    place_->isFilled = true;
  }
  ~TemporaryName() {
    place_->isFilled = false;
    if (place_ != &own_)
      place_->isTaken = false;
  }
  TemporaryName(const TemporaryName &) = delete;
  TemporaryName &operator=(const TemporaryName &) = delete;

  const char *text() const { return place_->name; }

private:
  Place own_;
  Place *place_ = &own_; // unless one of `places` is free
};

// A descriptor for openat() and the like. O_PATH and O_SEARCH work for folders that may not be
// listed.
int openFolder(const String &path) {
#if defined(O_PATH)
  constexpr int access = O_PATH;
#elif defined(O_SEARCH)
  constexpr int access = O_SEARCH;
#else
  constexpr int access = O_RDONLY;
#endif
  return open(path.c_str(), access | O_DIRECTORY | O_CLOEXEC);
}

String folderOf(const String &path) {
  const std::size_t slash = path.rfind('/');
  return slash == String::npos ? String("./") : path.substr(0, slash + 1);
}

String nameOf(const String &path) {
  return path.substr(path.rfind('/') + 1); // all of it where there is none: npos + 1 is 0
}

// Replaces the path of a symbolic link by that of its target; false, with errno set, where it is no
// link.
bool followLink(String &path) {
  char target[4096];
  const ssize_t length = readlink(path.c_str(), target, sizeof target);
  if (length <= 0 || length == ssize_t{sizeof target})
    return false;
  const std::string_view held(target, static_cast<std::size_t>(length));
  path = held.front() == '/' ? String(held) : folderOf(path).append(held);
  return true;
}

// The descriptor of this process that a path names, or -1.
int descriptorNamed(std::string_view path) {
  constexpr std::string_view standard[] = {"/dev/stdin", "/dev/stdout", "/dev/stderr"};
  for (int i = 0; i < 3; ++i)
    if (path == standard[i])
      return i;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!path.starts_with(folder))
      continue;
    const char *end = path.data() + path.size();
    int number = -1;
    const auto scanned = std::from_chars(path.data() + folder.size(), end, number);
    return scanned.ec == std::errc() && scanned.ptr == end ? number : -1;
  }
  return -1;
}

// A stream that appends to an open descriptor. What the process has printed before is flushed, so
// that the order is kept.
std::FILE *openDescriptor(int number) {
  std::fflush(stdout);
  Descriptor copy(fcntl(number, F_DUPFD_CLOEXEC, 3));
  if (copy.isOpen())
    lseek(copy.number(), 0, SEEK_END);
  return copy.toStream();
}

} // namespace

// A temporary file in the target's folder that is renamed over the target.
class Replacement {
public:
  explicit Replacement(const String &path)
      : folder_(openFolder(folderOf(path))), folderError_(errno), name_(nameOf(path)),
        temporary_(folder_.number()) {}
  ~Replacement() {
    if (isMade_)
      unlinkat(folder_.number(), temporary_.text(), 0);
  }
  Replacement(const Replacement &) = delete;
  Replacement &operator=(const Replacement &) = delete;

  // Creates the file, with the owner, group and permissions of the old one, if any. Null, with
  // errno set, where the file cannot be created or the old one cannot be replaced.
  std::FILE *make(const struct stat *old) {
    errno = folderError_;
    if (!folder_.isOpen() || name_.empty() || (old != nullptr && !canReplace(*old)))
      return nullptr;
    // The old permissions are set below; until then nobody else may read the new file.
    const mode_t mode = old != nullptr ? S_IRUSR | S_IWUSR : 0666;
    Descriptor file(
        openat(folder_.number(), temporary_.text(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    isMade_ = file.isOpen();
    if (isMade_ && old != nullptr && !takeOver(file.number(), *old))
      return nullptr;
    return file.toStream();
  }

  bool putIntoPlace() {
    const int folder = folder_.number();
    isMade_ = renameat(folder, temporary_.text(), folder, name_.c_str()) != 0;
    return !isMade_;
  }

private:
  // False where the folder's entry is not the file that was opened, as with a system's links for
  // open files, and where the folder is sticky and neither the folder nor the file is the user's:
  // errno is EPERM then, or the error that left the question open.
  bool canReplace(const struct stat &old) const {
    struct stat named;
    struct stat folder;
    if (fstatat(folder_.number(), name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0 ||
        fstat(folder_.number(), &folder) != 0)
      return false;
    errno = EPERM;
    const uid_t user = geteuid();
    const bool isFree =
        (folder.st_mode & S_ISVTX) == 0 || user == 0 || user == old.st_uid || user == folder.st_uid;
    return isFree && named.st_dev == old.st_dev && named.st_ino == old.st_ino;
  }

  // Sets owner, group and permissions. Where the process may not set the owner or the group, they
  // stay its own. False, with errno set, where the permissions are not the old ones.
  static bool takeOver(int file, const struct stat &old) {
    [[maybe_unused]] const bool isGiven = fchown(file, old.st_uid, old.st_gid) == 0 ||
                                          fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
    if (fchmod(file, old.st_mode & 0777) == 0)
      return true;
    struct stat made; // some file systems refuse to set what all their files have
    return fstat(file, &made) == 0 && (made.st_mode & 0777) == (old.st_mode & 0777);
  }

  Descriptor folder_;
  int folderError_; // errno where the folder could not be opened
  String name_;
  TemporaryName temporary_;
  bool isMade_ = false;
};

void removeUnfinishedFiles() {
  for (const Place &place : places)
    if (place.isFilled)
      unlinkat(place.folder, place.name, 0);
}

namespace {

// Opens the stream to write to. Sets `replacement` where that is a temporary file; leaves it null
// where the file is written in place.
std::FILE *openOutput(const char *path, std::unique_ptr<Replacement> &replacement) {
  constexpr int mostLinks = 40;
  String target(path);
  int links = 0;
  do {
    if (const int descriptor = descriptorNamed(target); descriptor >= 0)
      return openDescriptor(descriptor);
    errno = 0;
  } while (links++ < mostLinks && followLink(target));
  if (errno != 0 && errno != EINVAL && errno != ENOENT) // neither no link nor nothing there
    return nullptr;

  struct stat old;
  const bool isThere = stat(path, &old) == 0;
  if (!isThere && errno != ENOENT)
    return nullptr;
  if (isThere && !S_ISREG(old.st_mode))
    return std::fopen(path, "w");
  const Descriptor writable(isThere ? open(path, O_WRONLY | O_CLOEXEC) : -1);
  if (isThere && (!writable.isOpen() || fstat(writable.number(), &old) != 0))
    return nullptr;
  replacement = makeUnique<Replacement>(target);
  std::FILE *stream = replacement->make(isThere ? &old : nullptr);
  if (stream == nullptr && isThere &&
      (errno == EACCES || errno == EPERM || errno == EROFS || errno == ENOENT)) {
    replacement.reset();
    return std::fopen(path, "w");
  }
  return stream;
}

} // namespace

#else

class Replacement {
public:
  bool putIntoPlace() { return true; }
};

void removeUnfinishedFiles() {}

namespace {

std::FILE *openOutput(const char *path, std::unique_ptr<Replacement> &) {
  return std::fopen(path, "w");
}

} // namespace

#endif

namespace {

// Writes the whole part, going on after interruptions by signals; false on any other error.
bool putInFile(void *stream, std::string_view part) {
  auto *file = static_cast<std::FILE *>(stream);
  while (!part.empty()) {
    errno = 0;
    part.remove_prefix(std::fwrite(part.data(), 1, part.size(), file));
    if (!part.empty() && errno != EINTR)
      return false;
    std::clearerr(file);
  }
  return true;
}

} // namespace

OutputFile::OutputFile(const char *path)
    : stream_(openOutput(path, replacement_)), writer_(putInFile, stream_.get()) {
  if (stream_ == nullptr)
    replacement_ = nullptr;
  else
    std::setvbuf(stream_.get(), nullptr, _IONBF, 0); // the Writer has a buffer
}

OutputFile::~OutputFile() = default;

bool OutputFile::close() {
  const bool isWritten = writer_.flush();
  const bool isClosed = std::fclose(stream_.release()) == 0;
  const bool isPlaced =
      replacement_ == nullptr || (isWritten && isClosed && replacement_->putIntoPlace());
  replacement_ = nullptr;
  return isWritten && isClosed && isPlaced;
}

} // namespace seedforest::detail
