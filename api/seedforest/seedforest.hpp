// Seedforest for C++ programs: everything that the libraries do, as values that own, with
// exceptions and in silence.
//
//   namespace sf = seedforest;
//   const sf::Image image = sf::read("cells.pgm");
//   const sf::Image crests = sf::gradient(image);
//   const sf::Forest basins = sf::watershed(crests, sf::markers(image, 20));
//   sf::write(sf::overlay(image, basins.labels), "cells.ppm");
//
// Each function is a thin front of an operation of the libraries, whose header says in full what it
// computes; ties, orders and every value are those of the operation.
//
// In every function:
// - An error is thrown: Error, or one of its kinds FileError, OutOfMemory and Cancelled, with one
//   line that tells what is wrong. Arguments are then as they were, and nothing is lost.
// - Nothing is printed, and no file is written but the one that was asked for.
// - Arguments that are not returned are not changed; nothing is copied but where it says so.
// - Images that belong together have the same size, and a root, a label or a mask that does not fit
//   its image is an error.
//
// Coordinates are x, y: columns to the right, rows downwards. Labels are from 1, and 0 is none.
// Distances are squared, and areas count pixels. Threads may call any of this at the same time, on
// different objects or, graphs excepted, on the same ones where none is changed.
#pragma once

#include "seedforest/adjacency.hpp"
#include "seedforest/color.hpp"
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
