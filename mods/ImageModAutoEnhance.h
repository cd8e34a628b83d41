#pragma once
#include "core/ImageMod.h"
#include "mods/ImageModAdvancedContrast.h"
#include "mods/ImageModSaturation.h"
#include "mods/ImageModToneCurve.h"

// "Auto Exposure": measures the picture on the analysis pass (normally the driver's proxy) and
// corrects it with stages it owns: a levels curve from the measured black and white points, a
// five-point midtone curve that moves the average brightness towards the middle, and a contrast
// stage for pictures that stay flat. "B+W" greys the picture before the contrast stage.
class ImageModAutoEnhance : public ImageMod {
public:
    enum : int32_t { varAmount = 0, varMethod = 1 };
    enum Method : int32_t { methodColor = 0, methodBW = 1 };

    // What the analysis found. Levels are on 0..1; average and spread are the luminance mean and
    // standard deviation of the measured picture after the levels step, on 0..1.
    struct Measurement {
        float lowPoint = 0.0f;
        float highPoint = 1.0f;
        float average = 0.5f;
        float spread = 0.25f;
    };

    ImageModAutoEnhance();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModAutoEnhance>(); }
    bool passIsPure(int32_t) const override { return false; }
    bool needsAnalysis() const override { return true; }
    // Measures the image, then corrects it as apply does, so later stages see the result.
    void analyze(FlexImage8* image, const ImageModApplyContext* context) override;
    void analyze(FlexImageFloat* image, const ImageModApplyContext* context) override;
    // Uses the last measurement. Never measured: the context's proxy is measured first, or with
    // no proxy the image itself.
    void apply(FlexImage8* image, const ImageModApplyContext* context) override;
    void apply(FlexImageFloat* image, const ImageModApplyContext* context) override;

    // Black and white points, average and spread of a picture, from its luminance histogram.
    template <typename Sample>
    static Measurement measure(const FlexImageT<Sample>& image);

    // The corrections derived from a measurement: e moves the midtones (positive brightens),
    // q strengthens the contrast stage.
    static float midtoneCorrection(const Measurement& m);
    static float contrastStrength(const Measurement& m);

    const Measurement& measurement() const { return measured; }
    bool hasMeasurement() const { return isMeasured; }
    void setMeasurement(const Measurement& m)
    {
        measured = m;
        isMeasured = true;
    }

private:
    template <typename Sample>
    void correct(FlexImageT<Sample>* image, const ImageModApplyContext* context);

    ImageModToneCurve levelsCurve;
    ImageModToneCurve midtoneCurve;
    ImageModAdvancedContrast contrastStage;
    ImageModSaturation greyStage;
    Measurement measured;
    bool isMeasured = false;
};
