#include "document/UndoCommandFilterSequence.h"

#include "core/ImageMod.h"
#include "ui/TrayWidget.h"

namespace {

void cloneInto(std::vector<std::unique_ptr<ImageMod>>& out, const ImageMod* mod)
{
    if (!mod)
        return;
    std::unique_ptr<ImageMod> copy = cloneMod(*mod);
    copy->loadResources();
    out.push_back(std::move(copy));
}

} // namespace

UndoCommandFilterSequence::UndoCommandFilterSequence(TrayWidget* owner) : tray(owner)
{
    if (!tray)
        return;
    for (const ImageMod* m : tray->rootTiles())
        cloneInto(tiles, m);
    for (const auto& m : tray->hiddenMods)
        cloneInto(hiddenMods, m.get());
}

bool UndoCommandFilterSequence::undo()
{
    if (!tray)
        return false;
    // The stored clones become the live tiles and the live ones become the snapshot: the swap is
    // its own inverse, so redo runs the same step.
    tray->swapSequence(tiles, hiddenMods);
    return true;
}
