#pragma once
#include <QtCore/QByteArray>
#include <QtGui/QColor>
#include <QtWidgets/QLabel>

// The painted name of a tile: word-wrapped from the top left, inset from the tile's edges, with
// an opacity for fading.
class TrayNodeLabel : public QLabel {
    Q_OBJECT
public:
    static constexpr int insetX = 10;
    // Below the tile's buttons, which take the band from 8 to 21.
    static constexpr int insetTop = 23;

    explicit TrayNodeLabel(QWidget* parent = nullptr);

    void setLabelText(const QString& text);
    QString labelText() const { return QString::fromUtf8(utf8); }
    void setOpacity(float o);
    float opacity() const { return labelOpacity; }
    // Kept here rather than in the palette: the window's style sheet sets every widget's text
    // colour when it is polished, which would turn the dark names on light tiles white.
    void setTextColor(const QColor& c);
    QColor textColor() const { return color; }
    void setInset(int pixels) { inset = pixels; }
    // Places the label inside a tile of this width, taller by 5 pixels for two lines or more.
    void placeIn(int tileWidth, int tileHeight);
    // Lines the text takes at the label's width.
    int lineCount() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QByteArray utf8;
    float labelOpacity = 1.0f;
    QColor color{0, 0, 0};
    int inset = insetX;
};
