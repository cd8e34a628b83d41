#pragma once
#include "core/ImageMod.h"

#include <memory>
#include <mutex>
#include <vector>

// A square one-channel grain pattern, tiled over the frame. Immutable once built, so applies on
// several threads can share one.
struct GrainTile {
    float radius = 0.0f;
    float amplitude = 0.0f;
    float requestedSide = 0.0f;
    float uniformity = 0.0f; // u = 1 - Uniformity / 100
    int32_t size = 0;
    std::vector<float> values; // size * size

    bool matches(float r, float amp, float side, float u) const
    {
        return radius == r && amplitude == amp && requestedSide == side && uniformity == u;
    }
};

// "Grain": film grain from a cached tile of overlapping soft stamps. Version 1 runs the legacy
// grain; versions 2 and 3 differ in how the grain follows the pixel's brightness.
//
// The driver calls pass 0 and then pass 1: pass 0 only makes sure the tile exists, pass 1 (and -1,
// inside a group, or a call without a context) lays the grain.
class ImageModGrainFast : public ImageMod
{
public:
    ImageModGrainFast();

    void copyFrom(const ImageMod& other) override;
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModGrainFast>(); }
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    bool passIsPure(int32_t pass) const override { return pass != 0 || version == 1; }
    int32_t passCount() const override { return version == 1 ? 1 : 2; }
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The tile of the last apply (shared with clones), or null.
    std::shared_ptr<const GrainTile> currentTile() const;
    // Builds the tile for stamp radius r, amplitude, requested side and u, deterministically.
    static std::shared_ptr<const GrainTile> buildTile(float r, float amplitude, float side, float u);

private:
    template <typename Sample>
    void applyDepth(FlexImageT<Sample>* image, const ImageModApplyContext* context);
    std::shared_ptr<const GrainTile> tileFor(float r, float amplitude, float side, float u);

    mutable std::mutex tileMutex;
    std::shared_ptr<const GrainTile> tile;
};
