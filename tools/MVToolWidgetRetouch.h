#pragma once
#include "document/core/UndoStack.h"
#include "tools/MVToolWidget.h"

class MVPushButton;
class QLabel;

// "Spot Heal": each click paints the spot over with soft stamps from the ring around it, straight into
// the document's source pixels. The tool shows the photo without the tiles while it runs; every spot
// is one undo step, kept here and handed to the document's history when the tool ends.
class MVToolWidgetRetouch : public MVToolWidget
{
    Q_OBJECT
public:
    explicit MVToolWidgetRetouch(MVMediaWidget* viewer, QWidget* parent = nullptr);

    void beginEditing(ImageMod* mod) override;
    void controlChanged(QWidget* control) override;
    void endEditing() override;
    bool undoStep() override;
    bool redoStep() override;

    // Heals at a widget position; false when it is off the picture or there is no source.
    bool healAt(QPointF widgetPos);

    // The brush diameter in screen pixels.
    double brushPixels = 40.0;
    bool wasUsed = false;
    UndoStack toolUndo;
    QPointF cursorPos{-1000.0, -1000.0};

    MVPushButton* doneButton = nullptr;
    QLabel* hintLabel = nullptr;

    static const char* hintText();

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void layoutControls() override;

private:
    void showProcessed(bool on);
    bool geometryWasApplied = true;
};
