// The image foresting library.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifQueue.h"
#include "ift/core/ifRoots.h"
#include "ift/core/ifWeightImage.h"
#include "ift/core/iftEuclidean.h"
#include "ift/core/iftForest.h"
#include "ift/label/ifContour.h"
#include "ift/label/ifLabel.h"
#include "ift/operators/ifSkeleton.h"
#include "ift/operators/iftFuzzy.h"
#include "ift/regions/ifRegionGraph.h"
#include "ift/regions/iftSpanning.h"
#include "ift/seeds/ifCellSeeds.h"
#include "ift/seeds/ifContourSeeds.h"
#include "ift/seeds/ifExtrema.h"
#include "ift/seeds/ifFrameSeeds.h"
