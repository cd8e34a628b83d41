#pragma once
#include "core/ImageModVariableData.h"

#include <string>
#include <vector>

// labelSets[0] are the labels shown; further sets are older spellings at the same indices,
// accepted when a file is read.
class ImageModVariableDataChoice : public ImageModVariableData {
public:
    // What a file gets when it forces a variable to a choice.
    ImageModVariableDataChoice() : labelSets{{"Default"}} {}
    explicit ImageModVariableDataChoice(std::vector<std::string> labels, int32_t selected = 0)
        : labelSets{std::move(labels)}, index(selected)
    {
    }

    int32_t kind() const override { return kVariableChoice; }
    std::unique_ptr<ImageModVariableData> clone() const override
    {
        return std::unique_ptr<ImageModVariableData>(new ImageModVariableDataChoice(*this));
    }
    bool isEqual(const ImageModVariableData& other) const override
    {
        return other.kind() == kVariableChoice && static_cast<const ImageModVariableDataChoice&>(other).index == index;
    }

    // The shown label of `index`, empty when out of range.
    std::string currentLabel() const
    {
        if (labelSets.empty() || index < 0 || size_t(index) >= labelSets[0].size())
            return {};
        return labelSets[0][size_t(index)];
    }
    int32_t labelCount() const { return labelSets.empty() ? 0 : int32_t(labelSets[0].size()); }
    // Index of text in any label set, -1 when unknown.
    int32_t indexOfLabel(const std::string& text) const
    {
        for (const auto& set : labelSets) {
            for (size_t i = 0; i < set.size(); ++i) {
                if (set[i] == text)
                    return int32_t(i);
            }
        }
        return -1;
    }

    std::vector<std::vector<std::string>> labelSets;
    int32_t index = 0;
};
