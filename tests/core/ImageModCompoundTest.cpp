#include "TestMods.h"

#include "core/ImageModCompound.h"
#include "core/ImageModCompoundFlattening.h"
#include "core/ImageModVariableDataChoice.h"

#include <gtest/gtest.h>

namespace {

std::unique_ptr<ImageModCompound> groupOf(std::vector<ImageMod*> owned, float amount = 1.0f)
{
    auto g = std::make_unique<ImageModCompound>();
    for (ImageMod* m : owned)
        g->addChild(std::unique_ptr<ImageMod>(m));
    g->variables[0]->data->value = amount;
    return g;
}

TestModAdd* adder(float v, bool on = true)
{
    auto* m = new TestModAdd(v);
    m->enabled = on;
    return m;
}

} // namespace

TEST(ImageModCompound, Defaults)
{
    ImageModCompound g;
    EXPECT_EQ(g.name, "Compound Filter");
    EXPECT_EQ(g.kind(), 3);
    ASSERT_EQ(g.variableCount(), 1);
    EXPECT_EQ(g.amountVariable(), g.variables[0].get());
    EXPECT_EQ(g.floatValue(0), 1.0f);
    EXPECT_EQ(g.variables[0]->data->hardMax, 1.0f);
    EXPECT_EQ(g.passCount(), 1);
    EXPECT_EQ(g.paddingNeeded(10, 10, 1.0f), 0);
    EXPECT_EQ(g.borderMod(), nullptr);
}

TEST(ImageModCompound, AmountHalfGivesTheExactMidpoint)
{
    auto g = groupOf({adder(20.0f)}, 0.5f);
    FlexImageFloat img(3, 2, 3);
    fillImage(img, 100.0f);
    img.data[4] = 33.0f;
    g->apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 110.0f);
    EXPECT_EQ(img.data[4], 43.0f);

    // 8-bit: 101 + 15 = 116, midpoint 108.5 truncates to 108.
    auto h = groupOf({adder(15.0f)}, 0.5f);
    FlexImage8 img8(2, 2, 4);
    fillImage(img8, 101.0f);
    h->apply(&img8, nullptr);
    EXPECT_EQ(img8.data[0], 108);
    EXPECT_EQ(img8.data[2], 108);
    EXPECT_EQ(img8.data[3], 101); // the child leaves alpha alone, so the blend does too
}

TEST(ImageModCompound, AmountZeroOrMissingLeavesTheImage)
{
    auto g = groupOf({adder(20.0f)}, 0.0f);
    FlexImageFloat img(2, 2, 3);
    fillImage(img, 10.0f);
    g->apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 10.0f);
    g->variables[0]->data = std::make_unique<ImageModVariableDataChoice>();
    g->apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 10.0f);
    g->variables.clear();
    g->apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 10.0f);
    // Empty group at Amount 0.5 passes the image through.
    ImageModCompound empty;
    empty.variables[0]->data->value = 0.5f;
    empty.apply(&img, nullptr);
    EXPECT_EQ(img.data[0], 10.0f);
    g->apply(static_cast<FlexImageFloat*>(nullptr), nullptr);
}

TEST(ImageModCompound, FrozenMaskReachesEveryChild)
{
    // The group's mask reads red as the group starts (51 -> 0.2); the first child raises red, which
    // would change a live mask but not the frozen one.
    auto g = groupOf({adder(50.0f), adder(10.0f)});
    TestSelectorRed red;
    FlexImageFloat img(2, 2, 3);
    fillImage(img, 51.0f);
    ImageModApplyContext ctx;
    ctx.selector = &red;
    g->apply(&img, &ctx);
    EXPECT_FLOAT_EQ(img.data[0], 51.0f + 10.0f + 2.0f);

    // Multiplied by a child's own mask.
    auto h = groupOf({adder(50.0f), new TestSelectorConst(0.5f), adder(10.0f)});
    FlexImageFloat img2(2, 2, 3);
    fillImage(img2, 51.0f);
    h->apply(&img2, &ctx);
    EXPECT_FLOAT_EQ(img2.data[0], 51.0f + 10.0f + 1.0f);

    // The same group in a driver's sequence, masked from the left.
    FlexImage8 img8(2, 2, 3);
    fillImage(img8, 51.0f);
    TestSelectorRed outer;
    runTiles({&outer, h.get()}, &img8);
    EXPECT_EQ(img8.data[0], 51 + 10 + 1);
}

