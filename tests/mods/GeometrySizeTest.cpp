#include "mods/GeometryCalculation.h"
#include "mods/ImageModAspectRatio.h"
#include "mods/ImageModConstrainSize.h"
#include "mods/ImageModCrop.h"
#include "mods/ImageModExactSize.h"

#include "core/ImageModVariableDataChoice.h"

#include <gtest/gtest.h>

namespace {

void setFloat(ImageMod& mod, const std::string& name, float v)
{
    ImageModVariable* var = mod.variableNamed(name);
    ASSERT_NE(var, nullptr) << name;
    var->setFloatValue(v);
}

void setChoice(ImageMod& mod, const std::string& name, const std::string& label)
{
    ImageModVariable* var = mod.variableNamed(name);
    ASSERT_NE(var, nullptr);
    ImageModVariableDataChoice* c = var->asChoice();
    ASSERT_NE(c, nullptr);
    const int32_t i = c->indexOfLabel(label);
    ASSERT_GE(i, 0) << label;
    c->index = i;
}

// Width and height as one value, so a size compares in one line.
template <typename Sized>
std::pair<int32_t, int32_t> wh(const Sized& s)
{
    return { s.width, s.height };
}
inline std::pair<int32_t, int32_t> wh(int32_t w, int32_t h)
{
    return { w, h };
}

GeometryResult geometryOf(int32_t w, int32_t h, ImageMod& mod, int32_t maxW = 0, int32_t maxH = 0)
{
    return computeGeometry(w, h, std::vector<ImageMod*>{&mod}, maxW, maxH);
}

} // namespace

TEST(ConstrainSize, LimitsAndLongestSide)
{
    // No limit keeps the size and reports no change; limits also enlarge; with only a width limit
    // the height of the picture still binds; a tiny limit never gives a side below 1; the longest
    // side follows the orientation.
    const struct {
        float maxW, maxH, longest;
        int32_t w, h, outW, outH;
    } cases[] = {
        { 0, 0, 0, 3000, 2000, 3000, 2000 },          { 4000, 4000, 0, 3000, 2000, 4000, 2667 },
        { 4000, 0, 0, 3000, 2000, 3000, 2000 },       { 3, 3, 0, 3000, 10, 3, 1 },
        { 0, 0, 1000, 3000, 2000, 1000, 667 },        { 0, 0, 1000, 2000, 3000, 667, 1000 },
    };
    for (const auto& c : cases) {
        ImageModConstrainSize size;
        setFloat(size, "Max Width", c.maxW);
        setFloat(size, "Max Height", c.maxH);
        setFloat(size, "Longest Side", c.longest);
        const GeometryResult g = geometryOf(c.w, c.h, size);
        EXPECT_EQ(wh(g), wh(c.outW, c.outH)) << c.maxW << " " << c.maxH << " " << c.longest << " on " << c.w;
        EXPECT_EQ(g.changed, wh(g) != wh(c.w, c.h));
    }
}

TEST(ConstrainSize, LongestSideAndMaximaExcludeEachOther)
{
    ImageModConstrainSize size;
    setFloat(size, "Max Width", 800.0f);
    setFloat(size, "Max Height", 600.0f);
    setFloat(size, "Longest Side", 1000.0f);
    size.variableChanged(2);
    EXPECT_EQ(size.floatValue(0), 0.0f);
    EXPECT_EQ(size.floatValue(1), 0.0f);
    EXPECT_EQ(size.floatValue(2), 1000.0f);

    setFloat(size, "Max Height", 500.0f);
    size.variableChanged(1);
    EXPECT_EQ(size.floatValue(2), 0.0f);
    EXPECT_EQ(size.floatValue(1), 500.0f);

    // Setting a maximum to 0 leaves the longest side alone.
    setFloat(size, "Longest Side", 900.0f);
    size.variableChanged(2);
    setFloat(size, "Max Width", 0.0f);
    size.variableChanged(0);
    EXPECT_EQ(size.floatValue(2), 900.0f);
}

TEST(ConstrainSize, VersionOneHidesLongestSide)
{
    ImageModConstrainSize size;
    EXPECT_EQ(size.version, 2);
    EXPECT_TRUE(size.variableAt(2)->visible);
    size.setVersion(1);
    EXPECT_FALSE(size.variableAt(2)->visible);
    size.setVersion(2);
    EXPECT_TRUE(size.variableAt(2)->visible);
}

