// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifQueue.h"

#include "support.h"

#include <algorithm>

namespace {

struct Queue : ifQueue {
  ifQueueNodes nodes;

  Queue(int nbuckets, int nelems) { initQueue(this, nbuckets, &nodes, nelems); }
  ~Queue() { releaseQueue(this, &nodes); }
  Queue(const Queue &) = delete;
  Queue &operator=(const Queue &) = delete;
};

// The same queue with plain lists. It is asked only for buckets and elements that exist.
struct Model {
  Matrix lists;
  std::vector<int> state;
  int current = 0;

  void leave(int e, int to) {
    if (state[e] >= 0)
      std::erase(lists[state[e]], e);
    state[e] = to;
  }
  void insert(int b, int e, bool pullBack) {
    leave(e, b);
    lists[b].push_back(e);
    current = pullBack ? std::min(current, b) : current;
  }
  int remove(int b) {
    const int e = lists[b].empty() ? -1 : lists[b].front();
    if (e >= 0)
      leave(e, -2);
    return e;
  }
  int isEmpty() {
    const int nbuckets = static_cast<int>(lists.size());
    for (int i = 0; i < nbuckets; ++i, current = (current + 1) % nbuckets)
      if (!lists[current].empty())
        return 0;
    return 1;
  }
};

void expectEqual(const Queue &queue, const Model &model) {
  EXPECT_EQ(queue.current, model.current);
  EXPECT_EQ(std::vector<int>(queue.nodes.bucket, queue.nodes.bucket + queue.nodes.nelems),
            model.state);
  for (int b = 0; b < queue.nbuckets; ++b) {
    int previous = -1;
    int at = queue.first[b];
    for (const int e : model.lists[b]) {
      ASSERT_EQ(at, e);
      EXPECT_EQ(queue.nodes.prev[e], previous);
      previous = e;
      at = queue.nodes.next[e];
    }
    EXPECT_EQ(at, -1);
    EXPECT_EQ(queue.last[b], previous);
  }
}

// Buckets and elements reach one beyond their ranges on both sides; a search from there starts at
// the first bucket.
TEST(Queue, EqualsTheModel) {
  std::mt19937 random(1);
  constexpr decltype(&insertQueue) moves[] = {insertQueue, insertQueueUpdateCurr, updateQueue,
                                              updateQueueUpdateCurr};
  for (const int nbuckets : {1, 2, 7})
    for (const int nelems : {0, 1, 12}) {
      Queue queue(nbuckets, nelems);
      const Model fresh = {Matrix(nbuckets), std::vector<int>(nelems, -1)};
      Model model = fresh;
      for (int step = 0; step < 2000 && !HasFailure(); ++step) {
        const int b = pick(random, -1, nbuckets);
        const int e = pick(random, -1, nelems);
        const bool isBucket = b >= 0 && b < nbuckets;
        const bool isElement = e >= 0 && e < nelems;
        const bool isWaiting = isElement && model.state[e] >= 0;
        const int move = pick(random, 0, 7);
        if (move < 4) {
          if (isBucket && (move < 2 ? isElement : isWaiting))
            model.insert(b, e, move % 2 == 1);
          moves[move](&queue, &queue.nodes, b, e);
        } else if (move == 4) {
          if (isWaiting)
            model.leave(e, -1);
          removeQueueElem(&queue, &queue.nodes, e);
        } else if (move == 5) {
          EXPECT_EQ(removeQueue(&queue, &queue.nodes, b), isBucket ? model.remove(b) : -1);
        } else {
          if (b < 0 || b == nbuckets) {
            queue.current = b;
            model.current = 0;
          }
          EXPECT_EQ(isEmpty(&queue), model.isEmpty());
          EXPECT_EQ(removeQueue(&queue, &queue.nodes, queue.current), model.remove(model.current));
        }
        expectEqual(queue, model);
      }
      resetQueue(&queue, &queue.nodes);
      expectEqual(queue, fresh);
    }
}

TEST(Queue, WithoutMemoryOrReleasedItDoesNothing) {
  const struct {
    int nbuckets, nelems;
    const char *message;
  } cases[] = {{0, -1, "Could not allocate queue (Q) in initQueue\n"},
               {5, -1, "Could not allocate queue (A) in initQueue\n"},
               {5, 5, ""}};
  for (const auto &c : cases) {
    testing::internal::CaptureStderr();
    Queue queue(c.nbuckets, c.nelems);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.message);
    if (c.nelems > 0)
      releaseQueue(&queue, &queue.nodes);
    insertQueue(&queue, &queue.nodes, 0, 0);
    EXPECT_EQ(removeQueue(&queue, &queue.nodes, 0), -1);
    expectEqual(queue, {});
    EXPECT_EQ(isEmpty(&queue), 1);
    EXPECT_EQ(queue.first, nullptr);
    EXPECT_EQ(queue.nodes.bucket, nullptr);
  }
}

} // namespace
