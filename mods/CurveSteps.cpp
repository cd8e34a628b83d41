#include "mods/CurveSteps.h"

#include "core/ImageMod.h"
#include "core/ImageModVarAnimatorCurve.h"

#include <memory>

