#include "tools/MVToolWidget.h"

#include "core/ImageMod.h"
#include "document/MVMediaWidget.h"

#include <QtCore/QEvent>

MVToolWidget::MVToolWidget(MVMediaWidget* viewer, QWidget* parent)
    : QWidget(parent ? parent : viewer), mediaWidget(viewer)
{
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground);
    bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("toolControlBar"));
    bar->setAttribute(Qt::WA_StyledBackground);
    bar->setStyleSheet(QStringLiteral(
        "#toolControlBar { border-image: url(:/img/generic_tool_bg.png) 40 40 40 40; border-width: 20px;"
        " background-color: rgba(30, 30, 32, 215); border-radius: 6px; }"
        " QLabel { color: #d8d8d8; font-size: 12px; }"));
    if (mediaWidget) {
        mediaWidget->installEventFilter(this);
        connect(mediaWidget, &MVMediaWidget::imageRepositionedSignal, this, &MVToolWidget::followViewer);
        setGeometry(0, 0, mediaWidget->width(), mediaWidget->height());
        followViewer();
    }
}

MVToolWidget::~MVToolWidget()
{
    if (mediaWidget)
        mediaWidget->removeEventFilter(this);
}

void MVToolWidget::beginEditing(ImageMod*) {}

void MVToolWidget::disableOverlappingMods(const std::vector<ImageMod*>&) {}

void MVToolWidget::disableModsWithTags(const std::vector<ImageMod*>& sequence, std::initializer_list<int> tagList)
{
    for (ImageMod* m : sequence) {
        if (!m || !m->enabled)
            continue;
        bool carries = false;
        for (int32_t t : m->tags)
            for (int wanted : tagList)
                carries = carries || t == wanted;
        if (carries) {
            m->enabled = false;
            disabledMods.push_back(m);
        }
    }
}

void MVToolWidget::restoreDisabledMods()
{
    for (ImageMod* m : disabledMods)
        m->enabled = true;
    disabledMods.clear();
}

void MVToolWidget::updateForMediaChange()
{
    followViewer();
}

void MVToolWidget::setImageRect(double x, double y, double width, double height)
{
    imageX = x;
    imageY = y;
    imageWidth = width;
    imageHeight = height;
    update();
}

void MVToolWidget::controlChanged(QWidget*) {}

void MVToolWidget::endEditing() {}

void MVToolWidget::followViewer()
{
    if (!mediaWidget)
        return;
    setImageRect(mediaWidget->drawX, mediaWidget->drawY, mediaWidget->drawWidth, mediaWidget->drawHeight);
}

bool MVToolWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mediaWidget && event->type() == QEvent::Resize)
        setGeometry(0, 0, mediaWidget->width(), mediaWidget->height());
    return QWidget::eventFilter(watched, event);
}

void MVToolWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layoutControls();
}

void MVToolWidget::layoutControls()
{
    if (!bar)
        return;
    const QSize want = bar->sizeHint().isValid() ? bar->sizeHint() : QSize(300, 56);
    const int w = std::min(width() - 20, std::max(want.width(), 200));
    const int h = std::max(want.height(), 56);
    bar->setGeometry((width() - w) / 2, height() - h - 10, w, h);
    bar->raise();
}
