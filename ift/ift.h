// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image foresting library.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifExactDistance.h"
#include "ift/core/ifQueue.h"
#include "ift/core/ifRoots.h"
#include "ift/core/ifWeightImage.h"
#include "ift/core/iftEuclidean.h"
#include "ift/core/iftForest.h"
#include "ift/label/ifContour.h"
#include "ift/label/ifLabel.h"
#include "ift/operators/ifConnected.h"
#include "ift/operators/ifEuclideanShortestPath.h"
#include "ift/operators/ifSkeleton.h"
#include "ift/operators/iftFuzzy.h"
#include "ift/regions/ifFeatures.h"
#include "ift/regions/ifRegionData.h"
#include "ift/regions/ifRegionGraph.h"
#include "ift/regions/ifRegionMerging.h"
#include "ift/regions/iftGraph.h"
#include "ift/regions/iftSpanning.h"
#include "ift/seeds/ifCellSeeds.h"
#include "ift/seeds/ifContourSeeds.h"
#include "ift/seeds/ifExtrema.h"
#include "ift/seeds/ifFrameSeeds.h"
