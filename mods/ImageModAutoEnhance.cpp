#include "mods/ImageModAutoEnhance.h"

#include "core/ColorMath.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ParallelFor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

// Fraction of pixels allowed to clip at each end when the black and white points are found.
constexpr double kClipFraction = 0.005;
// Points this close to the ends are noise, not a cast of the whole picture: left where they are.
constexpr float kEndTolerance = 0.03f;
// Levels never stretch a range narrower than this, so a near-uniform picture isn't blown up.
constexpr float kMinimumRange = 0.3f;
// Average brightness the midtone curve aims at, and how far from it counts as well exposed.
constexpr float kTargetAverage = 0.47f;
constexpr float kAverageTolerance = 0.04f;
constexpr float kMidtoneGain = 8.0f;
constexpr float kMaxMidtoneCorrection = 2.0f;
// Luminance spread of a picture with healthy contrast.
constexpr float kTargetSpread = 0.2f;
// Pixels read at most for a measurement; larger images are sampled on a grid.
constexpr int64_t kMaxMeasuredPixels = 1 << 20;

using Histogram = std::array<uint32_t, 256>;

template <typename Sample>
static inline int32_t luminanceBin(const Sample* p, int32_t channels)
{
    const float y = channels < 3 ? float(p[0]) : luminance(float(p[0]), float(p[1]), float(p[2]));
    if (!(y > 0.0f))
        return 0;
    return y >= 255.0f ? 255 : int32_t(y);
}

template <typename Sample>
Histogram luminanceHistogram(const FlexImageT<Sample>& image)
{
    Histogram total{};
    if (image.isEmpty())
        return total;
    const int64_t pixels = int64_t(image.width) * image.height;
    const int32_t step = pixels > kMaxMeasuredPixels
        ? int32_t(std::ceil(std::sqrt(double(pixels) / double(kMaxMeasuredPixels))))
        : 1;
    const int32_t rows = (image.height + step - 1) / step;
    // One histogram per block of rows, merged afterwards: no shared counters in the loop.
    const int32_t blocks = std::min(rows, 64);
    std::vector<Histogram> partial(size_t(blocks), Histogram{});
    const int32_t channels = image.channels;
    const int32_t width = image.width;
    parallelFor(blocks, [&](int32_t block) {
        Histogram& h = partial[size_t(block)];
        const int32_t first = int32_t(int64_t(rows) * block / blocks);
        const int32_t last = int32_t(int64_t(rows) * (block + 1) / blocks);
        for (int32_t r = first; r < last; ++r) {
            const Sample* p = image.row(r * step);
            for (int32_t x = 0; x < width; x += step)
                ++h[size_t(luminanceBin(p + int64_t(x) * channels, channels))];
        }
    });
    for (const Histogram& h : partial)
        for (size_t i = 0; i < h.size(); ++i)
            total[i] += h[i];
    return total;
}

static inline float levelsMap(float v, float low, float high)
{
    const float t = (v - low) / (high - low);
    return t < 0.0f ? 0.0f : (t > 1.0f ? 1.0f : t);
}

void setCurvePoints(ImageModToneCurve& mod, const std::vector<ToneCurvePoint>& points)
{
    ImageModVariable* v = mod.variableAt(ImageModToneCurve::varCurve);
    ImageModVariableDataCurve* data = v ? v->asCurve() : nullptr;
    if (!data)
        return;
    data->curve.points = points;
    data->curve.rebuild();
}

} // namespace

