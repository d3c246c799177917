// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Seedforest for C++ programs: everything that the libraries do, with values that own their memory,
// with exceptions, and without a line printed.
//
//   namespace sf = seedforest;
//   const sf::Image image = sf::read("cells.pgm");
//   const sf::Image crests = sf::gradient(image);
//   const sf::Forest basins = sf::watershed(crests, sf::markers(image, 20));
//   sf::write(sf::overlay(image, basins.labels), "cells.ppm");
//
// Each function calls an operation of the libraries, whose header says in full what is computed;
// ties, orders and every value are those of the operation.
//
// In every function:
// - Errors are thrown: Error, or one derived from it, FileError, OutOfMemory or Cancelled, with one
//   line that says what is wrong. Arguments are then unchanged, and no memory is leaked.
// - Nothing is printed, and no file is written but the one that was asked for.
// - Arguments are not changed, and pixels are copied only where a comment says so.
// - Images that belong together must have the same size, and roots, labels and masks must fit their
//   image; anything else is an error.
//
// Coordinates are x, y: columns to the right, rows downwards. Labels are from 1, and 0 is none.
// Distances are squared, and areas count pixels. Threads may call any of this at the same time, on
// different objects or, graphs excepted, on the same ones where none is changed.
#pragma once

#include "seedforest/adjacency.hpp"
#include "seedforest/color.hpp"
#include "seedforest/files.hpp"
#include "seedforest/filters.hpp"
#include "seedforest/forest.hpp"
#include "seedforest/image.hpp"
#include "seedforest/morphology.hpp"
#include "seedforest/pictures.hpp"
#include "seedforest/pixelwise.hpp"
#include "seedforest/progress.hpp"
#include "seedforest/regions.hpp"
#include "seedforest/roots.hpp"
#include "seedforest/seeds.hpp"
#include "seedforest/shapes.hpp"
#include "seedforest/verify.hpp"
