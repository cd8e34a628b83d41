#include "ui/MVSlider.h"

#include "core/ImageModVariableData.h"
#include "ui/ControlArt.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QLineEdit>

#include <algorithm>

namespace {
constexpr int kValueBoxWidth = 46;
constexpr int kTrackY = 11;
constexpr int kMargin = 8;
} // namespace

MVSlider::MVSlider(QWidget* parent) : QWidget(parent)
{
    valueBox = new QLineEdit(this);
    valueBox->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    valueBox->setStyleSheet(QStringLiteral(
        "QLineEdit { background: #262626; border: 1px solid #1a1a1a; border-radius: 3px; color: #e6e6e6;"
        " font-size: 10px; padding: 0px 3px; selection-background-color: #5c8cd2; }"));
    connect(valueBox, &QLineEdit::editingFinished, this, &MVSlider::textEdited);

    scrollTimer.setSingleShot(true);
    scrollTimer.setInterval(30);
    connect(&scrollTimer, &QTimer::timeout, this, &MVSlider::scrollTimerFired);
    // Precise: a coarse timer may fire up to 5% early, which would split a burst in two.
    scrollFinishTimer.setSingleShot(true);
    scrollFinishTimer.setTimerType(Qt::PreciseTimer);
    scrollFinishTimer.setInterval(1000);
    connect(&scrollFinishTimer, &QTimer::timeout, this, &MVSlider::scrollFinishTimerFired);

    resize(200, 36);
    setMinimumHeight(36);
}

void MVSlider::setFromVariableData(const ImageModVariableData& data)
{
    displayMin = data.displayMin;
    displayMax = data.displayMax;
    hardMin = data.hardMin;
    hardMax = data.hardMax;
    hasHardMin = data.hasHardMin;
    hasHardMax = data.hasHardMax;
    hasDisplayScale = data.hasDisplayScale;
    scaleMin = data.scaleMin;
    scaleMax = data.scaleMax;
    setValue(data.value);
}

void MVSlider::setValue(float v)
{
    currentValue = v;
    repositionHandle();
}

void MVSlider::setDisplayRange(float minimum, float maximum)
{
    displayMin = minimum;
    displayMax = maximum;
    repositionHandle();
}

void MVSlider::setHardMin(bool on, float v)
{
    hasHardMin = on;
    hardMin = v;
}

void MVSlider::setHardMax(bool on, float v)
{
    hasHardMax = on;
    hardMax = v;
}

void MVSlider::setDisplayScale(bool on, float minimum, float maximum)
{
    hasDisplayScale = on;
    scaleMin = minimum;
    scaleMax = maximum;
    repositionHandle();
}

void MVSlider::setRecentering(bool on)
{
    recentering = on;
    if (on)
        recentre();
    repositionHandle();
}

void MVSlider::setKind(int32_t k)
{
    kind = k;
    repositionHandle();
}

float MVSlider::shownValue() const
{
    if (!hasDisplayScale || displayMax == displayMin)
        return currentValue;
    return (currentValue - displayMin) * (scaleMax - scaleMin) / (displayMax - displayMin) + scaleMin;
}

QString MVSlider::valueText() const
{
    return QString::asprintf(kind == 1 ? "%.0f" : "%.2f", double(shownValue()));
}

QString MVSlider::minLabelText() const
{
    if (recentering)
        return QStringLiteral("-");
    return QString::number(double(hasDisplayScale ? scaleMin : displayMin), 'g', 6);
}

QString MVSlider::maxLabelText() const
{
    if (recentering)
        return QStringLiteral("+");
    return QString::number(double(hasDisplayScale ? scaleMax : displayMax), 'g', 6);
}

float MVSlider::clamped(float v) const
{
    if (hasHardMin && v < hardMin)
        v = hardMin;
    if (hasHardMax && v > hardMax)
        v = hardMax;
    return v;
}

void MVSlider::setValueFromX(float x)
{
    layoutParts();
    const float span = trackRight - trackLeft;
    float t = span > 0.0f ? (x - 1.0f - trackLeft) / span : 0.0f;
    t = std::clamp(t, 0.0f, 1.0f);
    currentValue = clamped(displayMin + t * (displayMax - displayMin));
    if (!recentering)
        repositionHandle();
    emit sliderChanged(this);
    repositionHandle();
}

void MVSlider::recentre()
{
    const float span = displayMax - displayMin;
    if (!recentering || span == 0.0f)
        return;
    const float shift = (displayMin - currentValue) / span + 0.5f;
    displayMin -= span * shift;
    displayMax -= span * shift;
    if (hasDisplayScale) {
        const float scaleSpan = scaleMax - scaleMin;
        scaleMin -= scaleSpan * shift;
        scaleMax -= scaleSpan * shift;
    }
}

