#include "ui/MVToolPanel.h"

#include "core/ImageMod.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "ui/MVPanelItemBigButton.h"
#include "ui/MVPanelItemHeader.h"
#include "ui/MVPanelItemListButton.h"
#include "ui/MVScroller.h"

#include <QtGui/QCursor>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

#include <algorithm>

const char* const MVToolPanel::kStarredSection = "Starred";

namespace {

std::vector<std::string> toStd(const QStringList& list)
{
    std::vector<std::string> out;
    out.reserve(size_t(list.size()));
    for (const QString& s : list)
        out.push_back(s.toStdString());
    return out;
}

// "1 Masks" -> "Masks"; an entry without the flag is all name.
QString entryName(const QString& entry)
{
    return entry.size() > 2 && entry[1] == QLatin1Char(' ') ? entry.mid(2) : entry;
}

} // namespace

MVToolPanel::MVToolPanel(QWidget* parent, MultiData* preferences)
    : QWidget(parent), prefs(preferences ? preferences : &MultiData::global())
{
    setObjectName(QStringLiteral("toolPanel"));
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("QWidget#toolPanel { border-image: url(:/img/toolpanelbg.png) 16 16 16 16; }"));

    tabBar = new QWidget(this);
    tabBar->setObjectName(QStringLiteral("toolPanelTabBar"));
    tabBar->setAttribute(Qt::WA_StyledBackground, true);
    tabBar->setStyleSheet(QStringLiteral(
        "QWidget#toolPanelTabBar { background: #1e1e1e; border-bottom: 1px solid #141414;"
        " border-left: 1px solid #141414; }"
        "QPushButton { background: transparent; border: none; border-bottom: 2px solid transparent;"
        " color: #8e8e8e; font-size: 12px; font-weight: bold; padding-top: 2px; }"
        "QPushButton:hover { color: #d8d8d8; }"
        "QPushButton:checked { color: #f2f2f2; border-bottom: 2px solid #e3963e; }"));

    viewport = new QWidget(this);
    content = new QWidget(viewport);
    scroller = new MVScroller(this);
    connect(scroller, &MVScroller::scrolled, this, &MVToolPanel::scrollerScrolled);

    contextMenu = new QMenu(this);
    contextMenu->setStyleSheet(QStringLiteral(
        "QMenu { border-image: url(:/img/floating_menu_bg_plain.png) 8 8 8 8; font-size:11px;"
        " background: #2e2e2e; border: 1px solid #111111; padding: 4px; }"
        "QMenu::item { color: #e8e8e8; padding: 4px 18px; }"
        "QMenu::item:selected { background: #e3963e; color: #1e1a16; border-radius: 3px; }"));
    contextMenu->addAction(QStringLiteral("Delete"));
    connect(contextMenu, &QMenu::triggered, this, &MVToolPanel::menuTriggered);

    collapsedEntries = QStringList();
    for (const std::string& e :
         prefs->getStringArray(PrefKeys::kCollapsedToolSections, PrefKeys::collapsedToolSectionsDefault()))
        collapsedEntries << QString::fromStdString(e);
    for (const std::string& s : prefs->getStringArray(PrefKeys::kStarredFilterList, {}))
        starred << QString::fromStdString(s);
}

MVToolPanel::~MVToolPanel() = default;

// ---------------------------------------------------------------------------------------------
// Building

MVToolPanel::Tab* MVToolPanel::tabById(int id)
{
    for (Tab& t : tabs)
        if (t.id == id)
            return &t;
    return nullptr;
}

const MVToolPanel::Tab* MVToolPanel::tab(int id) const
{
    for (const Tab& t : tabs)
        if (t.id == id)
            return &t;
    return nullptr;
}

void MVToolPanel::addTab(const QString& name, int id)
{
    if (tabById(id))
        return;
    Tab t;
    t.id = id;
    t.name = name;
    t.button = new QPushButton(name, tabBar);
    t.button->setCheckable(true);
    t.button->setFocusPolicy(Qt::NoFocus);
    t.button->setCursor(Qt::PointingHandCursor);
    t.button->setProperty("tabId", id);
    connect(t.button, &QPushButton::clicked, this, &MVToolPanel::tabButtonClicked);
    tabs.push_back(t);
    if (tabs.size() == 1)
        current = id;
    layoutTabBar();
    relayout();
}

