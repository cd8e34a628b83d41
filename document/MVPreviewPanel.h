#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <QtCore/QString>
#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class ModSequenceRunner;
struct ColorTransformSet;

// The hover preview: the preview base run through a mod list on a worker of its own and shown
// over the picture area, fitted as the viewer fits its picture. The GUI thread only hands over
// clones and picks up finished pictures; requests made during a pass collapse into one more pass
// with the newest list. The panel appears with its first picture, so there is never an empty
// frame between the viewer and the preview.
class MVPreviewPanel : public QWidget
{
    Q_OBJECT
public:
    explicit MVPreviewPanel(QWidget* parent = nullptr);
    ~MVPreviewPanel() override;

    // Takes the list, copies newBase when given (the base the panel keeps otherwise stays), and
    // asks for a pass. label names what is previewed.
    void showPreview(std::vector<std::unique_ptr<ImageMod>> list, const FlexImageFloat* newBase,
                     std::shared_ptr<ColorTransformSet> transform, const QString& label);
    // Lowers the panel; a pass under way ends unseen.
    void endPreview();
    // Drops the runner's intermediate image (the base changed).
    void flushCache();
    // Between showPreview and endPreview.
    bool isActive() const { return active; }
    // Blocks until no pass runs (tests, destruction).
    void waitForIdle();
    // The last finished picture and the request number it answered (0 before the first).
    QImage resultCopy();
    int resultSerial();
    int requestSerial() const { return serial; }
    // Where the picture is drawn, in widget pixels.
    QRectF pictureRect();
    QString shownLabel() const { return label; }

    std::unique_ptr<ModSequenceRunner> runner;

signals:
    void resultReadySignal(int serial);
    // The first picture of a hover is on screen.
    void previewShown();

private slots:
    void resultReady(int serial);

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    static void workerRoutine(MVPreviewPanel* panel);
    // One pass; true when another was asked for meanwhile.
    bool processOnce();

    // Request state, under stateMutex.
    std::mutex stateMutex;
    std::vector<std::unique_ptr<ImageMod>> pendingList;
    std::unique_ptr<FlexImageFloat> pendingBase;
    std::shared_ptr<ColorTransformSet> pendingTransform;
    bool processAgain = false;
    bool flushPending = false;
    bool workerRunning = false;
    std::condition_variable workerDone;
    int pendingSerial = 0;

    // Worker-owned.
    std::unique_ptr<FlexImageFloat> base;
    FlexImageFloat working;

    // The finished picture, under displayMutex.
    std::mutex displayMutex;
    QImage result;
    int resultNumber = 0;

    // GUI thread.
    int serial = 0;
    bool active = false;
    QString label;
    QPixmap backdrop;
};