TEST(AspectRatio, ValuesByName)
{
    EXPECT_FLOAT_EQ(ImageModAspectRatio::aspectForLabel("Square", 0.0f), 1.0f);
    EXPECT_FLOAT_EQ(ImageModAspectRatio::aspectForLabel("16:9", 0.0f), 16.0f / 9.0f);
    EXPECT_FLOAT_EQ(ImageModAspectRatio::aspectForLabel("2.39:1", 0.0f), 2.39f);
    EXPECT_FLOAT_EQ(ImageModAspectRatio::aspectForLabel("Custom", 2.5f), 2.5f);
    EXPECT_EQ(ImageModAspectRatio::aspectForLabel("Custom", -1.0f), 0.0f);
    EXPECT_EQ(ImageModAspectRatio::aspectForLabel("None", 3.0f), 0.0f);
    EXPECT_EQ(ImageModAspectRatio::aspectForLabel("square", 3.0f), 0.0f);
}

TEST(AspectRatio, LandscapeRatioTurnsForAPortrait)
{
    ImageModAspectRatio aspect;
    setChoice(aspect, "Aspect", "16:9");
    GeometryResult g = geometryOf(2000, 3000, aspect);
    EXPECT_EQ(wh(g), wh(1687, 3000));
    EXPECT_LT(g.width, g.height);
    g = geometryOf(3000, 2000, aspect);
    EXPECT_EQ(wh(g), wh(3000, 1687));

    setChoice(aspect, "Aspect", "Square");
    g = geometryOf(2000, 3000, aspect);
    EXPECT_EQ(wh(g), wh(2000, 2000));

    // None only passes the size through, and the picture never grows.
    setChoice(aspect, "Aspect", "None");
    g = geometryOf(2000, 3000, aspect);
    EXPECT_EQ(wh(g), wh(2000, 3000));
    EXPECT_FALSE(g.changed);
}

TEST(AspectRatio, CustomShowsItsValueAndAsksForARefresh)
{
    ImageModAspectRatio aspect;
    EXPECT_FALSE(aspect.variableAt(1)->visible);
    EXPECT_FALSE(aspect.consumeRefreshRequest());
    setChoice(aspect, "Aspect", "Custom");
    aspect.variableChanged(0);
    EXPECT_TRUE(aspect.variableAt(1)->visible);
    EXPECT_TRUE(aspect.consumeRefreshRequest());
    EXPECT_FALSE(aspect.consumeRefreshRequest());

    setFloat(aspect, "Custom Aspect", 2.0f);
    GeometryResult g = geometryOf(3000, 2000, aspect);
    EXPECT_EQ(wh(g), wh(3000, 1500));

    setChoice(aspect, "Aspect", "4:3");
    aspect.variableChanged(0);
    EXPECT_FALSE(aspect.variableAt(1)->visible);
}

TEST(ExactSize, ZeroWidthGivesOnePixelAndValuesRoundToPixels)
{
    ImageModExactSize exact;
    setFloat(exact, "Width", 0.0f);
    setFloat(exact, "Height", 480.0f);
    GeometryResult g = geometryOf(3000, 2000, exact);
    EXPECT_EQ(wh(g), wh(1, 480));
    EXPECT_TRUE(g.changed);

    setFloat(exact, "Width", 639.6f);
    exact.variableChanged(0);
    EXPECT_EQ(exact.floatValue(0), 640.0f);
    EXPECT_FLOAT_EQ(exact.outputWidth(10.0f, 10.0f), 640.0f);
}

TEST(SizeTiles, CropToolFlagsGroupAndTag)
{
    ImageModAspectRatio aspect;
    ImageModConstrainSize constrain;
    ImageModExactSize exact;
    EXPECT_TRUE(aspect.locksCropAspect(1.5f));
    EXPECT_TRUE(aspect.cropAspectFollowsOrientation());
    EXPECT_FALSE(constrain.locksCropAspect(1.5f));
    EXPECT_TRUE(constrain.cropAspectFollowsOrientation());
    EXPECT_TRUE(exact.locksCropAspect(1.5f));
    EXPECT_FALSE(exact.cropAspectFollowsOrientation());
    for (ImageModSize2* m : std::vector<ImageModSize2*>{&aspect, &constrain, &exact}) {
        EXPECT_EQ(m->group(), 2);
        EXPECT_TRUE(modHasTag(*m, kTagSize));
        EXPECT_FALSE(m->isPlainAdjustment());
    }
    EXPECT_FALSE(aspect.passIsPure(0));
}

