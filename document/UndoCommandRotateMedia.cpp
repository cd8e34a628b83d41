#include "document/UndoCommandRotateMedia.h"

#include "document/MVMediaWidget.h"
#include "document/core/QuarterTurn.h"

#include <mutex>

bool turnViewerSource(MVMediaWidget* viewer, bool clockwise)
{
    if (!viewer)
        return false;
    int32_t w = 0, h = 0;
    {
        std::lock_guard<std::mutex> source(viewer->sourceMutex);
        if (!viewer->sourceImage || !turnQuarter(*viewer->sourceImage, clockwise))
            return false;
        w = viewer->sourceImage->width;
        h = viewer->sourceImage->height;
    }
    std::vector<std::unique_ptr<ImageMod>> clones;
    {
        std::lock_guard<std::mutex> lock(viewer->stateMutex);
        viewer->sourceWidth = viewer->frameWidth = w;
        viewer->sourceHeight = viewer->frameHeight = h;
        viewer->needsResample = true;
        viewer->flushCache = true;
        viewer->previewBaseStale = true;
        for (const auto& m : viewer->mods)
            clones.push_back(cloneMod(*m));
    }
    // Handing the viewer its own list again recomputes the output size and the layout; setMods
    // drops its clones first, so it gets copies of them.
    std::vector<ImageMod*> list;
    for (const auto& c : clones)
        list.push_back(c.get());
    viewer->setMods(list);
    viewer->layoutImage();
    viewer->update();
    return true;
}

UndoCommandRotateMedia::UndoCommandRotateMedia(MVMediaWidget* viewer, bool clockwise, std::function<void(bool)> onTurn)
    : viewer(viewer), clockwise(clockwise), onTurn(std::move(onTurn))
{
}

bool UndoCommandRotateMedia::turn(bool cw)
{
    if (!viewer)
        return false;
    {
        std::lock_guard<std::mutex> source(viewer->sourceMutex);
        if (!image || viewer->sourceImage.get() != image)
            return false;
    }
    if (!turnViewerSource(viewer, cw))
        return false;
    if (onTurn)
        onTurn(cw);
    return true;
}

bool UndoCommandRotateMedia::execute()
{
    if (!viewer)
        return false;
    {
        std::lock_guard<std::mutex> source(viewer->sourceMutex);
        image = viewer->sourceImage.get();
    }
    return turn(clockwise);
}

bool UndoCommandRotateMedia::undo()
{
    return turn(!clockwise);
}

bool UndoCommandRotateMedia::redo()
{
    return turn(clockwise);
}
