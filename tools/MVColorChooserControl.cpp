#include "tools/MVColorChooserControl.h"

#include "core/ImageMod.h"
#include "core/ImageModVariableDataColor.h"

#include <QtGui/QLinearGradient>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>

namespace {

ImageModVariableDataColor* colorOf(ImageModVariable* var)
{
    return var && var->data && var->data->kind() == kVariableColor
        ? static_cast<ImageModVariableDataColor*>(var->data.get())
        : nullptr;
}

} // namespace

MVColorChooserControl::MVColorChooserControl(ImageMod* mod, int32_t variableIndex, QWidget* parent)
    : MVFullScreenControl(mod, variableIndex, parent)
{
    hue = std::max(0.0, currentColor().hsvHueF());
}

QRectF MVColorChooserControl::panelRect() const
{
    return QRectF(imageX + 12.0, imageY + 12.0, 196.0, 190.0);
}

QRectF MVColorChooserControl::squareRect() const
{
    const QRectF p = panelRect();
    return QRectF(p.x() + 12.0, p.y() + 12.0, 140.0, 140.0);
}

QRectF MVColorChooserControl::hueRect() const
{
    const QRectF s = squareRect();
    return QRectF(s.right() + 10.0, s.top(), 20.0, s.height());
}

QColor MVColorChooserControl::currentColor() const
{
    const ImageModVariableDataColor* c = colorOf(variable());
    if (!c)
        return QColor(Qt::white);
    auto to8 = [](float v) { return int(std::clamp(v, 0.0f, 255.0f) + 0.5f); };
    return QColor(to8(c->red), to8(c->green), to8(c->blue));
}

void MVColorChooserControl::setFromPoint(QPointF p)
{
    ImageModVariableDataColor* c = colorOf(variable());
    if (!c)
        return;
    const QColor now = currentColor();
    double s = now.hsvSaturationF(), v = now.valueF();
    if (dragPart == Part::Square) {
        const QRectF r = squareRect();
        s = std::clamp((p.x() - r.left()) / r.width(), 0.0, 1.0);
        v = std::clamp(1.0 - (p.y() - r.top()) / r.height(), 0.0, 1.0);
    } else if (dragPart == Part::Hue) {
        const QRectF r = hueRect();
        hue = std::clamp((p.y() - r.top()) / r.height(), 0.0, 1.0);
    }
    const QColor next = QColor::fromHsvF(std::min(hue, 0.9999), s, v);
    c->red = float(next.redF() * 255.0);
    c->green = float(next.greenF() * 255.0);
    c->blue = float(next.blueF() * 255.0);
    variableWritten();
}

void MVColorChooserControl::mousePressEvent(QMouseEvent* e)
{
    const QPointF p = e->localPos();
    dragPart = Part::None;
    if (e->button() == Qt::LeftButton && colorOf(variable())) {
        if (squareRect().contains(p))
            dragPart = Part::Square;
        else if (hueRect().contains(p))
            dragPart = Part::Hue;
    }
    if (dragPart == Part::None) {
        // The panel itself swallows its clicks; elsewhere the viewer pans.
        if (panelRect().contains(p))
            e->accept();
        else
            e->ignore();
        return;
    }
    emit aboutToAdjust(this);
    setFromPoint(p);
    e->accept();
}

void MVColorChooserControl::mouseMoveEvent(QMouseEvent* e)
{
    const bool over = panelRect().contains(e->localPos());
    if (over != hovering) {
        hovering = over;
        update();
    }
    if (dragPart == Part::None) {
        e->ignore();
        return;
    }
    setFromPoint(e->localPos());
    e->accept();
}

void MVColorChooserControl::mouseReleaseEvent(QMouseEvent* e)
{
    if (dragPart == Part::None) {
        e->ignore();
        return;
    }
    dragPart = Part::None;
    e->accept();
}

void MVColorChooserControl::leaveEvent(QEvent* e)
{
    MVFullScreenControl::leaveEvent(e);
    hovering = false;
    update();
}

void MVColorChooserControl::paintEvent(QPaintEvent*)
{
    if (!colorOf(variable()) || !(imageWidth > 0.0))
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    const QRectF panel = panelRect();
    p.setPen(QPen(QColor(70, 70, 74), 1.0));
    p.setBrush(QColor(28, 28, 30, hovering ? 240 : 215));
    p.drawRoundedRect(panel, 8.0, 8.0);

    const QColor now = currentColor();
    const QRectF sq = squareRect();
    // Saturation left to right over the hue, then value from top to bottom.
    QLinearGradient sat(sq.topLeft(), sq.topRight());
    sat.setColorAt(0.0, Qt::white);
    sat.setColorAt(1.0, QColor::fromHsvF(std::min(hue, 0.9999), 1.0, 1.0));
    p.setPen(Qt::NoPen);
    p.fillRect(sq, sat);
    QLinearGradient val(sq.topLeft(), sq.bottomLeft());
    val.setColorAt(0.0, QColor(0, 0, 0, 0));
    val.setColorAt(1.0, QColor(0, 0, 0, 255));
    p.fillRect(sq, val);

    const QRectF hb = hueRect();
    QLinearGradient hues(hb.topLeft(), hb.bottomLeft());
    for (int i = 0; i <= 6; ++i)
        hues.setColorAt(i / 6.0, QColor::fromHsvF(std::min(i / 6.0, 0.9999), 1.0, 1.0));
    p.fillRect(hb, hues);

    // Indicators: a ring on the square, a bar across the hue.
    const QPointF at(sq.left() + now.hsvSaturationF() * sq.width(), sq.top() + (1.0 - now.valueF()) * sq.height());
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(0, 0, 0, 200), 3.0));
    p.drawEllipse(at, 6.0, 6.0);
    p.setPen(QPen(Qt::white, 1.5));
    p.drawEllipse(at, 6.0, 6.0);
    const double hy = hb.top() + hue * hb.height();
    p.setPen(QPen(QColor(0, 0, 0, 200), 3.0));
    p.drawLine(QLineF(hb.left() - 3, hy, hb.right() + 3, hy));
    p.setPen(QPen(Qt::white, 1.0));
    p.drawLine(QLineF(hb.left() - 3, hy, hb.right() + 3, hy));

    // A swatch and the "RGB" read-out.
    const QRectF swatch(sq.left(), sq.bottom() + 10.0, 22.0, 16.0);
    p.setPen(QPen(QColor(90, 90, 94), 1.0));
    p.setBrush(now);
    p.drawRect(swatch);
    QFont font = p.font();
    font.setPixelSize(12);
    p.setFont(font);
    p.setPen(QColor(220, 220, 220));
    p.drawText(QRectF(swatch.right() + 8.0, swatch.top() - 1.0, 150.0, 18.0), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("RGB %1 %2 %3").arg(now.red()).arg(now.green()).arg(now.blue()));
}
