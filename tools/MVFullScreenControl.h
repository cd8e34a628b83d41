#pragma once
#include <QtWidgets/QWidget>

#include <cstdint>

class ImageMod;
class ImageModVariable;
class MVMediaWidget;

// A transparent child of the viewer laid over the picture, setting one variable of a tile on the
// image itself. Points are held in full-size document pixels: a place in the displayed rectangle
// maps to the same fraction of the document's size. Events a control doesn't use are left
// unaccepted, so they reach the viewer underneath and panning and zooming work through it.
class MVFullScreenControl : public QWidget
{
    Q_OBJECT
public:
    MVFullScreenControl(ImageMod* mod, int32_t variableIndex, QWidget* parent = nullptr);

    ImageMod* boundMod() const { return mod; }
    ImageModVariable* variable() const;
    int32_t variableIndex() const { return index; }

    // The size of the document in full-size pixels (the picture after crop and size tiles).
    void setDocumentSize(int32_t width, int32_t height);
    // Keeps the control over the viewer and follows its picture (move, zoom, resize).
    void followViewer(MVMediaWidget* viewer);

    QPointF widgetPoint(float docX, float docY) const;
    // False when the point is off the displayed picture; x and y are still the mapped values.
    bool documentPoint(QPointF widgetPos, float& docX, float& docY) const;

    double imageX = 0.0, imageY = 0.0, imageWidth = 0.0, imageHeight = 0.0;
    int32_t documentWidth = 0, documentHeight = 0;

signals:
    void didAdjust(QWidget* which);
    void aboutToAdjust(QWidget* which);

public:
    // The displayed picture's rectangle in widget pixels.
    virtual void setImageRect(double x, double y, double width, double height);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // Lets the tile react to the new value, then reports it.
    void variableWritten();

    ImageMod* mod = nullptr;
    int32_t index = -1;
    MVMediaWidget* viewer = nullptr;
};