void MVToolPanel::adopt(Tab& t, MVPanelItem* item, size_t index)
{
    item->setParent(content);
    item->hide();
    connect(item, &MVPanelItem::panelItemEntered, this, &MVToolPanel::panelItemEntered);
    t.items.insert(t.items.begin() + std::ptrdiff_t(std::min(index, t.items.size())), item);
}

void MVToolPanel::connectListButton(MVPanelItemListButton* row)
{
    connect(row, &MVPanelItemListButton::plusHoverChanged, this, &MVToolPanel::plusHoverChanged);
    connect(row, &QAbstractButton::pressed, this, &MVToolPanel::modButtonClickedSlot);
    connect(row, &MVPanelItemListButton::buttonRightClicked, this, &MVToolPanel::buttonRightClicked);
}

MVPanelItemHeader* MVToolPanel::addHeader(int tabId, const QString& name, bool collapsed, const QString& iconPath)
{
    Tab* t = tabById(tabId);
    if (!t)
        return nullptr;
    auto* h = new MVPanelItemHeader(name, collapsed, iconPath, content);
    connect(h, &MVPanelItemHeader::headerToggled, this, &MVToolPanel::headerToggled);
    adopt(*t, h, t->items.size());
    return h;
}

MVPanelItemListButton* MVToolPanel::addListButton(bool hasPlus, int tabId, ImageMod* mod, bool ownsMod, bool hasStar)
{
    Tab* t = tabById(tabId);
    if (!t) {
        if (ownsMod)
            delete mod;
        return nullptr;
    }
    auto* row = new MVPanelItemListButton(mod, ownsMod, hasPlus, hasStar, content);
    row->setStarred(hasStar && starred.contains(row->key));
    connectListButton(row);
    adopt(*t, row, t->items.size());
    return row;
}

MVPanelItemBigButton* MVToolPanel::addBigButton(int tabId, int commandId, const QString& name, bool append,
                                                bool bigSize, const QString& iconPath)
{
    Tab* t = tabById(tabId);
    if (!t)
        return nullptr;
    auto* b = new MVPanelItemBigButton(commandId, name, append, bigSize, iconPath, content);
    connect(b, &QAbstractButton::pressed, this, &MVToolPanel::comIDButtonClickedSlot);
    adopt(*t, b, t->items.size());
    return b;
}

MVPanelItemListButton* MVToolPanel::insertListButton(const QString& sectionName, ImageMod* mod, bool ownsMod,
                                                     bool hasPlus, bool hasStar)
{
    for (Tab& t : tabs) {
        size_t i = 0;
        for (; i < t.items.size(); ++i)
            if (t.items[i]->itemKind() == MVPanelItem::kHeader && t.items[i]->text() == sectionName)
                break;
        if (i == t.items.size())
            continue;
        auto* row = new MVPanelItemListButton(mod, ownsMod, hasPlus, hasStar, content);
        size_t at = i + 1;
        while (at < t.items.size() && t.items[at]->itemKind() != MVPanelItem::kHeader &&
               QString::compare(t.items[at]->text(), row->nameText, Qt::CaseInsensitive) <= 0)
            ++at;
        row->setStarred(hasStar && starred.contains(row->key));
        connectListButton(row);
        adopt(t, row, at);
        relayout();
        return row;
    }
    if (ownsMod)
        delete mod;
    return nullptr;
}

void MVToolPanel::dropItem(MVPanelItem* item)
{
    if (hoveredRow == item)
        hoveredRow = nullptr;
    item->hide();
    item->disconnect(this);
    // A row may be taking its own press when it goes; let that return first.
    item->deleteLater();
}

void MVToolPanel::clearTab(int tabId)
{
    Tab* t = tabById(tabId);
    if (!t)
        return;
    for (MVPanelItem* item : t->items)
        dropItem(item);
    t->items.clear();
    relayout();
}

