// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The rows of the comparison: what each measures, on which images, and the libraries beside it. A
// header for C++17 too (bench/images.h).
#pragma once

#include "bench/images.h"

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// A job on inputs that it holds. It can be run again and again.
struct Job {
  std::function<void()> run;
  std::function<double()> sum; ///< of the last run's result: not timed
};

/// What most of our jobs hold.
struct OneToOne {
  imImagePtr in;
  imImagePtr out;
};

/// Makes a job on a scene, inputs included.
using MakeJobFn = std::function<Job(Scene)>;

struct Row {
  std::string name; // without commas
  Subject subject;
  std::vector<Drawing> drawings; // on which it is timed
  bool inChart;
  MakeJobFn make;
};

/// All rows, in the order of the table.
const std::vector<Row> &allRows();

/// Their parts, by family.
std::vector<Row> seedRows();
std::vector<Row> forestRows();
std::vector<Row> regionRows();
std::vector<Row> imageRows();

/// Another library's way of doing a row's job.
struct Peer {
  std::string row;
  std::string library; // with version
  std::string how;     // what it calls, and what it does differently
  bool isSameSum;      // its result has the same sum
  MakeJobFn make;      // its inputs are of its own types: converting them is not timed
};

/// The peers of a row: of every library that was found when this was built.
std::vector<Peer> peersOf(const Row &row);

std::vector<Peer> plainPeers(); // loops as one would write them down
std::vector<Peer> boostPeers();
std::vector<Peer> itkPeers();
std::vector<Peer> leptonicaPeers();
std::vector<Peer> openCvPeers();
std::vector<Peer> vigraPeers();

/// The libraries with their versions, in the order of the alphabet.
std::vector<std::string> peerLibraries();

} // namespace bench
