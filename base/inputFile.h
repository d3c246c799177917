// Files as text: read piece by piece, no further than somebody asks, so that a file need not fit
// into memory and nobody waits for what is not needed.
#pragma once

#include "base/buffer.h"
#include "base/scan.h"

#include <cstddef>
#include <cstdio>
#include <memory>

namespace seedforest::detail {

/// A file's bytes. What cannot seek is welcome. A directory has none.
class InputFile : public Text {
public:
  explicit InputFile(const char *path);

  bool isOpen() const { return stream_ != nullptr; }
  bool refill() override;
  bool hasFailed() const override { return failed_; }
  std::size_t certainBytes() const override;

  /// How many bytes have been read, those at hand included.
  std::size_t size() const { return size_; }

private:
  struct Close {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
  };

  std::unique_ptr<std::FILE, Close> stream_;
  Array<char> piece_;
  std::size_t size_ = 0;
  bool ended_ = false; // for good: a terminal would begin anew
  bool failed_ = false;
};

} // namespace seedforest::detail
