// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Calls of every family of operations, with arguments that they accept. Each goes wrong in turn in
// the ways a program survives: an argument that is missing or does not fit, and memory that cannot
// be had. In a scope of ThrowingErrors each is an exception; what it leaves behind, the sanitizers
// see.
#include "base/error.h"

#include "api/interfaceSupport.h"
#include "api/things.h"
#ifdef SEEDFOREST_FAULTS
#include "faults.h"
#endif

#include <barrier>
#include <cerrno>
#include <functional>
#include <future>
#include <iostream>
#include <tuple>

namespace {

using seedforest::Error;
using seedforest::ThrowingErrors;

// An operation with arguments that it accepts; and calls in which one of them is none such.
struct Operation {
  const char *name;
  std::function<void()> call;
  std::vector<std::pair<const char *, std::function<void()>>> refused = {};
};

template <class Parameter>
constexpr bool isImage =
    std::is_same_v<Parameter, const imImage *> || std::is_same_v<Parameter, imImage *>;

class Calls : public Things {
public:
  std::vector<Operation> operations;

  Calls() {
    ofImages();
    ofGraphs();
    ofTransforms();
    ofLabelsAndSeeds();
    ofOperators();
  }

private:
  template <class Function, class Arguments>
  void run(Function function, const Arguments &arguments) {
    if constexpr (std::is_void_v<decltype(std::apply(function, arguments))>)
      std::apply(function, arguments);
    else
      take(std::apply(function, arguments));
  }

  template <class Result, class... Parameters>
  void add(const char *name, Result (*function)(Parameters...),
           std::type_identity_t<Parameters>... accepted) {
    using Arguments = std::tuple<Parameters...>;
    const Arguments arguments(accepted...);
    operations.push_back({name, [=, this] { run(function, arguments); }});
    Operation &operation = operations.back();
    constexpr int nImages = (0 + ... + (isImage<Parameters> ? 1 : 0));
    const auto breakArgument = [&]<std::size_t i>(std::integral_constant<std::size_t, i>) {
      using Parameter = std::tuple_element_t<i, Arguments>;
      const auto refuse = [&](const char *what, Parameter argument) {
        Arguments broken = arguments;
        std::get<i>(broken) = argument;
        operation.refused.emplace_back(what, [=, this] { run(function, broken); });
      };
      if constexpr (std::is_pointer_v<Parameter>)
        if (std::get<i>(arguments) != nullptr) { // else it is not read
          refuse("nothing", nullptr);
          if constexpr (isImage<Parameter>)
            if (nImages > 1 && name != std::string_view("ifDualReconstr")) // reads only a bound
              refuse("another size", small);
          if constexpr (std::is_same_v<Parameter, const ifRoots *>)
            if (name != std::string_view("ifSaveRoots")) // which writes any
              refuse("a pixel outside", outside);
        }
    };
    const auto breakEach = [&]<std::size_t... i>(std::index_sequence<i...>) {
      (breakArgument(std::integral_constant<std::size_t, i>()), ...);
    };
    breakEach(std::index_sequence_for<Parameters...>());
  }

  void ofImages() {
    add("imReadImage", imReadImage, "grey", &first);
    add("imReadImage", imReadImage, "ascii", &first);
    add("imReadImage", imReadImage, "colour", &first);
    add("imSaveImage", imSaveImage, "again", grey);
    add("imCopyBand", imCopyBand, grey, imTypeGrey, 0);
    add("imHistogram", imHistogram, grey, mask, &histogram, &count);
    add("imPrintWindow", imPrintWindow, stdout, grey, 0, -1);
    add("imPgm2rgb", imPgm2rgb, grey, out3);
    add("imNeighborhood8", imNeighborhood8, &numbers);
    add("imNeighborhood", imNeighborhood, &numbers, 5);
    add("imMorphWindow", imMorphWindow, &numbers, 2);
    add("imThreshold", imThreshold, grey, imTypeGrey, 0, 9);
    add("imNegative", imNegative, grey, imTypeGrey);
    add("imMask", imMask, colour, mask, 0);
    add("imBinaryUnion", imBinaryUnion, grey, mask, imTypeGrey);
    add("imAddBorder", imAddBorder, grey, 2);
    add("imUpperEnvelope", imUpperEnvelope, grey, beyond);
    add("imCombineImageWithGrad", imCombineImageWithGrad, out, grey);
    add("imMorphDilate", imMorphDilate, grey, out, 9);
    add("imMorphErode", imMorphErode, grey, out, 1);
    add("imMorphAsfOC", imMorphAsfOC, grey, out, 4);
    add("imMorphGrad", imMorphGrad, colour, out);
    add("imRgb2lab", imRgb2lab, colour, out3);
    add("imShowSegm", imShowSegm, grey, mask, 1, 2, 3);
    add("imPaintCircles", imPaintCircles, grey);
    add("ifMaxDistance", ifMaxDistance, grey, 0, 1);
    add("gaussianWF", gaussianWF, grey, imNeighborhood8);
    add("watershedWF", watershedWF, grey, imNeighborhood8);
  }