bool MVToolPanel::removeListButton(MVPanelItemListButton* row)
{
    bool found = false;
    for (Tab& t : tabs) {
        for (size_t i = 0; i < t.items.size();) {
            MVPanelItem* item = t.items[i];
            const bool mine = item == row;
            const bool mirror = !mine && item->itemKind() == MVPanelItem::kListButton &&
                static_cast<MVPanelItemListButton*>(item)->mirrorOf == row;
            if (mine || mirror) {
                found = found || mine;
                t.items.erase(t.items.begin() + std::ptrdiff_t(i));
                dropItem(item);
            } else {
                ++i;
            }
        }
    }
    if (found)
        relayout();
    return found;
}

// ---------------------------------------------------------------------------------------------
// Queries

std::vector<MVPanelItemListButton*> MVToolPanel::listButtons(int tabId, bool withMirrors) const
{
    std::vector<MVPanelItemListButton*> out;
    if (const Tab* t = tab(tabId))
        for (MVPanelItem* item : t->items)
            if (item->itemKind() == MVPanelItem::kListButton) {
                auto* row = static_cast<MVPanelItemListButton*>(item);
                if (withMirrors || !row->isMirror)
                    out.push_back(row);
            }
    return out;
}

MVPanelItemHeader* MVToolPanel::header(int tabId, const QString& name) const
{
    if (const Tab* t = tab(tabId))
        for (MVPanelItem* item : t->items)
            if (item->itemKind() == MVPanelItem::kHeader && item->text() == name)
                return static_cast<MVPanelItemHeader*>(item);
    return nullptr;
}

MVPanelItemBigButton* MVToolPanel::bigButton(int commandId) const
{
    for (const Tab& t : tabs)
        for (MVPanelItem* item : t.items)
            if (item->itemKind() == MVPanelItem::kBigButton &&
                static_cast<MVPanelItemBigButton*>(item)->commandId == commandId)
                return static_cast<MVPanelItemBigButton*>(item);
    return nullptr;
}

std::vector<MVPanelItemListButton*> MVToolPanel::sectionRows(int tabId, const QString& name) const
{
    std::vector<MVPanelItemListButton*> out;
    const Tab* t = tab(tabId);
    if (!t)
        return out;
    bool inside = false;
    for (MVPanelItem* item : t->items) {
        if (item->itemKind() == MVPanelItem::kHeader)
            inside = item->text() == name;
        else if (inside && item->itemKind() == MVPanelItem::kListButton)
            out.push_back(static_cast<MVPanelItemListButton*>(item));
    }
    return out;
}

// ---------------------------------------------------------------------------------------------
// Collapsed sections and stars

void MVToolPanel::setCollapsedSections(const QStringList& entries)
{
    collapsedEntries = entries;
    for (const Tab& t : tabs)
        for (MVPanelItem* item : t.items)
            if (item->itemKind() == MVPanelItem::kHeader)
                static_cast<MVPanelItemHeader*>(item)->setCollapsed(isSectionCollapsed(item->text()));
    relayout();
}

bool MVToolPanel::isSectionCollapsed(const QString& name) const
{
    for (const QString& e : collapsedEntries)
        if (entryName(e) == name)
            return e.startsWith(QLatin1String("1 "));
    return false;
}

void MVToolPanel::headerToggled(MVPanelItemHeader* h)
{
    if (!h)
        return;
    const bool nowCollapsed = !h->isCollapsed();
    h->setCollapsed(nowCollapsed);
    const QString entry = (nowCollapsed ? QStringLiteral("1 ") : QStringLiteral("0 ")) + h->name();
    bool replaced = false;
    for (QString& e : collapsedEntries)
        if (entryName(e) == h->name()) {
            e = entry;
            replaced = true;
        }
    if (!replaced)
        collapsedEntries << entry;
    prefs->setStringArray(PrefKeys::kCollapsedToolSections, toStd(collapsedEntries));
    relayout();
}

void MVToolPanel::setStarredNames(const QStringList& names)
{
    starred = names;
    refreshStarFlags();
    rebuildStarredSection();
    relayout();
}

