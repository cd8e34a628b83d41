#include "core/ImageModCompound.h"
#include "core/ImageModVariableDataColor.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModLightleak.h"
#include "mods/RemixTiles.h"
#include "mods/styles/CameraStyles.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

float variationOf(const ImageMod& m)
{
    return m.variationVariables().at(0)->floatValue();
}

} // namespace

TEST(RemixTiles, TenUpThenTenDownReturnsEveryValueWithOneUndoPerStep)
{
    ImageModSaloon saloon;
    ImageModMono mono;
    ImageModLightleak leak;
    ImageModContrast contrast;
    saloon.variables[1]->setFloatValue(-5303.990234f);
    mono.variables[1]->setFloatValue(4999.5f);
    leak.variationVariables()[0]->setFloatValue(12.25f);
    const std::vector<ImageMod*> list = {&saloon, &contrast, &mono, &leak};
    int32_t undos = 0;
    for (int32_t i = 0; i < 10; ++i)
        EXPECT_TRUE(remixTiles(list, 10.0f, [&] { ++undos; }));
    EXPECT_NEAR(variationOf(saloon), -5203.990234f, 1e-2f);
    EXPECT_NEAR(variationOf(mono), 5099.5f, 1e-3f) << "remix walks past the slider's range";
    EXPECT_NEAR(variationOf(leak), 112.25f, 1e-4f);
    for (int32_t i = 0; i < 10; ++i)
        remixTiles(list, -10.0f, [&] { ++undos; });
    EXPECT_EQ(undos, 20);
    EXPECT_NEAR(variationOf(saloon), -5303.990234f, 1e-2f);
    EXPECT_NEAR(variationOf(mono), 4999.5f, 1e-3f);
    EXPECT_NEAR(variationOf(leak), 12.25f, 1e-4f);
    EXPECT_FLOAT_EQ(contrast.floatValue(0), 1.0f);
}

TEST(RemixTiles, TilesWithoutVariationChangeNothingAndPushNoUndo)
{
    ImageModContrast a;
    ImageModContrast b;
    int32_t undos = 0;
    EXPECT_FALSE(remixTiles({&a, nullptr, &b}, 10.0f, [&] { ++undos; }));
    EXPECT_FALSE(remixTiles({}, -10.0f, [&] { ++undos; }));
    EXPECT_EQ(undos, 0);
    EXPECT_TRUE(a.isEqual(ImageModContrast()));
}

TEST(RemixTiles, UndoIsPushedBeforeAnyValueMovesAndWalkRunsLastToFirst)
{
    ImageModWedding first;
    ImageModHipster last;
    std::vector<float> seen;
    remixTiles({&first, &last}, 10.0f, [&] {
        seen.push_back(variationOf(first));
        seen.push_back(variationOf(last));
    });
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0], 0.0f);
    EXPECT_EQ(seen[1], 0.0f);
    EXPECT_EQ(variationOf(first), 10.0f);
    EXPECT_EQ(variationOf(last), 10.0f);
    // A missing hook is allowed.
    EXPECT_TRUE(remixTiles({&first}, -10.0f, nullptr));
    EXPECT_EQ(variationOf(first), 0.0f);
}

TEST(RemixTiles, GroupAndChildInOneListMoveOnceAndEmptyValuesCountAsZero)
{
    auto group = std::make_unique<ImageModCompound>();
    group->addChild(std::make_unique<ImageModMatte>());
    group->addChild(std::make_unique<ImageModPlastic>());
    ImageMod* matte = group->children[0].get();
    ImageMod* plastic = group->children[1].get();
    matte->variables[1]->setFloatValue(3.0f);
    // A variable whose value was replaced by another kind counts as 0 and becomes a float.
    plastic->variables[1]->data = std::make_unique<ImageModVariableDataColor>(1.0f, 2.0f, 3.0f);
    remixTiles({group.get(), matte, plastic}, 10.0f, {});
    EXPECT_EQ(matte->floatValue(1), 13.0f);
    ASSERT_NE(plastic->variables[1]->asFloat(), nullptr);
    EXPECT_EQ(plastic->floatValue(1), 10.0f);
}