  void ofGraphs() {
    add("createGraph", createGraph, labels, 2);
    add("copyBaseGraph", copyBaseGraph, graph, 1);
    add("setLabelImage", setLabelImage, graph, nullptr);
    add("insertEdge", insertEdge, graph, 0, 1, 3);
    add("removeEdge", removeEdge, graph, 1, 2);
    add("insertDirectedEdge", insertDirectedEdge, graph, 0, 1, 3);
    add("removeDirectedEdge", removeDirectedEdge, graph, 1, 2);
    add("createList", createList, 3);
    add("listInsertEdge", listInsertEdge, vertex, 1, 1);
    add("listRemoveEdge", listRemoveEdge, vertex, 1);
    add("listDestroy", listDestroy, vertex);
    add("listGetAndWalk", listGetAndWalk, vertex);
    add("graphPrint", graphPrint, graph);
    add("Union/find was not allocated before ufStartUnionFind", ufStartUnionFind, &again, 5, 2);
    add("ufLink", ufLink, &sets, 1, 2);
    add("ufFindSet", ufFindSet, &sets, 1);
    add("ifMosaicToGraph", ifMosaicToGraph, labels);
    add("ifMorphoGradGraph", ifMorphoGradGraph, graph);
    add("ifColapseGraph", ifColapseGraph, graph);
    add("iftPrim", iftPrim, grey, forest, imNeighborhood8, ifWatershedMetric);
    add("iftPrimWF", iftPrimWF, grey, forest, weights);
    add("iftPrimGraph", iftPrimGraph, graph, ifGraphEuclideanDistance);
    add("ifMstThreshold", ifMstThreshold, forest, out, 0.5);
    add("ifThresholdGraph", ifThresholdGraph, tree, 0.001);
    add("ifThresholdMST", ifThresholdMST, tree, 1);
    add("ifThresholdMST_nRegions", ifThresholdMST_nRegions, tree, 2);
    add("ifInitAreaData", ifInitAreaData, &pixels, grey);
    add("ifComputeArea", ifComputeArea, graph);
    add("ifComputeVolume", ifComputeVolume, graph, grey);
    add("ifComputeAverageColors", ifComputeAverageColors, graph, labels);
    add("ifCreateFeaturesVector", ifCreateFeaturesVector, colour);
    add("ifAddFeatureToVector", ifAddFeatureToVector, colour, grey, 0);
    add("ifEliminateSmallRegions", ifEliminateSmallRegions, graph, 7, ifGraphEuclideanDistance);
    add("eliminateSimilarRegions", eliminateSimilarRegions, graph, 2, ifGraphEuclideanDistance);
    add("ifMergeSimilarColors", ifMergeSimilarColors, graph, grey, 9, ifGraphEuclideanDistance);
    add("ifCreateFeaturesGraph", ifCreateFeaturesGraph, graph);
    add("ifAverageColor", ifAverageColor, grey, out, mask);
    add("ifAverageColorsGraphToImage", ifAverageColorsGraphToImage, graph, imTypeGrey);
  }

  void ofTransforms() {
    const auto eight = imNeighborhood8;
    const auto weigh = ifWatershedMetric;
    const auto max = ifPathCostMax;
    add("initQueue", initQueue, &newQueue, 5, &newNodes, 7);
    add("insertQueue", insertQueue, &queue, &nodes, 1, 1);
    add("removeQueue", removeQueue, &queue, &nodes, 1);
    add("isEmpty", isEmpty, &queue);
    add("iftNonNormalized", iftNonNormalized, grey, forest, eight, weigh, 5, max, roots);
    add("iftNonNormalizedInverted", iftNonNormalizedInverted, grey, forest, imNeighborhood4, weigh,
        5, ifPathCostSum, roots);
    add("ift", ift, grey, forest, eight, weigh, max, roots);
    add("iftWF", iftWF, grey, forest, weights, max, roots);
    add("iftMask", iftMask, grey, forest, mask, eight, weigh, max, roots);
    add("iftMaskWF", iftMaskWF, grey, forest, mask, weights, max, roots);
    add("iftNonNormalizedLevel", iftNonNormalizedLevel, grey, mask, forest, eight, roots);
    add("iftEuclideanDT", iftEuclideanDT, grey, forest, eight, roots);
    add("ifExactDistance", ifExactDistance, grey, forest, roots);
    add("iftSkelReconstr", iftSkelReconstr, grey);
    add("ifEuclideanShortestPath", ifEuclideanShortestPath, grey, 0, 5);
    add("iftFuzzy", iftFuzzy, grey, out, mask, eight, roots, mean, sigma, 2);
  }

