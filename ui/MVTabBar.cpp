#include "ui/MVTabBar.h"

#include <QtCore/QVariant>
#include <QtGui/QPainter>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace {

QString tabStyle(bool current)
{
    return current ? QStringLiteral("QPushButton { color: #f2f2f2; background: #3a3a3a; border: 1px solid #4a4a4a;"
                                     " border-bottom: 2px solid #e3963e; padding: 0 22px 0 10px; text-align: left; }")
                   : QStringLiteral("QPushButton { color: #9a9a9a; background: #262626; border: 1px solid #333333;"
                                     " padding: 0 22px 0 10px; text-align: left; }"
                                     "QPushButton:hover { color: #d0d0d0; background: #2e2e2e; }");
}

} // namespace

MVTabBar::MVTabBar(QWidget* parent) : QWidget(parent)
{
    setFixedHeight(barHeight);
}

int MVTabBar::indexOf(int tabID) const
{
    for (size_t i = 0; i < tabs.size(); ++i)
        if (tabs[i].tabID == tabID)
            return int(i);
    return -1;
}

void MVTabBar::addTab(int tabID, const QString& label)
{
    Tab t{tabID, new QPushButton(label, this), new QPushButton(QStringLiteral("\u00d7"), this)};
    t.button->setFocusPolicy(Qt::NoFocus);
    t.closeButton->setFocusPolicy(Qt::NoFocus);
    t.closeButton->setToolTip(QStringLiteral("Close this tab."));
    t.closeButton->setStyleSheet(QStringLiteral("QPushButton { color: #8e8e8e; background: transparent; border: 0;"
                                                " font: bold 13px; } QPushButton:hover { color: #f2b65e; }"));
    t.button->setProperty("tabID", tabID);
    t.closeButton->setProperty("tabID", tabID);
    connect(t.button, &QPushButton::clicked, this, &MVTabBar::tabButtonClicked);
    connect(t.closeButton, &QPushButton::clicked, this, &MVTabBar::closeButtonPressed);
    t.button->show();
    t.closeButton->show();
    tabs.push_back(t);
    refreshStyles();
    layoutTabs();
}

void MVTabBar::removeTab(int tabID)
{
    const int i = indexOf(tabID);
    if (i < 0)
        return;
    delete tabs[size_t(i)].button;
    delete tabs[size_t(i)].closeButton;
    tabs.erase(tabs.begin() + i);
    if (selected == tabID)
        selected = -1;
    refreshStyles();
    layoutTabs();
}

void MVTabBar::setTabLabel(int tabID, const QString& label)
{
    const int i = indexOf(tabID);
    if (i >= 0)
        tabs[size_t(i)].button->setText(label);
}

void MVTabBar::selectTab(int tabID)
{
    selected = tabID;
    refreshStyles();
}

void MVTabBar::refreshStyles()
{
    for (const Tab& t : tabs)
        t.button->setStyleSheet(tabStyle(t.tabID == selected));
}

void MVTabBar::layoutTabs()
{
    if (tabs.empty())
        return;
    const int room = width() - 2 * margin;
    int natural = 0;
    for (const Tab& t : tabs)
        natural += t.button->sizeHint().width() + 28;
    const bool even = natural > room;
    const int evenWidth = std::max(40, room / int(tabs.size()));
    int x = margin;
    for (const Tab& t : tabs) {
        const int w = even ? evenWidth : t.button->sizeHint().width() + 28;
        t.button->setGeometry(x, 2, w - 2, barHeight - 2);
        t.closeButton->setGeometry(x + w - 22, 4, 18, barHeight - 6);
        t.closeButton->raise();
        x += w;
    }
}

void MVTabBar::closeButtonPressed()
{
    if (QObject* s = sender())
        emit tabRequestedClose(s->property("tabID").toInt());
}

void MVTabBar::tabButtonClicked()
{
    if (QObject* s = sender())
        emit tabActivated(s->property("tabID").toInt());
}

void MVTabBar::resizeEvent(QResizeEvent*)
{
    layoutTabs();
}

void MVTabBar::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(QRect(0, height() - 1, width(), 1), QColor(74, 74, 74));
}