TEST(ImageModCompound, ChildMasksAndDisabledChildren)
{
    // A mask first in the group acts on the second child only.
    auto g = groupOf({new TestSelectorConst(0.5f), adder(10.0f), adder(10.0f)});
    FlexImageFloat img(1, 1, 3);
    fillImage(img, 0.0f);
    g->apply(&img, nullptr);
    EXPECT_FLOAT_EQ(img.data[0], 15.0f);

    // A disabled child is skipped; a disabled mask doesn't break the run.
    auto h = groupOf({new TestSelectorConst(0.5f), new TestSelectorConst(0.0f, false), adder(10.0f),
                      adder(100.0f, false)});
    fillImage(img, 0.0f);
    h->apply(&img, nullptr);
    EXPECT_FLOAT_EQ(img.data[0], 5.0f);
}

TEST(ImageModCompound, ChildContext)
{
    auto* rec = new TestModRecorder;
    auto g = groupOf({rec});
    FlexImageFloat img(1, 1, 3);
    g->apply(&img, nullptr);
    ASSERT_EQ(rec->seen.size(), 1u);
    EXPECT_EQ(rec->seen[0].referenceFrame, nullptr);
    EXPECT_EQ(rec->seen[0].selector, nullptr);
    EXPECT_EQ(rec->seen[0].frame, 0);
    EXPECT_EQ(rec->seen[0].pass, -1);

    ReferenceFrame frame;
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    ctx.frame = 12;
    ctx.pass = 0;
    g->apply(&img, &ctx);
    ASSERT_EQ(rec->seen.size(), 2u);
    EXPECT_EQ(rec->seen[1].referenceFrame, &frame);
    EXPECT_EQ(rec->seen[1].frame, 12);
    EXPECT_EQ(rec->seen[1].pass, -1);
}

TEST(ImageModCompound, CloneCopyAndEquality)
{
    auto g = groupOf({adder(5.0f), new TestModPlain});
    g->presetLinkPath = "/presets/Warm.vnf";
    g->name = "My Group";
    g->variables[0]->data->value = 0.75f;
    auto fresh = g->newInstance();
    auto* c = static_cast<ImageModCompound*>(fresh.get());
    ASSERT_EQ(c->childCount(), 2);
    EXPECT_NE(c->children[0].get(), g->children[0].get());
    EXPECT_EQ(c->name, "My Group");
    EXPECT_EQ(c->presetLink(), "/presets/Warm.vnf");
    EXPECT_EQ(c->floatValue(0), 1.0f); // newInstance doesn't take the state; copyFrom does
    EXPECT_FALSE(c->isEqual(*g));
    c->copyFrom(*g);
    EXPECT_TRUE(c->isEqual(*g));
    EXPECT_TRUE(cloneMod(*g)->isEqual(*g));

    g->children[0]->variables[0]->data->value = 6.0f;
    EXPECT_FALSE(c->isEqual(*g));
    c->copyFrom(*g);
    EXPECT_TRUE(c->isEqual(*g));

    // Child count and kind matter.
    c->addChild(std::make_unique<TestModAdd>());
    EXPECT_FALSE(c->isEqual(*g));
    EXPECT_FALSE(g->isEqual(*c));
    TestModAdd plain;
    plain.name = g->name;
    EXPECT_FALSE(g->isEqual(plain));

    // copyFrom from another kind does nothing at all.
    const std::string before = c->name;
    c->copyFrom(plain);
    EXPECT_EQ(c->name, before);
    EXPECT_EQ(c->childCount(), 3);
    // Children by index, up to the shorter list.
    c->copyFrom(*g);
    EXPECT_EQ(c->childCount(), 3);
    EXPECT_EQ(c->children[0]->floatValue(0), 6.0f);
}

