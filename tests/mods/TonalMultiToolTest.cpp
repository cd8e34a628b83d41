#include "TonalTestHelpers.h"

#include "mods/ImageModContrast.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModMultiTool.h"

namespace {
std::unique_ptr<ImageModMultiTool> multiTool(float exposure, float contrast, float saturation, int32_t version = 3)
{
    auto mod = std::make_unique<ImageModMultiTool>();
    mod->variableAt(0)->setFloatValue(exposure);
    mod->variableAt(1)->setFloatValue(contrast);
    mod->variableAt(2)->setFloatValue(saturation);
    mod->setVersion(version);
    return mod;
}
} // namespace

TEST(TonalMultiTool, ExposureStageDependsOnVersion)
{
    // Exposure 25 is 0.5: the current stage also desaturates, the old gamma stage does not.
    auto current = multiTool(25, 50, 50);
    expectPixelNear(tonalApply<FlexImageFloat>(*current, {255, 127.5f, 0}), {220.694185f, 75.829567f, 27.516102f});
    auto old = multiTool(25, 50, 50, 1);
    expectPixelNear(tonalApply<FlexImageFloat>(*old, {255, 127.5f, 0}), {254.9000098f, 63.75f, 0});
    // 8 bits inherit the integer gamma either way.
    expectPixelEq(tonalApply<FlexImage8>(*current, {255, 128, 1}), {0, 0, 0});
}

TEST(TonalMultiTool, ContrastAndSaturationStages)
{
    // Contrast 75 is 1.5 around the fixed center 90, whichever version.
    for (int32_t version : {2, 3}) {
        auto mod = multiTool(50, 75, 50, version);
        expectPixelNear(tonalApply<FlexImageFloat>(*mod, {200, 45, 90}), {236.666667f, 22.5f, 90});
        expectPixelEq(tonalApply<FlexImage8>(*mod, {200, 45, 90}), {236, 22, 90});
    }
    // Saturation 0 greys on the linear luminance: the stage is saturation version 1.
    auto grey = multiTool(50, 50, 0);
    expectPixelNear(tonalApply<FlexImageFloat>(*grey, {255, 0, 0}), {76.245f, 76.245f, 76.245f});
    expectPixelEq(tonalApply<FlexImage8>(*grey, {255, 0, 0}), {76, 76, 76});
}

TEST(TonalMultiTool, StagesRunInOrderWithTheMask)
{
    // Equal to exposure then contrast run by hand, with the same mask.
    auto mod = multiTool(70, 80, 50);
    CurveTestMask half(0.5f);
    ImageModApplyContext context = maskContext(&half);
    auto a = curveTestCard<FlexImageFloat>();
    auto b = curveTestCopy(*a);
    mod->apply(a.get(), &context);
    ImageModExposure exposure(70 * 0.02f);
    ImageModContrast contrast(2, 80 * 0.02f);
    exposure.apply(b.get(), &context);
    contrast.apply(b.get(), &context);
    EXPECT_TRUE(curveTestSame(*a, *b));
    CurveTestMask none(0.0f);
    auto all = multiTool(80, 65, 70);
    expectCardUntouched(*all, &none);
    // Version 1 exposure is the old gamma tile, which acts regardless of the mask.
    auto old = multiTool(75, 50, 50, 1);
    expectPixelNear(tonalApply<FlexImageFloat>(*old, {0, 127.5f, 255}, &none), {0.0999902f, 191.25f, 255});
}
