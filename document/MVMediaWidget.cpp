#include "document/MVMediaWidget.h"

#include "core/ParallelFor.h"
#include "desktop_only/qtImageConverters.h"
#include "document/core/GeometryResampling.h"
#include "document/core/ModSequenceRunner.h"
#include "media/ColorTransformSet.h"
#include "media/ImageModColorProfile.h"
#include "mods/GeometryCalculation.h"
#include "mods/ImageModSize2.h"
#include "ui/DevicePixelRatio.h"

#include <QtGui/QCursor>
#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <thread>

namespace {

bool carriesGeometryTag(const ImageMod& mod)
{
    for (int32_t t : mod.tags)
        if (t == kTagCrop || t == kTagSize || t == kTagBorder)
            return true;
    return false;
}

// Relative comparison, absolute near zero: a repeated zoom at one place keeps its first anchor.
bool sameAnchor(double a, double b)
{
    if (a == 0.0 || b == 0.0)
        return std::abs(a - b) <= 1e-12;
    return std::abs(a - b) <= 1e-12 * std::max(std::abs(a), std::abs(b));
}

float devicePixelRatioOrOne()
{
    // A zero ratio would divide every size by zero; the start-up code never leaves it so.
    Q_ASSERT(gDevicePixelRatio != 0.0f);
    return gDevicePixelRatio > 0.0f ? gDevicePixelRatio : 1.0f;
}

void loadPlaceholder(FlexImageFloat& image)
{
    QImage art(QStringLiteral(":/img/default_image_thumb.png"));
    if (art.isNull())
        return;
    art = art.convertToFormat(QImage::Format_ARGB32);
    image.resize(art.width(), art.height(), 4);
    if (image.isEmpty())
        return;
    for (int32_t y = 0; y < image.height; ++y) {
        const QRgb* src = reinterpret_cast<const QRgb*>(art.constScanLine(y));
        float* dst = image.row(y);
        for (int32_t x = 0; x < image.width; ++x, dst += 4) {
            dst[0] = float(qRed(src[x]));
            dst[1] = float(qGreen(src[x]));
            dst[2] = float(qBlue(src[x]));
            dst[3] = float(qAlpha(src[x]));
        }
    }
}

} // namespace

MVMediaWidget::MVMediaWidget(QWidget* parent)
    : QWidget(parent),
      displayImage(std::make_unique<QImage>(0, 0, QImage::Format_RGB32)),
      runner(std::make_unique<ModSequenceRunner>(true, false, 256, 0.5f))
{
    qRegisterMetaType<VideoLoaderSaverTime>("VideoLoaderSaverTime");
    loadPlaceholder(placeholderImage);
    updateDisplayTimer.setSingleShot(true);
    updateDisplayTimer.setInterval(updateDisplayInterval);
    hiResTimer.setSingleShot(true);
    hiResTimer.setInterval(hiResInterval);
    connect(&updateDisplayTimer, &QTimer::timeout, this, &MVMediaWidget::updateDisplayTimerFired);
    connect(&hiResTimer, &QTimer::timeout, this, &MVMediaWidget::hiResRefreshTimerFired);
    // Both come from the worker: queued onto this widget's thread.
    connect(this, &MVMediaWidget::repaintDisplaySignal, this, &MVMediaWidget::repaintDisplaySlot,
            Qt::QueuedConnection);
    connect(this, &MVMediaWidget::startHiResTimerSignal, this, [this] { hiResTimer.start(hiResInterval); },
            Qt::QueuedConnection);
}

MVMediaWidget::~MVMediaWidget()
{
    updateDisplayTimer.stop();
    hiResTimer.stop();
    // A pass under way still uses the images; wait for it to hand the worker back. The worker
    // hands it back while it still holds the state lock and unlocks after: take that lock once
    // too, or the mutex could be destroyed under the worker's unlock.
    workerBusy.acquire();
    { std::lock_guard<std::mutex> lock(stateMutex); }
    workerBusy.release();
}

// ---------------------------------------------------------------------------------------------
// Requests

void MVMediaWidget::requestProcessing()
{
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        processAgain = true;
        resolutionDivisor = 1.0f;
    }
    if (workerBusy.try_acquire()) {
        hiResTimer.stop();
        std::thread(&MVMediaWidget::workerRoutine, this).detach();
    }
}