template <typename Sample>
ImageModAutoEnhance::Measurement ImageModAutoEnhance::measure(const FlexImageT<Sample>& image)
{
    Measurement m;
    const Histogram h = luminanceHistogram(image);
    uint64_t count = 0;
    for (uint32_t n : h)
        count += n;
    if (count == 0)
        return m;

    const double clip = double(count) * kClipFraction;
    int32_t lowBin = 0;
    uint64_t below = 0;
    while (lowBin < 255 && double(below + h[size_t(lowBin)]) <= clip)
        below += h[size_t(lowBin++)];
    int32_t highBin = 255;
    uint64_t above = 0;
    while (highBin > 0 && double(above + h[size_t(highBin)]) <= clip)
        above += h[size_t(highBin--)];

    float low = float(lowBin) / 255.0f;
    float high = float(highBin + 1) / 255.0f;
    if (high - low < kMinimumRange) {
        const float centre = 0.5f * (low + high);
        low = std::max(0.0f, centre - 0.5f * kMinimumRange);
        high = std::min(1.0f, low + kMinimumRange);
        low = high - kMinimumRange;
    }
    if (low < kEndTolerance)
        low = 0.0f;
    if (high > 1.0f - kEndTolerance)
        high = 1.0f;
    m.lowPoint = low;
    m.highPoint = high;

    // Average and spread of the picture as the levels step will leave it, from bin centres.
    double sum = 0.0;
    double sumSquares = 0.0;
    for (int32_t i = 0; i < 256; ++i) {
        const double v = levelsMap((float(i) + 0.5f) / 255.0f, low, high);
        sum += v * h[size_t(i)];
        sumSquares += v * v * h[size_t(i)];
    }
    const double mean = sum / double(count);
    m.average = float(mean);
    m.spread = float(std::sqrt(std::max(0.0, sumSquares / double(count) - mean * mean)));
    return m;
}

template ImageModAutoEnhance::Measurement ImageModAutoEnhance::measure(const FlexImage8&);
template ImageModAutoEnhance::Measurement ImageModAutoEnhance::measure(const FlexImageFloat&);

float ImageModAutoEnhance::midtoneCorrection(const Measurement& m)
{
    if (!std::isfinite(m.average))
        return 0.0f;
    const float d = kTargetAverage - m.average;
    if (std::fabs(d) <= kAverageTolerance)
        return 0.0f;
    const float e = (d > 0.0f ? d - kAverageTolerance : d + kAverageTolerance) * kMidtoneGain;
    return std::clamp(e, -kMaxMidtoneCorrection, kMaxMidtoneCorrection);
}

float ImageModAutoEnhance::contrastStrength(const Measurement& m)
{
    // A brightened or darkened picture loses some snap, so the contrast stage follows the midtone
    // correction; a picture that stays flat gets more, a little more when it is brighter (the
    // correction scale of the average).
    float q = 0.15f * std::fabs(midtoneCorrection(m));
    if (std::isfinite(m.spread) && m.spread < kTargetSpread) {
        const float scale = (m.average * 1.3333333333333333f - 0.3333333333333333f) * 0.08f;
        q += (kTargetSpread - m.spread) * 2.0f + scale;
    }
    return std::clamp(q, 0.0f, 0.8f);
}

ImageModAutoEnhance::ImageModAutoEnhance()
    : ImageMod("Auto Exposure", "Auto Exposure"),
      contrastStage(1.0f, 90.0f),
      greyStage(2, 0.0f)
{
    toolTip = "Automatically detect and fix exposure issues. The Amount slider increases or decreases the strength "
              "of the effect.";
    ImageModVariable* amount = addFloat("Amount", 0.75f, 0.0f, 1.0f);
    amount->data->setDisplayScale(0.0f, 100.0f);
    addChoice("Method", {"Color", "B+W"}, methodColor);
    addAnimator(amount, "0.0 1.0 0.0", 3.0f);

    // Both embedded curves work on luminance, which reads the table the same way at both depths.
    for (ImageModToneCurve* curve : {&levelsCurve, &midtoneCurve}) {
        ImageModVariable* method = curve->variableAt(ImageModToneCurve::varMethod);
        if (ImageModVariableDataChoice* choice = method ? method->asChoice() : nullptr)
            choice->index = ImageModToneCurve::methodLuminance;
    }
    setCurvePoints(levelsCurve, {{0.0f, 0.0f}, {1.0f, 1.0f}});
    setCurvePoints(midtoneCurve, {{0.0f, 0.0f}, {0.25f, 0.25f}, {0.5f, 0.5f}, {0.75f, 0.75f}, {1.0f, 1.0f}});
}