  void ofLabelsAndSeeds() {
    add("ifAllocateRoots", ifAllocateRoots, &set, 3);
    add("ifReadRoots", ifReadRoots, "roots", grey);
    add("ifSaveRoots", ifSaveRoots, "again", grey, roots);
    add("ifSaveRoots2", ifSaveRoots2, "again", grey, &set2);
    add("ifVisualizeRoots", ifVisualizeRoots, grey, roots);
    add("ifLabelImage", ifLabelImage, mask, out);
    add("ifConnectedComponents", ifConnectedComponents, grey, out, roots);
    add("ifCorrectLabels", ifCorrectLabels, beyond);
    add("ifRegionsToContours", ifRegionsToContours, labels, out);
    add("labelContours", labelContours, mask, out);
    add("ifLabelDifferences", ifLabelDifferences, grey, mask, out, 0);
    add("ifContourFollow", ifContourFollow, &followed, &count, 1, out, grey, 0, right);
    add("ifFrameAsRoots", ifFrameAsRoots, grey, 0, 0);
    add("ifLabelsToRoots", ifLabelsToRoots, grey);
    add("ifDistTransfRoots", ifDistTransfRoots, shape, &set, 1);
    add("ifSkel2Roots", ifSkel2Roots, shape, &set2);
    add("ifSkel2RootsSplit", ifSkel2RootsSplit, shape, &set);
    add("ifRegionalMinima", ifRegionalMinima, grey);
    add("ifRegionalMaxima", ifRegionalMaxima, grey);
    add("ifRegionalMinimaAsRoots", ifRegionalMinimaAsRoots, beyond);
    add("ifCellsRoots", ifCellsRoots, grey, 1);
  }

