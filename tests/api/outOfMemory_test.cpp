// Every allocation of an operation fails in turn, until one call goes through: each failure is
// thrown as OutOfMemory, leaves the arguments usable, and leaks nothing, which the sanitizers see.
#include "base/error.h"

#include "failingMemory.h"
#include "graphs.h"
#include "ift/ift.h"
#include "image/image.h"

#include <cstdlib>
#include <filesystem>
#include <functional>

namespace {

using seedforest::OutOfMemory;
using seedforest::ThrowingErrors;

// What a call made, and what it was given to write into.
struct Made {
  imImagePtr image;
  imImagePtr second;
  ifGraphPtr graph;
  ifRootsPtr roots;
  ifRoots2 set = {};

  Made() = default;
  ~Made() { ifReleaseRoots2(&set); }
  Made(const Made &) = delete;
  Made &operator=(const Made &) = delete;

  void takeImages(imImage *a, imImage *b) {
    image.reset(a);
    second.reset(b);
  }

  // All of it as numbers.
  std::vector<int> all() const {
    std::vector<int> list(set.label, set.label + set.n);
    for (const imImagePtr *made : {&image, &second})
      for (int b = 0; *made != nullptr && b < (*made)->nbands; ++b)
        list.insert(list.end(), (*made)->band[b], (*made)->band[b] + (*made)->npixels);
    for (int v = 0; graph != nullptr && v < graph->nVertices; ++v) {
      list.insert(list.end(), graph->vertices[v].data, graph->vertices[v].data + graph->dataSize);
      for (const ifEdge *edge = graph->vertices[v].edges; edge != nullptr; edge = edge->next)
        list.insert(list.end(), {v, edge->target, edge->weight});
    }
    for (int i = 0; roots != nullptr && i < roots->n; ++i)
      list.insert(list.end(), {roots->pixel[i], roots->label[i], roots->value[i]});
    return list;
  }
};

struct Family {
  const char *name;
  std::function<void(Made &)> call;
};

// A folder that the calls write their files into.
class WorkingFolder {
public:
  WorkingFolder() { std::filesystem::current_path(folder_.path("")); }
  ~WorkingFolder() { std::filesystem::current_path(before_); }
  WorkingFolder(const WorkingFolder &) = delete;
  WorkingFolder &operator=(const WorkingFolder &) = delete;

private:
  std::filesystem::path before_ = std::filesystem::current_path();
  TemporaryFolder folder_;
};

class Memory : public testing::Test {
protected:
  // Runs each call with one allocation after the other failing.
  void expectSurvival(const std::vector<Family> &families) {
    const ThrowingErrors throwing;
    int failures = 0;
    for (const auto &[name, call] : families) {
      SCOPED_TRACE(name);
      Made expected;
      call(expected);
      std::string others; // what was thrown that is not OutOfMemory
      int n = 0;
      for (bool failed = true; failed;) {
        Made made;
        failAllocation(++n);
        try {
          call(made);
          failed = allocationFailed(); // some allocations only make things faster
          failAllocation(0);
          EXPECT_EQ(made.all(), expected.all());
        } catch (const OutOfMemory &) {
          ++failures;
        } catch (const std::exception &error) {
          failAllocation(0);
          others += std::to_string(n) + " " + error.what() + ", ";
        }
      }
      failAllocation(0);
      EXPECT_EQ(others, "");
    }
    EXPECT_GT(failures, 0); // else nothing was tried
  }

