#include "ui/TrayNodeLabel.h"

#include <QtGui/QPainter>
#include <QtGui/QTextLayout>

#include <algorithm>

namespace {
constexpr int kTextFlags = int(Qt::TextWordWrap) | int(Qt::AlignTop) | int(Qt::AlignLeft);
}

TrayNodeLabel::TrayNodeLabel(QWidget* parent) : QLabel(parent)
{
    setAlignment(Qt::AlignTop | Qt::AlignLeft);
    setWordWrap(true);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    QFont f = font();
    f.setPixelSize(11);
    setFont(f);
}

void TrayNodeLabel::setLabelText(const QString& text)
{
    utf8 = text.toUtf8();
    setText(text);
    update();
}

void TrayNodeLabel::setOpacity(float o)
{
    labelOpacity = std::clamp(o, 0.0f, 1.0f);
    update();
}

int TrayNodeLabel::lineCount() const
{
    const QString text = QString::fromUtf8(utf8);
    if (text.isEmpty())
        return 0;
    const QFontMetrics fm(font());
    const QRect r = fm.boundingRect(QRect(0, 0, std::max(1, width()), 1000), kTextFlags, text);
    return std::max(1, (r.height() + fm.lineSpacing() / 2) / fm.lineSpacing());
}

void TrayNodeLabel::placeIn(int tileWidth, int tileHeight)
{
    const int w = std::max(1, tileWidth - 2 * inset);
    resize(w, 10);
    const QFontMetrics fm(font());
    int h = tileHeight - insetTop - 6;
    if (lineCount() >= 2)
        h += 5;
    setGeometry(inset, insetTop, w, std::max(fm.lineSpacing(), h));
}

void TrayNodeLabel::setTextColor(const QColor& c)
{
    if (c == color)
        return;
    color = c;
    update();
}

void TrayNodeLabel::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setOpacity(labelOpacity);
    p.setFont(font());
    p.setPen(color);
    p.drawText(rect(), kTextFlags, QString::fromUtf8(utf8));
}