  void ofOperators() {
    add("ifReconstr", ifReconstr, grey, nullptr, roots, 0, &first, &second);
    add("ifDualReconstr", ifDualReconstr, grey, grey, roots, 1, &first, &second);
    add("ifAreaOpen", ifAreaOpen, grey, &first, &second, 4);
    add("ifAreaOpen", ifAreaOpen, beyond, &first, &second, 4);
    add("ifAreaClose", ifAreaClose, grey, &first, &second, 4);
    add("ifLevel", ifLevel, grey, mask, roots, &first, &second);
    add("ifLevel2", ifLevel2, grey, mask, &first);
    add("iftSkelNova", iftSkelNova, grey, forest, &set2);
    add("ifSkel", ifSkel, shape, 1, 3, &first);
  }
};

class Scope : public InTemporaryFolder {
protected:
  Scope() {
    const Things things;
    imSaveImage("grey", things.grey);
    imSaveImage("ascii", things.labels);
    imSaveImage("colour", things.colour);
    ifSaveRoots("roots", things.grey, things.roots);
  }
};

// The refusal begins with the name of the operation, or with the message that there has always
// been, and comes before any progress is told.
void expectRefusal(const std::string &part, const std::function<void()> &call) {
  std::string notices;
  const ThrowingErrors throwing([&](seedforest::Notice, std::string_view t) { notices += t; });
  try {
    call();
    ADD_FAILURE() << "no error: " << part;
  } catch (const Error &error) {
    const std::string text = error.what();
    EXPECT_TRUE(text.starts_with(part)) << text << ", not " << part;
    EXPECT_EQ(text.find('\n'), text.npos) << text;
  }
  EXPECT_EQ(notices, "") << part;
}

TEST_F(Scope, RefusesArgumentsOneByOne) {
  Calls calls;
  for (const Operation &operation : calls.operations)
    for (const auto &[what, call] : operation.refused) {
      SCOPED_TRACE(what);
      expectRefusal(operation.name, call);
    }
}

// Two threads call all operations at the same time, on things of their own, and the results are those
// of one.
TEST_F(Scope, TwoThreadsInEveryFamily) {
  const auto resultsOfAll = [] {
    const ThrowingErrors throwing;
    std::vector<std::vector<int>> results;
    for (std::size_t i = 0, count = Calls().operations.size(); i < count; ++i) {
      Calls calls;
      calls.operations[i].call();
      results.push_back(calls.results());
    }
    return results;
  };
  const auto alone = resultsOfAll();
  std::barrier start(2);
  const auto together = [&] {
    start.arrive_and_wait();
    return resultsOfAll();
  };
  auto other = std::async(std::launch::async, together);
  EXPECT_EQ(together(), alone);
  EXPECT_EQ(other.get(), alone);
}

#ifdef SEEDFOREST_FAULTS

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Every call of the system of one kind fails in turn, until one call of the operation goes through
// as it would have without. Returns how many did not.
template <class Expected>
int failInTurn(const Fault &fault) {
  const ThrowingErrors throwing;
  int failures = 0;
  const std::size_t count = Calls().operations.size();
  for (std::size_t i = 0; i < count; ++i) {
    Calls whole;
    SCOPED_TRACE(whole.operations[i].name);
    whole.operations[i].call();
    for (int n = 1, made = 0;; ++n) {
      Calls calls;
      inject(fault, n);
      try {
        calls.operations[i].call();
        made = endInjection(); // some calls only make things faster
        EXPECT_EQ(calls.results(), whole.results());
      } catch (const Expected &) {
        made = endInjection();
        ++failures;
      } catch (const std::exception &error) {
        made = endInjection();
        ADD_FAILURE() << n << " " << error.what();
      }
      if (made < n)
        break;
    }
  }
  return failures;
}

TEST_F(Scope, SurvivesWithoutMemory) {
  const int failures = failInTurn<seedforest::OutOfMemory>({Call::allocate, Effect::fail, ENOMEM});
  EXPECT_GT(failures, 300); // else little was tried
  std::cout << "allocations that failed: " << failures << "\n";
}

TEST_F(Scope, SurvivesFilesThatFail) {
  const std::ptrdiff_t before = openDescriptors();
  for (const Call call : {Call::open, Call::read, Call::write, Call::close, Call::rename}) {
    const int failures = failInTurn<seedforest::FileError>({call, Effect::fail, EIO});
    EXPECT_GT(failures, 2);
    std::cout << "calls for files that failed: " << failures << "\n";
  }
  EXPECT_EQ(openDescriptors(), before);
  for (const std::string &name : folder.names())
    EXPECT_FALSE(name.starts_with(".seedforest-tmp-")) << name;
}

using MemoryDeathTest = Scope;

TEST_F(MemoryDeathTest, WithoutAScopeTheProcessEndsAfterALine) {
  Things t;
  const auto without = [](int n, auto call) {
    inject({Call::allocate, Effect::fail, ENOMEM}, n);
    call();
  };
  EXPECT_FATAL(without(1, [&] { ifLabelImage(t.mask, t.out); }), "^could not allocate memory!\n$");
  EXPECT_FATAL(without(2, [&] { t.take(ifMosaicToGraph(t.labels)); }),
               "^in createGraph: could not allocate memory\n$");
  EXPECT_FATAL(without(1, [&] { t.take(ifCellsRoots(t.grey, 1)); }),
               "^Could not allocate image!\n$");
}

#endif

// A callback of the caller's may throw whatever it likes.
TEST_F(Scope, LetsCallbacksEndCalls) {
  Things t;
  const auto weigh = [](const imImage *, int, int q) { return q > 20 ? throw q : q; };
  EXPECT_THROW(
      iftNonNormalized(t.grey, t.forest, imNeighborhood8, weigh, 9, ifPathCostMax, t.roots), int);
  EXPECT_THROW(iftPrim(t.grey, t.forest, imNeighborhood8, weigh), int);
  const auto never = [](const ifGraph *, int, int v) { return v > 2 ? throw v : v; };
  EXPECT_THROW(t.take(iftPrimGraph(t.graph, never)), int);
  t.sets.merge = [](ufElement *, int a, int) -> int { throw a; };
  EXPECT_THROW(ufLink(&t.sets, 0, 1), int);
  EXPECT_EQ(ufFindSet(&t.sets, 0), 1); // joined before the callback
}

// What only some operations refuse.
TEST_F(Scope, RefusesWhatDoesNotFit) {
  Things t;
  const int cyclic[][2] = {{0, 1}, {2, 0}, {4, 5}, {5, 0}, {1, 0}}; // 0 does not always represent
  for (const auto &link : cyclic)
    ufLink(&t.sets, link[0], link[1]);
  const auto eight = imNeighborhood8;
  imImage **made = &t.first, **made2 = &t.second;
  const auto transform = [&](imImage *forest, int bound) {
    iftNonNormalized(t.grey, forest, eight, ifWatershedMetric, bound, ifPathCostMax, t.roots);
  };
  const std::pair<const char *, std::function<void()>> refusals[] = {
      {"could not open file no/file", [&] { imReadImage("no/file", made); }},
      {"could not open file no/file", [&] { imSaveImage("no/file", t.grey); }},
      {"imCopyBand", [&] { t.take(imCopyBand(t.grey, 2, 1)); }},
      {"imHistogram", [&] { imHistogram(t.below, t.shape, &t.histogram, &t.count); }},
      {"imPrintWindow", [&] { imPrintWindow(stdout, t.grey, 63, 1); }},
      {"imPgm2rgb", [&] { imPgm2rgb(t.grey, t.grey); }},
      {"imBinaryUnion", [&] { t.take(imBinaryUnion(t.grey, t.bare, 1)); }},
      {"imAddBorder", [&] { t.take(imAddBorder(t.grey, -1)); }},
      {"imRemoveBorder", [&] { t.take(imRemoveBorder(t.grey, 4)); }},
      {"imCombineImageWithGrad", [&] { imCombineImageWithGrad(t.grey, t.bare); }},
      {"imMorphAsfOC", [&] { imMorphAsfOC(t.colour, t.out, 1); }},
      {"imRgb2lab", [&] { imRgb2lab(t.colour, t.out); }},
      {"imShowSegm", [&] { t.take(imShowSegm(t.grey, t.bare, 0, 0, 0)); }},
      {"imPaintCircles", [&] { t.take(imPaintCircles(t.bare)); }},
      {"imMorphWindow", [&] { imMorphWindow(&t.numbers, -1); }},

      {"in createGraph", [&] { t.take(createGraph(t.grey, -1)); }},
      {"in allocateGraph", [&] { t.take(allocateGraph(maxInt, 0)); }},
      {"in allocateGraph", [&] { t.take(allocateGraph(-2, 0)); }},
      {"copyBaseGraph: vertex 77", [&] { t.take(copyBaseGraph(t.astray, 0)); }},
      {"insertEdge: vertex 7", [&] { insertEdge(t.graph, 1, 7, 1); }},
      {"removeEdge: vertex -1", [&] { removeEdge(t.graph, -1, 1); }},
      {"removeDirectedEdge", [&] { removeDirectedEdge(t.graph, 7, 1); }},
      {"createList", [&] { t.take(createList(-1)); }},
      {"Could not allocate structure", [&] { ufStartUnionFind(&t.again, -1, 0); }},
      {"ufReleaseUnionFind", [&] { ufReleaseUnionFind(nullptr); }},
      {"ufLink: element 63", [&] { ufLink(&t.sets, 1, 63); }},
      {"ufFindSet: element -1", [&] { ufFindSet(&t.sets, -1); }},
      {"ufFindSet: the parents of element 2", [&] { ufFindSet(&t.sets, 2); }},

      {"ifAllocateRoots", [&] { ifAllocateRoots(&t.set, -1); }},
      {"Could not open file no/file", [&] { t.take(ifReadRoots("no/file", t.grey)); }},
      {"Could not open file no/file", [&] { ifSaveRoots("no/file", t.grey, t.roots); }},
      {"euclideanWF", [&] { t.take(euclideanWF(t.bare, eight)); }},
      {"iftNonNormalized", [&] { transform(t.out, 9); }},
      {"iftNonNormalized: -1", [&] { transform(t.forest, -1); }},
      {"iftWF: the arc-weight", [&] { iftWF(t.grey, t.forest, t.grey, ifPathCostMax, t.roots); }},
      {"iftFuzzy", [&] { iftFuzzy(t.grey, t.out, t.out, eight, t.roots, t.mean, t.none, 1); }},
      {"ifCorrectLabels", [&] { ifCorrectLabels(t.bare); }},
      {"ifContourFollow: pixel 63",
       [&] { ifContourFollow(&t.followed, &t.count, 1, t.out, t.grey, 63, t.right); }},
      {"ifFrameAsRoots", [&] { t.take(ifFrameAsRoots(t.row, 0, 1)); }},
      {"ifLabelsToRoots", [&] { t.take(ifLabelsToRoots(t.bare)); }},
      {"ifRegionalMaxima: -1", [&] { t.take(ifRegionalMaxima(t.below)); }},
      {"ifRegionalMaximaAsRoots: -1", [&] { t.take(ifRegionalMaximaAsRoots(t.below)); }},
      {"ifCellsRoots", [&] { t.take(ifCellsRoots(t.colour, 1)); }},
      {"ifCellsRoots", [&] { t.take(ifCellsRoots(t.grey, maxInt)); }},

      {"ifReconstr: -1", [&] { ifReconstr(t.below, nullptr, t.noRoots, 1, made, made2); }},
      {"ifAreaOpen: -1", [&] { ifAreaOpen(t.below, made, made2, 2); }},
      {"ifAreaOpenOld: -1", [&] { ifAreaOpenOld(t.below, made, made2, 2); }},
      {"ifLevel: -1", [&] { ifLevel(t.grey, t.below, t.noRoots, made, made2); }},
      {"ifLevel2", [&] { ifLevel2(t.grey, t.colour, made); }},
      {"ifSkel", [&] { ifSkel(t.colour, 0, 1, made); }},
      {"ifMosaicToGraph", [&] { t.take(ifMosaicToGraph(t.far)); }},
      {"ifMorphoGradGraph: vertex 77", [&] { t.take(ifMorphoGradGraph(t.astray)); }},
      {"ifColapseGraph: vertices without", [&] { t.take(ifColapseGraph(t.bareGraph)); }},
      {"ifGraphEuclideanDistance", [&] { ifGraphEuclideanDistance(t.bareGraph, 0, 1); }},
      {"ifGraphMinDistance: vertex 9", [&] { ifGraphMinDistance(t.graph, 0, 9); }},
      {"iftPrimWF", [&] { iftPrimWF(t.grey, t.forest, t.grey); }},
      {"iftPrimGraph", [&] { t.take(iftPrimGraph(t.bareGraph, ifGraphMinDistance)); }},
      {"ifMstThreshold", [&] { ifMstThreshold(t.grey, t.out, 0.5); }},
      {"ifThresholdGraph", [&] { t.take(ifThresholdGraph(t.bareGraph, 0.5)); }},
      {"ifThresholdGraph", [&] { t.take(ifThresholdGraph(t.unlabelled, 0.5)); }},
      {"ifThresholdMST: vertex 77", [&] { t.take(ifThresholdMST(t.astray, 1)); }},
      {"iftGraph: vertex",
       [&] { t.take(iftGraph(t.bareGraph, ifGraphMinDistance, ifPathCostMax, 9, t.roots)); }},
      {"ifInitColorData", [&] { ifInitColorData(&t.sets, t.colour); }},
      {"ifEdgeWeightArea", [&] { ifEdgeWeightArea(t.grey, &t.sets, 0, 1); }},
      {"ifComputeArea: vertex 77", [&] { t.take(ifComputeArea(t.astray)); }},
      {"ifComputeVolume", [&] { t.take(ifComputeVolume(t.graph, t.small)); }},
      {"ifAverageColor: labels", [&] { ifAverageColor(t.far, t.far, t.far); }},
      {"ifComputeAverageColors", [&] { t.take(ifComputeAverageColors(t.graph, t.small)); }},
      {"ifCreateFeaturesGraph: vertex 77", [&] { t.take(ifCreateFeaturesGraph(t.astray)); }},
  };
  for (const auto &[part, call] : refusals)
    expectRefusal(part, call);

  t.graph->vertices[3].data[0] = -1;
  expectRefusal("ifColapseGraph: vertex -1", [&] { t.take(ifColapseGraph(t.graph)); });
  setLabelImage(t.unlabelled, imCopyImage(t.shape));
  expectRefusal("ifThresholdGraph: vertex 88",
                [&] { t.take(ifThresholdGraph(t.unlabelled, 0.5)); });
  t.bareGraph->labelImage->band[0][0] = 9;
  expectRefusal("ifThresholdMST: labels", [&] { t.take(ifThresholdMST(t.bareGraph, 1)); });
  ufStartUnionFind(&t.again, 12, 1);
  t.again.merge = ifUpdateColorData;
  expectRefusal("ifUpdateColorData: elements with 1", [&] { ufLink(&t.again, 0, 1); });
}

} // namespace
