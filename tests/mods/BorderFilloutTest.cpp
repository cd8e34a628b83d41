#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "document/core/GeometryResampling.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModBorderFillout.h"
#include "mods/ImageModSize2.h"

#include <gtest/gtest.h>

namespace {

void setAspect(ImageModBorderFillout& b, const std::string& label, float custom = 1.0f)
{
    auto* choice = b.variableAt(ImageModBorderFillout::aspectIndex)->asChoice();
    for (int32_t i = 0; i < choice->labelCount(); ++i) {
        choice->index = i;
        if (choice->currentLabel() == label)
            break;
    }
    b.variableAt(ImageModBorderFillout::customIndex)->setFloatValue(custom);
    b.variableChanged(ImageModBorderFillout::aspectIndex);
}

} // namespace

TEST(BorderFillout, IdentityAndAspectList)
{
    ImageModBorderFillout b;
    EXPECT_EQ(b.kind(), 1);
    EXPECT_EQ(b.group(), 2);
    EXPECT_TRUE(modHasTag(b, kTagBorder));
    EXPECT_EQ(b.borderMod(), &b);
    EXPECT_FALSE(b.isPlainAdjustment());
    EXPECT_EQ(b.variableAt(1)->asChoice()->labelCount(), 14);
    setAspect(b, "Custom", 2.0f);
    EXPECT_TRUE(b.variableAt(ImageModBorderFillout::customIndex)->visible);
    EXPECT_TRUE(b.consumeRefreshRequest());
    EXPECT_FALSE(b.consumeRefreshRequest());
    setAspect(b, "Square");
    EXPECT_FALSE(b.variableAt(ImageModBorderFillout::customIndex)->visible);
}

TEST(BorderFillout, BarsReachTheAspectWithoutCutting)
{
    // 16:9 on a portrait turns to 9:16; a picture already wider than 5:4 gets top and bottom bars.
    const struct {
        const char* aspect;
        int32_t w, h, outW, outH;
    } cases[] = {
        { "None", 3000, 2000, 3000, 2000 }, { "Square", 3000, 2000, 3000, 3000 },
        { "Square", 2000, 3000, 3000, 3000 }, { "16:9", 3000, 2000, 3555, 2000 },
        { "16:9", 2000, 3000, 2000, 3555 }, { "5:4", 3000, 2000, 3000, 2400 },
    };
    ImageModBorderFillout b;
    std::vector<ImageMod*> list { &b };
    for (const auto& c : cases) {
        setAspect(b, c.aspect);
        const GeometryResult g = computeGeometry(c.w, c.h, list);
        EXPECT_EQ(g.width, c.outW) << c.aspect << " " << c.w << " x " << c.h;
        EXPECT_EQ(g.height, c.outH) << c.aspect << " " << c.w << " x " << c.h;
    }
}

TEST(BorderFillout, PhotoCentredBetweenBars)
{
    FlexImageFloat src;
    src.resize(60, 40, 3);
    for (int64_t i = 0; i < src.sampleCount(); ++i)
        src.data[i] = float(i % 251);
    ImageModBorderFillout b;
    setAspect(b, "Square");
    auto* c = b.variableAt(ImageModBorderFillout::colorIndex)->asColor();
    c->red = c->green = c->blue = 7.0f;
    std::vector<ImageMod*> list { &b };
    FlexImageFloat dst;
    ASSERT_TRUE(geometryResample(src, dst, list, 0, 0, true));
    ASSERT_EQ(dst.width, 60);
    ASSERT_EQ(dst.height, 60);
    int64_t mismatches = 0;
    for (int32_t y = 0; y < 60; ++y)
        for (int32_t x = 0; x < 60 * 3; ++x) {
            const float expected = (y < 10 || y >= 50) ? 7.0f : src.row(y - 10)[x];
            mismatches += dst.row(y)[x] != expected;
        }
    EXPECT_EQ(mismatches, 0);
}
