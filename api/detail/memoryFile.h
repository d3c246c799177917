// Files in memory, for operations that write to a stream.
#pragma once

#include "base/buffer.h"
#include "base/file.h"
#include "base/report.h"

#include <cstdio>
#include <string>

namespace seedforest::detail {

/// What write(writer) writes.
template <class Write>
std::string textOf(Write write) {
  char *data = nullptr;
  std::size_t size = 0;
  std::FILE *stream = open_memstream(&data, &size);
  if (stream == nullptr)
    outOfMemory();
  const auto writer = std::make_unique<Writer>(stream);
  write(*writer);
  const bool good = writer->flush();
  const bool closed = std::fclose(stream) == 0;
  const Array<char> owner(data);
  if (!good || !closed)
    outOfMemory();
  return {data, size};
}

} // namespace seedforest::detail
