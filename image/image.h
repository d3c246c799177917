// The image library.
#pragma once

#include "image/imColor.h"
#include "image/imIO.h"
#include "image/imImage.h"
#include "image/imMorph.h"
#include "image/imNeighborhood.h"
#include "image/imPixelwise.h"
#include "image/imVisual.h"