void MVMediaWidget::setSource(FlexImageFloat* image)
{
    if (image == nullptr || image->isEmpty()) {
        delete image;
        return;
    }
    {
        std::lock_guard<std::mutex> source(sourceMutex);
        sourceImage.reset(image);
    }
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        flushCache = true;
        previewBaseStale = true;
        needsResample = true;
        hasMedia = true;
        sourceWidth = frameWidth = image->width;
        sourceHeight = frameHeight = image->height;
        updateOutputSize();
    }
    layoutImage();
    update();
    requestProcessing();
}

void MVMediaWidget::setMods(const std::vector<ImageMod*>& list)
{
    bool sizeChanged = false;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        mods.clear();
        mods.reserve(list.size());
        for (ImageMod* m : list)
            if (m)
                mods.push_back(cloneMod(*m));
        const ImageModColorProfile* profile = findColorProfileMod(list);
        displayTransform = profile && profile->enabled && profile->transformSet && profile->transformSet->converts()
            ? profile->transformSet
            : nullptr;
        const int32_t oldWidth = outputWidth, oldHeight = outputHeight;
        updateOutputSize();
        sizeChanged = oldWidth != outputWidth || oldHeight != outputHeight;
        if (sizeChanged)
            needsResample = true;
    }
    if (sizeChanged)
        layoutImage();
    requestProcessing();
}

void MVMediaWidget::setApplyGeometry(bool apply)
{
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        if (applyGeometry == apply)
            return;
        applyGeometry = apply;
        needsResample = true;
        updateOutputSize();
    }
    layoutImage();
    requestProcessing();
}

void MVMediaWidget::clearMedia()
{
    {
        std::lock_guard<std::mutex> source(sourceMutex);
        std::lock_guard<std::mutex> display(displayMutex);
        std::lock_guard<std::mutex> lock(stateMutex);
        previewBaseStale = true;
        sourceImage.reset();
        hasMedia = false;
        sourceWidth = sourceHeight = outputWidth = outputHeight = frameWidth = frameHeight = -1;
        displayImage = std::make_unique<QImage>(0, 0, QImage::Format_RGB32);
        outputImage.reset();
        scaledImage.reset();
    }
    runner->flushCache();
    if (histogramFeed)
        histogramFeed(FlexImageFloat()); // an empty picture: the scopes show no data
    update();
}

void MVMediaWidget::updateOutputSize()
{
    if (sourceWidth < 1 || sourceHeight < 1) {
        outputWidth = outputHeight = -1;
        return;
    }
    std::vector<ImageMod*> list;
    list.reserve(mods.size());
    for (const auto& m : mods)
        if (applyGeometry || !carriesGeometryTag(*m))
            list.push_back(m.get());
    const GeometryResult g = computeGeometry(sourceWidth, sourceHeight, list);
    outputWidth = g.width;
    outputHeight = g.height;
}

bool MVMediaWidget::isProcessing()
{
    if (!workerBusy.try_acquire())
        return true;
    workerBusy.release();
    return false;
}

QSize MVMediaWidget::outputPixelSize()
{
    std::lock_guard<std::mutex> lock(stateMutex);
    return QSize(outputWidth, outputHeight);
}

QImage MVMediaWidget::displayCopy()
{
    std::lock_guard<std::mutex> display(displayMutex);
    return displayImage ? displayImage->copy() : QImage();
}

void MVMediaWidget::updateDisplayTimerFired()
{
    requestProcessing();
}

void MVMediaWidget::hiResRefreshTimerFired()
{
    requestProcessing();
}

void MVMediaWidget::repaintDisplaySlot()
{
    update();
}

// ---------------------------------------------------------------------------------------------
// The worker

void MVMediaWidget::workerRoutine(MVMediaWidget* w)
{
    {
        std::lock_guard<std::mutex> lock(w->stateMutex);
        if (!w->hasMedia) {
            // Handed back under the state lock, so a request made now finds the worker free.
            w->workerBusy.release();
            return;
        }
    }
    while (w->processOnce()) {
    }
}

