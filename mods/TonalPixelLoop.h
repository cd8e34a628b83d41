#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ParallelFor.h"

#include <cstdint>
#include <cstring>

// Row-parallel walk for the per-pixel adjustments. Without a mask every pixel goes through
// plain(p); with one, masked(p, m) gets the mask value read before the pixel is touched. Keeping
// the two paths apart lets a mod fold its per-image constants out of the unmasked loop.
// Masked steps skip a pixel whose effective amount is neutral: the formulas would give the value
// back only up to rounding, and in 8 bits the truncation turns that into a step down.
// With `from` (unmasked only, the same shape as image) each row is first copied from it while
// still hot: the runner's restore and the pass in one sweep.
template <typename Sample, typename Plain, typename Masked>
void forEachPixel(FlexImageT<Sample>* image, const ImageModApplyContext* context, Plain plain, Masked masked,
                  const FlexImageT<Sample>* from = nullptr)
{
    if (!image || image->isEmpty())
        return;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    const ReferenceFrame* frame = context ? context->referenceFrame : nullptr;
    const int32_t width = image->width;
    const int32_t channels = image->channels;
    if (!selector) {
        parallelFor(image->height, [&](int32_t y) {
            Sample* p = image->row(y);
            if (from)
                std::memcpy(p, from->row(y), sizeof(Sample) * size_t(width) * size_t(channels));
            for (int32_t x = 0; x < width; ++x, p += channels)
                plain(p);
        });
        return;
    }
    parallelFor(image->height, [&](int32_t y) {
        Sample* p = image->row(y);
        for (int32_t x = 0; x < width; ++x, p += channels)
            masked(p, selector->maskValue(image, x, y, frame));
    });
}

// For a tile's applyFrom: dest takes source's shape and placement, ready for forEachPixel with
// `from`. False (dest untouched) under a mask, whose weights come from the image worked on, or
// when dest is source itself.
inline bool prepareSourcedPass(const FlexImageFloat& source, FlexImageFloat* dest, const ImageModApplyContext* context)
{
    if (!dest || dest == &source || source.isEmpty() || (context && context->selector))
        return false;
    dest->resize(source.width, source.height, source.channels);
    if (dest->isEmpty())
        return false;
    dest->marginLeft = source.marginLeft;
    dest->marginRight = source.marginRight;
    dest->marginTop = source.marginTop;
    dest->marginBottom = source.marginBottom;
    dest->scale = source.scale;
    return true;
}

// A pass that leaves the pixels as they are still has to deliver them when it reads from elsewhere.
template <typename Sample>
void passUntouched(FlexImageT<Sample>* image, const FlexImageT<Sample>* from)
{
    if (from && image && from != image)
        image->copyFrom(*from, true);
}

// The usual "Amount": 0..2 with 1 neutral, shown as 0..100.
inline ImageModVariable* addAmountVariable(ImageMod* mod, float value)
{
    ImageModVariable* v = mod->addFloat("Amount", value, 0.0f, 2.0f);
    if (v && v->data)
        v->data->setDisplayScale(0.0f, 100.0f);
    return v;
}
