#include "document/MVPreviewPanel.h"

#include "desktop_only/qtImageConverters.h"
#include "document/core/GeometryResampling.h"
#include "document/core/ModSequenceRunner.h"
#include "document/core/PreviewList.h"
#include "media/ColorTransformSet.h"
#include "ui/DevicePixelRatio.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmap>

#include <algorithm>
#include <cmath>
#include <thread>

namespace {

// The border tiles draw the picture into a new frame: only then does a pass need the resampler.
bool needsGeometry(const std::vector<ImageMod*>& list)
{
    for (const ImageMod* m : list)
        if (m && m->enabled && std::find(m->tags.begin(), m->tags.end(), 4) != m->tags.end())
            return true;
    return false;
}

// The same margin the viewer keeps around a fitted picture.
constexpr double kFitMargin = 20.0;

} // namespace

MVPreviewPanel::MVPreviewPanel(QWidget* parent)
    : QWidget(parent), runner(std::make_unique<ModSequenceRunner>(true, false, 128, 0.5f))
{
    setAttribute(Qt::WA_OpaquePaintEvent, true);
    backdrop = QPixmap(QStringLiteral(":/img/main_bg.png"));
    // The preview only shows: the pointer stays with the panel row that asked for it.
    setAttribute(Qt::WA_TransparentForMouseEvents, true);
    connect(this, &MVPreviewPanel::resultReadySignal, this, &MVPreviewPanel::resultReady, Qt::QueuedConnection);
    hide();
}

MVPreviewPanel::~MVPreviewPanel()
{
    waitForIdle();
}

void MVPreviewPanel::showPreview(std::vector<std::unique_ptr<ImageMod>> list, const FlexImageFloat* newBase,
                                 std::shared_ptr<ColorTransformSet> transform, const QString& text)
{
    std::unique_ptr<FlexImageFloat> baseCopy;
    if (newBase && !newBase->isEmpty()) {
        baseCopy = std::make_unique<FlexImageFloat>();
        baseCopy->copyFrom(*newBase, true);
    }
    active = true;
    label = text;
    ++serial;
    bool start = false;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        pendingList = std::move(list);
        if (baseCopy)
            pendingBase = std::move(baseCopy);
        pendingTransform = std::move(transform);
        pendingSerial = serial;
        processAgain = true;
        if (!workerRunning) {
            workerRunning = true;
            start = true;
        }
    }
    if (start)
        std::thread(&MVPreviewPanel::workerRoutine, this).detach();
}

void MVPreviewPanel::endPreview()
{
    active = false;
    hide();
}

void MVPreviewPanel::flushCache()
{
    // Done by the worker before its next pass: a flush here would wait for a pass under way.
    std::lock_guard<std::mutex> lock(stateMutex);
    flushPending = true;
}

void MVPreviewPanel::waitForIdle()
{
    std::unique_lock<std::mutex> lock(stateMutex);
    workerDone.wait(lock, [this] { return !workerRunning; });
}

QImage MVPreviewPanel::resultCopy()
{
    std::lock_guard<std::mutex> lock(displayMutex);
    return result.copy();
}

int MVPreviewPanel::resultSerial()
{
    std::lock_guard<std::mutex> lock(displayMutex);
    return resultNumber;
}

void MVPreviewPanel::workerRoutine(MVPreviewPanel* panel)
{
    while (panel->processOnce()) {
    }
}

bool MVPreviewPanel::processOnce()
{
    std::vector<std::unique_ptr<ImageMod>> list;
    std::shared_ptr<ColorTransformSet> transform;
    int number = 0;
    bool flush = false;
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        processAgain = false;
        list = std::move(pendingList);
        pendingList.clear();
        transform = pendingTransform;
        number = pendingSerial;
        if (pendingBase) {
            base = std::move(pendingBase);
            // The cache holds pixels of the old base.
            flushPending = true;
        }
        flush = flushPending;
        flushPending = false;
    }
    if (flush)
        runner->flushCache();
    if (base && !base->isEmpty()) {
        const std::vector<ImageMod*> raw = rawModList(list);
        bool drawn = false;
        if (needsGeometry(raw))
            drawn = geometryResample(*base, working, raw, base->width, base->height, false);
        if (!drawn)
            working.copyFrom(*base, true);
        runner->run(raw, &working, nullptr, -1, 0, nullptr);

        QImage picture(working.width, working.height, QImage::Format_ARGB32);
        copyContentsIntoQtImage(working, picture, 0, 0, transform.get());
        {
            std::lock_guard<std::mutex> lock(displayMutex);
            result = std::move(picture);
            resultNumber = number;
        }
        emit resultReadySignal(number);
    }
    list.clear();
    std::lock_guard<std::mutex> lock(stateMutex);
    if (processAgain)
        return true;
    workerRunning = false;
    workerDone.notify_all();
    return false;
}

void MVPreviewPanel::resultReady(int)
{
    if (!active)
        return;
    const bool first = isHidden();
    if (first) {
        show();
        raise();
    }
    update();
    if (first)
        emit previewShown();
}

QRectF MVPreviewPanel::pictureRect()
{
    QSize s;
    {
        std::lock_guard<std::mutex> lock(displayMutex);
        s = result.size();
    }
    if (s.isEmpty())
        return QRectF();
    const double d = gDevicePixelRatio > 0.0f ? double(gDevicePixelRatio) : 1.0;
    double w = s.width() / d, h = s.height() / d;
    // A base made for a larger area is fitted down, never up.
    const double room = std::min((width() - kFitMargin) / w, (height() - kFitMargin) / h);
    if (room < 1.0 && room > 0.0) {
        w *= room;
        h *= room;
    }
    w = std::trunc(w);
    h = std::trunc(h);
    return QRectF(std::trunc((width() - w) * 0.5), std::trunc((height() - h) * 0.5), w, h);
}

void MVPreviewPanel::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    // The window's own backdrop, lined up with the one around the panel.
    if (!backdrop.isNull())
        p.drawTiledPixmap(rect(), backdrop, QPoint(x() % backdrop.width(), y() % backdrop.height()));
    else
        p.fillRect(rect(), QColor(0x26, 0x26, 0x26));
    const QRectF target = pictureRect();
    {
        std::lock_guard<std::mutex> lock(displayMutex);
        if (result.isNull())
            return;
        p.setRenderHint(QPainter::SmoothPixmapTransform, true);
        p.drawImage(target, result);
    }
    if (label.isEmpty())
        return;
    // A quiet tag at the top of the picture says that this is a preview, and of what.
    QFont f = font();
    f.setPixelSize(12);
    f.setBold(true);
    p.setFont(f);
    const QString text = QStringLiteral("Preview  \u2022  ") + label;
    const QFontMetrics fm(f);
    const int tw = fm.horizontalAdvance(text) + 24;
    const QRectF pill(std::round(target.center().x() - tw * 0.5), target.top() + 12.0, tw, 24.0);
    p.setRenderHint(QPainter::Antialiasing, true);
    QPainterPath path;
    path.addRoundedRect(pill, 12.0, 12.0);
    p.fillPath(path, QColor(20, 20, 20, 200));
    p.setPen(QPen(QColor(0xe3, 0x96, 0x3e, 200), 1.0));
    p.drawPath(path);
    p.setPen(QColor(0xf2, 0xf2, 0xf2));
    p.drawText(pill, Qt::AlignCenter, text);
}
