#pragma once
#include "tests/core/TestSelectors.h"
#include "core/ImageMod.h"
#include "core/ImageModSelector.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <unistd.h>

// Shared helpers of the look-up table and exposure tests.

// A private folder under the system's temporary folder, removed with the object.
class LutTempDir {
public:
    LutTempDir()
    {
        static int counter = 0;
        dir = std::filesystem::temp_directory_path()
            / ("vantrel_lut_" + std::to_string(long(getpid())) + "_" + std::to_string(counter++));
        std::filesystem::create_directories(dir);
    }
    ~LutTempDir()
    {
        std::error_code ec;
        std::filesystem::remove_all(dir, ec);
    }
    std::string file(const std::string& name) const { return (dir / name).string(); }
    std::string write(const std::string& name, const std::string& text) const
    {
        const std::string path = file(name);
        std::FILE* f = std::fopen(path.c_str(), "wb");
        if (f) {
            std::fwrite(text.data(), 1, text.size(), f);
            std::fclose(f);
        }
        return path;
    }
    std::filesystem::path dir;
};

using LutFunction = std::function<void(double r, double g, double b, double out[3])>;

// Rows of an N-point 3-D table, red fastest, of fn on the unit cube.
inline std::string cubeRows(int n, const LutFunction& fn)
{
    std::string text;
    char line[128];
    for (int b = 0; b < n; ++b)
        for (int g = 0; g < n; ++g)
            for (int r = 0; r < n; ++r) {
                double out[3];
                fn(double(r) / (n - 1), double(g) / (n - 1), double(b) / (n - 1), out);
                std::snprintf(line, sizeof(line), "%.9g %.9g %.9g\n", out[0], out[1], out[2]);
                text += line;
            }
    return text;
}

inline std::string cubeText(int n, const LutFunction& fn, const std::string& header = {})
{
    return header + "LUT_3D_SIZE " + std::to_string(n) + "\n" + cubeRows(n, fn);
}

inline void identityFn(double r, double g, double b, double out[3])
{
    out[0] = r;
    out[1] = g;
    out[2] = b;
}

// A smooth, non-separable colour change: a lift and a deepening curve plus a little cross-talk.
inline void smoothFn(double r, double g, double b, double out[3])
{
    out[0] = (1.6 * r - 0.6 * r * r) * 0.9 + 0.1 * g;
    out[1] = std::pow(g, 1.2) * 0.85 + 0.1 * b + 0.05 * r * r;
    out[2] = 0.2 + 0.6 * b + 0.2 * r * g;
}

template <typename Image>
void fillRandom(Image& img, uint32_t seed, float lo = 0.0f, float hi = 255.0f)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> dist(lo, hi);
    for (int64_t i = 0; i < img.sampleCount(); ++i)
        img.data[i] = typename Image::SampleType(dist(rng));
}

// smoothFn as a tile, per pixel at float depth, with rule B masking of its strength.
class LutTestSmoothMod : public ImageMod {
public:
    LutTestSmoothMod() : ImageMod("Test Smooth", "") { addFloat("Amount", 1.0f, 0.0f, 1.0f); }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<LutTestSmoothMod>(); }
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override
    {
        const ImageModSelector* sel = context ? context->selector : nullptr;
        const float amount = floatValue(0);
        for (int32_t y = 0; y < image->height; ++y) {
            float* p = image->row(y);
            for (int32_t x = 0; x < image->width; ++x, p += image->channels) {
                const float a = sel ? maskRuleB(amount, sel->maskValue(image, x, y, nullptr)) : amount;
                double out[3];
                smoothFn(p[0] / 255.0, p[1] / 255.0, p[2] / 255.0, out);
                for (int c = 0; c < 3; ++c)
                    p[c] = float(p[c] + (out[c] * 255.0 - p[c]) * a);
            }
        }
    }
};

// A tile that changes the picture's size, which an exported table can't hold.
class LutTestShrinkMod : public ImageMod {
public:
    LutTestShrinkMod() : ImageMod("Test Shrink", "") {}
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<LutTestShrinkMod>(); }
    int32_t group() const override { return groupValue; }
    void apply(FlexImageFloat* image, const ImageModApplyContext*) override { image->resize(4, 4, 3); }
    int32_t groupValue = 2;
};

inline void fillImage3(FlexImageFloat& img, float r, float g, float b)
{
    for (int32_t y = 0; y < img.height; ++y) {
        float* p = img.row(y);
        for (int32_t x = 0; x < img.width; ++x, p += img.channels) {
            p[0] = r;
            p[1] = g;
            p[2] = b;
        }
    }
}

inline std::string readWholeFile(const std::string& path)
{
    std::string text;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f)
        return text;
    char buf[65536];
    size_t got;
    while ((got = std::fread(buf, 1, sizeof(buf), f)) > 0)
        text.append(buf, got);
    std::fclose(f);
    return text;
}