TEST(ImageModCompound, AggregatesOverChildren)
{
    auto g = groupOf({new TestModPadded(3), new TestModPadded(9), new TestModVariation, new TestModVariation});
    EXPECT_EQ(g->paddingNeeded(100, 100, 1.0f), 9);
    EXPECT_FALSE(g->needsAnalysis());
    EXPECT_TRUE(g->passIsPure(0));
    EXPECT_EQ(g->variationVariables().size(), 2u);
    g->addChild(std::make_unique<TestModNeedsAnalysis>());
    EXPECT_TRUE(g->needsAnalysis());
    g->addChild(std::make_unique<TestModImpure>());
    EXPECT_FALSE(g->passIsPure(0));
}

TEST(ImageModCompound, BorderModScansFromTheEnd)
{
    auto* first = new TestModBorder;
    auto* last = new TestModBorder;
    auto g = groupOf({first, new TestModPlain, last, new TestModPlain});
    EXPECT_EQ(g->borderMod(), last);
    auto* inner = new TestModBorder;
    auto outer = groupOf({groupOf({inner, new TestModPlain}).release(), new TestModPlain});
    EXPECT_EQ(outer->borderMod(), inner);
}

TEST(ImageModCompoundFlattening, Decision)
{
    auto g = groupOf({adder(1.0f)});
    TestModAdd before;
    TestSelectorConst mask(0.5f), offMask(0.5f, false);
    EXPECT_TRUE(compoundFlattensAt(std::vector<ImageMod*>{&before, g.get()}, 1));
    EXPECT_TRUE(compoundFlattensAt(std::vector<ImageMod*>{g.get()}, 0));
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{&mask, g.get()}, 1));
    EXPECT_TRUE(compoundFlattensAt(std::vector<ImageMod*>{&offMask, g.get()}, 1));
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{&mask, &before, g.get()}, 1));
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{&before, g.get()}, 0)); // not a compound
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{g.get()}, 3));

    g->variables[0]->data->value = 0.99999994f;
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{g.get()}, 0));
    g->variables[0]->data->value = 1.0f;
    g->enabled = false;
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{g.get()}, 0));
    g->enabled = true;
    g->variables[0]->data = std::make_unique<ImageModVariableDataChoice>();
    EXPECT_FALSE(compoundFlattensAt(std::vector<ImageMod*>{g.get()}, 0));
}

TEST(ImageModCompoundFlattening, FlatListRunsLikeTheNest)
{
    // A trailing mask inside a group must not reach the tile after the group once flattened.
    auto inner = groupOf({new TestSelectorConst(0.5f), adder(8.0f)});
    auto dimmed = groupOf({adder(30.0f)}, 0.5f);
    auto outer = groupOf({adder(2.0f), inner.release(), new TestSelectorConst(0.25f)});
    TestSelectorConst mask(0.5f);
    TestModAdd tail(4.0f);
    std::vector<ImageMod*> tiles{outer.get(), &mask, dimmed.get(), &tail};

    std::vector<ImageMod*> flat;
    flattenTiles(tiles, flat);
    // outer opens up (its inner group too, minus the trailing mask); the masked group stays whole.
    ASSERT_EQ(flat.size(), 6u);
    EXPECT_EQ(flat[3], &mask);
    EXPECT_EQ(flat[4], dimmed.get());
    EXPECT_EQ(flat[5], &tail);

    FlexImageFloat nested(2, 2, 3), flattened(2, 2, 3);
    fillImage(nested, 10.0f);
    fillImage(flattened, 10.0f);
    runTiles(tiles, &nested);
    runTiles(flat, &flattened);
    for (int64_t i = 0; i < nested.sampleCount(); ++i)
        ASSERT_EQ(nested.data[i], flattened.data[i]);
    // 10 + 2 + 4 (inner, masked) + 7.5 (dimmed: 15 frozen-masked at half Amount) + 4
    EXPECT_FLOAT_EQ(nested.data[0], 27.5f);
}
