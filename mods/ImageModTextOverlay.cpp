#include "mods/ImageModTextOverlay.h"

#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ParallelFor.h"
#include "mods/SpatialSupport.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

namespace {

std::mutex gDefaultFamilyLock;
std::string gDefaultFamily = "Bitstream Vera Sans";

// Coverage of a soft shadow: the text's coverage box-blurred twice in each direction.
void blurCoverage(const FlexImage8& src, int32_t pad, int32_t radius, std::vector<float>& out, int32_t& w, int32_t& h)
{
    w = src.width + 2 * pad;
    h = src.height + 2 * pad;
    out.assign(size_t(w) * size_t(h), 0.0f);
    for (int32_t y = 0; y < src.height; ++y)
        for (int32_t x = 0; x < src.width; ++x)
            out[size_t(y + pad) * size_t(w) + size_t(x + pad)] = float(src.row(y)[x]);
    if (radius < 1)
        return;
    std::vector<float> line(size_t(std::max(w, h)));
    const float norm = 1.0f / float(2 * radius + 1);
    for (int32_t pass = 0; pass < 2; ++pass) {
        for (int32_t y = 0; y < h; ++y) {
            float* r = out.data() + size_t(y) * size_t(w);
            std::copy(r, r + w, line.begin());
            float sum = 0.0f;
            for (int32_t x = -radius; x <= radius; ++x)
                sum += x >= 0 && x < w ? line[size_t(x)] : 0.0f;
            for (int32_t x = 0; x < w; ++x) {
                r[x] = sum * norm;
                const int32_t add = x + radius + 1, drop = x - radius;
                sum += (add < w ? line[size_t(add)] : 0.0f) - (drop >= 0 ? line[size_t(drop)] : 0.0f);
            }
        }
        for (int32_t x = 0; x < w; ++x) {
            for (int32_t y = 0; y < h; ++y)
                line[size_t(y)] = out[size_t(y) * size_t(w) + size_t(x)];
            float sum = 0.0f;
            for (int32_t y = -radius; y <= radius; ++y)
                sum += y >= 0 && y < h ? line[size_t(y)] : 0.0f;
            for (int32_t y = 0; y < h; ++y) {
                out[size_t(y) * size_t(w) + size_t(x)] = sum * norm;
                const int32_t add = y + radius + 1, drop = y - radius;
                sum += (add < h ? line[size_t(add)] : 0.0f) - (drop >= 0 ? line[size_t(drop)] : 0.0f);
            }
        }
    }
}

template <typename Sample>
static inline void paintOver(Sample* p, const float rgb[3], float a)
{
    for (int32_t c = 0; c < 3; ++c)
        p[c] = storeClamped<Sample>(float(p[c]) + (rgb[c] - float(p[c])) * a);
}

} // namespace

void ImageModTextOverlay::setDefaultFontFamily(const std::string& family)
{
    if (family.empty())
        return;
    std::lock_guard<std::mutex> lock(gDefaultFamilyLock);
    gDefaultFamily = family;
}

std::string ImageModTextOverlay::defaultFontFamily()
{
    std::lock_guard<std::mutex> lock(gDefaultFamilyLock);
    return gDefaultFamily;
}

ImageModTextOverlay::ImageModTextOverlay() : ImageMod("Text Overlay", "Text Overlay")
{
    toolTip = "Draw text over your image.";
    // The panel edits the words in a text field and the family through a chooser (by these tags).
    addButton("Text", 0, "Edit Text...")->tag = "text";
    addButton("Font", 0, "Choose Font...")->tag = "font";
    addFloat("Size", 0.08f, 0.005f, 1.0f, 0.01f, 0.4f);
    addColor("Color", 255.0f, 255.0f, 255.0f, 255.0f);
    addPixel("Position");
    addChoice("Alignment", { "Left", "Center", "Right" }, 1);
    addFloat("Shadow", 0.5f, 0.0f, 1.0f);
    setText("Text");
    setFontFamily(defaultFontFamily());
}