template <typename Sample>
void ImageModAutoEnhance::correct(FlexImageT<Sample>* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    const float a = floatValue(varAmount);
    const int32_t method = choiceIndex(varMethod);
    if (!std::isfinite(a) || (a == 0.0f && method == methodColor))
        return;
    if (!isMeasured) {
        const FlexImageFloat* proxy = context && context->referenceFrame ? context->referenceFrame->proxy : nullptr;
        if (proxy && !proxy->isEmpty())
            setMeasurement(measure(*proxy));
        else
            setMeasurement(measure(*image));
    }

    // Levels: black point to 0, white point to 1, straight between, with the ends held flat.
    const float low = measured.lowPoint;
    const float high = measured.highPoint;
    if (low > 0.0f || high < 1.0f) {
        std::vector<ToneCurvePoint> points;
        points.reserve(6);
        points.push_back({0.0f, 0.0f});
        if (low > 0.0f)
            points.push_back({low, 0.0f});
        const float span = high - low;
        points.push_back({low + span / 3.0f, 1.0f / 3.0f});
        points.push_back({low + span * 2.0f / 3.0f, 2.0f / 3.0f});
        if (high < 1.0f)
            points.push_back({high, 1.0f});
        points.push_back({1.0f, 1.0f});
        setCurvePoints(levelsCurve, points);
    } else {
        setCurvePoints(levelsCurve, {{0.0f, 0.0f}, {1.0f, 1.0f}});
    }
    levelsCurve.variables[ImageModToneCurve::varAmount]->setFloatValue(a);
    levelsCurve.apply(image, context);

    // Midtones: the middle point moves up and left to brighten (e > 0), down and right to darken.
    const float e = midtoneCorrection(measured);
    if (e != 0.0f) {
        const float shift = 0.12f * std::fabs(e);
        const ToneCurvePoint middle = e > 0.0f ? ToneCurvePoint{0.5f - shift, 0.5f + shift}
                                               : ToneCurvePoint{0.5f + shift, 0.5f - shift};
        setCurvePoints(midtoneCurve, {{0.0f, 0.0f},
                                      {0.25f, 0.25f + 0.084f * e},
                                      middle,
                                      {0.75f, std::min(1.0f, 0.75f + 0.084f * e)},
                                      {1.0f, 1.0f}});
    } else {
        setCurvePoints(midtoneCurve, {{0.0f, 0.0f}, {1.0f, 1.0f}});
    }
    midtoneCurve.variables[ImageModToneCurve::varAmount]->setFloatValue(a);
    midtoneCurve.apply(image, context);

    if (method == methodBW) {
        greyStage.variables[0]->setFloatValue(0.0f);
        greyStage.apply(image, context);
    }

    const float q = contrastStrength(measured);
    const bool bw = method == methodBW;
    const float amount = bw ? std::min(1.9f, 3.0f * q * a + 1.0f) : q * a + 1.0f;
    contrastStage.variables[0]->setFloatValue(amount);
    contrastStage.variables[1]->setFloatValue(bw ? 127.5f : 90.0f);
    contrastStage.apply(image, context);
}

void ImageModAutoEnhance::analyze(FlexImage8* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    setMeasurement(measure(*image));
    correct(image, context);
}

void ImageModAutoEnhance::analyze(FlexImageFloat* image, const ImageModApplyContext* context)
{
    if (!image || image->isEmpty())
        return;
    setMeasurement(measure(*image));
    correct(image, context);
}

void ImageModAutoEnhance::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    correct(image, context);
}

void ImageModAutoEnhance::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    correct(image, context);
}