  WorkingFolder folder;
  std::mt19937 random{5};
  imImagePtr grey = randomImage(random, 1, imTypeGrey, 9, 7, 0, 5);
  imImagePtr beyond = randomImage(random, 1, imTypeAscii, 9, 7, -3, 5);
  imImagePtr mask = randomImage(random, 1, imTypeGrey, 9, 7, 0, 1);
  imImagePtr colour = randomImage(random, 3, imTypeColor, 9, 7, 0, 255);
  imImagePtr shape = makeImage({{0, 0, 0, 0, 0, 0, 0},
                                {0, 1, 1, 1, 1, 1, 0},
                                {0, 1, 1, 1, 1, 1, 0},
                                {0, 1, 1, 1, 1, 1, 0},
                                {0, 0, 0, 0, 0, 0, 0}});
  imImagePtr labels = makeImage({{1, 1, 2, 2, 4, 4}, {1, 3, 3, 2, 4, 5}, {3, 3, 3, 2, 5, 5}});
  imImagePtr out = blankLike(grey);
  imImagePtr forest = blankLike(grey, 5, imTypeWork);
  imImagePtr weights = imImagePtr(watershedWF(grey.get(), imNeighborhood8));
  ifRootsPtr roots = makeRoots({{0, 1, 2}, {30, 2, 1}});
  ifGraphPtr graph =
      ifGraphPtr(ifComputeAverageColors(ifGraphPtr(ifMosaicToGraph(labels.get())).get(),
                                        imImagePtr(imCopyImage(labels.get())).get()));
  ifGraphPtr tree = ifGraphPtr(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
};

TEST_F(Memory, OfImages) {
  imSaveImage("grey", grey.get());
  imSaveImage("ascii", labels.get());
  imSaveImage("colour", colour.get());
  const auto read = [](const char *path) {
    return [path](Made &made) {
      imImage *image = nullptr;
      imReadImage(path, &image);
      made.image.reset(image);
    };
  };
  expectSurvival({
      {"imReadImage, grey", read("grey")},
      {"imReadImage, ascii", read("ascii")},
      {"imReadImage, colour", read("colour")},
      {"imSaveImage", [&](Made &) { imSaveImage("again", grey.get()); }},
      {"imCopyImage", [&](Made &made) { made.image.reset(imCopyImage(colour.get())); }},
      {"imHistogram",
       [&](Made &) {
         float *histogram = nullptr;
         int size = 0;
         imHistogram(grey.get(), mask.get(), &histogram, &size);
         std::free(histogram);
       }},
      {"imNegative", [&](Made &made) { made.image.reset(imNegative(grey.get(), imTypeGrey)); }},
      {"imAddBorder", [&](Made &made) { made.image.reset(imAddBorder(grey.get(), 2)); }},
      {"imMorphDilate", [&](Made &) { imMorphDilate(grey.get(), out.get(), 9); }},
      {"imMorphAsfOC", [&](Made &) { imMorphAsfOC(grey.get(), out.get(), 4); }},
      {"imShowSegm",
       [&](Made &made) { made.image.reset(imShowSegm(grey.get(), mask.get(), 1, 2, 3)); }},
      {"imPaintCircles", [&](Made &made) { made.image.reset(imPaintCircles(grey.get())); }},
      {"watershedWF",
       [&](Made &made) { made.image.reset(watershedWF(grey.get(), imNeighborhood8)); }},
  });
}

TEST_F(Memory, OfGraphs) {
  expectSurvival({
      {"createGraph", [&](Made &made) { made.graph.reset(createGraph(labels.get(), 2)); }},
      {"copyBaseGraph", [&](Made &made) { made.graph.reset(copyBaseGraph(graph.get(), 1)); }},
      {"insertEdge",
       [&](Made &made) {
         made.graph.reset(allocateGraph(2, 0));
         insertEdge(made.graph.get(), 1, 2, 3);
       }},
      {"createList",
       [](Made &) {
         ifVertex *list = createList(3);
         listDestroy(list);
         std::free(list);
       }},
      {"ufStartUnionFind",
       [](Made &) {
         ufUnionFind uf;
         ufStartUnionFind(&uf, 5, 2);
         ufReleaseUnionFind(&uf);
       }},
      {"ifMosaicToGraph", [&](Made &made) { made.graph.reset(ifMosaicToGraph(labels.get())); }},
      {"ifMorphoGradGraph", [&](Made &made) { made.graph.reset(ifMorphoGradGraph(graph.get())); }},
      {"ifColapseGraph", [&](Made &made) { made.graph.reset(ifColapseGraph(graph.get())); }},
      {"iftPrim",
       [&](Made &) { iftPrim(grey.get(), forest.get(), imNeighborhood8, ifWatershedMetric); }},
      {"iftPrimGraph",
       [&](Made &made) { made.graph.reset(iftPrimGraph(graph.get(), ifGraphEuclideanDistance)); }},
      {"ifMstThreshold",
       [&](Made &) {
         iftPrim(grey.get(), forest.get(), imNeighborhood8, ifWatershedMetric);
         ifMstThreshold(forest.get(), out.get(), 0.5);
       }},
      {"ifThresholdGraph",
       [&](Made &made) { made.graph.reset(ifThresholdGraph(tree.get(), 0.001)); }},
      {"ifThresholdMST", [&](Made &made) { made.graph.reset(ifThresholdMST(tree.get(), 1)); }},
      {"ifThresholdMST_nRegions",
       [&](Made &made) { made.graph.reset(ifThresholdMST_nRegions(tree.get(), 2)); }},
      {"ifComputeArea", [&](Made &made) { made.graph.reset(ifComputeArea(graph.get())); }},
      {"ifComputeAverageColors",
       [&](Made &made) { made.graph.reset(ifComputeAverageColors(graph.get(), labels.get())); }},
      {"ifCreateFeaturesGraph",
       [&](Made &made) { made.graph.reset(ifCreateFeaturesGraph(graph.get())); }},
      {"ifAverageColor", [&](Made &) { ifAverageColor(grey.get(), out.get(), mask.get()); }},
  });
}

TEST_F(Memory, OfTransforms) {
  expectSurvival({
      {"initQueue",
       [](Made &) {
         ifQueue queue = {};
         ifQueueNodes nodes = {};
         initQueue(&queue, 5, &nodes, 7);
         releaseQueue(&queue, &nodes);
       }},
      {"iftNonNormalized",
       [&](Made &) {
         iftNonNormalized(grey.get(), forest.get(), imNeighborhood8, ifWatershedMetric, 5,
                          ifPathCostMax, roots.get());
       }},
      {"iftNonNormalizedInverted",
       [&](Made &) {
         iftNonNormalizedInverted(grey.get(), forest.get(), imNeighborhood4, ifWatershedMetric, 5,
                                  ifPathCostSum, roots.get());
       }},
      {"iftMaskWF",
       [&](Made &) {
         iftMaskWF(grey.get(), forest.get(), mask.get(), weights.get(), ifPathCostMax, roots.get());
       }},
      {"iftNonNormalizedLevel",
       [&](Made &) {
         iftNonNormalizedLevel(grey.get(), mask.get(), forest.get(), imNeighborhood8, roots.get());
       }},
      {"iftEuclideanDT",
       [&](Made &) { iftEuclideanDT(grey.get(), forest.get(), imNeighborhood8, roots.get()); }},
      {"ifExactDistance", [&](Made &) { ifExactDistance(grey.get(), forest.get(), roots.get()); }},
      {"iftFuzzy",
       [&](Made &) {
         const int mean[] = {0, 2, 4}, sigma[] = {1, 2, 1};
         iftFuzzy(grey.get(), out.get(), mask.get(), imNeighborhood8, roots.get(), mean, sigma, 2);
       }},
      {"iftFuzzyEdges",
       [&](Made &) {
         const imImage *const given[] = {nullptr, weights.get()};
         iftFuzzyEdges(grey.get(), out.get(), mask.get(), imNeighborhood8, roots.get(), given, 1);
       }},
  });
}

TEST_F(Memory, OfLabelsAndSeeds) {
  ifSaveRoots("roots", grey.get(), roots.get());
  expectSurvival({
      {"ifReadRoots", [&](Made &made) { made.roots.reset(ifReadRoots("roots", grey.get())); }},
      {"ifSaveRoots", [&](Made &) { ifSaveRoots("again", grey.get(), roots.get()); }},
      {"ifVisualizeRoots",
       [&](Made &made) { made.image.reset(ifVisualizeRoots(grey.get(), roots.get())); }},
      {"ifLabelImage", [&](Made &) { ifLabelImage(mask.get(), out.get()); }},
      {"ifConnectedComponents",
       [&](Made &) { ifConnectedComponents(grey.get(), out.get(), roots.get()); }},
      {"ifCorrectLabels",
       [&](Made &made) {
         made.image.reset(imCopyImage(beyond.get()));
         ifCorrectLabels(made.image.get());
       }},
      {"labelContours", [&](Made &) { labelContours(mask.get(), out.get()); }},
      {"ifLabelDifferences",
       [&](Made &) { ifLabelDifferences(grey.get(), mask.get(), out.get(), 0); }},
      {"ifFrameAsRoots", [&](Made &made) { made.roots.reset(ifFrameAsRoots(grey.get(), 0, 0)); }},
      {"ifDistTransfRoots",
       [&](Made &made) {
         made.roots = makeRoots({});
         ifReleaseRoots(made.roots.get());
         ifDistTransfRoots(shape.get(), made.roots.get(), 1);
       }},
      {"ifSkel2Roots", [&](Made &made) { made.image.reset(ifSkel2Roots(shape.get(), &made.set)); }},
      {"ifSkel2RootsSplit",
       [&](Made &made) {
         made.roots = makeRoots({});
         ifReleaseRoots(made.roots.get());
         ifSkel2RootsSplit(shape.get(), made.roots.get());
       }},
      {"ifRegionalMaxima", [&](Made &made) { made.image.reset(ifRegionalMaxima(grey.get())); }},
      {"ifRegionalMinimaAsRoots",
       [&](Made &made) { made.roots.reset(ifRegionalMinimaAsRoots(beyond.get())); }},
      {"ifCellsRoots", [&](Made &made) { made.roots.reset(ifCellsRoots(grey.get(), 1)); }},
  });
}

TEST_F(Memory, OfOperators) {
  const auto both = [](auto operation) {
    return [operation](Made &made) {
      imImage *filtered = nullptr, *labelled = nullptr;
      operation(&filtered, &labelled);
      made.takeImages(filtered, labelled);
    };
  };
  expectSurvival({
      {"ifReconstr", both([&](imImage **a, imImage **b) {
         ifReconstr(grey.get(), nullptr, roots.get(), 0, a, b);
       })},
      {"ifAreaOpen", both([&](imImage **a, imImage **b) { ifAreaOpen(grey.get(), a, b, 4); })},
      {"ifAreaOpen, negative values",
       both([&](imImage **a, imImage **b) { ifAreaOpen(beyond.get(), a, b, 4); })},
      {"ifAreaClose", both([&](imImage **a, imImage **b) { ifAreaClose(grey.get(), a, b, 4); })},
      {"ifLevel",
       both([&](imImage **a, imImage **b) { ifLevel(grey.get(), mask.get(), roots.get(), a, b); })},
      {"ifLevel2", both([&](imImage **a, imImage **) { ifLevel2(grey.get(), mask.get(), a); })},
      {"ifEuclideanShortestPath",
       [&](Made &made) { made.roots.reset(ifEuclideanShortestPath(shape.get(), 8, 19)); }},
      {"iftSkelReconstr", [&](Made &made) { made.image.reset(iftSkelReconstr(grey.get())); }},
      {"ifSkel", both([&](imImage **a, imImage **) { ifSkel(shape.get(), 1, 3, a); })},
  });
}

// A callback of the caller's may throw whatever it likes.
TEST_F(Memory, OfCallsThatTheirCallbacksEnd) {
  const auto weigh = [](const imImage *, int, int q) { return q > 20 ? throw q : q; };
  EXPECT_THROW(iftNonNormalized(grey.get(), forest.get(), imNeighborhood8, weigh, 9, ifPathCostMax,
                                roots.get()),
               int);
  EXPECT_THROW(iftPrim(grey.get(), forest.get(), imNeighborhood8, weigh), int);
  const auto never = [](const ifGraph *, int, int v) { return v > 2 ? throw v : v; };
  EXPECT_THROW(ifGraphPtr(iftPrimGraph(graph.get(), never)), int);
  ufUnionFind uf;
  ufStartUnionFind(&uf, 3, 0);
  uf.merge = [](ufElement *, int a, int) -> int { throw a; };
  EXPECT_THROW(ufLink(&uf, 0, 1), int);
  EXPECT_EQ(ufFindSet(&uf, 0), 1); // joined before the callback
  ufReleaseUnionFind(&uf);
}

using MemoryDeathTest = Memory;

TEST_F(MemoryDeathTest, WithoutAScopeTheProcessEndsAfterALine) {
  const auto without = [](int n, auto call) {
    failAllocation(n);
    call();
  };
  EXPECT_FATAL(without(1, [&] { ifLabelImage(mask.get(), out.get()); }),
               "^could not allocate memory!\n$");
  EXPECT_FATAL(without(2, [&] { ifGraphPtr(ifMosaicToGraph(labels.get())); }),
               "^in createGraph: could not allocate memory\n$");
  EXPECT_FATAL(without(1, [&] { imImagePtr(ifRegionalMaxima(grey.get())); }),
               "^Could not allocate image!\n$");
}

} // namespace