std::unique_ptr<ImageMod> ImageModTextOverlay::newInstance() const
{
    return std::make_unique<ImageModTextOverlay>();
}

void ImageModTextOverlay::copyFrom(const ImageMod& other)
{
    ImageMod::copyFrom(other);
    if (const auto* o = dynamic_cast<const ImageModTextOverlay*>(&other))
        cache = o->cache;
}

std::string ImageModTextOverlay::text() const
{
    const ImageModVariable* v = variableAt(textIndex);
    const ImageModVariableDataButton* b = v ? v->asButton() : nullptr;
    return b ? b->storedText : std::string();
}

std::string ImageModTextOverlay::fontFamily() const
{
    const ImageModVariable* v = variableAt(fontIndex);
    const ImageModVariableDataButton* b = v ? v->asButton() : nullptr;
    return b ? b->storedText : std::string();
}

void ImageModTextOverlay::setText(const std::string& value)
{
    ImageModVariable* v = variableAt(textIndex);
    if (ImageModVariableDataButton* b = v ? v->asButton() : nullptr) {
        b->storedText = value;
        variableChanged(textIndex);
    }
}

void ImageModTextOverlay::setFontFamily(const std::string& family)
{
    ImageModVariable* v = variableAt(fontIndex);
    if (ImageModVariableDataButton* b = v ? v->asButton() : nullptr) {
        b->storedText = family;
        variableChanged(fontIndex);
    }
}

void ImageModTextOverlay::variableChanged(int32_t index)
{
    // Text and family show on the panel's buttons; the panel reads them again.
    if (index == textIndex || index == fontIndex)
        refreshRequested = true;
}

bool ImageModTextOverlay::consumeRefreshRequest()
{
    const bool was = refreshRequested;
    refreshRequested = false;
    return was;
}

bool ImageModTextOverlay::layout(int32_t imageWidth, int32_t imageHeight, const ImageModApplyContext* context,
                                 Layout& out)
{
    if (imageWidth < 1 || imageHeight < 1)
        return false;
    const SpatialFrame frame = spatialFrameOfSize(imageWidth, imageHeight, context);
    const float size = floatValue(sizeIndex);
    if (!(size > 0.0f) || !std::isfinite(size))
        return false;
    const float pixelSize = std::min(size, 1.0f) * frame.contentHeight;
    const int32_t alignment = std::clamp(choiceIndex(alignmentIndex), 0, 2);
    const std::string words = text();
    const std::string family = fontFamily();
    // The block's box comes from a first setting; the placement then needs only its size, which
    // a shift by a fraction of a pixel doesn't change.
    TextRenderRequest request { words, family, pixelSize, alignment, 0.0f, 0.0f };
    if (!cache.raster || cache.text != words || cache.family != family || cache.pixelSize != pixelSize
        || cache.alignment != alignment) {
        auto probe = std::make_shared<TextRaster>();
        if (!renderText(request, *probe))
            probe.reset();
        cache = { words, family, pixelSize, alignment, 0.0f, 0.0f, probe };
    }
    if (!cache.raster)
        return false;
    const double boxW = cache.raster->layoutWidth;
    const double boxH = cache.raster->layoutHeight;
    double ax, ay;
    float px, py;
    if (pointInBuffer(frame, pixelAt(positionIndex), px, py)) {
        ax = px;
        ay = py;
    } else {
        // Centred, low in the picture, as a caption sits.
        ax = frame.cx;
        ay = frame.cy + frame.contentHeight * 0.38;
        if (alignment == 0)
            ax -= boxW * 0.5;
        else if (alignment == 2)
            ax += boxW * 0.5;
    }
    if (!std::isfinite(ax) || !std::isfinite(ay) || std::abs(ax) > 1e8 || std::abs(ay) > 1e8)
        return false;
    const double left = ax - boxW * (alignment == 0 ? 0.0 : alignment == 1 ? 0.5 : 1.0);
    const double top = ay - boxH * 0.5;
    const float shiftX = float(left - std::floor(left));
    const float shiftY = float(top - std::floor(top));
    if (cache.shiftX != shiftX || cache.shiftY != shiftY) {
        request.shiftX = shiftX;
        request.shiftY = shiftY;
        auto raster = std::make_shared<TextRaster>();
        if (!renderText(request, *raster))
            return false;
        cache.raster = raster;
        cache.shiftX = shiftX;
        cache.shiftY = shiftY;
    }
    const TextRaster& r = *cache.raster;
    out.x = int32_t(std::floor(left)) - r.layoutX;
    out.y = int32_t(std::floor(top)) - r.layoutY;
    out.raster = cache.raster;
    return true;
}

