#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"
#include "core/ImageModApplyContext.h"
#include "document/VideoLoaderSaverTime.h"

#include <QtCore/QMetaType>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <semaphore>
#include <vector>

class ModSequenceRunner;
class QImage;
class MVSubWindow;
struct ColorTransformSet;

// One document's picture. The processing side keeps private clones of the document's mods and runs
// them on one detached worker at a time over the part of the picture that is on screen; the view
// side places the result in the widget (fit, zoom about a point, pan) and paints it.
//
// Locks, in the order a worker takes them: workerBusy for its whole life, stateMutex by short
// turns, sourceMutex, displayMutex, stateMutex for the final copy. paintEvent takes displayMutex.
class MVMediaWidget : public QWidget
{
    Q_OBJECT
public:
    explicit MVMediaWidget(QWidget* parent = nullptr);
    ~MVMediaWidget() override;

    // --- processing ---
    // Marks that the state changed; starts a worker unless one runs, which then passes once more.
    void requestProcessing();
    // Takes ownership of the loaded media (null is refused).
    void setSource(FlexImageFloat* image);
    // Clones the document's flat list; picks up its colour profile and the geometry's output size.
    void setMods(const std::vector<ImageMod*>& list);
    // false leaves the crop, size and border tiles out of the passes (modal tools show the whole).
    void setApplyGeometry(bool apply);
    // Drops the media: nothing is processed or painted until the next setSource.
    void clearMedia();
    void seekToFrame(int32_t) {}
    void seekToTime(float) {}

    // True while a worker owns the widget.
    bool isProcessing();
    // The media's size after geometry, -1 without media.
    QSize outputPixelSize();
    // Complete passes since construction (a pass ends with displayUpdatedSignal).
    int32_t finishedPasses() const { return passCounter.load(); }
    // A copy of what is painted, for tests and the pixel inspector.
    QImage displayCopy();

    // --- view ---
    void zoomTo(float newZoom, float x, float y);
    void layoutImage();
    // The part of scaledImage that the widget shows, inclusive ends; under stateMutex.
    void visibleRegion(int32_t scaledWidth, int32_t scaledHeight, int32_t& left, int32_t& top, int32_t& right,
                       int32_t& bottom) const;

    // processing fields
    std::binary_semaphore workerBusy{1}; // owned by the worker thread; taken with try-lock
    std::mutex stateMutex;
    bool applyGeometry = true;
    bool hasMedia = false;
    bool needsResample = false;
    bool frameChanged = false;
    bool flushCache = false;
    bool previewBaseStale = true;
    std::vector<std::unique_ptr<ImageMod>> mods;
    bool processAgain = false;
    int32_t sourceWidth = -1, sourceHeight = -1;
    int32_t outputWidth = -1, outputHeight = -1;
    int32_t frameWidth = -1, frameHeight = -1;
    VideoLoaderSaverTime videoTime, videoStart, videoEnd;
    std::mutex seekMutex, frameMutex;
    std::vector<float> seekTimes;
    std::vector<int32_t> seekFrames;
    void* videoLoader = nullptr; // no video decoder on this platform
    std::mutex sourceMutex;
    std::unique_ptr<FlexImageFloat> sourceImage;
    FlexImageFloat outputImage;
    FlexImageFloat scaledImage;
    FlexImageFloat placeholderImage;
    std::mutex displayMutex;
    std::unique_ptr<QImage> displayImage;
    std::unique_ptr<ModSequenceRunner> runner;
    double drawX = 0.0, drawY = 0.0, drawWidth = 0.0, drawHeight = 0.0;
    QTimer updateDisplayTimer;
    QTimer hiResTimer;
    int32_t updateDisplayInterval = 300;
    int32_t hiResInterval = 300;
    float resolutionDivisor = 1.4f;
    bool suspendRunner = false;
    std::shared_ptr<ColorTransformSet> displayTransform;
    // Called on the worker with the processed region after each pass (the scopes), and with an
    // empty image by clearMedia; set it before the first pass and leave it.
    std::function<void(const FlexImageFloat&)> histogramFeed;

    // view fields
    float viewRotation = 0.0f;
    // Extra scale of the rotated preview, the crop's own ratio while the straighten tool shows.
    float viewRotationRatio = 1.0f;
    float zoom = 1.0f;
    bool fitToWindow = true;
    double anchorImageX = 0.5, anchorImageY = 0.5;
    double anchorViewX = 0.5, anchorViewY = 0.5;

signals:
    void emptyClickSignal();
    void repaintDisplaySignal();
    void displayUpdatedSignal();
    void imageRepositionedSignal();
    void startHiResTimerSignal();
    void frameNudgedSignal(VideoLoaderSaverTime time);

public slots:
    void updateDisplayTimerFired();
    void hiResRefreshTimerFired();
    void repaintDisplaySlot();
    void histogramWindowResized(MVSubWindow*) {}

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

private:
    static void workerRoutine(MVMediaWidget* widget);
    // One pass; true when another was asked for meanwhile.
    bool processOnce();
    // The geometry's output size of the source through the current clones; under stateMutex.
    void updateOutputSize();

    // Widget size as the worker may read it (set on the GUI thread under stateMutex).
    int32_t viewWidth = 0, viewHeight = 0;
    std::atomic<int32_t> passCounter{0};
};

Q_DECLARE_METATYPE(VideoLoaderSaverTime)
