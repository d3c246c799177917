// The image foresting library.
#pragma once

#include "ift/core/ifRoots.h"
#include "ift/seeds/ifFrameSeeds.h"
