// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/files.hpp"

#include "base/inputFile.h"
#include "base/outputFile.h"
#include "base/report.h"
#include "detail/quietly.h"

namespace seedforest {

using namespace detail;

std::string readFile(const std::string &path) {
  return quietly([&] {
    InputFile file(path.c_str());
    if (!file.isOpen())
      fatal(About::file, "could not open file %s\n", path.c_str());
    std::string bytes;
    for (; file.hasMore(); file.at = file.end)
      bytes.append(file.at, file.end);
    if (file.hasFailed())
      fatal(About::file, "error reading %s\n", path.c_str());
    return bytes;
  });
}

void writeFile(std::string_view bytes, const std::string &path) {
  quietly([&] {
    OutputFile file(path.c_str());
    if (!file.isOpen())
      fatal(About::file, "could not open file %s for writing\n", path.c_str());
    file.writer().text(bytes);
    if (!file.close())
      fatal(About::file, "error writing %s\n", path.c_str());
  });
}

} // namespace seedforest
