#include "core/ImageModBitmapSelector.h"

#include "core/ParallelFor.h"

ImageModBitmapSelector::ImageModBitmapSelector() : ImageModSelector("Bitmap Selector", "Bitmap Selector") {}

std::unique_ptr<ImageMod> ImageModBitmapSelector::newInstance() const
{
    return std::make_unique<ImageModBitmapSelector>();
}

float ImageModBitmapSelector::read(int32_t x, int32_t y) const
{
    if (!mask || !mask->data || x < 0 || y < 0 || x >= mask->width || y >= mask->height)
        return 0.0f;
    return mask->data[(int64_t(y) * mask->width + x) * mask->channels];
}

float ImageModBitmapSelector::maskValue(const FlexImageFloat*, int32_t x, int32_t y, const ReferenceFrame*) const
{
    return read(x, y);
}

float ImageModBitmapSelector::maskValue(const FlexImage8*, int32_t x, int32_t y, const ReferenceFrame*) const
{
    return read(x, y);
}

namespace {

template <typename Sample>
std::unique_ptr<FlexImageFloat> evaluateMask(const ImageModSelector* source, const FlexImageT<Sample>* image,
                                             const ReferenceFrame* frame)
{
    if (!source || !image || image->isEmpty())
        return nullptr;
    auto out = std::make_unique<FlexImageFloat>(image->width, image->height, 1);
    if (!out->data)
        return nullptr;
    FlexImageFloat* dst = out.get();
    const int32_t width = image->width;
    parallelFor(image->height, [=](int32_t y) {
        float* row = dst->row(y);
        for (int32_t x = 0; x < width; ++x)
            row[x] = source->maskValue(image, x, y, frame);
    });
    return out;
}

} // namespace

void ImageModBitmapSelector::fillFrom(const ImageModSelector* source, const FlexImageFloat* image,
                                      const ReferenceFrame* frame)
{
    mask = evaluateMask(source, image, frame);
}

void ImageModBitmapSelector::fillFrom(const ImageModSelector* source, const FlexImage8* image,
                                      const ReferenceFrame* frame)
{
    mask = evaluateMask(source, image, frame);
}
