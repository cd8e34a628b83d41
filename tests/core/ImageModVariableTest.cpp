#include "core/ImageModVariable.h"
#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"

#include <gtest/gtest.h>

TEST(ImageModVariableData, KindsAndFreshDefaults)
{
    ImageModVariableData f;
    EXPECT_EQ(f.kind(), 1);
    EXPECT_EQ(f.value, 0.0f);
    EXPECT_EQ(f.hardMin, 0.0f);
    EXPECT_EQ(f.hardMax, 1.0f);
    EXPECT_EQ(f.displayMax, 1.0f);
    EXPECT_TRUE(f.hasHardMin && f.hasHardMax);
    EXPECT_FALSE(f.hasDisplayScale);
    EXPECT_EQ(f.steps, 10);
    EXPECT_EQ(ImageModVariableDataCurve().kind(), 2);
    EXPECT_EQ(ImageModVariableDataColor().kind(), 3);
    EXPECT_EQ(ImageModVariableDataButton().kind(), 4);
    EXPECT_EQ(ImageModVariableDataChoice().kind(), 5);
    EXPECT_EQ(ImageModVariableDataMultiChoice().kind(), 6);
    EXPECT_EQ(ImageModVariableDataFile().kind(), 7);
    EXPECT_EQ(ImageModVariableDataPixel().kind(), 8);
    EXPECT_EQ(ImageModVariableDataBoundary().kind(), 10);

    ImageModVariableDataColor c;
    EXPECT_EQ(c.alpha, 255.0f);
    ImageModVariableDataChoice forced;
    EXPECT_EQ(forced.currentLabel(), "Default");
    EXPECT_EQ(forced.index, 0);
}

TEST(ImageModVariableData, CloneIsDeepAndKeepsKind)
{
    ImageModVariableDataMultiChoice m({"a", "b", "c"}, {2, 0});
    auto copy = m.clone();
    ASSERT_EQ(copy->kind(), 6);
    auto* mc = static_cast<ImageModVariableDataMultiChoice*>(copy.get());
    EXPECT_EQ(mc->labels.size(), 3u);
    mc->selected.push_back(1);
    EXPECT_EQ(m.selected.size(), 2u);
    EXPECT_FALSE(m.isEqual(*mc));

    ImageModVariableData f(0.5f, -1.0f, 1.0f);
    f.setDisplayScale(-100.0f, 100.0f);
    auto fc = f.clone();
    EXPECT_EQ(fc->kind(), 1);
    EXPECT_EQ(fc->hardMin, -1.0f);
    EXPECT_TRUE(fc->hasDisplayScale);
    EXPECT_EQ(fc->scaleMax, 100.0f);
}

TEST(ImageModVariableData, EqualityAcrossKindsIsFalse)
{
    ImageModVariableData f(0.0f, 0.0f, 5.0f);
    ImageModVariableDataChoice c({"x"}, 0);
    EXPECT_FALSE(f.isEqual(c));
    EXPECT_FALSE(c.isEqual(f));
    ImageModVariableDataColor black(0, 0, 0, 255);
    ImageModVariableDataBoundary zero;
    EXPECT_FALSE(black.isEqual(zero));
    EXPECT_FALSE(zero.isEqual(f));
}

TEST(ImageModVariableData, FloatComparesOnlyValue)
{
    ImageModVariableData a(0.25f, 0.0f, 1.0f);
    ImageModVariableData b(0.25f, -9.0f, 9.0f, -3.0f, 3.0f);
    EXPECT_TRUE(a.isEqual(b));
    b.value = 0.2500001f;
    EXPECT_FALSE(a.isEqual(b));
}

TEST(ImageModVariableData, CurveComparesPointsAndHueOffset)
{
    ImageModVariableDataCurve a("0 0 .5 .6 1 1");
    ImageModVariableDataCurve b("0 0 .5 .6 1 1");
    EXPECT_TRUE(a.isEqual(b));
    b.curve.hueOffset = 90.0f;
    EXPECT_FALSE(a.isEqual(b));
    b.curve.hueOffset = a.curve.hueOffset;
    b.curve.points[1].y = 0.61f;
    EXPECT_FALSE(a.isEqual(b));
    ImageModVariableDataCurve c("0 0 1 1");
    EXPECT_FALSE(a.isEqual(c));
    // Markers are not part of the value.
    b = a;
    b.markers.push_back(7);
    EXPECT_TRUE(a.isEqual(b));
}

TEST(ImageModVariableData, FileTreatsLoneNulAsEmpty)
{
    ImageModVariableDataFile empty("", "*.png");
    ImageModVariableDataFile nul(std::string(1, '\0'), "*.jpg");
    ImageModVariableDataFile some("/a.png", "*.png");
    EXPECT_TRUE(empty.isEqual(nul));
    EXPECT_TRUE(nul.isEqual(empty));
    EXPECT_FALSE(empty.isEqual(some));
    EXPECT_FALSE(nul.isEqual(some));
}