bool MVMediaWidget::processOnce()
{
    // 1. Take the state and private clones.
    bool resample, newFrame, flush, suspend;
    float divisor;
    double drawW, drawH;
    int32_t outW, outH;
    std::shared_ptr<ColorTransformSet> transform;
    std::vector<std::unique_ptr<ImageMod>> clones;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        processAgain = false;
        resample = needsResample;
        needsResample = false;
        newFrame = frameChanged;
        frameChanged = false;
        flush = flushCache;
        flushCache = false;
        divisor = resolutionDivisor;
        drawW = drawWidth;
        drawH = drawHeight;
        outW = outputWidth;
        outH = outputHeight;
        transform = displayTransform;
        suspend = suspendRunner;
        clones.reserve(mods.size());
        for (const auto& m : mods)
            if (applyGeometry || !carriesGeometryTag(*m))
                clones.push_back(cloneMod(*m));
    }
    std::vector<ImageMod*> cloneList;
    cloneList.reserve(clones.size());
    for (const auto& c : clones)
        cloneList.push_back(c.get());

    // 2. Video frames: none on this platform; a still photo counts frameChanged as a new frame.

    // 3. Rebuild the working image when asked: as large as the screen needs, never above the output.
    std::unique_lock<std::mutex> source(sourceMutex);
    std::unique_lock<std::mutex> display(displayMutex, std::defer_lock);
    if (resample)
        display.lock();
    bool rebuilt = false;
    if ((resample || newFrame) && outW > 0 && outH > 0 && sourceImage) {
        const float d = devicePixelRatioOrOne();
        int32_t w = int32_t(drawW * d / divisor);
        int32_t h = int32_t(drawH * d / divisor);
        if (w > outW || h > outH || w < 1 || h < 1) {
            w = outW;
            h = outH;
        }
        rebuilt = geometryResample(*sourceImage, scaledImage, cloneList, w, h, false);
    }

    // 4. The visible region and its frame.
    ReferenceFrame frame;
    bool haveRegion = false;
    bool wholeImage = false;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        if (!scaledImage.isEmpty()) {
            int32_t left, top, right, bottom;
            visibleRegion(scaledImage.width, scaledImage.height, left, top, right, bottom);
            const int32_t rw = right - left + 1, rh = bottom - top + 1;
            // A fitted view shows all of scaledImage: the runner then fills outputImage itself,
            // straight from its cache when it has one, so the plain copy would be thrown away.
            wholeImage = left == 0 && top == 0 && rw == scaledImage.width && rh == scaledImage.height && !suspend;
            outputImage.resize(rw, rh, scaledImage.channels);
            if (!outputImage.isEmpty() && !wholeImage) {
                const int32_t ch = scaledImage.channels;
                parallelFor(rh, [&](int32_t y) {
                    std::memcpy(outputImage.row(y), scaledImage.row(top + y) + int64_t(left) * ch,
                                sizeof(float) * size_t(rw) * size_t(ch));
                });
            }
            if (!outputImage.isEmpty()) {
                outputImage.scale = scaledImage.scale;
                frame.originX = left;
                frame.originY = top;
                frame.imageWidth = scaledImage.width;
                frame.imageHeight = scaledImage.height;
                frame.sourceMarginLeft = scaledImage.marginLeft;
                frame.sourceMarginRight = scaledImage.marginRight;
                frame.sourceMarginTop = scaledImage.marginTop;
                frame.sourceMarginBottom = scaledImage.marginBottom;
                frame.scale = divisor * scaledImage.scale;
                haveRegion = true;
            }
        }
    }
    if (flush)
        runner->flushCache();

    if (haveRegion) {
        // 5. Analysis sees the whole picture, whatever part is shown.
        std::unique_ptr<FlexImageFloat> proxy;
        if (sourceImage && std::any_of(clones.begin(), clones.end(), [](const auto& c) { return c->needsAnalysis(); })) {
            proxy = makeAnalysisProxy(*sourceImage, 150);
            frame.proxy = proxy.get();
        }
        // 6. The tiles.
        if (!suspend)
            runner->run(cloneList, wholeImage ? &scaledImage : &outputImage, wholeImage ? &outputImage : nullptr, -1,
                        0, &frame);
        // 7. The proxy goes; the scopes take the processed pixels on this thread.
        frame.proxy = nullptr;
        if (histogramFeed)
            histogramFeed(outputImage);
    }

    // 8.
    cloneList.clear();
    clones.clear();
    if (!resample)
        display.lock();

    // 9. A rebuilt working image means a new, whole display image; then the processed region over it.
    if (!scaledImage.isEmpty()) {
        if (rebuilt || !displayImage || displayImage->width() != scaledImage.width ||
            displayImage->height() != scaledImage.height) {
            displayImage = std::make_unique<QImage>(scaledImage.width, scaledImage.height, QImage::Format_ARGB32);
            copyContentsIntoQtImage(scaledImage, *displayImage, 0, 0, nullptr);
        }
        if (haveRegion) {
            std::lock_guard<std::mutex> lock(stateMutex);
            copyContentsIntoQtImage(outputImage, *displayImage, frame.originX, frame.originY, transform.get());
        }
    }

    // 10.
    display.unlock();
    source.unlock();
    passCounter.fetch_add(1);
    emit repaintDisplaySignal();
    emit displayUpdatedSignal();
    std::lock_guard<std::mutex> lock(stateMutex);
    if (divisor != 1.0f)
        emit startHiResTimerSignal();
    if (processAgain)
        return true;
    workerBusy.release();
    return false;
}

