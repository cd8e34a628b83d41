#include "core/ImageModSelector.h"
#include "core/ImageModSourcedApply.h"
#include "mods/ImageModBrightness.h"
#include "mods/ImageModContrast.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModSaturation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

class QuarterMask : public ImageModSelector {
public:
    QuarterMask() : ImageModSelector("Quarter Mask") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<QuarterMask>(); }
    float maskValue(const FlexImageFloat*, int32_t, int32_t, const ReferenceFrame*) const override { return 0.25f; }
};

bool sameSamples(const FlexImageFloat& a, const FlexImageFloat& b)
{
    if (a.width != b.width || a.height != b.height || a.channels != b.channels)
        return false;
    for (int64_t i = 0; i < a.sampleCount(); ++i)
        if (!(a.data[i] == b.data[i] || (std::isnan(a.data[i]) && std::isnan(b.data[i]))))
            return false;
    return true;
}

struct Case {
    std::string label;
    std::function<std::unique_ptr<ImageMod>()> make;
};

} // namespace

// Reading from another image must leave exactly what the pass in place leaves on a copy, for both
// directions of each tile, the neutral amount and an alpha channel; the source and its placement
// carry over. A masked pass is refused with the destination untouched.
TEST(SourcedApply, TonalTilesFromSourceEqualThePassInPlace)
{
    std::vector<Case> cases = {
        {"brightness up", [] { return std::make_unique<ImageModBrightness>(1.4f); }},
        {"brightness down", [] { return std::make_unique<ImageModBrightness>(0.7f); }},
        {"brightness neutral", [] { return std::make_unique<ImageModBrightness>(1.0f); }},
        {"exposure up", [] { return std::make_unique<ImageModExposure>(1.5f); }},
        {"exposure down", [] { return std::make_unique<ImageModExposure>(0.4f); }},
        {"saturation root", [] { return std::make_unique<ImageModSaturation>(2, 1.6f); }},
        {"saturation legacy", [] { return std::make_unique<ImageModSaturation>(1, 0.3f); }},
        {"saturation neutral", [] { return std::make_unique<ImageModSaturation>(2, 1.0f); }},
    };
    // Contrast goes through its power table, both versions, a neutral amount included.
    for (int32_t version : {1, 2})
        for (float amount : {1.3f, 0.6f, 1.0f, 2.0f})
            cases.push_back({"contrast v" + std::to_string(version) + " " + std::to_string(amount),
                             [=] { return std::make_unique<ImageModContrast>(version, amount, 200.0f); }});
    for (const Case& c : cases) {
        for (int32_t channels : {3, 4}) {
            SCOPED_TRACE(c.label + ", " + std::to_string(channels) + " channels");
            FlexImageFloat source(29, 11, channels);
            for (int64_t i = 0; i < source.sampleCount(); ++i)
                source.data[i] = float((i * 6007) % 26500) * 0.01f - 3.0f; // -3 .. 262
            source.data[7] = std::numeric_limits<float>::quiet_NaN();
            source.scale = 1.5f;
            source.marginRight = 6;
            FlexImageFloat before(0, 0, channels), inPlace(0, 0, channels);
            before.copyFrom(source, true);
            inPlace.copyFrom(source, true);
            auto mod = c.make();
            mod->apply(&inPlace, nullptr);
            auto* sourced = dynamic_cast<ImageModSourcedApply*>(mod.get());
            ASSERT_NE(sourced, nullptr);
            FlexImageFloat dest(3, 2, 3); // another shape: the pass sizes it
            ASSERT_TRUE(sourced->applyFrom(source, &dest, nullptr));
            EXPECT_TRUE(sameSamples(dest, inPlace));
            EXPECT_TRUE(sameSamples(source, before));
            EXPECT_FLOAT_EQ(dest.scale, 1.5f);
            EXPECT_EQ(dest.marginRight, 6);

            QuarterMask mask;
            ImageModApplyContext masked;
            masked.selector = &mask;
            FlexImageFloat kept(0, 0, channels);
            kept.copyFrom(dest, true);
            EXPECT_FALSE(sourced->applyFrom(source, &dest, &masked));
            EXPECT_TRUE(sameSamples(dest, kept));
            EXPECT_FALSE(sourced->applyFrom(source, &source, nullptr));
            EXPECT_TRUE(sameSamples(source, before));
        }
    }
}
