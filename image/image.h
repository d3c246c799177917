// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image library.
#pragma once

#include "image/imColor.h"
#include "image/imIO.h"
#include "image/imImage.h"
#include "image/imMorph.h"
#include "image/imNeighborhood.h"
#include "image/imPixelwise.h"
#include "image/imVisual.h"