void MVMediaWidget::visibleRegion(int32_t W, int32_t H, int32_t& left, int32_t& top, int32_t& right,
                                  int32_t& bottom) const
{
    if (!(drawWidth > 0.0) || !(drawHeight > 0.0)) {
        left = top = 0;
        right = W - 1;
        bottom = H - 1;
        return;
    }
    left = int32_t((-1.0 - drawX) * W / drawWidth);
    right = int32_t((viewWidth - drawX) * W / drawWidth);
    top = int32_t((-1.0 - drawY) * H / drawHeight);
    bottom = int32_t((viewHeight - drawY) * H / drawHeight);
    left = std::clamp(left, 0, W - 1);
    right = std::clamp(right, 0, W - 1);
    top = std::clamp(top, 0, H - 1);
    bottom = std::clamp(bottom, 0, H - 1);
}

// ---------------------------------------------------------------------------------------------
// The view

void MVMediaWidget::layoutImage()
{
    const float d = devicePixelRatioOrOne();
    const double vw = width(), vh = height();
    {
        std::lock_guard<std::mutex> display(displayMutex);
        std::lock_guard<std::mutex> lock(stateMutex);
        viewWidth = int32_t(vw);
        viewHeight = int32_t(vh);
        if (outputWidth < 1 || outputHeight < 1) {
            drawX = drawY = drawWidth = drawHeight = 0.0;
        } else {
            const double w0 = std::round(double(outputWidth) / d);
            const double h0 = std::round(double(outputHeight) / d);
            double w = w0, h = h0, s = 1.0;
            if (w + 20.0 > vw) {
                s = (vw - 20.0) / w0;
                w = w0 * s;
                h = h0 * s;
            }
            if (h + 20.0 > vh) {
                s = (vh - 20.0) / h0;
                w = w0 * s;
                h = h0 * s;
            }
            // A view narrower than its margin still shows a sliver rather than a negative size.
            if (s <= 0.0) {
                s = 1e-3;
                w = w0 * s;
                h = h0 * s;
            }
            if (fitToWindow) {
                zoom = float(s);
            } else {
                w = w0 * zoom;
                h = h0 * zoom;
            }
            w = std::trunc(w);
            h = std::trunc(h);
            double x = (vw - w) * 0.5, y = (vh - h) * 0.5;
            if (!fitToWindow) {
                const double px = std::trunc(anchorImageX * w + x);
                const double py = std::trunc(anchorImageY * h + y);
                x += std::trunc(vw * anchorViewX) - px;
                y += std::trunc(vh * anchorViewY) - py;
                // Keep a third of the view covered.
                const double tw = double(int32_t(vw) / 3), th = double(int32_t(vh) / 3);
                if (x > vw - tw)
                    x = vw - tw;
                else if (x + w < tw)
                    x = tw - w;
                if (y > vh - th)
                    y = vh - th;
                else if (y + h < th)
                    y = th - h;
            }
            drawX = x;
            drawY = y;
            drawWidth = w;
            drawHeight = h;
        }
    }
    emit imageRepositionedSignal();
}

