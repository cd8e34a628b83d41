#include "mods/ImageModLUT3D.h"

#include "core/ImageModSelector.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ParallelFor.h"

#include <vector>

namespace {

// Where a channel value falls on one axis of a table: the lower lattice index, held to 0..N-2 so a
// value on the last lattice point reads the last cell with fraction 1, and the fraction. Values
// outside the domain are held to its ends (NaN to the low end). The value is scaled by multiplying
// before dividing, so an input on a lattice point lands on its index exactly.
struct LutAxis {
    float low;   // domain minimum on the 0..255 scale
    float steps; // N - 1
    float span;  // domain width on the 0..255 scale
};

static inline void lutCoordinate(float v, const LutAxis& axis, int32_t maxIndex, int32_t& index, float& fraction)
{
    float x = (v - axis.low) * axis.steps / axis.span;
    x = x > 0.0f ? x : 0.0f;
    x = x < axis.steps ? x : axis.steps;
    int32_t i = int32_t(x);
    i = i < maxIndex ? i : maxIndex;
    index = i;
    fraction = x - float(i);
}

struct Lut3DView {
    const float* const* slices;
    int32_t n;
    LutAxis axis[3];
};

struct Lut1DView {
    const float* curve;
    int32_t n;
    LutAxis axis[3];
};

static inline void lutSample(const Lut3DView& v, float r, float g, float b, float out[3])
{
    int32_t i, j, k;
    float fx, fy, fz;
    const int32_t maxIndex = v.n - 2;
    lutCoordinate(r, v.axis[0], maxIndex, i, fx);
    lutCoordinate(g, v.axis[1], maxIndex, j, fy);
    lutCoordinate(b, v.axis[2], maxIndex, k, fz);
    const int32_t rowStride = v.n * 3;
    const int32_t offset = j * rowStride + i * 3;
    const float* p0 = v.slices[k] + offset;
    const float* p1 = v.slices[k + 1] + offset;
    const float gx = 1.0f - fx;
    const float gy = 1.0f - fy;
    const float gz = 1.0f - fz;
    for (int c = 0; c < 3; ++c) {
        const float lo = (p0[c] * gx + p0[c + 3] * fx) * gy + (p0[c + rowStride] * gx + p0[c + rowStride + 3] * fx) * fy;
        const float hi = (p1[c] * gx + p1[c + 3] * fx) * gy + (p1[c + rowStride] * gx + p1[c + rowStride + 3] * fx) * fy;
        out[c] = lo * gz + hi * fz;
    }
}

static inline void lutSample(const Lut1DView& v, float r, float g, float b, float out[3])
{
    const float in[3] = {r, g, b};
    const int32_t maxIndex = v.n - 2;
    for (int c = 0; c < 3; ++c) {
        int32_t i;
        float f;
        lutCoordinate(in[c], v.axis[c], maxIndex, i, f);
        out[c] = v.curve[i * 3 + c] * (1.0f - f) + v.curve[(i + 1) * 3 + c] * f;
    }
}

// c + (lut - c) * a; at full strength the table value itself, so lattice points stay exact.
static inline float lutMix(float c, float lut, float a)
{
    return a == 1.0f ? lut : c + (lut - c) * a;
}

template <typename Sample>
static inline Sample lutStore(float v)
{
    if constexpr (sizeof(Sample) == 1) {
        v = v > 255.0f ? 255.0f : v;
        v = v < 0.0f ? 0.0f : v;
        return Sample(int32_t(v));
    } else {
        return v;
    }
}

template <typename Sample, typename View>
static inline void lutPixel(Sample* p, const View& view, float a)
{
    const float r = float(p[0]);
    const float g = float(p[1]);
    const float b = float(p[2]);
    float out[3];
    lutSample(view, r, g, b, out);
    p[0] = lutStore<Sample>(lutMix(r, out[0], a));
    p[1] = lutStore<Sample>(lutMix(g, out[1], a));
    p[2] = lutStore<Sample>(lutMix(b, out[2], a));
}

template <typename Sample, typename View>
void lutRows(FlexImageT<Sample>* image, const View& view, float amount,
             const ImageModApplyContext* context)
{
    const ImageModSelector* selector = context ? context->selector : nullptr;
    const ReferenceFrame* frame = context ? context->referenceFrame : nullptr;
    const int32_t width = image->width;
    const int32_t channels = image->channels;
    parallelFor(image->height, [=](int32_t y) {
        Sample* p = image->row(y);
        if (selector) {
            for (int32_t x = 0; x < width; ++x, p += channels) {
                const float a = maskRuleB(amount, selector->maskValue(image, x, y, frame));
                if (a != 0.0f)
                    lutPixel(p, view, a);
            }
        } else {
            for (int32_t x = 0; x < width; ++x, p += channels)
                lutPixel(p, view, amount);
        }
    });
}

void fillAxes(const ImageModLUT3DTable& t, LutAxis axis[3])
{
    for (int c = 0; c < 3; ++c) {
        axis[c].low = t.domainMin[c] * 255.0f;
        axis[c].steps = float(t.size - 1);
        axis[c].span = (t.domainMax[c] - t.domainMin[c]) * 255.0f;
    }
}

template <typename Sample>
void applyTable(const ImageModLUT3DTable* t, FlexImageT<Sample>* image, float amount,
                const ImageModApplyContext* context)
{
    if (!t || t->isEmpty() || !image || image->isEmpty() || image->channels < 3 || amount == 0.0f)
        return;
    if (t->isOneDimensional()) {
        if (t->curve.size() != size_t(t->size) * 3)
            return;
        Lut1DView view{t->curve.data(), t->size, {}};
        fillAxes(*t, view.axis);
        lutRows(image, view, amount, context);
        return;
    }
    if (t->slices.size() != size_t(t->size))
        return;
    std::vector<const float*> slices(t->slices.size());
    for (size_t k = 0; k < slices.size(); ++k)
        slices[k] = t->slices[k]->data;
    Lut3DView view{slices.data(), t->size, {}};
    fillAxes(*t, view.axis);
    lutRows(image, view, amount, context);
}

} // namespace

