#include "ui/ColorChooserWidget.h"

#include <QtGui/QLinearGradient>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>

namespace {
constexpr int kBar = 14;
constexpr int kGap = 6;
constexpr int kPad = 4;

float unitClamp(float v) { return std::clamp(v, 0.0f, 1.0f); }
} // namespace

ColorChooserWidget::ColorChooserWidget(QWidget* parent) : QWidget(parent)
{
    resize(200, 180);
}

QRect ColorChooserWidget::squareRect() const
{
    return QRect(kPad, kPad, width() - 2 * kPad - kBar - kGap, height() - 2 * kPad - kBar - kGap);
}

QRect ColorChooserWidget::hueRect() const
{
    const QRect s = squareRect();
    return QRect(s.right() + 1 + kGap, s.top(), kBar, s.height());
}

QRect ColorChooserWidget::alphaRect() const
{
    const QRect s = squareRect();
    return QRect(s.left(), s.bottom() + 1 + kGap, s.width(), kBar);
}

void ColorChooserWidget::setColor(const QColor& c)
{
    qreal h, s, v, a;
    c.getHsvF(&h, &s, &v, &a);
    if (h >= 0.0)
        hueValue = float(h * 360.0);
    saturation = float(s);
    brightness = float(v);
    alphaValue = float(a);
    update();
}

QColor ColorChooserWidget::color() const
{
    return QColor::fromHsvF(qreal(std::min(hueValue, 359.999f)) / 360.0, qreal(saturation), qreal(brightness),
                            qreal(alphaValue));
}

void ColorChooserWidget::pick(QPoint p)
{
    const QRect s = squareRect();
    switch (dragging) {
    case Part::Square:
        saturation = unitClamp(float(p.x() - s.left()) / float(std::max(1, s.width() - 1)));
        brightness = unitClamp(1.0f - float(p.y() - s.top()) / float(std::max(1, s.height() - 1)));
        break;
    case Part::Hue: {
        const QRect h = hueRect();
        hueValue = 360.0f * unitClamp(float(p.y() - h.top()) / float(std::max(1, h.height() - 1)));
        break;
    }
    case Part::Alpha: {
        const QRect a = alphaRect();
        alphaValue = unitClamp(float(p.x() - a.left()) / float(std::max(1, a.width() - 1)));
        break;
    }
    case Part::None:
        return;
    }
    update();
    emit colorChanged(color());
}

void ColorChooserWidget::mousePressEvent(QMouseEvent* event)
{
    const QPoint p = event->pos();
    if (squareRect().contains(p))
        dragging = Part::Square;
    else if (hueRect().contains(p))
        dragging = Part::Hue;
    else if (alphaRect().contains(p))
        dragging = Part::Alpha;
    else
        return;
    emit editingStarted();
    pick(p);
}

void ColorChooserWidget::mouseMoveEvent(QMouseEvent* event)
{
    pick(event->pos());
}

void ColorChooserWidget::mouseReleaseEvent(QMouseEvent*)
{
    dragging = Part::None;
}

void ColorChooserWidget::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.fillRect(rect(), QColor(44, 44, 44));
    const QRect s = squareRect();
    // Saturation left to right over the pure hue, then value fading to black downward.
    QLinearGradient across(s.topLeft(), s.topRight());
    across.setColorAt(0, Qt::white);
    across.setColorAt(1, QColor::fromHsvF(qreal(std::min(hueValue, 359.999f)) / 360.0, 1.0, 1.0));
    g.fillRect(s, across);
    QLinearGradient down(s.topLeft(), s.bottomLeft());
    down.setColorAt(0, QColor(0, 0, 0, 0));
    down.setColorAt(1, QColor(0, 0, 0, 255));
    g.fillRect(s, down);

    const QRect h = hueRect();
    QLinearGradient hues(h.topLeft(), h.bottomLeft());
    for (int i = 0; i <= 6; ++i)
        hues.setColorAt(qreal(i) / 6.0, QColor::fromHsvF(std::min(0.9999, qreal(i) / 6.0), 1.0, 1.0));
    g.fillRect(h, hues);

    // Alpha over a checker so transparency reads as such.
    const QRect a = alphaRect();
    for (int x = a.left(); x < a.right(); x += 7)
        for (int y = a.top(); y < a.bottom(); y += 7)
            g.fillRect(QRect(x, y, 7, 7).intersected(a),
                       ((x - a.left()) / 7 + (y - a.top()) / 7) % 2 ? QColor(150, 150, 150) : QColor(100, 100, 100));
    QColor opaque = color();
    opaque.setAlphaF(1.0);
    QColor clear = opaque;
    clear.setAlphaF(0.0);
    QLinearGradient alphas(a.topLeft(), a.topRight());
    alphas.setColorAt(0, clear);
    alphas.setColorAt(1, opaque);
    g.fillRect(a, alphas);

    g.setRenderHint(QPainter::Antialiasing);
    g.setBrush(Qt::NoBrush);
    g.setPen(QPen(QColor(20, 20, 20), 1));
    for (const QRect& r : {s, h, a})
        g.drawRect(QRectF(r).adjusted(-0.5, -0.5, 0.5, 0.5));

    const QPointF mark(s.left() + saturation * float(s.width() - 1), s.top() + (1.0f - brightness) * float(s.height() - 1));
    g.setPen(QPen(Qt::black, 3));
    g.drawEllipse(mark, 5, 5);
    g.setPen(QPen(Qt::white, 1.5));
    g.drawEllipse(mark, 5, 5);
    const qreal hy = h.top() + hueValue / 360.0f * float(h.height() - 1);
    const qreal ax = a.left() + alphaValue * float(a.width() - 1);
    g.setPen(QPen(Qt::white, 2));
    g.drawRect(QRectF(h.left() - 1.5, hy - 2, h.width() + 3, 4));
    g.drawRect(QRectF(ax - 2, a.top() - 1.5, 4, a.height() + 3));
}
