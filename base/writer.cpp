// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/writer.h"

#include "base/report.h"

#include <algorithm>
#include <cstdint>

namespace seedforest::detail {

void Writer::longText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t part = std::min(text.size(), chunk);
    std::memcpy(room(part), text.data(), part);
    text.remove_prefix(part);
  }
}

void Writer::number(int value, int width) {
  char field[2 * widest]; // the number ends in the middle; the rest is copied but not counted
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
  good_ = good_ && put_(target_, {buffer_.data(), used_});
  used_ = 0;
  return good_;
}

bool putProgress(void *, std::string_view part) {
  progressText(part);
  return true;
}

} // namespace seedforest::detail