bool MVToolPanel::toggleStarred(MVPanelItemListButton* row)
{
    if (!row)
        return false;
    MVPanelItemListButton* original = row->isMirror && row->mirrorOf ? row->mirrorOf : row;
    const bool nowStarred = !starred.contains(original->key);
    if (nowStarred)
        starred << original->key;
    else
        starred.removeAll(original->key);
    prefs->setStringArray(PrefKeys::kStarredFilterList, toStd(starred));
    refreshStarFlags();
    rebuildStarredSection();
    relayout();
    return nowStarred;
}

void MVToolPanel::refreshStarFlags()
{
    for (const Tab& t : tabs)
        for (MVPanelItem* item : t.items)
            if (item->itemKind() == MVPanelItem::kListButton) {
                auto* row = static_cast<MVPanelItemListButton*>(item);
                const MVPanelItemListButton* original = row->isMirror && row->mirrorOf ? row->mirrorOf : row;
                row->setStarred(row->hasStar && starred.contains(original->key));
            }
}

void MVToolPanel::rebuildStarredSection()
{
    Tab* t = tabById(kPresetsTab);
    if (!t)
        return;
    for (size_t i = 0; i < t->items.size();) {
        MVPanelItem* item = t->items[i];
        if (item->itemKind() == MVPanelItem::kListButton && static_cast<MVPanelItemListButton*>(item)->isMirror) {
            t->items.erase(t->items.begin() + std::ptrdiff_t(i));
            dropItem(item);
        } else {
            ++i;
        }
    }
    size_t at = 0;
    for (; at < t->items.size(); ++at)
        if (t->items[at]->itemKind() == MVPanelItem::kHeader && t->items[at]->text() == QLatin1String(kStarredSection))
            break;
    if (at == t->items.size())
        return; // no Starred header: nothing is mirrored
    ++at;
    for (const QString& key : starred) {
        MVPanelItemListButton* original = nullptr;
        for (const Tab& other : tabs) {
            for (MVPanelItem* item : other.items)
                if (item->itemKind() == MVPanelItem::kListButton) {
                    auto* row = static_cast<MVPanelItemListButton*>(item);
                    if (!row->isMirror && row->key == key) {
                        original = row;
                        break;
                    }
                }
            if (original)
                break;
        }
        if (!original)
            continue;
        auto* mirror = new MVPanelItemListButton(original->mod, false, original->hasPlus, true, content);
        mirror->isMirror = true;
        mirror->mirrorOf = original;
        mirror->key = original->key;
        mirror->setNameText(original->nameText);
        mirror->setToolTip(original->toolTip());
        mirror->deletable = original->deletable;
        mirror->setStarred(true);
        connectListButton(mirror);
        adopt(*t, mirror, at++);
    }
}

// ---------------------------------------------------------------------------------------------
// Layout

void MVToolPanel::layoutTabBar()
{
    tabBar->setGeometry(0, 0, width(), kTabBarHeight);
    if (tabs.empty())
        return;
    const int n = int(tabs.size());
    const int inner = width() - 2 * kLeftMargin;
    for (int i = 0; i < n; ++i) {
        const int x0 = kLeftMargin + inner * i / n;
        const int x1 = kLeftMargin + inner * (i + 1) / n;
        tabs[size_t(i)].button->setGeometry(x0, 0, x1 - x0, kTabBarHeight - 1);
    }
}

