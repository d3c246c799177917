// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/scan.h"

#include "base/arith.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace seedforest::detail {

namespace {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Long runs of plain numbers are scanned in blocks of 64 bytes. A first pass, which the compiler
// turns into vector code, marks the digits in a bit mask; the second branches once per number, not
// once per byte, and reads up to eight digits with one load.
constexpr int blockSize = 64;
constexpr int wordSize = 8;

struct Block {
  std::uint64_t digits; // bit i: byte i is a digit
  bool plain;           // the other bytes are all white space
};

Block classify(const char *bytes) {
  unsigned char digit[blockSize];
  unsigned char strange = 0;
  for (int i = 0; i < blockSize; ++i) {
    const auto c = static_cast<unsigned char>(bytes[i]);
    const unsigned char isDigit = static_cast<unsigned char>(c - '0') < 10 ? 1 : 0;
    const unsigned char isBlank = c == ' ' || static_cast<unsigned char>(c - '\t') < 5 ? 1 : 0;
    digit[i] = isDigit;
    strange |= static_cast<unsigned char>((isDigit | isBlank) ^ 1);
  }
  Block block = {0, strange == 0};
  for (int i = 0; i < blockSize; i += wordSize) {
    std::uint64_t word = 0;
    std::memcpy(&word, digit + i, wordSize);
    // Eight bytes of 0 or 1 become eight bits: the product has byte j's bit at 56 + j.
    block.digits |= (word * 0x0102040810204080U >> 56) << i;
  }
  return block;
}

// The number in the `length` (1 .. 8) digits at `at`, from where 8 bytes can be read.
int shortNumber(const char *at, int length) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, wordSize);
  // The first digit is the lowest byte. The shift drops the bytes behind the number and puts
  // leading zeros before it.
  word = (word - 0x3030303030303030U) << (64 - 8 * length);
  word = word * 10 + (word >> 8); // pairs of digits, in every other byte
  const std::uint64_t even = (word & 0x000000FF000000FFU) * (100 + (std::uint64_t{1000000} << 32));
  const std::uint64_t odd = (word >> 16 & 0x000000FF000000FFU) * (1 + (std::uint64_t{10000} << 32));
  return static_cast<int>((even + odd) >> 32);
}

// Scans up to `count` integers from whole blocks that hold only white space and unsigned numbers of
// up to eight digits; returns how many, with text.at behind the last.
std::size_t scanPlainBlocks(Text &text, int *values, std::size_t count) {
  std::size_t n = 0;
  if constexpr (std::endian::native != std::endian::little)
    return n;
  constexpr std::size_t mostInBlock = blockSize / 2;
  while (text.end - text.at >= blockSize + wordSize && count - n >= mostInBlock) {
    const Block block = classify(text.at);
    std::uint64_t starts = block.digits & ~(block.digits << 1);
    std::uint64_t ends = ~block.digits & block.digits << 1;
    if (!block.plain)
      return n;
    if (ends == 0) { // no number ends here: white space, perhaps with the start of a number
      if ((starts & 1) != 0)
        return n;
      text.at += starts == 0 ? blockSize : std::countr_zero(starts);
      continue;
    }
    int end = 0;
    for (; ends != 0; starts &= starts - 1, ends &= ends - 1) {
      const int start = std::countr_zero(starts);
      const int next = std::countr_zero(ends);
      if (next - start > wordSize) {
        text.at += end;
        return n;
      }
      values[n++] = shortNumber(text.at + start, next - start);
      end = next;
    }
    text.at += end;
  }
  return n;
}

// Skips characters c while take(c) holds.
template <class Take>
void skipWhile(Text &text, Take take) {
  do {
    const char *at = text.at;
    const char *const end = text.end;
    while (at != end && take(*at))
      ++at;
    text.at = at;
  } while (text.at == text.end && text.refill());
}

} // namespace

void skipSpace(Text &text) {
  skipWhile(text, isSpace);
}

void skipLine(Text &text) {
  skipWhile(text, [](char c) { return c != '\n'; });
}

Scanned scanInt(Text &text, int &value) {
  skipSpace(text);
  const bool isSigned = text.hasMore() && isSign(*text.at);
  const bool isNegative = isSigned && *text.at == '-';
  text.at += isSigned ? 1 : 0;
  constexpr std::int64_t beyond = std::int64_t{1} << 32; // above every int; ten times it fits
  std::int64_t magnitude = 0;
  bool isNumber = false;
  skipWhile(text, [&](char c) {
    if (!isDigit(c))
      return false;
    isNumber = true;
    if (magnitude < beyond)
      magnitude = magnitude * 10 + (c - '0');
    return true;
  });
  if (!isNumber)
    return Scanned::nothing;
  const std::int64_t number = isNegative ? -magnitude : magnitude;
  value = saturate(number);
  return value == number ? Scanned::exact : Scanned::clamped;
}

std::size_t scanInts(Text &text, int *values, std::size_t count) {
  std::size_t n = 0;
  for (;;) {
    n += scanPlainBlocks(text, values + n, count - n);
    const std::ptrdiff_t stoppedAt = text.end - text.at;
    do {
      if (n == count || scanInt(text, values[n]) == Scanned::nothing)
        return n;
      ++n;
      // One by one for about a block, or to the end of the piece in memory.
    } while (text.end - text.at <= stoppedAt && stoppedAt - (text.end - text.at) < blockSize);
  }
}

String scanWord(Text &text) {
  skipSpace(text);
  String word;
  skipWhile(text, [&word](char c) {
    if (isSpace(c) || (!word.empty() && word.back() == '\0'))
      return false;
    word.push_back(c);
    return true;
  });
  return word;
}

std::size_t copyBytes(Text &text, char *to, std::size_t count) {
  std::size_t copied = 0;
  while (copied < count && text.hasMore()) {
    const std::size_t part = std::min(count - copied, static_cast<std::size_t>(text.end - text.at));
    std::memcpy(to + copied, text.at, part);
    text.at += part;
    copied += part;
  }
  return copied;
}

Bytes takeBytes(Text &text, std::size_t count) {
  constexpr std::size_t least = 1 << 16;
  Bytes bytes;
  std::size_t capacity = 0;
  while (bytes.size == capacity && bytes.size < count && text.hasMore()) {
    capacity = std::min(count, bytes.size + std::max({least, bytes.size, text.certainBytes()}));
    bytes.data.reset(static_cast<char *>(reallocate(bytes.data.release(), capacity, 1)));
    bytes.size += copyBytes(text, bytes.data.get() + bytes.size, capacity - bytes.size);
  }
  return bytes;
}

} // namespace seedforest::detail
