#include "mods/ImageModGrainFast.h"
#include "mods/ImageModGrainLegacy.h"
#include "mods/SpatialTestSupport.h"

#include <gtest/gtest.h>

namespace {

struct Stats {
    double mean = 0.0;
    double stddev = 0.0;
};

// Mean and standard deviation of (after - before) over all samples.
template <typename Sample>
Stats deltaStats(const FlexImageT<Sample>& after, const FlexImageT<Sample>& before)
{
    double s = 0.0, s2 = 0.0;
    const int64_t n = after.sampleCount();
    for (int64_t i = 0; i < n; ++i) {
        const double d = double(after.data[i]) - double(before.data[i]);
        s += d;
        s2 += d * d;
    }
    Stats st;
    st.mean = s / double(n);
    st.stddev = std::sqrt(std::max(0.0, s2 / double(n) - st.mean * st.mean));
    return st;
}

// Grain at full size boxed down against grain laid on the quarter-size preview.
template <typename Sample>
void grainPreviewStats(ImageMod& grain, Stats& fullDown, Stats& preview)
{
    FlexImageT<Sample> full, quarter;
    full.copyFrom(sceneAt<Sample>(1), true);
    quarter.copyFrom(sceneAt<Sample>(4), true);
    grain.apply(&full, nullptr);
    ReferenceFrame frame = wholeFrame(quarter.width, quarter.height, 4.0f);
    ImageModApplyContext ctx;
    ctx.referenceFrame = &frame;
    ctx.pass = 1;
    grain.apply(&quarter, &ctx);
    FlexImageT<Sample> down;
    boxDown(full, down, 4);
    fullDown = deltaStats(down, sceneAt<Sample>(4));
    preview = deltaStats(quarter, sceneAt<Sample>(4));
}

} // namespace

TEST(FilmGrain, PreviewGrainMatchesFullSize)
{
    for (float scale : {25.0f, 80.0f}) {
        ImageModGrainFast grain;
        setFloat(grain, 1, scale);
        Stats full, preview;
        grainPreviewStats<float>(grain, full, preview);
        printf("scale %.0f: full mean %.3f std %.3f, preview mean %.3f std %.3f\n", scale, full.mean, full.stddev,
               preview.mean, preview.stddev);
        EXPECT_NEAR(preview.stddev / full.stddev, 1.0, 0.15) << "Scale " << scale;
        EXPECT_NEAR(preview.mean, full.mean, 0.15 * full.stddev) << "Scale " << scale;
    }
}
