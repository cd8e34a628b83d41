#pragma once
#include "core/ImageModVariableData.h"

#include <string>
#include <vector>

// `selected` holds indices into `labels` in the order the user picked them.
class ImageModVariableDataMultiChoice : public ImageModVariableData {
public:
    ImageModVariableDataMultiChoice() = default;
    ImageModVariableDataMultiChoice(std::vector<std::string> labelList, std::vector<int32_t> selection)
        : labels(std::move(labelList)), selected(std::move(selection))
    {
    }

    int32_t kind() const override { return kVariableMultiChoice; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataMultiChoice(*this));
    }
    bool isEqual(const ImageModVariableData& other) const override
    {
        return other.kind() == kVariableMultiChoice
            && static_cast<const ImageModVariableDataMultiChoice&>(other).selected == selected;
    }

    bool isSelected(int32_t i) const
    {
        for (int32_t s : selected) {
            if (s == i)
                return true;
        }
        return false;
    }

    std::vector<std::string> labels;
    std::vector<int32_t> selected;
};
