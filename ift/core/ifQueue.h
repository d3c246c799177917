// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The public bucket queue: elements 0 .. nelems - 1 wait in buckets, first in first out within
// each; the buckets are served in a circle. Transforms order pixels by cost with exactly these
// semantics.
//
// An element is white (-1: never inserted, or taken out), grey (0 .. nbuckets - 1: waiting in that
// bucket) or black (-2: removed as a best element). The queue stores no costs; the caller computes
// buckets. Each bucket is a list linked through prev and next: inserting, moving and removing take
// constant time, isEmpty() a time that grows with the buckets that it passes, creating and emptying
// the queue one that grows with buckets and elements (Dial, "Algorithm 360: shortest-path forest
// with topological ordering", 1969).
//
// A bucket or an element out of range is ignored: nothing happens, and removal returns -1.
//
// Ends with an error, in every operation but releaseQueue(): no record (an error is a line on
// standard error and status 1, or an exception: base/error.h).
#pragma once

#pragma GCC visibility push(default)

struct ifQueue {
  int *first; ///< the head of each bucket, -1 when it is empty
  int *last;  ///< the tail of each bucket, -1 when it is empty
  int nbuckets;
  int current; ///< where isEmpty() starts to search
};

struct ifQueueNodes {
  int *prev;   ///< the element before, -1 at the head
  int *next;   ///< the element behind, -1 at the tail
  int *bucket; ///< the element's state
  int nelems;
};

/// Allocates the five arrays and empties the queue. Where that fails, or there is no bucket, prints
/// "Could not allocate queue (Q) in initQueue\n" (buckets) or "(A)" (elements) on standard error
/// and leaves a queue that is empty and stays so; in a scope of ThrowingErrors that line is thrown.
void initQueue(ifQueue *q, int nbuckets, ifQueueNodes *a, int nelems);

/// Empties the queue: every element white, current 0.
void resetQueue(ifQueue *q, ifQueueNodes *a);

/// Appends element e at the tail of bucket b; an element that already waits is moved there.
void insertQueue(ifQueue *q, ifQueueNodes *a, int b, int e);

/// The same, and sets current back to b if it was larger.
void insertQueueUpdateCurr(ifQueue *q, ifQueueNodes *a, int b, int e);

/// Removes the head of bucket b, marks it black and returns it; -1 when the bucket is empty.
int removeQueue(ifQueue *q, ifQueueNodes *a, int b);

/// Takes a waiting element out and marks it white; nothing where it does not wait.
void removeQueueElem(ifQueue *q, ifQueueNodes *a, int e);

/// Moves a waiting element to the tail of bucket b, even if it is there already; nothing where it
/// does not wait.
void updateQueue(ifQueue *q, ifQueueNodes *a, int b, int e);

/// The same, and sets current back to b if it was larger and the element was moved.
void updateQueueUpdateCurr(ifQueue *q, ifQueueNodes *a, int b, int e);

/// Moves current forward, round the circle, to the first bucket that is not empty, starting with
/// the current one, and returns 0; when all are empty, leaves current and returns 1. A current out
/// of range, which only the caller can have set, counts as 0.
int isEmpty(ifQueue *q);

/// Frees the arrays and sets every field to 0 or null; nothing where a record is null.
void releaseQueue(ifQueue *q, ifQueueNodes *a);

#pragma GCC visibility pop