void MVMediaWidget::zoomTo(float newZoom, float x, float y)
{
    const float d = devicePixelRatioOrOne();
    const double vw = width(), vh = height();
    if (outputWidth < 1 || outputHeight < 1 || vw < 1 || vh < 1)
        return;
    const float fitZoom = float(std::min(vw * d / outputWidth, vh * d / outputHeight));
    if (x < 0.0f || y < 0.0f) {
        const QPoint cursor = mapFromGlobal(QCursor::pos());
        if (x < 0.0f)
            x = float(cursor.x());
        if (y < 0.0f)
            y = float(cursor.y());
    }
    const float oldZoom = zoom;
    zoom = newZoom;
    fitToWindow = false;
    if (newZoom > 0.0f) {
        zoom = std::max(zoom, fitZoom * 0.1f);
    } else {
        fitToWindow = true;
        zoom = fitZoom;
    }
    const double ax = x / vw, ay = y / vh;
    const bool moved = !sameAnchor(ax, anchorViewX) || !sameAnchor(ay, anchorViewY);
    anchorViewX = ax;
    anchorViewY = ay;
    if (moved && drawWidth > 0.0 && drawHeight > 0.0) {
        anchorImageX = (x - drawX) / drawWidth;
        anchorImageY = (y - drawY) / drawHeight;
    }
    if (zoom != oldZoom) {
        {
            std::lock_guard<std::mutex> lock(stateMutex);
            flushCache = true;
            needsResample = true;
        }
        updateDisplayTimer.start(updateDisplayInterval);
    }
    layoutImage();
    update();
}

void MVMediaWidget::wheelEvent(QWheelEvent* e)
{
    double delta = e->pixelDelta().y();
    if (delta == 0.0)
        delta = e->angleDelta().y();
    const float next = float(zoom * (delta * 0.0007 + 1.0));
    if (next == zoom)
        return;
    fitToWindow = false;
    const QPointF at = e->position();
    zoomTo(next, float(at.x()), float(at.y()));
}

void MVMediaWidget::mouseDoubleClickEvent(QMouseEvent* e)
{
    if (zoom < 1.0f)
        zoomTo(1.0f, float(std::round(e->localPos().x())), float(std::round(e->localPos().y())));
    else
        zoomTo(0.0f, -1.0f, -1.0f);
}

void MVMediaWidget::mousePressEvent(QMouseEvent* e)
{
    QWidget::mousePressEvent(e);
    const double x = std::round(e->localPos().x()), y = std::round(e->localPos().y());
    if (drawWidth > 0.0 && drawHeight > 0.0) {
        anchorImageX = (x - drawX) / drawWidth;
        anchorImageY = (y - drawY) / drawHeight;
    }
    emit emptyClickSignal();
}

void MVMediaWidget::mouseMoveEvent(QMouseEvent* e)
{
    QWidget::mouseMoveEvent(e);
    if (e->buttons() == Qt::NoButton || width() < 1 || height() < 1)
        return;
    fitToWindow = false;
    anchorViewX = e->localPos().x() / width();
    anchorViewY = e->localPos().y() / height();
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        flushCache = true;
    }
    layoutImage();
    update();
    updateDisplayTimer.start(updateDisplayInterval);
}

void MVMediaWidget::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        flushCache = true;
    }
    layoutImage();
    if (fitToWindow) {
        std::lock_guard<std::mutex> lock(stateMutex);
        needsResample = true;
    }
    updateDisplayTimer.start(updateDisplayInterval);
}

void MVMediaWidget::paintEvent(QPaintEvent*)
{
    if (!hasMedia)
        return;
    std::lock_guard<std::mutex> display(displayMutex);
    if (!displayImage || displayImage->width() < 1 || displayImage->height() < 1)
        return;
    QPainter p(this);
    const QRectF target(drawX, drawY, drawWidth, drawHeight);
    if (viewRotation != 0.0f) {
        // Turn about the picture's centre and enlarge just enough that the turned picture covers
        // the frame, as the straighten resampler does.
        double a = std::fmod(std::abs(double(viewRotation)), 180.0);
        if (a > 90.0)
            a = 180.0 - a;
        a *= std::numbers::pi / 180.0;
        const double L = std::max(drawWidth, drawHeight) * 0.5, S = std::min(drawWidth, drawHeight) * 0.5;
        const double t = L > 0.0 ? std::atan(S / L) : 0.0;
        const double factor = t > 0.0 ? std::sin(a + t) / std::sin(t) * viewRotationRatio : 1.0;
        const QPointF c = target.center();
        p.translate(c);
        p.rotate(viewRotation);
        p.scale(factor, factor);
        p.translate(-c);
    }
    p.setRenderHint(QPainter::SmoothPixmapTransform, resolutionDivisor != 1.0f);
    p.drawImage(target, *displayImage);
}
