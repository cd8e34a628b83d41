#pragma once
#include "core/ImageMod.h"

#include <memory>
#include <string>
#include <vector>

// Factory instances of tiles the panel never offers but a saved filter may still hold. The filter
// reader looks a `name` up here after the catalogue, so such a filter loads again.
const std::vector<std::unique_ptr<ImageMod>>& extraModFactories();

// The extra factory instance whose `name` is exactly modName, or null.
const ImageMod* findExtraModFactory(const std::string& modName);
