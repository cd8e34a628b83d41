#include "TestMods.h"

#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(ImageMod, ConstructorDefaults)
{
    TestModPlain m;
    EXPECT_EQ(m.name, "Test Plain");
    EXPECT_EQ(m.displayName, "Test Plain");
    EXPECT_EQ(m.labelForTile(), "Test Plain");
    EXPECT_TRUE(m.enabled);
    EXPECT_FALSE(m.pinned);
    EXPECT_EQ(m.version, 1);
    EXPECT_FLOAT_EQ(m.frameTime(), 0.05f);
    EXPECT_EQ(m.kind(), 0);
    EXPECT_EQ(m.group(), 1);
    EXPECT_EQ(m.passCount(), 1);
    EXPECT_TRUE(m.passIsPure(0));
    EXPECT_FALSE(m.needsAnalysis());
    EXPECT_TRUE(m.isPlainAdjustment());
    EXPECT_EQ(m.borderMod(), nullptr);
    EXPECT_EQ(m.presetLink(), "");
    EXPECT_FALSE(m.hasAnimators());
    EXPECT_FALSE(m.consumeRefreshRequest());
    EXPECT_EQ(m.paddingNeeded(100, 100, 1.0f), 0);
    EXPECT_EQ(m.variables[1]->label(), "Blend Mode");
    EXPECT_EQ(m.variables[1]->name, "Mode");

    TestModEmpty e;
    EXPECT_EQ(e.displayName, "Shown");
}

TEST(ImageMod, EmptyVariableListGivesNull)
{
    TestModEmpty e;
    EXPECT_EQ(e.firstVariable(), nullptr);
    EXPECT_EQ(e.amountVariable(), nullptr);
    EXPECT_EQ(e.floatValue(0), 0.0f);
    EXPECT_EQ(e.choiceIndex(0), 0);
    EXPECT_EQ(e.curveAt(0), nullptr);
    EXPECT_EQ(e.variableAt(-1), nullptr);
}

TEST(ImageMod, ReadersByIndexAreKindSafe)
{
    TestModPlain m;
    EXPECT_EQ(m.floatValue(0), 1.0f);
    EXPECT_EQ(m.floatValue(1), 0.0f); // a choice reads as 0
    EXPECT_EQ(m.floatValue(7), 0.0f);
    EXPECT_EQ(m.colorAt(0), nullptr);
    ASSERT_NE(m.colorAt(2), nullptr);
    EXPECT_EQ(m.colorAt(2)->green, 20.0f);
    m.variables[0]->data.reset();
    EXPECT_EQ(m.floatValue(0), 0.0f);
    EXPECT_EQ(m.amountVariable(), m.variables[0].get());
}

TEST(ImageMod, EqualityRules)
{
    TestModPlain a, b;
    EXPECT_TRUE(a.isEqual(b));

    b.displayName = "Other label";
    b.attrNames.push_back("k");
    b.attrValues.push_back("v");
    b.toolTip = "tip";
    a.setLabel(a.variables[0].get(), "Strength");
    EXPECT_TRUE(a.isEqual(b));

    b.version = 2;
    EXPECT_FALSE(a.isEqual(b));
    b.version = 1;
    b.pinned = true;
    EXPECT_FALSE(a.isEqual(b));
    b.pinned = false;
    b.enabled = false;
    EXPECT_FALSE(a.isEqual(b));
    b.enabled = true;
    b.variables[1]->asChoice()->index = 2;
    EXPECT_FALSE(a.isEqual(b));
    b.variables[1]->asChoice()->index = 0;
    EXPECT_TRUE(a.isEqual(b));

    TestModPlain shorter(1);
    EXPECT_FALSE(a.isEqual(shorter));
    b.name = "Renamed";
    EXPECT_FALSE(a.isEqual(b));
}

