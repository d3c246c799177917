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

// The same queue without links: each element's state, and when it was appended. It is asked only for
// buckets and elements that exist.
struct Model {
  int nbuckets;
  std::vector<int> state, order = std::vector<int>(state.size());
  int current = 0;
  int clock = 0;

  std::vector<int> bucket(int b) const {
    std::vector<int> list;
    for (std::size_t e = 0; e < state.size(); ++e)
      if (state[e] == b)
        list.push_back(static_cast<int>(e));
    std::sort(list.begin(), list.end(), [this](int a, int c) { return order[a] < order[c]; });
    return list;
  }
  void insert(int b, int e, bool pullBack) {
    state[e] = b;
    order[e] = ++clock;
    current = pullBack ? std::min(current, b) : current;
  }
  int remove(int b) {
    const std::vector<int> list = bucket(b);
    if (list.empty())
      return -1;
    state[list[0]] = -2;
    return list[0];
  }
  int isEmpty() {
    for (int i = 0; i < nbuckets; ++i, current = (current + 1) % nbuckets)
      if (!bucket(current).empty())
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
    for (const int e : model.bucket(b)) {
      ASSERT_EQ(at, e);
      EXPECT_EQ(queue.nodes.prev[e], previous);
      previous = e;
      at = queue.nodes.next[e];
    }
    EXPECT_EQ(at, -1);
    EXPECT_EQ(queue.last[b], previous);
  }
}

// Buckets and elements reach one beyond their ranges on both sides.
TEST(Queue, EqualsTheModel) {
  std::mt19937 random(1);
  constexpr decltype(&insertQueue) moves[] = {insertQueue, insertQueueUpdateCurr, updateQueue,
                                              updateQueueUpdateCurr};
  for (const int nbuckets : {1, 2, 7})
    for (const int nelems : {0, 1, 12}) {
      Queue queue(nbuckets, nelems);
      Model model = {nbuckets, std::vector<int>(nelems, -1)};
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
            model.state[e] = -1;
          removeQueueElem(&queue, &queue.nodes, e);
        } else if (move == 5) {
          EXPECT_EQ(removeQueue(&queue, &queue.nodes, b), isBucket ? model.remove(b) : -1);
        } else {
          EXPECT_EQ(isEmpty(&queue), model.isEmpty());
          EXPECT_EQ(removeQueue(&queue, &queue.nodes, queue.current), model.remove(model.current));
        }
        expectEqual(queue, model);
      }
      resetQueue(&queue, &queue.nodes);
      expectEqual(queue, {nbuckets, std::vector<int>(nelems, -1)});
    }
}

TEST(Queue, WithoutMemoryOrReleasedItDoesNothing) {
  const std::string q = "Could not allocate queue (Q) in initQueue\n";
  const std::string a = "Could not allocate queue (A) in initQueue\n";
  const struct {
    int nbuckets, nelems;
    std::string message;
  } cases[] = {{0, 5, q}, {-1, -1, q}, {5, -1, a}, {5, 5, ""}}; // the last is released below
  for (const auto &c : cases) {
    testing::internal::CaptureStderr();
    Queue queue(c.nbuckets, c.nelems);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.message);
    if (c.message.empty())
      releaseQueue(&queue, &queue.nodes);
    insertQueue(&queue, &queue.nodes, 0, 0);
    removeQueueElem(&queue, &queue.nodes, 0);
    EXPECT_EQ(removeQueue(&queue, &queue.nodes, 0), -1);
    expectEqual(queue, {0, {}});
    EXPECT_EQ(isEmpty(&queue), 1);
    for (const int *array :
         {queue.first, queue.last, queue.nodes.prev, queue.nodes.next, queue.nodes.bucket})
      EXPECT_EQ(array, nullptr);
  }
}

TEST(Queue, ASearchFromNowhereStartsAtTheFirstBucket) {
  Queue queue(3, 2);
  insertQueue(&queue, &queue.nodes, 2, 1);
  for (const int nowhere : {-1, 3, maxInt}) {
    queue.current = nowhere;
    EXPECT_EQ(isEmpty(&queue), 0);
    EXPECT_EQ(queue.current, 2);
  }
}

} // namespace
