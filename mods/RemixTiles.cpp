#include "mods/RemixTiles.h"

#include "core/ImageMod.h"

#include <algorithm>

bool remixTiles(const std::vector<ImageMod*>& mods, float delta, const std::function<void()>& pushUndo)
{
    std::vector<ImageModVariable*> moved;
    bool undoPushed = false;
    for (auto it = mods.rbegin(); it != mods.rend(); ++it) {
        if (!*it)
            continue;
        const std::vector<ImageModVariable*> list = (*it)->variationVariables();
        if (list.empty())
            continue;
        if (!undoPushed) {
            undoPushed = true;
            if (pushUndo)
                pushUndo();
        }
        for (ImageModVariable* v : list) {
            if (!v || std::find(moved.begin(), moved.end(), v) != moved.end())
                continue;
            moved.push_back(v);
            // A variable without a float value counts as 0 and gets one.
            v->setFloatValue(v->floatValue() + delta);
        }
    }
    return undoPushed;
}
