// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/scan.h"

#include "support.h"

using namespace seedforest::detail;
using namespace std::string_view_literals;

namespace {

TEST(Scan, OneInteger) {
  const struct {
    const char *text;
    Scanned scanned;
    int value; // -1 where none is scanned
    const char *rest;
  } cases[] = {
      {"", Scanned::nothing, -1, ""},
      {" \t\n\v\f\r7x", Scanned::exact, 7, "x"},
      {"+12 3", Scanned::exact, 12, " 3"},
      {"- 5", Scanned::nothing, -1, " 5"}, // a lone sign is consumed
      {"+-5", Scanned::nothing, -1, "-5"},
      {"2147483647.", Scanned::exact, maxInt, "."},
      {"2147483648 ", Scanned::clamped, maxInt, " "},
      {"-2147483648", Scanned::exact, minInt, ""},
      {"-2147483649", Scanned::clamped, minInt, ""},
      {"99999999999999999999999999999999", Scanned::clamped, maxInt, ""},
      {"000000000000000000000000000000042", Scanned::exact, 42, ""},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.text);
    Text text{std::string_view(c.text)};
    int value = -1;
    EXPECT_EQ(scanInt(text, value), c.scanned);
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(std::string(text.at, text.end), c.rest);
  }
}

// Whatever way the bulk scanner takes, and in whatever pieces the text comes, it must read what
// scanning one by one reads, and stop where that stops, without touching the values behind.
TEST(Scan, ManyEqualOneByOne) {
  std::mt19937 random(1);
  const char *separators[] = {" ", "  ", "\n", "\t ", "     ", "\r\n"};
  const char *faults[] = {"x", "-", "+ ", "1.5", "#"};
  const auto below = [&random](int n) { return pick(random, 0, n - 1); };
  for (int round = 0; round < 400; ++round) {
    std::string bytes;
    for (int i = below(60); i > 0; --i) {
      bytes += separators[below(6)];
      if (round % 2 == 1 && below(40) == 0)
        bytes += faults[below(5)];
      bytes += below(9) == 0 ? "-" : "";
      for (int digits = below(round % 3 == 0 ? 13 : 4); digits >= 0; --digits)
        bytes += static_cast<char>('0' + below(10));
    }
    Text one{std::string_view(bytes)};
    const std::size_t count = 50;
    std::vector<int> expected(count, -77);
    std::size_t n = 0;
    while (n < count && scanInt(one, expected[n]) != Scanned::nothing)
      ++n;
    for (const std::size_t size : {1, 7, 80, 200, 1000}) {
      Pieces pieces(bytes, size);
      std::vector<int> values(count, -77);
      EXPECT_EQ(scanInts(pieces, values.data(), count), n) << bytes;
      EXPECT_EQ(values, expected) << bytes;
      EXPECT_EQ(takeBytes(pieces, bytes.size()).view(), std::string_view(one.at, one.end - one.at));
    }
  }
}

TEST(Scan, WordsAndLines) {
  Pieces text(" \nP5\tnext\nline z\0ero"sv, 3);
  EXPECT_EQ(scanWord(text), "P5");
  EXPECT_EQ(scanWord(text), "next");
  ++text.at;
  skipLine(text);
  EXPECT_FALSE(text.hasMore());
  EXPECT_EQ(scanWord(text), "");
  Text nul(" z\0ero"sv);
  EXPECT_EQ(scanWord(nul), "z\0"sv);
}

} // namespace
