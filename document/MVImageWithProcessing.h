#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <QtWidgets/QWidget>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class ModSequenceRunner;
class QImage;

// A small self-contained picture: a source run through a mod list on a thread of its own, shown
// centred. The thumbnail engine of the preview chooser.
class MVImageWithProcessing : public QWidget
{
    Q_OBJECT
public:
    // source is not owned and must outlive the widget's passes.
    MVImageWithProcessing(FlexImageFloat* source, QWidget* parent = nullptr);
    ~MVImageWithProcessing() override;

    // Clones the list and starts a detached pass.
    void startProcessing(const std::vector<ImageMod*>& modList);
    // Waits until no pass is running.
    void waitForIdle();
    QImage resultCopy();

    FlexImageFloat* sourceImage = nullptr;
    std::unique_ptr<ModSequenceRunner> runner;
    std::unique_ptr<FlexImageFloat> workingImage;
    std::unique_ptr<QImage> resultImage;
    int32_t state = 0; // 1 while working, 3 when done
    std::mutex mutex;

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    static void processingThread(MVImageWithProcessing* widget, std::vector<std::unique_ptr<ImageMod>> clones,
                                 int32_t targetWidth, int32_t targetHeight);

    std::mutex threadsMutex;
    std::condition_variable threadsDone;
    int32_t runningThreads = 0;
};
