#pragma once
#include "core/ImageMod.h"

#include <cmath>
#include <string>

// A camera style: a fixed recipe of the program's own tiles, built on the stack inside each apply
// and run in order. Two variables, "Amount" (0 exits, and the recipe scales each stage's strength
// by it) and the shared "Variation", the phase every recipe reads through cosines, so that a step
// in it gives a related but different look. Nothing is kept between applies.
//
// Both depths run the float recipe: several stage tiles keep old 8-bit quirks (the legacy gamma
// divides by 255 as an integer, the curve tiles read only their table ends), which would wreck a
// look, so an 8-bit image goes through a float copy and is rounded back.
class ImageModStyle : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varVariation = 1 };
    static constexpr int32_t styleKind = 2;

    // The file name and the tile label, e.g. "Saloon" and "Saloon Camera".
    ImageModStyle(std::string modName, std::string label);

    int32_t kind() const override { return styleKind; }
    // The reach of the recipe's blur stage, if it has one.
    int32_t paddingNeeded(int32_t width, int32_t height, float scale) const override;
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // The stages at Amount a (never 0 here) and Variation v. A mask in the context is handled by
    // the caller: the recipe always sees a context without one.
    virtual void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const = 0;

    // cos(v * k + p) in double, so a phase in the thousands keeps its digits.
    static float wave(float v, double k, double p) { return float(std::cos(double(v) * k + p)); }

protected:
    // Tool tip, newest version and the blur stage's Amount at a of 1 (0 for a recipe without
    // blur), set by each style's constructor.
    void describe(const char* tip, int32_t newestVersion, float blurAtFullAmount = 0.0f);

private:
    float blurPerAmount = 0.0f;
};

// The phase constants that many recipes share.
namespace StyleK {
inline constexpr double k1 = 0.033740705144660564;
inline constexpr double k2 = 0.06000441866188032;
inline constexpr double k3 = 0.08105308810215502;
inline constexpr double k4 = 0.044673449142009804;
inline constexpr double k5 = 0.029405306921233814;
inline constexpr double k6 = 0.10549468261324361;
inline constexpr double k7 = 0.061763710368916945;
inline constexpr double k8 = 0.08419468525123937;
inline constexpr double k9 = 0.08061326704793101;
} // namespace StyleK
