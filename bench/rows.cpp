// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/rows.h"

#include <stdexcept>

namespace bench {

namespace {

std::vector<Row> joined() {
  std::vector<Row> rows;
  for (const auto part : {seedRows, forestRows, regionRows, imageRows})
    for (Row &row : part())
      rows.push_back(std::move(row));
  return rows;
}

std::vector<std::vector<Peer>> peersByLibrary() {
  return {
      plainPeers(),
#ifdef SEEDFOREST_BENCH_BOOST
      boostPeers(),
#endif
#ifdef SEEDFOREST_BENCH_ITK
      itkPeers(),
#endif
#ifdef SEEDFOREST_BENCH_LEPTONICA
      leptonicaPeers(),
#endif
#ifdef SEEDFOREST_BENCH_OPENCV
      openCvPeers(),
#endif
#ifdef SEEDFOREST_BENCH_VIGRA
      vigraPeers(),
#endif
  };
}

} // namespace

const std::vector<Row> &allRows() {
  static const std::vector<Row> rows = joined();
  return rows;
}

std::vector<Peer> peersOf(const Row &row) {
  std::vector<Peer> found;
  for (const std::vector<Peer> &library : peersByLibrary())
    for (const Peer &peer : library)
      if (peer.row == row.name)
        found.push_back(peer);
  return found;
}

std::vector<std::string> peerLibraries() {
  std::vector<std::string> names;
  for (const std::vector<Peer> &library : peersByLibrary()) {
    names.push_back(library.front().library);
    for (const Peer &peer : library) {
      bool isRow = false;
      for (const Row &row : allRows())
        isRow = isRow || row.name == peer.row;
      if (!isRow)
        throw std::logic_error("no row " + peer.row);
    }
  }
  return names;
}

} // namespace bench
