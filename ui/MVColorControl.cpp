#include "ui/MVColorControl.h"

#include "ui/ColorChooserWidget.h"
#include "ui/MVColorChoiceWidget.h"

namespace {
constexpr int kRowHeight = MVColorChoiceWidget::swatchSize + 8;

QVector<QColor> readySwatches()
{
    return {QColor(255, 255, 255), QColor(128, 128, 128), QColor(0, 0, 0),       QColor(226, 64, 52),
            QColor(240, 150, 50),  QColor(244, 214, 96),  QColor(86, 178, 90),   QColor(60, 180, 196),
            QColor(50, 96, 200),   QColor(150, 84, 190)};
}
} // namespace

MVColorControl::MVColorControl(QWidget* parent) : QWidget(parent)
{
    swatchRow = new MVColorChoiceWidget(this);
    swatchRow->setColors(readySwatches(), -1);
    chooserWidget = new ColorChooserWidget(this);
    connect(swatchRow, &MVColorChoiceWidget::selectionChanged, this, &MVColorControl::swatchChosen);
    connect(chooserWidget, &ColorChooserWidget::editingStarted, this, &MVColorControl::editingStarted);
    connect(chooserWidget, &ColorChooserWidget::colorChanged, this, [this] {
        markSwatch();
        emit sliderChanged(this);
    });
    resize(236, kRowHeight + 120);
}

void MVColorControl::setColor(const QColor& c)
{
    chooserWidget->setColor(c);
    markSwatch();
}

QColor MVColorControl::color() const
{
    return chooserWidget->color();
}

void MVColorControl::markSwatch()
{
    const QColor c = color();
    const QVector<QColor> list = readySwatches();
    int match = -1;
    for (int i = 0; i < list.size(); ++i)
        if (list[i].rgb() == c.rgb())
            match = i;
    swatchRow->setSelected(match);
}

void MVColorControl::swatchChosen(int index)
{
    QColor c = swatchRow->selectedColor();
    if (!c.isValid() || index < 0)
        return;
    emit editingStarted();
    // A swatch sets the hue and tone; the strength (alpha) stays where it was.
    c.setAlphaF(color().alphaF());
    chooserWidget->setColor(c);
    emit sliderChanged(this);
}

void MVColorControl::resizeEvent(QResizeEvent*)
{
    swatchRow->setGeometry(0, 0, width(), kRowHeight);
    chooserWidget->setGeometry(0, kRowHeight, width(), std::max(40, height() - kRowHeight));
}
