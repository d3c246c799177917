// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Calls of the public operations with hostile arguments, several of them one after the other on the
// same things. An operation does its work or ends with an error; the sanitizers see the rest.
//
// Not called so: what releases, and what is said to trust its caller (arc weights of pixels that are
// none, updates of sets without data). Numbers that ask for as much memory or time as they say
// (borders, discs, steps, vertices, numbers of buckets) are small; tables are sized by labels up to
// World's modest ones.

#include "world.h"

namespace {

using Operation = void (*)(World &);

template <auto operation>
void any(World &world) {
  world.call(operation, false, false);
}

template <auto operation>
void bounded(World &world) {
  world.call(operation, true, false);
}

template <auto operation>
void modest(World &world) {
  world.call(operation, true, true);
}

// What needs another release or another owner than the arguments of `call` have.

void startSets(World &world) {
  ufUnionFind sets = {};
  if (succeeds([&] { ufStartUnionFind(&sets, world.draw.from(-2, 40), world.draw.from(-2, 5)); }))
    std::swap(sets, world.sets);
  ufReleaseUnionFind(&sets);
}

void startQueue(World &world) {
  releaseQueue(&world.queue, &world.nodes);
  succeeds([&] {
    initQueue(&world.queue, world.draw.from(-2, 40), &world.nodes, world.draw.from(-2, 40));
  });
}

void giveLabels(World &world) {
  ifGraph *graph = world.draws<ifGraph *>();
  imImagePtr labels(imCopyImage(world.draws<imImage *>()));
  if (succeeds([&] { setLabelImage(graph, labels.get()); }))
    static_cast<void>(labels.release());
}

void followContour(World &world) {
  world.followContour();
}

constexpr Operation operations[] = {
    // images
    bounded<imCreateImage>, any<imCopyImage>, any<imCopyBand>, modest<imHistogram>,
    bounded<imPrintWindow>, any<imPgm2rgb>, any<imReadImage>, any<imSaveImage>,
    // adjacency
    any<imNeighborhood4>, any<imNeighborhood4forward>, any<imNeighborhood8>,
    any<imNeighborhood8forward>, any<imNeighborhood8Clockwise>, bounded<imNeighborhood>,
    bounded<imMorphWindow>,
    // pixelwise
    any<imThreshold>, any<imBandPass>, any<imNegative>, any<imNegative2>, any<imMask>,
    any<imBinaryDifference>, any<imBinaryUnion>, bounded<imAddBorder>, any<imRemoveBorder>,
    any<imUpperEnvelope>, any<imLowerEnvelope>, any<imAddToPixelValues>, any<imSubtractImage>,
    any<imFalseRegionalMinimum>, any<imFalseRegionalMaximum>, any<imCombineImageWithGrad>,
    // morphology
    any<imMorphDilate>, any<imMorphErode>, any<imMorphOpen>, any<imMorphClose>,
    bounded<imMorphAsfCO>, bounded<imMorphAsfOC>, any<imMorphGrad>,
    // colour and pictures
    any<imRgb2xyz>, any<imXyz2rgb>, any<imXyz2lab>, any<imLab2xyz>, any<imXyz2luv>, any<imLuv2xyz>,
    any<imRgb2ycbcr>, any<imYcbcr2rgb>, any<imRgb2hsv>, any<imHsv2rgb>, any<imRgb2lab>,
    any<imLab2rgb>, any<imRgb2luv>, any<imLuv2rgb>, any<imHighlightElements>, any<imShowSegm>,
    any<imPaintCircles>,
    // queue
    startQueue, any<resetQueue>, any<insertQueue>, any<insertQueueUpdateCurr>, any<removeQueue>,
    any<removeQueueElem>, any<updateQueue>, any<updateQueueUpdateCurr>, any<isEmpty>,
    // roots and what makes them
    bounded<ifAllocateRoots>, any<ifSaveRoots>, any<ifSaveRoots2>, any<ifReadRoots>,
    any<ifVisualizeRoots>, bounded<ifCellsRoots>, any<ifDistTransfRoots>, any<ifSkel2Roots>,
    any<ifSkel2RootsSplit>, any<ifRegionalMinima>, any<ifRegionalMaxima>,
    any<ifRegionalMinimaAsRoots>, any<ifRegionalMaximaAsRoots>, any<ifFrameAsRoots>,
    any<ifLabelsToRoots>,
    // transforms
    any<ifPathCostMax>, any<ifPathCostMin>, any<ifPathCostSum>, any<ifPathCostMaxLocal>,
    any<ifPathCostMinLocal>, any<euclideanWF>, any<gaussianWF>, any<gaussian2WF>, any<watershedWF>,
    any<iftNonNormalized>, any<iftNonNormalizedInverted>, any<ift>, any<iftWF>,
    any<iftNonNormalizedWF>, any<iftMask>, any<iftMaskWF>, any<iftNonNormalizedLevel>,
    any<iftEuclideanDT>, any<ifExactDistance>,
    // labels and contours
    any<ifLabelImage>, any<ifConnectedComponents>, any<ifCorrectLabels>, any<ifRegionsToContours>,
    any<labelContours>, any<ifLabelDifferences>, followContour,
    // operators
    any<ifReconstr>, any<ifDualReconstr>, any<ifAreaOpen>, any<ifAreaOpenOld>, any<ifAreaClose>,
    any<ifLevel>, any<ifLevel2>, any<ifEuclideanShortestPath>, any<iftSkelNova>, any<ifSkel>,
    any<iftSkelReconstr>, bounded<iftFuzzy>, bounded<iftFuzzyEdges>, any<ifFuzzyEdgesWeight>,
    any<ifTestFuzzy>,
    // graphs
    modest<createGraph>, bounded<allocateGraph>, modest<copyBaseGraph>, giveLabels, any<insertEdge>,
    bounded<insertEdge>, any<removeEdge>, any<insertDirectedEdge>, any<removeDirectedEdge>,
    bounded<createList>, any<listInsertEdge>, any<listRemoveEdge>, any<listGetAndWalk>,
    any<graphPrint>,
    // sets
    startSets, any<ufFindSet>, bounded<ufFindSet>, any<ufLink>, bounded<ufLink>,
    any<ifInitAreaData>, any<ifInitVolumeData>, any<ifInitColorData>, bounded<ifEdgeWeightArea>,
    bounded<ifEdgeWeightVolume>, bounded<ifEdgeWeightColor>,
    // region graphs, their features, merging
    modest<ifComputeArea>, modest<ifComputeVolume>, any<ifGraphEuclideanDistance>,
    any<ifGraphMinDistance>, any<ifGraphWatershedDistance>, modest<ifMosaicToGraph>,
    modest<ifMorphoGradGraph>, modest<ifColapseGraph>, modest<ifAverageColor>,
    any<ifCreateFeaturesVector>, any<ifAddFeatureToVector>, modest<ifComputeAverageColors>,
    any<ifAverageColorsGraphToImage>, modest<ifCreateFeaturesGraph>,
    modest<ifEliminateSmallRegions>, modest<eliminateSimilarRegions>, modest<ifMergeSimilarColors>,
    modest<iftGraph>,
    // spanning trees
    any<iftPrim>, any<iftPrimWF>, modest<iftPrimGraph>, any<ifMstThreshold>,
    modest<ifThresholdGraph>, modest<ifThresholdMST>, modest<ifThresholdMST_nRegions>};

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  static const TemporaryFolder folder; // some operations write images where they are
  std::filesystem::current_path(folder.path(""));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const seedforest::ThrowingErrors throwing;
  World world(bytes, size);
  for (int calls = 0; calls < 8 && world.draw.remaining_bytes() > 0; ++calls)
    operations[world.draw.from(0, std::size(operations) - 1)](world);
  return 0;
}
