#include "mods/ImageModLabCurves.h"

#include "core/ImageModVariableData.h"
#include "mods/CurveSteps.h"

ImageModLabCurves::ImageModLabCurves() : ImageMod("Lab Curves", "L,a,b Curves")
{
    toolTip = "Adjust separate curves for lightness and the a and b color components.";
    addCurve("L", "0 0 1 1");
    addCurve("a", "0 0 1 1");
    addCurve("b", "0 0 1 1");
    addFloat("Amount", 1.0f, 0.0f, 1.0f)->visible = false;
    variables.back()->data->setDisplayScale(0.0f, 100.0f);
}

static inline double labForward(double t)
{
    return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 0.13793103;
}

static inline double labBackward(double t)
{
    const double t3 = t * t * t;
    return t3 > 0.008856 ? t3 : t * 0.12841916 - 0.017712988;
}

static inline double labClamp255(double v)
{
    return v < 0.0 ? 0.0 : (v > 255.0 ? 255.0 : v);
}

void labCurvesToLab(float r, float g, float b, float& L, float& a, float& bb)
{
    const double rd = double(r) / 255.0;
    const double gd = double(g) / 255.0;
    const double bd = double(b) / 255.0;
    const float x = float((0.412453 * rd + 0.35758 * gd + 0.180423 * bd) * 1.0521265);
    const float y = float(0.212671 * rd + 0.71516 * gd + 0.072169 * bd);
    const double z = (0.019334 * rd + 0.119193 * gd + 0.950227 * bd) * 0.9184811261313391;
    const double fx = labForward(x);
    const double fy = labForward(y);
    const double fz = labForward(z);
    L = float(116.0 * fy - 16.0);
    a = float(500.0 * (fx - fy));
    bb = float(200.0 * (fy - fz));
}

void labCurvesToRgb(float L, float a, float bb, float& r, float& g, float& b)
{
    const double fy = double(L) * 0.00862069 + 0.13793103;
    const double fx = double(a) * 0.002 + fy;
    const double fz = double(bb) * -0.005 + fy;
    const double x = labBackward(fx) * 0.950456;
    const double y = labBackward(fy);
    const double z = labBackward(fz) * 1.088754;
    r = float(labClamp255((3.240479 * x - 1.53715 * y - 0.498535 * z) * 255.0));
    g = float(labClamp255((-0.969256 * x + 1.875992 * y + 0.041556 * z) * 255.0));
    b = float(labClamp255((0.055648 * x - 0.204043 * y + 1.057311 * z) * 255.0));
}

namespace {

template <typename Sample>
void applyLabCurves(const ImageModLabCurves& mod, FlexImageT<Sample>* image)
{
    if (!image || image->isEmpty() || image->channels < 3 || image->colorChannels < 3)
        return;
    if (mod.floatValue(ImageModLabCurves::varAmount) == 0.0f)
        return;
    const float* tables[3] = {nullptr, nullptr, nullptr};
    bool any = false;
    for (int32_t k = 0; k < 3; ++k) {
        const ToneCurve* c = mod.curveAt(ImageModLabCurves::varL + k);
        if (curveUsable(c) && !curveIsIdentity(*c)) {
            tables[k] = c->table();
            any = true;
        }
    }
    if (!any)
        return;
    // Pixels are independent, so rows in parallel give the same bits as one serial walk.
    curveRowJobs(image, nullptr, [=](Sample* p, float) {
        float L, a, b;
        labCurvesToLab(float(p[0]), float(p[1]), float(p[2]), L, a, b);
        if (tables[0])
            L = 100.0f * curveReadUnit(tables[0], L / 100.0f);
        if (tables[1])
            a = 128.0f * curveReadUnit(tables[1], a / 128.0f + 0.5f) - 64.0f;
        if (tables[2])
            b = 128.0f * curveReadUnit(tables[2], b / 128.0f + 0.5f) - 64.0f;
        float r, g, bl;
        labCurvesToRgb(L, a, b, r, g, bl);
        p[0] = curveStore<Sample>(r);
        p[1] = curveStore<Sample>(g);
        p[2] = curveStore<Sample>(bl);
    });
}

} // namespace

void ImageModLabCurves::apply(FlexImage8* image, const ImageModApplyContext*)
{
    applyLabCurves(*this, image);
}

void ImageModLabCurves::apply(FlexImageFloat* image, const ImageModApplyContext*)
{
    applyLabCurves(*this, image);
}
