#include "mods/ImageModAspectRatio.h"

#include "core/ImageModVariableDataChoice.h"

ImageModAspectRatio::ImageModAspectRatio() : ImageModSize2Pair("Aspect Ratio", "Aspect Ratio")
{
    toolTip = "Specify the desired final aspect ratio for the output image.";
    addChoice("Aspect", {"None", "Square", "7:6", "5:4", "4:3", "7:5", "3:2", "5:3", "16:10", "16:9", "1.85:1", "2:1",
                         "2.39:1", "Custom"},
              0);
    addFloat("Custom Aspect", 1.0f, 0.01f, 100.0f, 0.25f, 4.0f)->visible = false;
}

std::unique_ptr<ImageMod> ImageModAspectRatio::newInstance() const
{
    return std::make_unique<ImageModAspectRatio>();
}

bool ImageModAspectRatio::passIsPure(int32_t) const
{
    return false;
}

void ImageModAspectRatio::variableChanged(int32_t index)
{
    if (index != 0)
        return;
    if (ImageModVariable* custom = variableAt(1))
        custom->visible = choiceIndex(0) == customIndex;
    refreshRequested = true;
}

bool ImageModAspectRatio::consumeRefreshRequest()
{
    const bool was = refreshRequested;
    refreshRequested = false;
    return was;
}

float ImageModAspectRatio::aspectForLabel(const std::string& label, float custom)
{
    struct Entry {
        const char* text;
        float value;
    };
    static const Entry table[] = {
        {"Square", 1.0f},     {"7:6", 7.0f / 6.0f}, {"5:4", 1.25f},    {"4:3", 4.0f / 3.0f},  {"7:5", 1.4f},
        {"3:2", 1.5f},        {"5:3", 5.0f / 3.0f}, {"16:10", 1.6f},   {"16:9", 16.0f / 9.0f}, {"1.85:1", 1.85f},
        {"2:1", 2.0f},        {"2.39:1", 2.39f},
    };
    for (const Entry& e : table) {
        if (label == e.text)
            return e.value;
    }
    if (label == "Custom")
        return custom > 0.0f ? custom : 0.0f;
    return 0.0f;
}

float ImageModAspectRatio::aspectValue() const
{
    const ImageModVariable* choice = variableAt(0);
    return aspectForLabel(choice ? choice->currentLabel() : std::string(), floatValue(1));
}

void ImageModAspectRatio::computeSize(float w, float h, float& computedWidth, float& computedHeight) const
{
    computedWidth = w;
    computedHeight = h;
    const float r = aspectValue();
    if (!(r > 0.0f))
        return;
    // A landscape ratio turns for a portrait picture.
    const float a = w < h ? 1.0f / r : r;
    if (w / a < computedHeight)
        computedHeight = w / a;
    else if (h * a < computedWidth)
        computedWidth = h * a;
}
