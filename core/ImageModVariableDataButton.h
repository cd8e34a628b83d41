#pragma once
#include "core/ImageModVariableData.h"

#include <string>

// Carries no value: a press reaches the mod through variableChanged. storedText travels in the file.
class ImageModVariableDataButton : public ImageModVariableData {
public:
    ImageModVariableDataButton() = default;
    explicit ImageModVariableDataButton(int32_t buttonId, std::string text = {}) : id(buttonId), storedText(std::move(text)) {}

    int32_t kind() const override { return kVariableButton; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataButton(*this));
    }
    bool isEqual(const ImageModVariableData& other) const override
    {
        if (other.kind() != kVariableButton)
            return false;
        const auto& o = static_cast<const ImageModVariableDataButton&>(other);
        return o.id == id && o.storedText == storedText;
    }

    int32_t id = 0;
    std::string storedText;
    // True only while ImageMod::pressButton delivers a press. variableChanged also runs for a button
    // when a file is read or a frame is set; those leave this false, so they never act as a press.
    // Not saved and not compared.
    bool pressed = false;
};
