// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Graphs as adjacency lists, undirected or directed, with a weight on each edge and integers on
// each vertex. Its main use is the adjacency of regions: vertex v is the region of label v in the
// label image that the graph owns.
//
// Edges, and the integers of vertices, are released by the operations here alone, never by free().
//
// A vertex's list holds at most one edge to each target; a new one goes to the head, so a list
// reads from the youngest edge to the oldest. Insertion searches the list for the target, in time
// proportional to its length.
//
// Ends with an error, in every operation but destroyGraph(): no graph or no list, a vertex outside
// 0 .. nVertices - 1, memory for an edge that cannot be allocated (an error is a line on standard
// error and status 1, or an exception: base/error.h).
#pragma once

#include "image/imImage.h"

#include <memory>

#pragma GCC visibility push(default)

struct ifEdge {
  int target;
  int weight;
  ifEdge *next; ///< the next older edge, or none
};

/// A vertex of a graph, or a list on its own.
struct ifVertex {
  char mark;      ///< 0 at creation, free for algorithms
  int nEdges;     ///< edges in the list
  int *data;      ///< dataSize integers, 0 at creation; null when there are none
  ifEdge *edges;  ///< head of the list, or none
  ifEdge *cursor; ///< where listGetAndWalk() is, or none
};

struct ifGraph {
  ifVertex *vertices;
  int nVertices;
  int dataSize;        ///< integers on each vertex
  imImage *labelImage; ///< owned by the graph, or none
};

/// A new graph with the vertices 0 .. maxValue of the label image, of which it keeps a copy, and
/// without edges. The caller releases it. Where it cannot be allocated: "in createGraph: could not
/// allocate memory\n" on standard error, or the image's message, and no graph; in a scope of
/// ThrowingErrors that line is thrown.
[[nodiscard]] ifGraph *createGraph(const imImage *labelImage, int dataSize);

/// A new graph with the vertices 0 .. n, without a label image. The caller releases it. Where it
/// cannot be allocated: "in allocateGraph: could not allocate memory\n", in the same way.
[[nodiscard]] ifGraph *allocateGraph(int n, int dataSize);

/// A new graph with a copy of the label image, if there is one, and all edges; each list in reverse
/// order, the data 0. It has the vertices that createGraph() would make, and no fewer than the old
/// one. Leaves the old graph's cursors at the ends of the lists. Where it cannot be allocated: as
/// createGraph().
/// Ends with an error: an edge that leads to no vertex.
[[nodiscard]] ifGraph *copyBaseGraph(ifGraph *graph, int dataSize);

/// Releases the graph with all that it owns, and clears the caller's pointer.
void destroyGraph(ifGraph **graph);

/// Releases the graph's label image, if it has one, and gives it another, or none; nothing where
/// the graph owns that image already. The vertices stay as they are.
void setLabelImage(ifGraph *graph, imImage *image);

/// Inserts an edge into the list of a and, independently, into the list of b. A list that has the
/// edge already is not changed, nor is the weight.
void insertEdge(ifGraph *graph, int a, int b, int weight);

/// Removes the edge to b from the list of a and the edge to a from the list of b, where they exist.
void removeEdge(ifGraph *graph, int a, int b);

/// The same for the list of a alone. The b removed may be any number.
void insertDirectedEdge(ifGraph *graph, int a, int b, int weight);
void removeDirectedEdge(ifGraph *graph, int a, int b);

/// A new empty list with dataSize integers. The caller releases it: listDestroy(), then free().
/// Ends with an error: a negative dataSize.
[[nodiscard]] ifVertex *createList(int dataSize);

/// Inserts an edge and returns it; where the target is there already, changes nothing and returns
/// the edge behind the one found, or none. The target may be any number.
ifEdge *listInsertEdge(ifVertex *list, int target, int weight);

/// Removes and frees the edge to the target, if there is one; a cursor on it moves on.
void listRemoveEdge(ifVertex *list, int target);

/// Frees the edges and the data, not the record, which is left as an empty list without data.
void listDestroy(ifVertex *list);

/// The edge at the cursor, which moves on; none at the end. Set the cursor to `edges` to begin.
ifEdge *listGetAndWalk(ifVertex *list);

/// Prints "Graph has %d vertices\n" on standard output and a line for each vertex: "[%d (" with its
/// number, "%4d " for each integer, "\b)]: " (")]: " where there are none), "%d(%d) " with target
/// and weight for each edge from the head. Returns the number of vertices and leaves their cursors
/// at the ends of the lists.
int graphPrint(ifGraph *graph);

struct ifGraphDeleter {
  void operator()(ifGraph *graph) const { destroyGraph(&graph); }
};

/// Owns a graph, with its label image.
using ifGraphPtr = std::unique_ptr<ifGraph, ifGraphDeleter>;

#pragma GCC visibility pop
