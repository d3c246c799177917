#include "base/file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace seedforest::detail {

namespace {

// The size that the file system gives, 0 for what has none (a pipe, a terminal).
std::size_t expectedSize(const char *path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(std::min<std::uintmax_t>(size, allBytes - 1));
}

} // namespace

bool loadFile(const char *path, WantedBytesFn wanted, Bytes &bytes) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path, "r"), std::fclose);
  if (file == nullptr)
    return false;
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  std::size_t capacity = Writer::chunk;
  bytes.size = 0;
  for (;;) {
    bytes.data.reset(static_cast<char *>(reallocate(bytes.data.release(), capacity, sizeof(char))));
    bytes.size += std::fread(bytes.data.get() + bytes.size, 1, capacity - bytes.size, file.get());
    if (bytes.size < capacity)
      return true;
    const std::size_t useful = wanted(bytes.view());
    if (bytes.size >= useful)
      return true;
    // One byte more than expected, so that the next read meets the end of the file.
    capacity = std::min(std::max(2 * capacity, expectedSize(path) + 1), useful);
  }
}

void Writer::longText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t part = std::min(text.size(), chunk);
    std::memcpy(room(part), text.data(), part);
    text.remove_prefix(part);
  }
}

void Writer::number(int value, int width) {
  char field[2 * widest]; // the number ends in the middle; what is behind may be anything
  std::memset(field, ' ', sizeof field);
  char *at = field + widest;
  std::uint32_t magnitude = value < 0 ? 0U - static_cast<std::uint32_t>(value) : value;
  do {
    *--at = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (value < 0)
    *--at = '-';
  const auto length = std::max<std::ptrdiff_t>(field + widest - at, std::min(width, widest));
  std::memcpy(room(static_cast<std::size_t>(length)), field + widest - length, widest);
}

bool Writer::flush() {
  if (std::fwrite(buffer_.data(), 1, used_, stream_) != used_)
    good_ = false;
  used_ = 0;
  if (std::fflush(stream_) != 0)
    good_ = false;
  return good_;
}

bool OutputFile::close() {
  const bool written = writer_.flush();
  return std::fclose(stream_.release()) == 0 && written;
}

} // namespace seedforest::detail
