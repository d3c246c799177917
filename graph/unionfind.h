// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Disjoint sets over the integers 0 .. n - 1: union by rank with path compression (Tarjan,
// "Efficiency of a good but not linear set union algorithm", 1975), with a block of integers for
// each element and a callback that keeps sums over the sets up to date.
//
//   ufStartUnionFind(&uf, n, dataSize);
//   uf.merge = addAreas; // optional, as is filling in the data
//   const int a = ufFindSet(&uf, i), b = ufFindSet(&uf, j);
//   if (a != b)
//     ufLink(&uf, a, b);
//   ufReleaseUnionFind(&uf);
//
// Ends with an error, in every operation: no record, an element or a parent outside 0 .. n - 1,
// parents that lead in a circle (an error is a line on standard error and status 1, or an
// exception: base/error.h).
#pragma once

#pragma GCC visibility push(default)

struct ufElement {
  int parent; ///< the element itself where it represents its set
  int rank;   ///< bounds the height of the tree below
  int *data;  ///< dataSize integers; null when there are none
};

/// Adds the data of set b to the data of set a, after b was put under a. The result is not used. If
/// the callback throws, the sets stay joined and the rank of a is not raised.
using ufMergeFn = int (*)(ufElement *elems, int a, int b);

struct ufUnionFind {
  ufElement *elems;
  int n;
  int dataSize;
  ufMergeFn merge; ///< called once for each link, or null
};

/// Makes n sets of one element each (n may be 0), rank 0, data 0, no callback. Memory that the
/// record held before is not released.
/// Ends with an error: "Union/find was not allocated before ufStartUnionFind \n\n" without a
/// record, "Could not allocate structure for union/find [%d elements]\n\n" (n) without memory or
/// with n below 0.
void ufStartUnionFind(ufUnionFind *uf, int n, int dataSize);

/// Frees the elements and their data. The fields stay as they are.
void ufReleaseUnionFind(ufUnionFind *uf);

/// Joins the sets of two representatives that differ; neither is checked. x goes under y unless its
/// rank is higher, so with equal ranks y represents both, and its rank grows by 1 after the merge.
void ufLink(ufUnionFind *uf, int x, int y);

/// The representative of x's set. Every element on the way to it becomes its child.
int ufFindSet(ufUnionFind *uf, int x);

#pragma GCC visibility pop
