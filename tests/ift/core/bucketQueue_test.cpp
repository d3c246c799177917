#include "ift/core/detail/bucketQueue.h"

#include "support.h"

#include <list>

using namespace seedforest::detail;

namespace {

struct Entry {
  int pixel;
  int time; // when it was appended
};

// Against one list a bucket, from which what is outdated goes at once. The queue skips it when it
// surfaces, or drops all of it when it is crowded, in a dense table and in a sparse one.
TEST(BucketQueueOfTheLoop, EqualsListsWhateverIsDropped) {
  std::mt19937 random(31);
  int drops = 0;
  for (int round = 0; round < 24; ++round) {
    SCOPED_TRACE(round);
    const int nelems = pick(random, 1, 60);
    const int nbuckets = std::vector<int>{1, 3, 64, 65, 300, 100000}[round % 6];
    BucketQueue<Entry> queue(nbuckets, nelems);
    std::vector<int> latest(nelems, -1); // the time of each pixel's current entry
    const auto isCurrent = [&](Entry entry, int) { return latest[entry.pixel] == entry.time; };
    std::map<int, std::list<Entry>> lists;
    int current = 0;
    for (int time = 0; time < 20000; ++time) {
      if (random() % 10 < 9) {
        const int pixel = pick(random, 0, nelems - 1);
        const int b = pick(random, 0, nbuckets - 1);
        for (auto &[_, list] : lists)
          list.remove_if([pixel](Entry entry) { return entry.pixel == pixel; });
        std::erase_if(lists, [](const auto &list) { return list.second.empty(); });
        latest[pixel] = time;
        lists[b].push_back({pixel, time});
        queue.append(b, {pixel, time});
      } else if (!lists.empty()) {
        auto list = lists.lower_bound(current);
        if (list == lists.end())
          list = lists.begin();
        current = list->first;
        Entry taken = {-1, -1};
        while (queue.take(taken) && !isCurrent(taken, current))
          ;
        ASSERT_EQ(taken.time, list->second.front().time);
        ASSERT_EQ(queue.current(), current);
        latest[taken.pixel] = -1;
        list->second.pop_front();
        if (list->second.empty())
          lists.erase(list);
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

} // namespace
