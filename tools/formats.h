// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Image files of any format that the programs were built for. Formats are told apart by content
// when reading and by the file name's ending when writing. "-" is standard input or output.
#pragma once

#include "seedforest/seedforest.hpp"

#include <string>
#include <string_view>

namespace seedforest::tools {

/// An image from a file, and what was left out of it, if anything, as a sentence.
struct Decoded {
  Image image;
  std::string note = {};
};

/// Whether bytes begin like a file of one of the formats.
bool isImage(std::string_view bytes);

/// The first image in the bytes of a PNM, PNG, TIFF or JPEG file: one band or three, of type grey
/// or color for 8 bits a sample, ascii or color for more. maxValue is the largest that the format
/// holds: 255, 65535, or for 32 bits and signed samples the largest value.
/// Throws FileError: bytes that are damaged, not of a known format, or of a kind or format that
/// cannot be read. Memory is asked for only as far as the bytes can fill it.
Decoded decodeImage(std::string_view bytes);

/// The bytes of a file in the format that goes with a path's ending, PNM for "-": one band as grey,
/// three as colour, in 8, 16 or (TIFF) 32 bits a sample, the smallest that holds the largest value.
/// Throws FileError: an ending without a format, values that do not fit.
std::string encodeImage(const Image &image, const std::string &path);

/// The whole of a file or of standard input; decodeImage() of it, with messages that name the file,
/// and a note() of what was left out; encodeImage() into a file. A path whose ending has no format
/// can be refused by requireFormat() before the work.
std::string readInput(const std::string &path);
Image readImage(const std::string &path);
Image readImage(const std::string &path, std::string_view bytes);
void writeImage(const Image &image, const std::string &path);
void requireFormat(const std::string &path);

/// The path for the interface's functions: that of standard input or output for "-".
std::string inputPath(const std::string &path);
std::string outputPath(const std::string &path);

} // namespace seedforest::tools
