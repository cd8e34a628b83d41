#include "mods/ImageModBlur.h"
#include "mods/ImageModDynamics.h"
#include "mods/ImageModRadialBlur.h"
#include "mods/ImageModSharpen.h"
#include "mods/ImageModVignette.h"
#include "mods/SpatialTestSupport.h"

#include <gtest/gtest.h>

// What the user sees on screen must be what the saved file holds: a quarter-size preview with its
// frame agrees with the full-size render boxed down to the same size.
TEST(SpatialPreview, BlurMethodsAgreeWithFullSize)
{
    for (int32_t method = 0; method < 3; ++method) {
        ImageModBlur blur;
        setFloat(blur, 0, 40.0f);
        setChoice(blur, 2, method);
        const double p = previewAgreement<float>(blur);
        printf("blur %d: %.2f dB\n", method, p);
        EXPECT_GE(p, 30.0) << "method " << method;
    }
}

TEST(SpatialPreview, RadialBlurAgreesWithFullSize)
{
    for (int32_t method = 0; method < 3; ++method) {
        ImageModRadialBlur blur;
        setFloat(blur, 0, 0.3f);
        setChoice(blur, 3, method);
        const double p = previewAgreement<float>(blur);
        printf("radial %d: %.2f dB\n", method, p);
        EXPECT_GE(p, 30.0) << "method " << method;
    }
}

TEST(SpatialPreview, SharpenVignetteDynamicsAgreeWithFullSize)
{
    ImageModSharpen sharpen;
    double p = previewAgreement<float>(sharpen);
    printf("sharpen: %.2f dB\n", p);
    EXPECT_GE(p, 30.0);
    ImageModVignette vignette;
    p = previewAgreement<float>(vignette);
    printf("vignette: %.2f dB\n", p);
    EXPECT_GE(p, 30.0);
    for (int32_t method = 0; method < 2; ++method) {
        ImageModDynamics dynamics;
        setFloat(dynamics, 0, 60.0f);
        setChoice(dynamics, 2, method);
        p = previewAgreement<float>(dynamics);
        printf("dynamics %d: %.2f dB\n", method, p);
        EXPECT_GE(p, 30.0);
    }
}
