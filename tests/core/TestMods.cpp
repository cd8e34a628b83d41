#include "TestMods.h"

#include "core/ImageModSelector.h"
#include "core/ParallelFor.h"

namespace {

template <typename Sample>
static inline Sample addClamped(Sample s, float add)
{
    float v = float(s) + add;
    if constexpr (sizeof(Sample) == 1) {
        if (v > 255.0f)
            v = 255.0f;
        if (v < 0.0f)
            v = 0.0f;
    }
    return Sample(v);
}

template <typename Sample>
void addPass(FlexImageT<Sample>* image, float amount, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || amount == 0.0f)
        return;
    const ImageModSelector* selector = context ? context->selector : nullptr;
    const ReferenceFrame* frame = context ? context->referenceFrame : nullptr;
    const int32_t width = image->width;
    const int32_t channels = image->channels;
    const int32_t colour = image->colorChannels;
    parallelFor(image->height, [=](int32_t y) {
        Sample* p = image->row(y);
        for (int32_t x = 0; x < width; ++x, p += channels) {
            const float a = selector ? maskRuleB(amount, selector->maskValue(image, x, y, frame)) : amount;
            for (int32_t c = 0; c < colour; ++c)
                p[c] = addClamped(p[c], a);
        }
    });
}

} // namespace

void TestModAdd::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    addPass(image, floatValue(0), context);
}

void TestModAdd::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    addPass(image, floatValue(0), context);
}
