#include "ui/MVRenderQueueWidget.h"

#include "ui/MVScroller.h"

#include <QtGui/QWheelEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace {
constexpr int kRowGap = 6;
constexpr int kButtonSize = 18;
constexpr int kMargin = 8;
} // namespace

MVRenderQueueWidget::MVRenderQueueWidget(QWidget* parent) : QWidget(parent)
{
    column = new QWidget(this);
    scroller = new MVScroller(this);
    connect(scroller, &MVScroller::scrolled, this, &MVRenderQueueWidget::scrollerScrolled);
}

void MVRenderQueueWidget::setRows(const std::vector<MVRenderQueueRow>& rows)
{
    // Later, not now: the list may be rebuilt from inside a row button's own signal.
    for (QLabel* l : labels) {
        l->hide();
        l->deleteLater();
    }
    for (QPushButton* b : buttons)
        if (b) {
            b->hide();
            b->deleteLater();
        }
    labels.clear();
    buttons.clear();
    ids.clear();
    for (const MVRenderQueueRow& row : rows) {
        auto* label = new QLabel(row.text, column);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        label->setStyleSheet(row.failed ? QStringLiteral("color: #f07a6a;") : QStringLiteral("color: #d8d8d8;"));
        label->show();
        labels.push_back(label);
        QPushButton* button = nullptr;
        if (row.cancellable) {
            button = new QPushButton(column);
            button->setFlat(true);
            button->setFocusPolicy(Qt::NoFocus);
            button->setIcon(QIcon(QStringLiteral(":/img/mini_icon_cancel.png")));
            button->setIconSize(QSize(14, 14));
            button->setToolTip(QStringLiteral("Remove this file from the queue."));
            button->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"
                                                 "QPushButton:pressed { background: #3a3a3a; border-radius: 3px; }"));
            button->setProperty("itemID", row.itemID);
            connect(button, &QPushButton::released, this, &MVRenderQueueWidget::cancelButtonPressed);
            button->show();
        }
        buttons.push_back(button);
        ids.push_back(row.itemID);
    }
    layoutRows();
}

void MVRenderQueueWidget::layoutRows()
{
    const int textWidth = std::max(40, width() - scrollerWidth - 2 * kMargin - kButtonSize - 6);
    int y = 0;
    for (size_t i = 0; i < labels.size(); ++i) {
        QLabel* l = labels[i];
        const int h = std::max(kButtonSize, l->heightForWidth(textWidth));
        l->setGeometry(kMargin, y, textWidth, h);
        if (buttons[i])
            buttons[i]->setGeometry(kMargin + textWidth + 6, y, kButtonSize, kButtonSize);
        y += h + kRowGap;
    }
    const int contentHeight = std::max(0, y - kRowGap);
    const int view = height();
    scroller->setGeometry(width() - scrollerWidth, 0, scrollerWidth, view);
    scroller->setRange(0.0f, float(contentHeight), float(view));
    scroller->setVisible(!scroller->contentFits());
    scrollPosition = std::clamp(scrollPosition, 0.0f, float(std::max(0, contentHeight - view)));
    column->setGeometry(0, -int(scrollPosition), width() - scrollerWidth, std::max(contentHeight, view));
}

void MVRenderQueueWidget::scrollerScrolled(float scrollPos)
{
    scrollPosition = scrollPos;
    layoutRows();
}

void MVRenderQueueWidget::cancelButtonPressed()
{
    if (auto* b = qobject_cast<QPushButton*>(sender()))
        emit cancelItemRequested(b->property("itemID").toInt());
}

void MVRenderQueueWidget::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    layoutRows();
}

void MVRenderQueueWidget::wheelEvent(QWheelEvent* e)
{
    if (!scroller->takeWheel(e))
        QWidget::wheelEvent(e);
}
