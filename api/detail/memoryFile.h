// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Files in memory.
#pragma once

#include "base/buffer.h"
#include "base/writer.h"

#include <string>

namespace seedforest::detail {

/// The text that write(writer) writes.
template <class Write>
std::string textOf(Write write) {
  std::string text;
  const auto append = [](void *target, std::string_view part) {
    static_cast<std::string *>(target)->append(part);
    return true;
  };
  const auto writer = makeUnique<Writer>(append, &text);
  write(*writer);
  writer->flush();
  return text;
}

} // namespace seedforest::detail