TEST(Crop, RectangleWidensToTheAspectAroundTheUsersCut)
{
    ImageModCrop crop;
    EXPECT_EQ(crop.group(), 0);
    EXPECT_TRUE(modHasTag(crop, kTagCrop));
    setFloat(crop, "cp0", 0.1f);
    setFloat(crop, "cp1", 0.2f);
    CropFractions f = crop.cropRect(3000.0f, 2000.0f);
    EXPECT_FLOAT_EQ(f.left, 0.1f);
    EXPECT_FLOAT_EQ(f.right, 0.2f);
    EXPECT_EQ(f.top, 0.0f);

    // Square on 2100 x 2000: the wide rectangle loses 50 pixels on each side.
    setChoice(crop.aspect, "Aspect", "Square");
    f = crop.cropRect(3000.0f, 2000.0f);
    EXPECT_NEAR(f.left, 0.1f + 50.0f / 3000.0f, 1e-6);
    EXPECT_NEAR(f.right, 0.2f + 50.0f / 3000.0f, 1e-6);
    EXPECT_NEAR((1.0f - f.left - f.right) * 3000.0f, 2000.0f, 1e-2);

    // A landscape ratio on a tall rectangle turns: 16:9 on a portrait cut keeps 9:16.
    setFloat(crop, "cp0", 0.0f);
    setFloat(crop, "cp1", 0.0f);
    setChoice(crop.aspect, "Aspect", "16:9");
    f = crop.cropRect(2000.0f, 3000.0f);
    const float keptW = (1.0f - f.left - f.right) * 2000.0f;
    const float keptH = (1.0f - f.top - f.bottom) * 3000.0f;
    EXPECT_NEAR(keptW / keptH, 9.0f / 16.0f, 1e-4);
    EXPECT_NEAR(f.left, f.right, 1e-6);
    EXPECT_EQ(f.top, 0.0f);
}

TEST(Crop, CloneKeepsTheAspectChoice)
{
    ImageModCrop crop;
    setChoice(crop.aspect, "Aspect", "4:3");
    auto clone = cloneMod(crop);
    auto* c = dynamic_cast<ImageModCrop*>(clone.get());
    ASSERT_NE(c, nullptr);
    ASSERT_NE(c->aspectChoice, nullptr);
    EXPECT_EQ(c->aspectChoice->currentLabel(), "4:3");
    EXPECT_EQ(c->aspectChoice, c->aspect.variableAt(0)->asChoice());
    EXPECT_FLOAT_EQ(c->aspect.aspectValue(), 4.0f / 3.0f);
}

TEST(Geometry, CropSizeAndStraightenFlag)
{
    ImageModCrop crop;
    setFloat(crop, "cp0", 0.25f);
    setFloat(crop, "cp3", 0.5f);
    GeometryResult g = geometryOf(4000, 2000, crop);
    EXPECT_EQ(wh(g), wh(3000, 1000));
    EXPECT_FALSE(g.changed);
    setFloat(crop, "Straighten", 3.0f);
    EXPECT_TRUE(geometryOf(4000, 2000, crop).changed);

    // Cuts that overlap give a size that isn't positive; it is passed on.
    setFloat(crop, "cp2", 0.7f);
    g = geometryOf(4000, 2000, crop);
    EXPECT_LE(g.height, 0);
}

TEST(Geometry, CropThenSizeThenScreenBound)
{
    ImageModCrop crop;
    setFloat(crop, "cp0", 0.5f);
    ImageModConstrainSize size;
    setFloat(size, "Longest Side", 1000.0f);
    std::vector<ImageMod*> list{&size, &crop};
    GeometryResult g = computeGeometry(4000, 3000, list);
    EXPECT_EQ(wh(g), wh(667, 1000));

    // A bound of 500 wide reduces further and reports how much.
    g = computeGeometry(4000, 3000, list, 500, 0);
    EXPECT_EQ(wh(g), wh(500, 749));
    EXPECT_NEAR(g.scale, 667.0 / 500.0, 1e-6);
    g = computeGeometry(4000, 3000, list, 0, 500);
    EXPECT_EQ(wh(g), wh(333, 500));
    EXPECT_FLOAT_EQ(g.scale, 2.0f);

    // Disabled tiles don't count.
    crop.enabled = false;
    size.enabled = false;
    g = computeGeometry(4000, 3000, list);
    EXPECT_EQ(wh(g), wh(4000, 3000));
}