ImageModLUT3D::ImageModLUT3D() : ImageMod("LUT", "3D LUT")
{
    toolTip = "Apply a color look-up table from a .cube file. The Amount slider blends it with the original.";
    addFloat("Amount", 100.0f, 0.0f, 100.0f);
    addFile("File", "", "*.cube");
}

void ImageModLUT3D::releaseResources()
{
    lut.reset();
    lutPath.clear();
}

void ImageModLUT3D::loadResources()
{
    const std::string path = filePath();
    if (!lut || path != lutPath)
        loadFrom(path);
}

void ImageModLUT3D::copyFrom(const ImageMod& other)
{
    if (&other == this)
        return;
    ImageMod::copyFrom(other);
    if (const auto* o = dynamic_cast<const ImageModLUT3D*>(&other)) {
        lut = o->lut;
        lutPath = o->lutPath;
        message = o->message;
    }
}

void ImageModLUT3D::variableChanged(int32_t index)
{
    // Animators call this every frame for every variable: only a new path reads the disk.
    if (index == fileIndex && filePath() != lutPath)
        loadFrom(filePath());
}

void ImageModLUT3D::setTable(std::shared_ptr<const ImageModLUT3DTable> t, std::string fromPath)
{
    lut = std::move(t);
    lutPath = std::move(fromPath);
    message.clear();
}

std::string ImageModLUT3D::filePath() const
{
    const ImageModVariableDataFile* file = fileAt(fileIndex);
    if (!file || (file->path.size() == 1 && file->path[0] == '\0'))
        return {};
    return file->path;
}

void ImageModLUT3D::loadFrom(const std::string& path)
{
    lut.reset();
    lutPath = path;
    message.clear();
    if (path.empty())
        return;
    auto table = std::make_shared<ImageModLUT3DTable>();
    if (readCubeFile(path, *table, message))
        lut = std::move(table);
}

void ImageModLUT3D::apply(FlexImage8* image, const ImageModApplyContext* context)
{
    applyTable(lut.get(), image, floatValue(amountIndex) * 0.01f, context);
}

void ImageModLUT3D::apply(FlexImageFloat* image, const ImageModApplyContext* context)
{
    applyTable(lut.get(), image, floatValue(amountIndex) * 0.01f, context);
}
