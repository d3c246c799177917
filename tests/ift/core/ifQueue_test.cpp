#include "ift/core/ifQueue.h"

#include "support.h"

#include <algorithm>
#include <deque>

namespace {

struct Queue {
  ifQueue q;
  ifQueueNodes a;

  Queue(int nbuckets, int nelems) { initQueue(&q, nbuckets, &a, nelems); }
  ~Queue() { releaseQueue(&q, &a); }
  Queue(const Queue &) = delete;
  Queue &operator=(const Queue &) = delete;
};

// The same queue without links: a list for each bucket, and a state for each element. It is asked
// only for buckets and elements that exist.
struct Model {
  std::vector<std::deque<int>> buckets;
  std::vector<int> state;
  int current = 0;

  void takeOut(int e, int after) {
    if (state[e] >= 0)
      std::erase(buckets[state[e]], e);
    state[e] = after;
  }

  void insert(int b, int e, bool pullBack) {
    takeOut(e, b);
    buckets[b].push_back(e);
    current = pullBack ? std::min(current, b) : current;
  }

  int remove(int b) {
    const int e = buckets[b].empty() ? -1 : buckets[b].front();
    if (e >= 0)
      takeOut(e, -2);
    return e;
  }

  int isEmpty() {
    for (std::size_t i = 0; i < buckets.size(); ++i) {
      if (!buckets[current].empty())
        return 0;
      current = (current + 1) % static_cast<int>(buckets.size());
    }
    return 1;
  }
};

void expectEqual(const Queue &queue, const Model &model) {
  EXPECT_EQ(queue.q.current, model.current);
  EXPECT_EQ(std::vector<int>(queue.a.bucket, queue.a.bucket + queue.a.nelems), model.state);
  for (int b = 0; b < queue.q.nbuckets; ++b) {
    int previous = -1;
    int at = queue.q.first[b];
    for (const int e : model.buckets[b]) {
      ASSERT_EQ(at, e);
      EXPECT_EQ(queue.a.prev[e], previous);
      previous = e;
      at = queue.a.next[e];
    }
    EXPECT_EQ(at, -1);
    EXPECT_EQ(queue.q.last[b], previous);
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
      Model model{std::vector<std::deque<int>>(nbuckets), std::vector<int>(nelems, -1)};
      for (int step = 0; step < 2000 && !HasFailure(); ++step) {
        const int b = pick(random, -1, nbuckets);
        const int e = pick(random, -1, nelems);
        const bool isBucket = b >= 0 && b < nbuckets;
        const bool isElement = e >= 0 && e < nelems;
        const int move = pick(random, 0, 7);
        if (move < 4) {
          const bool update = move >= 2;
          if (isBucket && isElement && (!update || model.state[e] >= 0))
            model.insert(b, e, move % 2 == 1);
          moves[move](&queue.q, &queue.a, b, e);
        } else if (move == 4) {
          if (isElement && model.state[e] >= 0)
            model.takeOut(e, -1);
          removeQueueElem(&queue.q, &queue.a, e);
        } else if (move == 5) {
          EXPECT_EQ(removeQueue(&queue.q, &queue.a, b), isBucket ? model.remove(b) : -1);
        } else {
          EXPECT_EQ(isEmpty(&queue.q), model.isEmpty());
          EXPECT_EQ(removeQueue(&queue.q, &queue.a, queue.q.current), model.remove(model.current));
        }
        expectEqual(queue, model);
      }
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
      releaseQueue(&queue.q, &queue.a);
    resetQueue(&queue.q, &queue.a);
    insertQueue(&queue.q, &queue.a, 0, 0);
    updateQueueUpdateCurr(&queue.q, &queue.a, 0, 0);
    removeQueueElem(&queue.q, &queue.a, 0);
    EXPECT_EQ(removeQueue(&queue.q, &queue.a, 0), -1);
    EXPECT_EQ(isEmpty(&queue.q), 1);
    for (const int *array :
         {queue.q.first, queue.q.last, queue.a.prev, queue.a.next, queue.a.bucket})
      EXPECT_EQ(array, nullptr);
  }
  const seedforest::ThrowingErrors throwing; // what was had is given back, which leak checks see
  ifQueue buckets;
  ifQueueNodes elements;
  EXPECT_THROW(initQueue(&buckets, 5, &elements, -1), seedforest::OutOfMemory);
  EXPECT_EQ(isEmpty(&buckets), 1);
}

TEST(Queue, ASearchFromNowhereStartsAtTheFirstBucket) {
  Queue queue(3, 2);
  insertQueue(&queue.q, &queue.a, 2, 1);
  for (const int nowhere : {-1, 3, maxInt}) {
    queue.q.current = nowhere;
    EXPECT_EQ(isEmpty(&queue.q), 0);
    EXPECT_EQ(queue.q.current, 2);
  }
}

} // namespace