TEST(ImageModVariableData, ChoiceLabels)
{
    ImageModVariableDataChoice c({"Normal", "Inverted"}, 1);
    c.labelSets.push_back({"Plain", "Invert"});
    EXPECT_EQ(c.currentLabel(), "Inverted");
    EXPECT_EQ(c.indexOfLabel("Invert"), 1);
    EXPECT_EQ(c.indexOfLabel("nope"), -1);
    c.index = 2;
    EXPECT_EQ(c.currentLabel(), "");
    c.index = -1;
    EXPECT_EQ(c.currentLabel(), "");
    ImageModVariableDataChoice d({"A", "B"}, 1);
    EXPECT_TRUE(c.isEqual(c));
    c.index = 1;
    EXPECT_TRUE(c.isEqual(d)); // labels don't count
}

TEST(ImageModVariableData, PixelAndBoundaryAndColor)
{
    ImageModVariableDataPixel p;
    ImageModVariableDataPixel q(-1.0f, -1.0f);
    EXPECT_FALSE(p.isEqual(q)); // no points vs one unset point
    p.points.push_back({-1.0f, -1.0f});
    EXPECT_TRUE(p.isEqual(q));
    EXPECT_TRUE(ImageModVariableDataPixel::isUnset(q.points[0]));
    q.flagA = true; // flags are not compared
    EXPECT_TRUE(p.isEqual(q));

    ImageModVariableDataBoundary b1(1, 2, 3, 4), b2(1, 2, 3, 4);
    EXPECT_TRUE(b1.isEqual(b2));
    b2.bottom = 5;
    EXPECT_FALSE(b1.isEqual(b2));

    ImageModVariableDataColor c1(1, 2, 3, 255), c2(1, 2, 3, 254);
    EXPECT_FALSE(c1.isEqual(c2));
}

TEST(ImageModVariable, CopyIsDeep)
{
    ImageModVariable v = ImageModVariable::makeFloat("Amount", 0.5f, 0.0f, 2.0f);
    v.labelOverride = std::make_unique<std::string>("Strength");
    v.tag = "t";
    v.visible = false;
    v.controlKind = 3;
    v.panelGroup = 2;
    ImageModVariable w(v);
    ASSERT_NE(w.data.get(), v.data.get());
    ASSERT_NE(w.labelOverride.get(), v.labelOverride.get());
    EXPECT_EQ(w.label(), "Strength");
    EXPECT_EQ(w.tag, "t");
    EXPECT_FALSE(w.visible);
    EXPECT_EQ(w.controlKind, 3);
    EXPECT_EQ(w.panelGroup, 2);
    w.data->value = 1.5f;
    EXPECT_EQ(v.floatValue(), 0.5f);

    ImageModVariable empty("X");
    w = empty;
    EXPECT_EQ(w.data, nullptr);
    EXPECT_EQ(w.labelOverride, nullptr);
    EXPECT_EQ(w.label(), "X");
}

TEST(ImageModVariable, ReadersAreKindSafe)
{
    ImageModVariable v("Fresh");
    EXPECT_EQ(v.controlKind, 14);
    EXPECT_TRUE(v.visible);
    EXPECT_EQ(v.panelGroup, 1);
    EXPECT_EQ(v.floatValue(), 0.0f);
    EXPECT_EQ(v.asFloat(), nullptr);
    EXPECT_EQ(v.currentLabel(), "");

    ImageModVariable c = ImageModVariable::makeChoice("Method", {"Normal", "Inverted"}, 1);
    EXPECT_EQ(c.floatValue(), 0.0f);
    EXPECT_EQ(c.variableAs(kVariableFloat), nullptr);
    EXPECT_NE(c.asChoice(), nullptr);
    EXPECT_EQ(c.currentLabel(), "Inverted");

    // Writing a float over a choice replaces it with a fresh 0..1 float.
    c.setFloatValue(3.0f);
    ASSERT_NE(c.asFloat(), nullptr);
    EXPECT_EQ(c.floatValue(), 3.0f);
    EXPECT_EQ(c.data->hardMax, 1.0f);

    ImageModVariable hue = ImageModVariable::makeHueCurve("Hue", "0 .5 1 .5");
    EXPECT_EQ(hue.controlKind, 11);
    EXPECT_TRUE(hue.asCurve()->curve.closed);
}

TEST(ImageModVariable, NullValuesCompare)
{
    ImageModVariable a("A"), b("A");
    EXPECT_TRUE(a.isEqual(b));
    b.setFloatValue(0.0f);
    EXPECT_FALSE(a.isEqual(b));
    EXPECT_FALSE(b.isEqual(a));
}

TEST(ImageModVariableData, ClampedWrite)
{
    ImageModVariableData f(0.0f, -1.0f, 1.0f);
    f.setClamped(4.0f);
    EXPECT_EQ(f.value, 1.0f);
    f.setClamped(-4.0f);
    EXPECT_EQ(f.value, -1.0f);
    f.hasHardMin = false;
    f.setClamped(-4.0f);
    EXPECT_EQ(f.value, -4.0f);
}
