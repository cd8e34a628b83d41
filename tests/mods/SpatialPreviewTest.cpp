#include "mods/ImageModBlur.h"
#include "mods/ImageModDynamics.h"
#include "mods/ImageModRadialBlur.h"
#include "mods/ImageModSharpen.h"
#include "mods/ImageModVignette.h"
#include "mods/SpatialTestSupport.h"

#include <gtest/gtest.h>

using namespace spatialtest;

// What the user sees on screen must be what the saved file holds: a quarter-size preview with its
// frame agrees with the full-size render boxed down to the same size (PSNR of at least 30 dB).
TEST(SpatialPreview, BlurMethodsAgreeWithFullSize)
{
    for (int32_t method = 0; method < 3; ++method) {
        ImageModBlur blur;
        setFloat(blur, 0, 40.0f);
        setChoice(blur, 2, method);
        EXPECT_GE(previewAgreement<float>(blur), 30.0) << "method " << method;
    }
    ImageModBlur blur8;
    setFloat(blur8, 0, 40.0f);
    EXPECT_GE(previewAgreement<uint8_t>(blur8), 30.0) << "8-bit";
}

TEST(SpatialPreview, RadialBlurAgreesWithFullSize)
{
    for (int32_t method = 0; method < 3; ++method) {
        ImageModRadialBlur blur;
        setFloat(blur, 0, 0.15f);
        setChoice(blur, 3, method);
        EXPECT_GE(previewAgreement<float>(blur), 30.0) << "method " << method;
    }
}

TEST(SpatialPreview, SharpenVignetteDynamicsAgreeWithFullSize)
{
    ImageModSharpen sharpen;
    EXPECT_GE(previewAgreement<float>(sharpen), 30.0);
    ImageModVignette vignette;
    EXPECT_GE(previewAgreement<float>(vignette), 30.0);
    EXPECT_GE(previewAgreement<uint8_t>(vignette), 30.0) << "8-bit";
    for (int32_t method = 0; method < 2; ++method) {
        ImageModDynamics dynamics;
        setFloat(dynamics, 0, 60.0f);
        setChoice(dynamics, 2, method);
        EXPECT_GE(previewAgreement<float>(dynamics), 30.0) << "method " << method;
    }
}
