// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifQueue.h"

#include "base/buffer.h"
#include "base/report.h"
#include "ift/core/detail/queueErrors.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

constexpr int none = -1;
constexpr int white = -1;
constexpr int black = -2;

bool isBucket(const ifQueue *q, int b) {
  return b >= 0 && b < q->nbuckets;
}
bool isElement(const ifQueueNodes *a, int e) {
  return e >= 0 && e < a->nelems;
}
bool isWaiting(const ifQueueNodes *a, int e) {
  return isElement(a, e) && a->bucket[e] >= 0;
}

void append(ifQueue *q, ifQueueNodes *a, int b, int e) {
  a->prev[e] = q->last[b];
  a->next[e] = none;
  a->bucket[e] = b;
  if (q->last[b] == none)
    q->first[b] = e;
  else
    a->next[q->last[b]] = e;
  q->last[b] = e;
}

void unlink(ifQueue *q, ifQueueNodes *a, int e) {
  const int b = a->bucket[e];
  const int before = a->prev[e];
  const int behind = a->next[e];
  (before == none ? q->first[b] : a->next[before]) = behind;
  (behind == none ? q->last[b] : a->prev[behind]) = before;
}

void requireQueue(const char *operation, const ifQueue *q, const ifQueueNodes *a) {
  requireGiven(operation, "queue", q);
  requireGiven(operation, "record of elements", a);
}

void pullBack(ifQueue *q, int b) {
  q->current = std::min(q->current, b);
}

int *tryAllocateInts(int count) {
  return count < 0 ? nullptr
                   : static_cast<int *>(tryAllocateZeroed(std::size_t(count), sizeof(int)));
}

} // namespace

void initQueue(ifQueue *q, int nbuckets, ifQueueNodes *a, int nelems) {
  requireQueue("initQueue", q, a);
  *q = {};
  *a = {};
  if (nbuckets > 0) {
    q->first = tryAllocateInts(nbuckets);
    q->last = tryAllocateInts(nbuckets);
  }
  if (q->first == nullptr || q->last == nullptr) {
    releaseQueue(q, a);
    return complainOfQueue('Q');
  }
  a->next = tryAllocateInts(nelems);
  a->prev = tryAllocateInts(nelems);
  a->bucket = tryAllocateInts(nelems);
  if (a->next == nullptr || a->prev == nullptr || a->bucket == nullptr) {
    releaseQueue(q, a);
    return complainOfQueue('A');
  }
  q->nbuckets = nbuckets;
  a->nelems = nelems;
  resetQueue(q, a);
}

void resetQueue(ifQueue *q, ifQueueNodes *a) {
  requireQueue("resetQueue", q, a);
  std::fill_n(q->first, q->nbuckets, none);
  std::fill_n(q->last, q->nbuckets, none);
  std::fill_n(a->bucket, a->nelems, white);
  q->current = 0;
}

void insertQueue(ifQueue *q, ifQueueNodes *a, int b, int e) {
  requireQueue("insertQueue", q, a);
  if (!isBucket(q, b) || !isElement(a, e))
    return;
  if (isWaiting(a, e))
    unlink(q, a, e);
  append(q, a, b, e);
}

void insertQueueUpdateCurr(ifQueue *q, ifQueueNodes *a, int b, int e) {
  requireQueue("insertQueueUpdateCurr", q, a);
  if (!isBucket(q, b) || !isElement(a, e))
    return;
  insertQueue(q, a, b, e);
  pullBack(q, b);
}

int removeQueue(ifQueue *q, ifQueueNodes *a, int b) {
  requireQueue("removeQueue", q, a);
  if (!isBucket(q, b) || q->first[b] == none)
    return -1;
  const int e = q->first[b];
  unlink(q, a, e);
  a->bucket[e] = black;
  return e;
}

void removeQueueElem(ifQueue *q, ifQueueNodes *a, int e) {
  requireQueue("removeQueueElem", q, a);
  if (!isWaiting(a, e))
    return;
  unlink(q, a, e);
  a->bucket[e] = white;
}

void updateQueue(ifQueue *q, ifQueueNodes *a, int b, int e) {
  requireQueue("updateQueue", q, a);
  if (isWaiting(a, e))
    insertQueue(q, a, b, e);
}

void updateQueueUpdateCurr(ifQueue *q, ifQueueNodes *a, int b, int e) {
  requireQueue("updateQueueUpdateCurr", q, a);
  if (isWaiting(a, e))
    insertQueueUpdateCurr(q, a, b, e);
}

int isEmpty(ifQueue *q) {
  requireGiven("isEmpty", "queue", q);
  if (!isBucket(q, q->current)) // set by the caller
    q->current = 0;
  for (int seen = 0; seen < q->nbuckets; ++seen) {
    if (q->first[q->current] != none)
      return 0;
    q->current = q->current + 1 == q->nbuckets ? 0 : q->current + 1;
  }
  return 1; // after one whole turn, current is back where it was
}

void releaseQueue(ifQueue *q, ifQueueNodes *a) {
  if (q == nullptr || a == nullptr)
    return;
  std::free(q->first);
  std::free(q->last);
  std::free(a->next);
  std::free(a->prev);
  std::free(a->bucket);
  *q = {};
  *a = {};
}

namespace seedforest::detail {

void complainOfQueue(char what) {
  fail(About::memory, "Could not allocate queue (%c) in initQueue\n", what);
}

void queueUnavailable(char what) {
  complainOfQueue(what);
  endAfterFailure();
}

} // namespace seedforest::detail
