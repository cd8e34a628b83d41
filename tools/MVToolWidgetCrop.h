#pragma once
#include "mods/CropToolGeometry.h"
#include "mods/CropToolState.h"
#include "mods/ImageModAspectRatio.h"
#include "mods/ImageModCrop.h"
#include "tools/MVToolWidget.h"

#include <QtCore/QTimer>

#include <memory>

class MVListChooser;
class MVPushButton;
class MVSlider;
class QLabel;
class QLineEdit;

// "Crop/Straighten": drag the frame's edges, corners or inside, pick an aspect, straighten on the
// slider. Works on a private copy of the crop; the document's crop changes only at endEditing.
class MVToolWidgetCrop : public MVToolWidget
{
    Q_OBJECT
public:
    explicit MVToolWidgetCrop(MVMediaWidget* viewer, QWidget* parent = nullptr);

    void beginEditing(ImageMod* mod) override;
    // Crop, size and border tiles: the picture under the tool is the whole, uncut source.
    void disableOverlappingMods(const std::vector<ImageMod*>& sequence) override;
    void restoreDisabledMods() override;
    void updateForMediaChange() override;
    void controlChanged(QWidget* control) override;
    void endEditing() override;

    // A size tile that fixes the aspect (ratio above 0) takes over the aspect list.
    void setAspectLock(float ratio, bool followsOrientation);
    // The media turned a quarter: the frame turns with it.
    void mediaRotated(bool clockwise);
    void applyCropState();
    // The list row as the user would pick it, and the custom box's text; both run the usual path.
    void chooseAspect(int row);
    void setCustomAspectText(const QString& text);
    void setStraighten(float degrees);

    ImageModCrop cropCopy;
    ImageModCrop* modBeingEdited = nullptr;
    // The crop being made when the document had none; the main window hands it over at the end.
    std::unique_ptr<ImageModCrop> freshCrop;
    // True when the edit changed the crop (cut, turn or aspect) since beginEditing.
    bool cropChanged() const;
    CropToolGeometry geometry;
    float savedStraighten = 0.0f;
    CropPixelInsets cropPixels;
    QTimer refreshTimer;

    MVListChooser* aspectList = nullptr;
    QLineEdit* customAspectBox = nullptr;
    MVSlider* straightenSlider = nullptr;
    QLabel* straightenLabel = nullptr;
    MVPushButton* resetButton = nullptr;
    MVPushButton* doneButton = nullptr;
    MVPushButton* rotateLeftButton = nullptr;
    MVPushButton* rotateRightButton = nullptr;

    // The aspect a custom box text stands for: "1.5", "3:2" or "3x2"; 0 when unreadable.
    static float parseAspect(const QString& text);

signals:
    void rotateRequested(bool clockwise);

public slots:
    void refreshTimerFired();

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void layoutControls() override;

private:
    CropViewRect viewRect() const { return {imageX, imageY, imageWidth, imageHeight}; }
    void updateCursorShape();
    void showStraightenInViewer(float degrees);
    bool geometryWasApplied = true;
    std::unique_ptr<ImageModCrop> cropAtStart;
};