void MVSlider::repositionHandle()
{
    // A hidden widget gets its resize event only when shown, so the track is measured here too.
    layoutParts();
    const float span = displayMax - displayMin;
    float t = span != 0.0f ? (currentValue - displayMin) / span : 0.0f;
    t = std::clamp(t, 0.0f, 1.0f);
    handleX = trackLeft + t * (trackRight - trackLeft);
    if (!valueBox->hasFocus())
        valueBox->setText(valueText());
    update();
}

void MVSlider::layoutParts()
{
    trackLeft = float(kMargin);
    trackRight = float(std::max(kMargin + 1, width() - kValueBoxWidth - kMargin - 6));
    valueBox->setGeometry(width() - kValueBoxWidth - 2, 2, kValueBoxWidth, 18);
}

void MVSlider::resizeEvent(QResizeEvent*)
{
    layoutParts();
    repositionHandle();
}

void MVSlider::textEdited()
{
    bool ok = false;
    const float typed = valueBox->text().trimmed().toFloat(&ok);
    if (!ok) {
        valueBox->setText(valueText());
        return;
    }
    float v = typed;
    if (hasDisplayScale && scaleMax != scaleMin)
        v = (typed - scaleMin) * (displayMax - displayMin) / (scaleMax - scaleMin) + displayMin;
    v = clamped(v);
    if (v == currentValue) {
        valueBox->setText(valueText());
        return;
    }
    emit editingStarted();
    currentValue = v;
    recentre();
    emit sliderChanged(this);
    valueBox->setText(valueText());
    repositionHandle();
}

void MVSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    emit editingStarted();
    dragging = true;
    pressPos = event->pos();
    setValueFromX(float(event->pos().x()));
}

void MVSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (dragging)
        setValueFromX(float(event->pos().x()));
}

void MVSlider::mouseReleaseEvent(QMouseEvent*)
{
    if (!dragging)
        return;
    dragging = false;
    recentre();
    repositionHandle();
}

void MVSlider::wheelEvent(QWheelEvent* event)
{
    const QPoint d = event->angleDelta();
    const bool vertical = std::abs(d.y()) > std::abs(d.x());
    pendingWheel += vertical ? -float(d.y()) : float(d.x());
    if (!scrollTimer.isActive())
        scrollTimer.start();
    event->accept();
}

void MVSlider::scrollTimerFired()
{
    if (wheelStarted)
        emit editingStarted();
    const float w = float(std::max(1, width()));
    currentValue = clamped(currentValue + (displayMax - displayMin) * pendingWheel / (w * 10.0f));
    emit sliderChanged(this);
    pendingWheel = 0.0f;
    recentre();
    wheelStarted = false;
    scrollFinishTimer.start();
    repositionHandle();
}

void MVSlider::scrollFinishTimerFired()
{
    wheelStarted = true;
}

void MVSlider::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    const QRectF track(trackLeft - 2.0, kTrackY - 2.0, trackRight - trackLeft + 4.0, 4.0);
    g.setPen(Qt::NoPen);
    g.setBrush(ControlArt::trackColor());
    g.drawRoundedRect(track, 2.0, 2.0);

    // The lit part runs from zero when zero is on the track, else from the left end.
    const float span = displayMax - displayMin;
    float origin = trackLeft;
    if (!recentering && span != 0.0f && displayMin < 0.0f && displayMax > 0.0f)
        origin = trackLeft + (-displayMin / span) * (trackRight - trackLeft);
    if (!recentering) {
        g.setBrush(ControlArt::fillColor());
        g.drawRoundedRect(QRectF(std::min(origin, handleX), kTrackY - 1.5, std::abs(handleX - origin), 3.0), 1.5, 1.5);
    }

    QFont f = font();
    f.setPixelSize(9);
    g.setFont(f);
    g.setPen(ControlArt::labelColor());
    const int labelTop = kTrackY + 10;
    g.drawText(QRectF(trackLeft - 4.0, labelTop, 80, 12), Qt::AlignLeft | Qt::AlignVCenter, minLabelText());
    g.drawText(QRectF(trackRight - 76.0, labelTop, 80, 12), Qt::AlignRight | Qt::AlignVCenter, maxLabelText());

    const QPixmap handle = ControlArt::pixmap(QStringLiteral(":/img/slider_handle.png"));
    const qreal hw = handle.width() / handle.devicePixelRatio();
    const qreal hh = handle.height() / handle.devicePixelRatio();
    g.drawPixmap(QPointF(qRound(handleX - hw / 2.0), qRound(kTrackY - hh / 2.0)), handle);
}
