#include "document/UndoCommandChangeImage.h"

#include "document/MVMediaWidget.h"
#include "document/core/SpotHeal.h"

#include <mutex>

UndoCommandChangeImage::UndoCommandChangeImage(FlexImageFloat* image, std::unique_ptr<FlexImageFloat> savedPixels,
                                               MVMediaWidget* viewer, int32_t x, int32_t y)
    : image(image), savedPixels(std::move(savedPixels)), viewer(viewer), x(x), y(y)
{
}

bool UndoCommandChangeImage::execute()
{
    // The pixels were saved before the change; nothing more to do now.
    return image != nullptr && savedPixels && !savedPixels->isEmpty();
}

bool UndoCommandChangeImage::undo()
{
    return swap();
}

bool UndoCommandChangeImage::redo()
{
    return swap();
}

bool UndoCommandChangeImage::swap()
{
    if (!image || !savedPixels)
        return false;
    bool swapped = false;
    if (viewer) {
        std::lock_guard<std::mutex> source(viewer->sourceMutex);
        if (viewer->sourceImage.get() != image)
            return false;
        swapped = swapImageRect(*image, *savedPixels, x, y);
    } else {
        swapped = swapImageRect(*image, *savedPixels, x, y);
    }
    if (swapped)
        refreshAfterSourceChange(viewer);
    return swapped;
}

void refreshAfterSourceChange(MVMediaWidget* viewer)
{
    if (!viewer)
        return;
    {
        std::lock_guard<std::mutex> lock(viewer->stateMutex);
        viewer->needsResample = true;
        viewer->flushCache = true;
        viewer->previewBaseStale = true;
    }
    viewer->requestProcessing();
}
