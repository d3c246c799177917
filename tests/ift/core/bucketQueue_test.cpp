// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/bucketQueue.h"

#include "support.h"

#include <map>

using namespace seedforest::detail;

namespace {

struct Entry {
  int pixel;
  int time; // when it was appended
};

// Against a map from which what is outdated goes at once. The queue skips it when it surfaces, or
// drops all of it when it is crowded, in a dense table and in a sparse one.
TEST(BucketQueueOfTheLoop, EqualsAMapWhateverIsDropped) {
  std::mt19937 random(31);
  int drops = 0;
  for (int round = 0; round < 24; ++round) {
    SCOPED_TRACE(round);
    const int nelems = pick(random, 1, 60);
    const int nbuckets = std::vector<int>{1, 3, 64, 65, 300, 100000}[round % 6];
    BucketQueue<Entry> queue(nbuckets, nelems);
    using Place = std::pair<int, int>; // a bucket and a time
    std::vector<Place> latest(nelems, {-1, -1});
    const auto isCurrent = [&](Entry entry, int) {
      return latest[entry.pixel].second == entry.time;
    };
    std::map<Place, int> waiting;
    int current = 0;
    for (int time = 0; time < 20000; ++time) {
      if (random() % 10 < 9) {
        const int pixel = pick(random, 0, nelems - 1);
        const int b = pick(random, 0, nbuckets - 1);
        waiting.erase(latest[pixel]);
        latest[pixel] = {b, time};
        waiting[latest[pixel]] = pixel;
        queue.append(b, {pixel, time});
      } else if (!waiting.empty()) {
        auto next = waiting.lower_bound({current, 0});
        if (next == waiting.end())
          next = waiting.begin();
        current = next->first.first;
        Entry taken = {-1, -1};
        while (queue.take(taken) && !isCurrent(taken, current))
          ;
        ASSERT_EQ(taken.pixel, next->second);
        ASSERT_EQ(queue.current(), current);
        latest[taken.pixel] = {-1, -1};
        waiting.erase(next);
      }
      if (queue.isCrowded()) {
        queue.dropOutdated(isCurrent);
        ASSERT_FALSE(queue.isCrowded());
        ++drops;
      }
    }
  }
  EXPECT_GT(drops, 100);
}

// Runs are what take() would take, whatever is appended in between.
TEST(BucketQueueOfTheLoop, RunsEqualSingleEntries) {
  std::mt19937 random(32);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    const int nelems = 1 << pick(random, 0, 12);
    const int nbuckets = std::vector<int>{1, 3, 300, 100000}[round % 4];
    BucketQueue<Entry> single(nbuckets, nelems);
    BucketQueue<Entry> inRuns(nbuckets, nelems);
    for (int time = 0; time < 3000;) {
      const int top = pick(random, 0, nbuckets - 1);
      for (int n = pick(random, 0, 400); n > 0; --n, ++time) {
        const int b = pick(random, 0, top);
        single.append(b, {time, time});
        inRuns.append(b, {time, time});
      }
      const int most = pick(random, 1, 130);
      const auto expected = inRuns.upcomingRun(most);
      const auto run = inRuns.takeRun(most);
      ASSERT_LE(run.size(), static_cast<std::size_t>(most));
      ASSERT_TRUE(expected.empty() ||
                  (expected.data() == run.data() && expected.size() == run.size()));
      Entry taken = {-1, -1};
      for (const Entry entry : run) {
        ASSERT_TRUE(single.take(taken));
        ASSERT_EQ(entry.time, taken.time);
        ASSERT_EQ(inRuns.current(), single.current());
      }
      ASSERT_FALSE(run.empty() && single.take(taken));
    }
  }
}

} // namespace