void MVToolPanel::relayout()
{
    for (const Tab& t : tabs)
        for (MVPanelItem* item : t.items)
            item->hide();

    const int rowWidth = std::max(1, width() - kRowInset);
    int y = kTopMargin;
    Tab* t = tabById(current);
    if (t) {
        bool visible = true;
        for (MVPanelItem* item : t->items) {
            const bool isHeader = item->itemKind() == MVPanelItem::kHeader;
            if (isHeader)
                visible = true;
            if (visible) {
                item->setGeometry(0, y, rowWidth, item->height());
                item->show();
                y += item->height();
            }
            if (isHeader)
                visible = !static_cast<MVPanelItemHeader*>(item)->isCollapsed();
        }
        y += kTopMargin;
    }
    for (const Tab& other : tabs)
        other.button->setChecked(other.id == current);

    const int viewHeight = std::max(0, height() - kTabBarHeight);
    viewport->setGeometry(kLeftMargin, kTabBarHeight, std::max(1, width() - kLeftMargin), viewHeight);
    const int contentHeight = t && !t->items.empty() ? y : 0;
    content->resize(std::max(1, width() - kLeftMargin), std::max(1, contentHeight));

    scroller->setGeometry(width() - kScrollerWidth - kLeftMargin, kTabBarHeight + 4, kScrollerWidth,
                          std::max(1, viewHeight - 8));
    const float range = float(std::max(0, contentHeight - viewHeight));
    const float view = contentHeight > 0 ? float(viewHeight) * range / float(contentHeight) : 0.0f;
    scroller->setRange(0.0f, range, view);
    scroller->setPosition(t ? t->scrollPosition : 0.0f);
    const float pos = scroller->getPosition();
    if (t)
        t->scrollPosition = pos;
    content->move(0, -int(pos));
}

void MVToolPanel::paintEvent(QPaintEvent*)
{
    // The style sheet's border-image; a QWidget subclass draws it only when asked.
    QPainter p(this);
    QStyleOption opt;
    opt.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &opt, &p, this);
}

void MVToolPanel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layoutTabBar();
    relayout();
}

void MVToolPanel::setCurrentTab(int id)
{
    if (!tabById(id))
        return;
    endHover();
    current = id;
    relayout();
}

void MVToolPanel::tabButtonClicked()
{
    auto* b = qobject_cast<QPushButton*>(sender());
    if (!b)
        return;
    setCurrentTab(b->property("tabId").toInt());
}

void MVToolPanel::scrollerScrolled(float pos)
{
    Tab* t = tabById(current);
    if (!t)
        return;
    t->scrollPosition = pos;
    content->move(0, -int(pos));
    endHover();
}

void MVToolPanel::wheelEvent(QWheelEvent* event)
{
    if (scroller->takeWheel(event))
        event->accept();
    else
        event->ignore();
}

// ---------------------------------------------------------------------------------------------
// Hover, clicks and the menu

void MVToolPanel::hoverOver(MVPanelItem* item)
{
    if (!hoverPreviews)
        return;
    if (item && item->itemKind() == MVPanelItem::kListButton) {
        auto* row = static_cast<MVPanelItemListButton*>(item);
        hoveredRow = row;
        emit imageModHovered(row->templateMod(), !row->hasPlus || row->plusLit());
    } else {
        endHover();
    }
}

void MVToolPanel::endHover()
{
    if (!hoveredRow)
        return;
    hoveredRow = nullptr;
    emit imageModHovered(nullptr, false);
}

void MVToolPanel::panelItemEntered(MVPanelItem* item)
{
    hoverOver(item);
}

void MVToolPanel::plusHoverChanged(MVPanelItemListButton* row)
{
    hoverOver(row);
}

void MVToolPanel::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
    endHover();
}

void MVToolPanel::modButtonClickedSlot()
{
    auto* row = qobject_cast<MVPanelItemListButton*>(sender());
    if (!row)
        return;
    const bool append = !row->hasPlus || row->plusLit();
    const bool star = row->hasStar && row->starHovered();
    emit modButtonClicked(row, append, star);
}

void MVToolPanel::comIDButtonClickedSlot()
{
    auto* b = qobject_cast<MVPanelItemBigButton*>(sender());
    if (!b)
        return;
    emit comIDButtonClicked(b, !b->hasPlus || b->plusLit());
}

void MVToolPanel::buttonRightClicked(MVPanelItemListButton* row)
{
    if (!row || !row->deletable)
        return;
    menuRow = row;
    contextMenu->popup(QCursor::pos() - QPoint(10, 10));
}

void MVToolPanel::menuTriggered(QAction* action)
{
    if (!action || action->text() != QLatin1String("Delete") || !menuRow)
        return;
    MVPanelItemListButton* row = menuRow;
    menuRow = nullptr;
    // A starred copy deletes the row it stands for.
    emit deleteButtonClicked(row->isMirror && row->mirrorOf ? row->mirrorOf : row);
}
