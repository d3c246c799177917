// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The one loop behind every transform. Internal: the public operations are in iftForest.h and its
// siblings.
//
// Every transform repeats the same step: take the best waiting pixel, offer each neighbour a path
// through it, let a strictly better path conquer. All differences are in one object, the transform:
//
//   operation                    path through p to q costs             better  waits in bucket
//   iftNonNormalized, …WF        pathCost(cost of p, weight)           <       cost
//   …Inverted                    the same                              >       bound - cost
//   ift, iftWF, iftMask, …       the same, of 49 times the weight      <       cost
//   iftNonNormalizedLevel        max or min with the value of q        < or >  cost, bound - cost
//   iftEuclideanDT, iftSkelNova  the squared sum of the steps          <       cost
//   iftFuzzy…, for each object   max(cost of p, link)                  <       cost
//   ifEuclideanShortestPath      that of p plus the step's length      <       its integer part
//   iftPrim, iftPrimWF           49 times the weight, no path          <       cost, pulled back
//   iftPrimGraph                 the edge's weight, no path            <       cost, pulled back
//   iftGraph                     pathCost(cost of u, edge's weight)    <       cost
//   an area opening's flood      min(cost of p, value of q)            >       bound - cost
//
// Ties: within a bucket first in, first out; a pixel conquered again waits behind all that are in
// its new bucket; an equal cost never conquers. Buckets are served in a circle, costs beyond the
// last one in the order of their remainders.
#pragma once

#include "base/inline.h"
#include "base/report.h"
#include "ift/core/detail/bucketQueue.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

namespace seedforest::detail {

/// Stands for the callback of offers() in the concept below.
struct AnyOffer {
  void operator()(int q, int k, int cost) const;
};

/// What a transform provides:
///
/// - Entry: what waits in the queue, a pixel and perhaps more;
/// - isCurrent(entry, bucket): whether no better entry has replaced this one and its pixel is not
///   settled;
/// - offers(entry, offer): the path to the entry's pixel is final; calls offer(q, k, cost) for each
///   of its neighbours q, by displacement k, in the order of the adjacency, with the cost of the
///   path through it; neighbours that cannot be improved may be left out;
/// - improves(cost, q): the strict test;
/// - conquer(p, q, k, cost): q gains the path through p;
/// - bucket(cost, q) and entry(q, k, cost): the bucket in which q waits then, and its entry;
/// - optional, settle(entry): called before offers(), when the path to the entry's pixel is final;
/// - optional, prefetch(p): p will be settled soon.
template <class T>
concept Transform = requires(T &transform, typename T::Entry entry, int q, AnyOffer offer) {
  { transform.isCurrent(entry, q) } -> std::same_as<bool>;
  transform.offers(entry, offer);
  { transform.improves(q, q) } -> std::same_as<bool>;
  transform.conquer(q, q, q, q);
  { transform.bucket(q, q) } -> std::same_as<int>;
  { transform.entry(q, q, q) } -> std::same_as<typename T::Entry>;
};

/// Runs a transform whose seeds are waiting in the queue.
template <Transform T, class Queue>
SEEDFOREST_INLINE inline void propagate(T &transform, Queue &queue) {
  constexpr int stride = 1024;
  Meter meter(queue.nelems());
  int unmetered = stride;
  const auto isCurrent = [&](auto entry, int b) { return transform.isCurrent(entry, b); };
  typename T::Entry entry;
  while (queue.take(entry)) {
    if constexpr (requires { transform.prefetch(0); })
      if (queue.upcoming() != queue.none)
        transform.prefetch(queue.upcoming());
    if (!isCurrent(entry, queue.current()))
      continue;
    if constexpr (requires { queue.isCrowded(); })
      if (queue.isCrowded())
        queue.dropOutdated(isCurrent);
    if (--unmetered == 0)
      meter.advance(unmetered = stride);
    if constexpr (requires { transform.settle(entry); })
      transform.settle(entry);
    transform.offers(entry, [&](int q, int k, int cost) SEEDFOREST_INLINE {
      if (!transform.improves(cost, q))
        return;
      transform.conquer(entry.pixel, q, k, cost);
      queue.append(transform.bucket(cost, q), transform.entry(q, k, cost));
    });
  }
}

/// What a transform provides that settles pixels in runs of those that wait in one bucket:
///
/// - Entry, entry(q): what waits in the queue;
/// - longestRun(): of how many pixels it can note the offers;
/// - prefetch(p): p may be in the next run;
/// - startRun(bucket): forgets what it has noted;
/// - gather(entry): notes which neighbours the entry's pixel makes offers to, if no better entry has
///   replaced this one; this must not depend on offers of the same run;
/// - offerAll(append): makes them all, in the order in which they were noted, and calls append(b, q)
///   for each pixel q that was conquered and waits in bucket b.
template <class T>
concept TransformInRuns = requires(T &transform, typename T::Entry entry, int q,
                                   void append(int, int)) {
  { transform.entry(q) } -> std::same_as<typename T::Entry>;
  { transform.longestRun() } -> std::same_as<int>;
  transform.prefetch(q);
  transform.startRun(q);
  transform.gather(entry);
  transform.offerAll(append);
};

/// The same loop, a run at a time.
template <TransformInRuns T, class Queue>
SEEDFOREST_INLINE inline void propagateInRuns(T &transform, Queue &queue) {
  Meter meter(queue.nelems());
  for (;;) {
    const auto run = queue.takeRun(transform.longestRun());
    if (run.empty())
      return;
    for (const auto entry : queue.upcomingRun(transform.longestRun()))
      transform.prefetch(entry.pixel);
    transform.startRun(queue.current());
    for (const auto entry : run)
      transform.gather(entry);
    transform.offerAll([&](int b, int q)
                           SEEDFOREST_INLINE { queue.append(b, transform.entry(q)); });
    meter.advance(static_cast<std::int64_t>(run.size()));
  }
}

/// The pixels of a set of roots.
template <class Roots>
std::span<const int> pixelsOf(const Roots &roots) {
  return {roots.pixel, static_cast<std::size_t>(std::max(roots.n, 0))};
}

/// Calls plant(i, p) for each seed, in order, p = pixels[i]; for a pixel that is listed several times
/// only at its last place. `scratch` has an element for each pixel of the image; those of seeds are
/// overwritten.
template <class Plant>
void forEachSeed(std::span<const int> pixels, int *scratch, Plant plant) {
  const int n = static_cast<int>(pixels.size());
  for (int i = 0; i < n; ++i)
    scratch[pixels[i]] = i;
  for (int i = 0; i < n; ++i)
    if (scratch[pixels[i]] == i)
      plant(i, pixels[i]);
}

} // namespace seedforest::detail
