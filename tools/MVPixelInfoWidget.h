#pragma once
#include <QtCore/QPointF>
#include <QtGui/QColor>
#include <QtWidgets/QWidget>

#include <vector>

class QLabel;
class MVMediaWidget;

// The read-out of the pixel under the cursor: a swatch, RGB on 0..255, HSV and Lab, and a short
// list of the pixels the user picked by clicking on the picture.
class MVPixelInfoWidget : public QWidget
{
    Q_OBJECT
public:
    explicit MVPixelInfoWidget(QWidget* parent = nullptr);

    // x and y are in the picture's full-size pixels; the colour is what is on screen.
    void showPixel(int x, int y, const QColor& colour);
    // The cursor left the picture.
    void clearPixel();
    // Puts the pixel shown now at the head of the recent list; false when none is shown.
    bool pickShownPixel();

    bool hasPixel() const { return pixelShown; }
    QString readoutText(int index) const;
    int recentCount() const { return int(recentLabels.size()); }
    QString recentText(int index) const;
    // The height the labels need, for the window to size itself.
    int preferredHeight() const;

    // The pixel of a viewer at a point in its own coordinates, from what it paints: false
    // outside the picture or without one.
    static bool sampleViewer(MVMediaWidget& viewer, const QPointF& at, int& x, int& y, QColor& colour);

    static constexpr int maxRecent = 6;
    int32_t leftMargin = 12;
    int32_t topMargin = 10;
    int32_t swatchWidth = 48;
    int32_t columnGap = 12;
    int32_t rowHeight = 19;
    int32_t recentIndent = 8;

signals:
    void heightNeeded(int height);

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

private:
    void layoutLabels();
    QLabel* makeLabel();

    QLabel* readout[7] = {};
    QLabel* recentTitle = nullptr;
    std::vector<QLabel*> recentLabels;
    bool pixelShown = false;
    int pixelX = 0, pixelY = 0;
    QColor swatch;
};
