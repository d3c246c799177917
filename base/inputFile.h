// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Files as text, read in pieces and only as far as the caller needs: a file need not fit into
// memory, and a pipe is not waited for when its next bytes are not needed.
#pragma once

#include "base/buffer.h"
#include "base/scan.h"

#include <cstddef>
#include <cstdio>
#include <memory>

namespace seedforest::detail {

/// A file's bytes. The file need not be seekable. A directory reads as empty.
class InputFile : public Text {
public:
  explicit InputFile(const char *path);

  bool isOpen() const { return stream_ != nullptr; }
  bool refill() override;
  bool hasFailed() const override { return failed_; }
  std::size_t certainBytes() const override;

  /// The number of bytes read from the file, those not yet scanned included.
  std::size_t size() const { return size_; }

private:
  struct Close {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
  };

  std::unique_ptr<std::FILE, Close> stream_;
  Array<char> piece_;
  std::size_t size_ = 0;
  bool ended_ = false; // read no more: after its end of file a terminal could deliver new bytes
  bool failed_ = false;
};

} // namespace seedforest::detail
