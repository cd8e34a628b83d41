#include "ui/MVInputBox.h"

#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <cmath>

namespace {
constexpr int kArrowWidth = 14;

QString boxStyle()
{
    return QStringLiteral(
        "QLineEdit { background: #262626; border: 1px solid #1a1a1a; border-radius: 3px; color: #e6e6e6;"
        " font-size: 11px; padding: 0px 4px; selection-background-color: #5c8cd2; }"
        "QToolButton { background: #3a3a3a; border: 1px solid #1a1a1a; color: #d0d0d0; font-size: 7px;"
        " padding: 0px; }"
        "QToolButton:hover { background: #484848; }"
        "QToolButton:pressed { background: #2a2a2a; }");
}
} // namespace

MVInputBox::MVInputBox(QWidget* parent) : QWidget(parent)
{
    setStyleSheet(boxStyle());
    edit = new QLineEdit(this);
    edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connect(edit, &QLineEdit::editingFinished, this, &MVInputBox::textEdited);
    up = new QToolButton(this);
    down = new QToolButton(this);
    up->setArrowType(Qt::UpArrow);
    down->setArrowType(Qt::DownArrow);
    for (QToolButton* b : {up, down}) {
        b->setFocusPolicy(Qt::NoFocus);
        b->setAutoRepeat(true);
        connect(b, &QToolButton::clicked, this, &MVInputBox::adjustButtonPressed);
    }
    resize(90, 22);
    edit->setText(textFor(currentValue));
}

QString MVInputBox::textFor(float storedValue) const
{
    const double shown = double(storedValue) / double(scaleFactor);
    return QString::asprintf(scaleFactor == 1.0f ? "%.0f" : "%.3f", shown);
}

QString MVInputBox::text() const
{
    return edit->text();
}

float MVInputBox::clamped(float v) const
{
    return limited ? std::clamp(v, minimumValue, maximumValue) : v;
}

void MVInputBox::setValue(float v)
{
    currentValue = clamped(v);
    edit->setText(textFor(currentValue));
}

bool MVInputBox::setScale(float s)
{
    if (s == 0.0f || !std::isfinite(s))
        return false;
    scaleFactor = s;
    edit->setText(textFor(currentValue));
    return true;
}

void MVInputBox::setLimits(bool on, float minimum, float maximum)
{
    limited = on;
    minimumValue = std::min(minimum, maximum);
    maximumValue = std::max(minimum, maximum);
    setValue(currentValue);
}

void MVInputBox::commit(float v)
{
    v = clamped(v);
    if (v == currentValue) {
        edit->setText(textFor(currentValue));
        return;
    }
    emit editingStarted();
    currentValue = v;
    edit->setText(textFor(currentValue));
    emit sliderChanged(this);
}

void MVInputBox::textEdited()
{
    bool ok = false;
    const float typed = edit->text().trimmed().toFloat(&ok);
    if (!ok || !std::isfinite(typed)) {
        edit->setText(textFor(currentValue));
        return;
    }
    // Re-typing the shown text is no change, even where the shown text is rounded.
    if (edit->text().trimmed() == textFor(currentValue))
        return;
    commit(typed * scaleFactor);
}

void MVInputBox::adjustButtonPressed()
{
    const float direction = sender() == down ? -1.0f : 1.0f;
    commit(currentValue + direction * step * scaleFactor);
}

void MVInputBox::resizeEvent(QResizeEvent*)
{
    const int h = height();
    const int half = h / 2;
    edit->setGeometry(0, 0, std::max(10, width() - kArrowWidth - 1), h);
    up->setGeometry(width() - kArrowWidth, 0, kArrowWidth, half);
    down->setGeometry(width() - kArrowWidth, half, kArrowWidth, h - half);
}