TEST(ImageMod, CopyFromIsByIndexAndDeep)
{
    TestModPlain src;
    src.variables[0]->data->value = 1.75f;
    src.variables[1]->asChoice()->index = 2;
    src.enabled = false;
    src.pinned = true;
    src.version = 3;
    src.displayName = "Mine";
    src.toolTip = "tip";
    src.attrNames = {"a"};
    src.attrValues = {"b"};

    TestModPlain dst;
    dst.copyFrom(src);
    EXPECT_TRUE(dst.isEqual(src));
    EXPECT_EQ(dst.displayName, "Mine");
    EXPECT_EQ(dst.toolTip, "tip");
    EXPECT_EQ(dst.attrValues, src.attrValues);
    EXPECT_NE(dst.variables[0]->data.get(), src.variables[0]->data.get());
    src.variables[0]->data->value = 0.0f;
    EXPECT_EQ(dst.floatValue(0), 1.75f);

    // Fewer variables in the source: the target's extra ones stay.
    TestModPlain small(1);
    small.variables[0]->data->value = 0.25f;
    dst.variables[2]->asColor()->red = 99.0f;
    dst.copyFrom(small);
    EXPECT_EQ(dst.variableCount(), 3);
    EXPECT_EQ(dst.floatValue(0), 0.25f);
    EXPECT_EQ(dst.colorAt(2)->red, 99.0f);

    // More variables in the source: none are added.
    TestModPlain target(0);
    target.copyFrom(src);
    EXPECT_EQ(target.variableCount(), 1);
}

TEST(ImageMod, CloneModMatches)
{
    TestModPlain m;
    m.variables[0]->data->value = 0.3f;
    m.version = 4;
    auto c = cloneMod(m);
    ASSERT_NE(c, nullptr);
    EXPECT_TRUE(c->isEqual(m));
    EXPECT_EQ(c->version, 4);
}

TEST(ImageMod, GrowingArraysStartAtTwoAndDouble)
{
    TestModEmpty e;
    EXPECT_EQ(e.variables.capacity(), 0u);
    e.addFloat("a", 0, 0, 1);
    EXPECT_EQ(e.variables.capacity(), 2u);
    e.addFloat("b", 0, 0, 1);
    EXPECT_EQ(e.variables.capacity(), 2u);
    e.addFloat("c", 0, 0, 1);
    EXPECT_EQ(e.variables.capacity(), 4u);
    e.addFloat("d", 0, 0, 1);
    e.addFloat("e", 0, 0, 1);
    EXPECT_EQ(e.variables.capacity(), 8u);
}

TEST(ImageMod, AddVariableStoresACopy)
{
    TestModEmpty e;
    ImageModVariable v = ImageModVariable::makeFloat("Amount", 0.5f, 0.0f, 1.0f);
    ImageModVariable* stored = e.addVariable(v);
    ASSERT_NE(stored, &v);
    v.data->value = 0.9f;
    EXPECT_EQ(stored->floatValue(), 0.5f);
    e.setLabel(stored, "One");
    e.setLabel(stored, "Two");
    EXPECT_EQ(stored->label(), "Two");
    e.setLabel(nullptr, "ignored");
}

TEST(ImageMod, RandomizeVariation)
{
    TestModPlain none;
    TestModPlain before;
    none.randomizeVariation();
    EXPECT_TRUE(none.isEqual(before));

    TestModVariation m;
    std::srand(7);
    const int r = std::rand();
    std::srand(7);
    m.randomizeVariation();
    EXPECT_EQ(m.floatValue(1), float(double(r % 1000000) * -0.01 + 5000.0));
    EXPECT_EQ(m.floatValue(0), 1.0f);
    for (int i = 0; i < 200; ++i) {
        m.randomizeVariation();
        EXPECT_LE(m.floatValue(1), 5000.0f);
        EXPECT_GE(m.floatValue(1), -4999.99f);
    }

    // Data of another kind is replaced by a fresh float value.
    m.variables[1]->data = std::make_unique<ImageModVariableDataChoice>();
    m.randomizeVariation();
    ASSERT_NE(m.variables[1]->asFloat(), nullptr);
    EXPECT_EQ(m.variables[1]->data->hardMin, 0.0f);
    EXPECT_EQ(m.variables[1]->data->hardMax, 1.0f);
    ASSERT_EQ(m.variationVariables().size(), 1u);
    EXPECT_EQ(m.variationVariables()[0], m.variables[1].get());
}

TEST(ImageMod, SetFrameRunsAnimatorsThenNotifiesEveryVariable)
{
    TestModPlain m;
    m.addAnimator(m.variables[0].get(), "0 2", 1.0f);
    EXPECT_TRUE(m.hasAnimators());
    m.setFrame(19);
    EXPECT_EQ(m.floatValue(0), 2.0f);
    EXPECT_EQ(m.changed, (std::vector<int32_t>{0, 1, 2}));
    m.addAnimator(nullptr, "1 2", 1.0f);
    EXPECT_EQ(m.animators.size(), 1u);
}
