#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "core/ImageModApplyContext.h"
#include "core/ImageModSelector.h"
#include "core/ParallelFor.h"

#include <cstdint>

// Row-parallel walk for the per-pixel adjustments. Without a mask every pixel goes through
// plain(p); with one, masked(p, m) gets the mask value read before the pixel is touched. Keeping
// the two paths apart lets a mod fold its per-image constants out of the unmasked loop.
// Masked steps skip a pixel whose effective amount is neutral: the formulas would give the value
// back only up to rounding, and in 8 bits the truncation turns that into a step down.
template <typename Sample, typename Plain, typename Masked>
void forEachPixel(FlexImageT<Sample>* image, const ImageModApplyContext* context, Plain plain, Masked masked)
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

// The usual "Amount": 0..2 with 1 neutral, shown as 0..100.
inline ImageModVariable* addAmountVariable(ImageMod* mod, float value)
{
    ImageModVariable* v = mod->addFloat("Amount", value, 0.0f, 2.0f);
    if (v && v->data)
        v->data->setDisplayScale(0.0f, 100.0f);
    return v;
}
