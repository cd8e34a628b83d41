#include "document/MVImageWithProcessing.h"

#include "desktop_only/qtImageConverters.h"
#include "document/core/GeometryResampling.h"
#include "document/core/ModSequenceRunner.h"
#include "ui/DevicePixelRatio.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>

MVImageWithProcessing::MVImageWithProcessing(FlexImageFloat* source, QWidget* parent)
    : QWidget(parent), sourceImage(source), runner(std::make_unique<ModSequenceRunner>(true, false, 128, 0.5f)),
      workingImage(std::make_unique<FlexImageFloat>(10, 10, 3))
{
}

MVImageWithProcessing::~MVImageWithProcessing()
{
    waitForIdle();
}

void MVImageWithProcessing::waitForIdle()
{
    std::unique_lock<std::mutex> lock(threadsMutex);
    threadsDone.wait(lock, [this] { return runningThreads == 0; });
}

QImage MVImageWithProcessing::resultCopy()
{
    std::lock_guard<std::mutex> lock(mutex);
    return resultImage ? resultImage->copy() : QImage();
}

void MVImageWithProcessing::startProcessing(const std::vector<ImageMod*>& modList)
{
    std::vector<std::unique_ptr<ImageMod>> clones;
    clones.reserve(modList.size());
    for (ImageMod* m : modList)
        if (m)
            clones.push_back(cloneMod(*m));
    {
        std::lock_guard<std::mutex> lock(threadsMutex);
        ++runningThreads;
    }
    // The size is read here, on the widget's thread.
    const int32_t tw = std::max(1, int32_t(width() * gDevicePixelRatio));
    const int32_t th = std::max(1, int32_t(height() * gDevicePixelRatio));
    std::thread(&MVImageWithProcessing::processingThread, this, std::move(clones), tw, th).detach();
}

void MVImageWithProcessing::processingThread(MVImageWithProcessing* w, std::vector<std::unique_ptr<ImageMod>> clones,
                                             int32_t tw, int32_t th)
{
    {
        std::lock_guard<std::mutex> lock(w->mutex);
        if (w->sourceImage && !w->sourceImage->isEmpty() && w->runner) {
            w->state = 1;
            if (!w->workingImage)
                w->workingImage = std::make_unique<FlexImageFloat>(10, 10, 3);
            std::vector<ImageMod*> list;
            for (const auto& c : clones)
                list.push_back(c.get());
            // The geometry tiles act here; a geometry that leaves nothing falls back to a plain fit.
            if (!geometryResample(*w->sourceImage, *w->workingImage, list, tw, th, false)) {
                const double s = std::min(double(tw) / w->sourceImage->width, double(th) / w->sourceImage->height);
                w->workingImage->resize(std::max(1, int32_t(std::lround(w->sourceImage->width * s))),
                                        std::max(1, int32_t(std::lround(w->sourceImage->height * s))),
                                        w->sourceImage->channels);
                w->workingImage->resampleFrom(*w->sourceImage);
            }
            w->runner->run(list, w->workingImage.get(), nullptr, -1, 0, nullptr);
            while (w->runner->isBusy())
                std::this_thread::sleep_for(std::chrono::milliseconds(10));

            const int32_t ww = w->workingImage->width, wh = w->workingImage->height;
            if (w->resultImage && (w->resultImage->width() != ww || w->resultImage->height() != wh))
                w->resultImage.reset();
            if (!w->resultImage)
                w->resultImage = std::make_unique<QImage>(ww, wh, QImage::Format_ARGB32);
            w->resultImage->fill(Qt::black);
            copyContentsIntoQtImage(*w->workingImage, *w->resultImage, 0, 0, nullptr);
            w->state = 3;
        }
    }
    clones.clear();
    QMetaObject::invokeMethod(w, "update", Qt::QueuedConnection);
    std::lock_guard<std::mutex> lock(w->threadsMutex);
    --w->runningThreads;
    w->threadsDone.notify_all();
}

void MVImageWithProcessing::paintEvent(QPaintEvent*)
{
    std::lock_guard<std::mutex> lock(mutex);
    if (!resultImage || resultImage->isNull())
        return;
    const float d = gDevicePixelRatio > 0.0f ? gDevicePixelRatio : 1.0f;
    const double w = resultImage->width() / d, h = resultImage->height() / d;
    QPainter p(this);
    p.drawImage(QRectF(std::floor((width() - w) * 0.5), std::floor((height() - h) * 0.5), w, h), *resultImage);
}