template <typename Sample>
void ImageModTextOverlay::applyT(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty() || image->channels < 3)
        return;
    Layout lay;
    if (!layout(image->width, image->height, context, lay))
        return;
    const FlexImage8& cov = lay.raster->coverage;
    const ImageModVariableDataColor* colour = colorAt(colorIndex);
    const float rgb[3] = { colour ? colour->red : 255.0f, colour ? colour->green : 255.0f,
                           colour ? colour->blue : 255.0f };
    const float alpha = std::clamp(colour ? colour->alpha : 255.0f, 0.0f, 255.0f) / 255.0f;
    const int32_t ch = image->channels;
    const int32_t w = image->width;

    const float shadow = std::clamp(floatValue(shadowIndex), 0.0f, 1.0f);
    if (shadow > 0.0f) {
        const float pixelSize = floatValue(sizeIndex) * spatialFrameOf(*image, context).contentHeight;
        const int32_t radius = std::max(1, int32_t(std::lround(pixelSize * 0.025f)));
        const int32_t offset = std::max(1, int32_t(std::lround(pixelSize * 0.04f)));
        std::vector<float> soft;
        int32_t sw = 0, sh = 0;
        const int32_t pad = 2 * radius;
        blurCoverage(cov, pad, radius, soft, sw, sh);
        const int32_t sx0 = lay.x - pad + offset;
        const int32_t sy0 = lay.y - pad + offset;
        const float strength = shadow * 0.85f * alpha / 255.0f;
        const float black[3] = { 0.0f, 0.0f, 0.0f };
        const float* sp = soft.data();
        const int32_t y0 = std::max(0, sy0), y1 = std::min(image->height, sy0 + sh);
        const int32_t x0 = std::max(0, sx0), x1 = std::min(w, sx0 + sw);
        if (y1 > y0 && x1 > x0) {
            parallelFor(y1 - y0, [=](int32_t i) {
                const int32_t y = y0 + i;
                Sample* row = image->row(y);
                const float* s = sp + size_t(y - sy0) * size_t(sw);
                for (int32_t x = x0; x < x1; ++x) {
                    const float a = s[x - sx0] * strength;
                    if (a > 0.0f)
                        paintOver(row + int64_t(ch) * x, black, a);
                }
            });
        }
    }

    const int32_t y0 = std::max(0, lay.y), y1 = std::min(image->height, lay.y + cov.height);
    const int32_t x0 = std::max(0, lay.x), x1 = std::min(w, lay.x + cov.width);
    if (y1 <= y0 || x1 <= x0)
        return;
    const int32_t ox = lay.x, oy = lay.y;
    const float scale = alpha / 255.0f;
    parallelFor(y1 - y0, [&, y0](int32_t i) {
        const int32_t y = y0 + i;
        Sample* row = image->row(y);
        const uint8_t* c = cov.row(y - oy);
        for (int32_t x = x0; x < x1; ++x) {
            const uint8_t v = c[x - ox];
            if (v)
                paintOver(row + int64_t(ch) * x, rgb, float(v) * scale);
        }
    });
}

void ImageModTextOverlay::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyT(image, context);
}

void ImageModTextOverlay::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyT(image, context);
}
