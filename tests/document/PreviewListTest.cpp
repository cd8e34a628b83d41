// The lists a hover preview runs: crop and size stay out, and the hovered mod lands where a click
// on its panel row would put it in the tray.
#include "document/core/PreviewList.h"

#include <gtest/gtest.h>

namespace {

// A tile with a chosen group and tags; "Id" tells the clones apart.
class PlacedMod : public ImageMod {
public:
    PlacedMod(int32_t id = 0, int32_t groupNumber = 1, std::vector<int32_t> tagList = {})
        : ImageMod("Placed", ""), groupValue(groupNumber)
    {
        addFloat("Id", float(id), 0.0f, 1000.0f);
        tags = std::move(tagList);
    }
    std::unique_ptr<ImageMod> newInstance() const override
    {
        return std::make_unique<PlacedMod>(0, groupValue, tags);
    }
    int32_t group() const override { return groupValue; }
    int32_t id() const { return int32_t(floatValue(0)); }

private:
    int32_t groupValue;
};

std::vector<int32_t> ids(const std::vector<std::unique_ptr<ImageMod>>& list)
{
    std::vector<int32_t> out;
    for (const auto& m : list)
        out.push_back(static_cast<const PlacedMod&>(*m).id());
    return out;
}

struct Tray {
    std::vector<std::unique_ptr<PlacedMod>> owned;
    PlacedMod* add(int32_t id, int32_t group = 1, std::vector<int32_t> tags = {}, bool pinned = false)
    {
        owned.push_back(std::make_unique<PlacedMod>(id, group, std::move(tags)));
        owned.back()->pinned = pinned;
        return owned.back().get();
    }
    std::vector<ImageMod*> flat() const
    {
        std::vector<ImageMod*> out;
        for (const auto& m : owned)
            out.push_back(m.get());
        return out;
    }
};

} // namespace

TEST(PreviewList, CropAndSizeAreLeftOutAndTheRestIsClonedInOrder)
{
    Tray t;
    t.add(1, 0, {0}); // crop
    t.add(2);
    t.add(3, 2, {1}); // size
    t.add(4, 2, {4}); // border stays: it draws the frame of the preview too
    t.add(5, 1, {7});
    std::vector<ImageMod*> flat = t.flat();
    flat.insert(flat.begin() + 2, nullptr);
    const auto clones = previewClones(flat);
    EXPECT_EQ(ids(clones), (std::vector<int32_t>{2, 4, 5}));
    for (const auto& c : clones)
        for (const auto& m : t.owned)
            EXPECT_NE(c.get(), m.get()) << "a preview never runs a live mod";
    EXPECT_TRUE(isLeftOutOfPreview(*t.owned[0]));
    EXPECT_TRUE(isLeftOutOfPreview(*t.owned[2]));
    EXPECT_FALSE(isLeftOutOfPreview(*t.owned[3]));
    EXPECT_TRUE(previewClones({}).empty());
}

TEST(PreviewList, HoveredModGoesAfterItsGroupAndBeforeLaterGroups)
{
    Tray t;
    t.add(1);
    t.add(2);
    t.add(3, 2);
    auto list = previewClones(t.flat());
    const PlacedMod plain(9, 1);
    EXPECT_EQ(placeHoveredMod(list, plain, PreviewPlacement::Append), 2);
    EXPECT_EQ(ids(list), (std::vector<int32_t>{1, 2, 9, 3}));

    // A group-2 mod goes at the very end; a group-0 mod first.
    EXPECT_EQ(placeHoveredMod(list, PlacedMod(10, 2), PreviewPlacement::Append), 4);
    EXPECT_EQ(placeHoveredMod(list, PlacedMod(11, 0), PreviewPlacement::Append), 0);
    EXPECT_EQ(ids(list), (std::vector<int32_t>{11, 1, 2, 9, 3, 10}));

    std::vector<std::unique_ptr<ImageMod>> empty;
    EXPECT_EQ(placeHoveredMod(empty, plain, PreviewPlacement::ReplaceSlot), 0);
    EXPECT_EQ(ids(empty), (std::vector<int32_t>{9}));
}

TEST(PreviewList, TagsDecideWhatTheHoveredModReplaces)
{
    Tray t;
    t.add(1, 1, {5});
    t.add(2, 1, {6}, true); // pinned
    t.add(3, 1, {5, 6});
    t.add(4);
    const PlacedMod hovered(9, 1, {5, 6});

    auto append = previewClones(t.flat());
    placeHoveredMod(append, hovered, PreviewPlacement::Append);
    // Appending, a pinned holder of the tag stays.
    EXPECT_EQ(ids(append), (std::vector<int32_t>{2, 4, 9}));

    auto slot = previewClones(t.flat());
    placeHoveredMod(slot, hovered, PreviewPlacement::ReplaceSlot);
    // Replacing the slot takes pinned holders too; untagged tiles stay.
    EXPECT_EQ(ids(slot), (std::vector<int32_t>{4, 9}));

    auto all = previewClones(t.flat());
    placeHoveredMod(all, PlacedMod(8), PreviewPlacement::ReplaceAll);
    // A preset replacing the tray keeps only the pinned tiles.
    EXPECT_EQ(ids(all), (std::vector<int32_t>{2, 8}));
}

TEST(PreviewList, TheHoveredModIsACopy)
{
    std::vector<std::unique_ptr<ImageMod>> list;
    PlacedMod hovered(7);
    hovered.enabled = false;
    placeHoveredMod(list, hovered, PreviewPlacement::Append);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_NE(list[0].get(), &hovered);
    EXPECT_TRUE(list[0]->isEqual(hovered));
    const std::vector<ImageMod*> raw = rawModList(list);
    ASSERT_EQ(raw.size(), 1u);
    EXPECT_EQ(raw[0], list[0].get());
}
