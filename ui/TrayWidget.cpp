#include "ui/TrayWidget.h"

#include "core/ImageMod.h"
#include "ui/ModalQuestions.h"
#include "ui/TrayNode.h"
#include "document/UndoCommandAdjustFilter.h"
#include "document/UndoCommandFilterSequence.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <cmath>

namespace {

const char* const kMenuTexts[] = {"Reset", "Disable", "Enable", "Copy", "Paste", "Delete", "Nest", "Un-nest",
                                  "Edit Nested"};
enum MenuItem { MenuReset, MenuDisable, MenuEnable, MenuCopy, MenuPaste, MenuDelete, MenuNest, MenuUnnest, MenuEdit };

constexpr int kScrollerHeight = 8;

bool sharesTag(const ImageMod& a, const std::vector<int32_t>& tags)
{
    for (int32_t t : a.tags)
        if (std::find(tags.begin(), tags.end(), t) != tags.end())
            return true;
    return false;
}

// Removes the holders of any of tags in seq and its nested groups: all of them with force, else
// each until a pinned one is met. Returns false once a pinned holder stopped the removal.
bool removeHolders(ImageModCompound& seq, const std::vector<int32_t>& tags, bool force)
{
    for (size_t i = 0; i < seq.children.size();) {
        ImageMod* child = seq.children[i].get();
        if (child && sharesTag(*child, tags)) {
            if (!force && child->pinned)
                return false;
            seq.children.erase(seq.children.begin() + long(i));
            continue;
        }
        if (child && child->kind() == ImageModCompound::compoundKind)
            if (!removeHolders(static_cast<ImageModCompound&>(*child), tags, force))
                return false;
        ++i;
    }
    return true;
}

const ImageMod* findHolder(const ImageModCompound& seq, const std::vector<int32_t>& tags)
{
    for (const auto& child : seq.children) {
        if (!child)
            continue;
        if (sharesTag(*child, tags))
            return child.get();
        if (child->kind() == ImageModCompound::compoundKind)
            if (const ImageMod* m = findHolder(static_cast<const ImageModCompound&>(*child), tags))
                return m;
    }
    return nullptr;
}

int indexOfMod(const ImageModCompound& seq, const ImageMod* mod)
{
    for (size_t i = 0; i < seq.children.size(); ++i)
        if (seq.children[i].get() == mod)
            return int(i);
    return -1;
}

// The strip that holds the tiles; it draws the section marks between groups.
class TrayContent : public QWidget {
public:
    explicit TrayContent(QWidget* parent) : QWidget(parent) {}
    std::vector<int> sectionMarks;
    QPixmap sectionPixmap;

protected:
    void paintEvent(QPaintEvent*) override
    {
        if (sectionMarks.empty())
            return;
        QPainter p(this);
        for (int x : sectionMarks) {
            if (!sectionPixmap.isNull()) {
                const QSizeF s = QSizeF(sectionPixmap.size()) / sectionPixmap.devicePixelRatio();
                p.drawPixmap(QPointF(x - s.width() / 2.0, 3 + (TrayWidget::tileHeight - s.height()) / 2.0), sectionPixmap);
            } else {
                p.setPen(QColor(90, 90, 90));
                p.drawLine(x, 10, x, TrayWidget::tileHeight - 4);
            }
        }
    }
};

} // namespace

TrayWidget::TrayWidget(QWidget* parent) : QWidget(parent), stack(std::make_unique<UndoStack>())
{
    content = new TrayContent(this);
    content->resize(contentW, tileHeight + 6);

    separatorPixmap = QPixmap(QStringLiteral(":/img/traynode_separator.png"));
    separatorPixmap.setDevicePixelRatio(2.0);
    sectionSeparatorPixmap = QPixmap(QStringLiteral(":/img/traynode_section_separator.png"));
    sectionSeparatorPixmap.setDevicePixelRatio(2.0);
    static_cast<TrayContent*>(content)->sectionPixmap = sectionSeparatorPixmap;

    centralBand = new QWidget(content);
    centralBand->setObjectName(QStringLiteral("trayCentralBand"));
    centralBand->setAttribute(Qt::WA_StyledBackground, true);
    centralBand->setAttribute(Qt::WA_TransparentForMouseEvents, true);
    centralBand->setStyleSheet(QStringLiteral("QWidget#trayCentralBand { border-image: url(:/img/tray_prev_overlay.png); }"));
    centralBand->hide();

    encloser = new QWidget(content);
    encloser->setObjectName(QStringLiteral("trayEncloser"));
    encloser->setAttribute(Qt::WA_StyledBackground, true);
    encloser->setStyleSheet(
        QStringLiteral("QWidget#trayEncloser { border-image: url(:/img/traynode_encloser.png) 40 100 40 40; "
                       "border-width: 20px 50px 20px 20px; }"));
    encloser->hide();
    exitButton = new QPushButton(encloser);
    exitButton->setFocusPolicy(Qt::NoFocus);
    exitButton->setToolTip(QStringLiteral("Leave the nested tile"));
    exitButton->setStyleSheet(QStringLiteral("QPushButton { border-image: url(:/img/traynode_exit_combo.png); }"
                                             "QPushButton:pressed { border-image: url(:/img/traynode_exit_combo_down.png); }"));
    exitButton->resize(22, 22);
    connect(exitButton, &QPushButton::clicked, this, &TrayWidget::exitComboButtonPressed);

    scroller = new QScrollBar(Qt::Horizontal, this);
    scroller->setFocusPolicy(Qt::NoFocus);
    scroller->setStyleSheet(QStringLiteral(
        "QScrollBar:horizontal { background: transparent; height: 8px; margin: 0; }"
        "QScrollBar::handle:horizontal { background: #5a5a5a; border-radius: 3px; min-width: 30px; margin: 1px; }"
        "QScrollBar::add-line, QScrollBar::sub-line { width: 0; }"
        "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }"));
    connect(scroller, &QScrollBar::valueChanged, this, [this](int v) { scrollerScrolled(float(v)); });

    menu = new QMenu(this);
    menu->setStyleSheet(QStringLiteral(
        "QMenu { border-image: url(:/img/floating_menu_bg_plain.png) 12 12 12 12; border-width: 6px;"
        " color: #e6e6e6; padding: 4px 0; }"
        "QMenu::item { padding: 3px 24px 3px 18px; background: transparent; }"
        "QMenu::item:selected { background: #e3963e; color: #1e1a16; }"
        "QMenu::item:disabled { color: #6c6c6c; }"));
    for (const char* text : kMenuTexts)
        menu->addAction(QString::fromUtf8(text));
    connect(menu, &QMenu::triggered, this, &TrayWidget::menuItemChosen);

    message = [this](const QString& title, const QString& text, const QStringList& buttons) {
        return askWithButtons(this, title, text, buttons);
    };
    askText = [this](const QString& title, const QString& prompt, const QString& fieldLabel, const QString& defaultText,
                     const QString& okCaption, const QString& cancelCaption, QString& answer) {
        return askForTextInDialog(this, title, prompt, fieldLabel, defaultText, okCaption, cancelCaption, answer);
    };
    rebuild();
}

TrayWidget::~TrayWidget() = default;

// ---------------------------------------------------------------------------------------------
// The sequence

void TrayWidget::sortByGroup(ImageModCompound& sequence)
{
    std::stable_sort(sequence.children.begin(), sequence.children.end(),
                     [](const std::unique_ptr<ImageMod>& a, const std::unique_ptr<ImageMod>& b) {
                         const int ga = a ? std::clamp(a->group(), 0, 2) : 1;
                         const int gb = b ? std::clamp(b->group(), 0, 2) : 1;
                         return ga < gb;
                     });
}

ImageModCompound* TrayWidget::compoundAtPath(ImageModCompound& root, const std::vector<int>& path, size_t* depth)
{
    ImageModCompound* level = &root;
    size_t steps = 0;
    for (int index : path) {
        if (index < 0 || index >= level->childCount())
            break;
        ImageMod* child = level->children[size_t(index)].get();
        if (!child || child->kind() != ImageModCompound::compoundKind)
            break;
        level = static_cast<ImageModCompound*>(child);
        ++steps;
    }
    if (depth)
        *depth = steps;
    return level;
}

int TrayWidget::addMod(ImageModCompound* sequence, const ImageMod& mod, bool forceReplace, bool refresh)
{
    ImageModCompound* target = sequence ? sequence : current;
    if (!mod.tags.empty()) {
        if (removeHolders(rootSequence, mod.tags, forceReplace))
            removeHolders(previewSequence, mod.tags, forceReplace);
        // Removing a holder may have taken away the group being edited.
        enterNested(nestPath);
        if (!sequence)
            target = current;
        const ImageMod* holder = findHolder(rootSequence, mod.tags);
        if (!holder)
            holder = findHolder(previewSequence, mod.tags);
        if (holder) {
            rebuild();
            return indexOfMod(*target, holder);
        }
    }
    std::unique_ptr<ImageMod> copy = cloneMod(mod);
    if (refresh)
        copy->onAdded();
    ImageMod* added = copy.get();
    target->addChild(std::move(copy));
    sortByGroup(*target);
    rebuild();
    return indexOfMod(*target, added);
}

ImageMod* TrayWidget::modAt(int index) const
{
    return index >= 0 && index < current->childCount() ? current->children[size_t(index)].get() : nullptr;
}

TrayNode* TrayWidget::nodeAt(int index) const
{
    return index >= 0 && index < int(nodes.size()) ? nodes[size_t(index)] : nullptr;
}

void TrayWidget::removeModAt(int index)
{
    if (index < 0 || index >= current->childCount())
        return;
    current->children.erase(current->children.begin() + index);
    rebuild();
}

void TrayWidget::removeMods(std::vector<int> indices)
{
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    for (auto it = indices.rbegin(); it != indices.rend(); ++it)
        if (*it >= 0 && *it < current->childCount())
            current->children.erase(current->children.begin() + *it);
    rebuild();
}

void TrayWidget::clearTray(bool keepPinned)
{
    current = &rootSequence;
    nestPath.clear();
    std::vector<std::unique_ptr<ImageMod>> kept;
    if (keepPinned)
        for (auto& m : rootSequence.children)
            if (m && m->pinned)
                kept.push_back(std::move(m));
    rootSequence.children = std::move(kept);
    rebuild();
}

std::vector<const ImageMod*> TrayWidget::rootTiles() const
{
    std::vector<const ImageMod*> out;
    for (const auto& m : rootSequence.children)
        out.push_back(m.get());
    return out;
}

std::vector<ImageMod*> TrayWidget::flatModList(bool forDisplay) const
{
    std::vector<ImageMod*> out;
    for (const auto& m : hiddenMods)
        if (m)
            out.push_back(m.get());
    for (const auto& m : rootSequence.children) {
        if (!m)
            continue;
        if (forDisplay && tilesDisabled && m->isPlainAdjustment())
            continue;
        out.push_back(m.get());
    }
    return out;
}

void TrayWidget::setHiddenMod(std::unique_ptr<ImageMod> mod)
{
    if (!mod)
        return;
    hiddenMods.erase(std::remove_if(hiddenMods.begin(), hiddenMods.end(),
                                    [&](const std::unique_ptr<ImageMod>& h) { return h && sharesTag(*h, mod->tags); }),
                     hiddenMods.end());
    hiddenMods.push_back(std::move(mod));
}

bool TrayWidget::hasHiddenModWithTag(int32_t tag) const
{
    for (const auto& h : hiddenMods)
        if (h && std::find(h->tags.begin(), h->tags.end(), tag) != h->tags.end())
            return true;
    return false;
}

QString TrayWidget::modifiedTitleSuffix() const
{
    return filterName + (modified ? QStringLiteral("*") : QString());
}

void TrayWidget::swapSequence(std::vector<std::unique_ptr<ImageMod>>& tiles, std::vector<std::unique_ptr<ImageMod>>& hidden)
{
    dragged = nullptr;
    dragging = false;
    std::swap(rootSequence.children, tiles);
    std::swap(hiddenMods, hidden);
    enterNested(nestPath);
}

// ---------------------------------------------------------------------------------------------
// Undo

void TrayWidget::setUndoEnabled(bool enabled)
{
    if (enabled)
        stack = std::make_unique<UndoStack>();
    else
        stack.reset();
}

void TrayWidget::pushSequenceUndo()
{
    if (!stack)
        return;
    modified = true;
    stack->push(new UndoCommandFilterSequence(this));
}

void TrayWidget::pushAdjustUndo()
{
    if (!stack)
        return;
    modified = true;
    stack->push(new UndoCommandAdjustFilter(this));
}

void TrayWidget::undo()
{
    if (stack)
        stack->undo();
    emit trayAdjusted();
}

void TrayWidget::redo()
{
    if (stack)
        stack->redo();
    emit trayAdjusted();
}

// ---------------------------------------------------------------------------------------------
// Selection

std::vector<int> TrayWidget::selectedIndices() const
{
    std::vector<int> out;
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (!nodes[i]->isSelected())
            continue;
        if (previewing && nodes[i]->mod() && nodes[i]->mod()->group() == 1)
            continue;
        out.push_back(int(i));
    }
    return out;
}

void TrayWidget::setSelected(int index)
{
    if (index < 0 || index >= int(nodes.size()))
        return;
    for (size_t i = 0; i < nodes.size(); ++i)
        nodes[i]->setSelected(int(i) == index);
}

void TrayWidget::clearSelection()
{
    for (TrayNode* n : nodes)
        n->setSelected(false);
}

int TrayWidget::selectedIndex() const
{
    const std::vector<int> s = selectedIndices();
    return s.empty() ? -1 : s.front();
}

ImageMod* TrayWidget::selectedMod() const
{
    return modAt(selectedIndex());
}

int TrayWidget::indexOfNode(const TrayNode* node) const
{
    for (size_t i = 0; i < nodes.size(); ++i)
        if (nodes[i] == node)
            return int(i);
    return -1;
}

// ---------------------------------------------------------------------------------------------
// Rebuilding

int TrayWidget::contentWidth() const
{
    return contentW;
}

void TrayWidget::refreshNodes()
{
    for (TrayNode* n : nodes)
        n->refresh();
}

void TrayWidget::rebuild()
{
    update(); // the empty tray's hint comes or goes
    sortByGroup(*current);
    bool anyCentral = false;
    for (const auto& m : current->children)
        anyCentral |= m && m->group() == 1;
    if (previewing && !anyCentral)
        previewing = false;

    std::vector<TrayNode*> old = std::move(nodes);
    nodes.clear();
    const bool nested = current != &rootSequence;
    int x = nested ? 24 : 18;
    std::vector<int> marks;
    int previousGroup = -1;
    for (size_t i = 0; i < current->children.size(); ++i) {
        ImageMod* mod = current->children[i].get();
        TrayNode* node = nullptr;
        for (auto it = old.begin(); it != old.end(); ++it) {
            if ((*it)->mod() == mod && mod && (*it)->look() == TrayNode::lookForKind(mod->kind())) {
                node = *it;
                old.erase(it);
                node->refresh();
                break;
            }
        }
        if (!node) {
            node = new TrayNode(mod, this, content);
            connect(node, &TrayNode::nodeCloseRequested, this, &TrayWidget::nodeWantsClosing);
            connect(node, &TrayNode::nodeEnabledWillChange, this, &TrayWidget::nodeEnabledWillChange);
            connect(node, &TrayNode::nodeEnabledChanged, this, &TrayWidget::nodeEnabledChanged);
            connect(node, &TrayNode::nodePressed, this, &TrayWidget::nodeWasPressed);
            connect(node, &TrayNode::nodeDoubleClicked, this, &TrayWidget::nodeWasDoubleClicked);
            connect(node, &TrayNode::nodeRightClicked, this, &TrayWidget::nodeWasRightClicked);
            connect(node, &TrayNode::nodeReleased, this, &TrayWidget::nodeWasReleased);
            connect(node, &TrayNode::nodeHoverPressed, this, &TrayWidget::nodeWasHoverPressed);
            node->show();
        }
        const int group = mod ? mod->group() : 1;
        if (i > 0) {
            // A mask tucks under the tile it serves; a new group keeps its distance.
            x += nodes.back()->look() == TrayNode::LookSelector ? -9 : -2;
            if (group != previousGroup) {
                x += 10;
                marks.push_back(x - 4);
            }
        }
        previousGroup = group;
        node->move(x, 3);
        node->raise();
        x += node->tileWidth();
        nodes.push_back(node);
    }
    contentW = std::max(100, x + (nested ? 56 : 20));
    const int contentH = std::max(tileHeight + 6, height() - kScrollerHeight);
    content->resize(contentW, contentH);
    static_cast<TrayContent*>(content)->sectionMarks = marks;

    int firstCentral = -1, lastCentral = -1;
    for (size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i]->mod() && nodes[i]->mod()->group() == 1) {
            if (firstCentral < 0)
                firstCentral = int(i);
            lastCentral = int(i);
        }
    }
    if (firstCentral >= 0) {
        const int left = nodes[size_t(firstCentral)]->x();
        const int right = nodes[size_t(lastCentral)]->geometry().right() + 1;
        centralBand->setGeometry(left, 3, right - left, contentH - 12);
    }
    centralBand->setVisible(previewing && firstCentral >= 0);
    for (auto it = nodes.rbegin(); it != nodes.rend(); ++it)
        (*it)->raise();
    if (centralBand->isVisible())
        centralBand->raise();

    if (nested && !nodes.empty()) {
        const int left = nodes.front()->x();
        const int span = nodes.back()->geometry().right() + 1 - left;
        encloser->setGeometry(left - 6, -3, span + 42, contentH + 6);
    } else {
        encloser->setGeometry(0, -3, contentW, contentH + 6);
    }
    encloser->setVisible(nested);
    encloser->lower();
    exitButton->move(encloser->width() - exitButton->width() - 8, (encloser->height() - exitButton->height()) / 2);

    for (TrayNode* n : old) {
        if (n == dragged)
            dragged = nullptr;
        if (n == menuNode)
            menuNode = nullptr;
        n->hide();
        n->deleteLater();
    }
    updateScroller();
    content->update();
}

void TrayWidget::updateScroller()
{
    const int visible = width();
    const int overflow = std::max(0, contentW - visible);
    scroller->setGeometry(0, height() - kScrollerHeight, width(), kScrollerHeight);
    scroller->setRange(0, overflow);
    scroller->setPageStep(std::max(1, visible));
    scroller->setVisible(overflow > 0);
    scrollerScrolled(float(scroller->value()));
}

void TrayWidget::scrollerScrolled(float position)
{
    if (contentW > width())
        content->move(-int(std::lround(std::clamp(position, 0.0f, float(contentW - width())))), 0);
    else
        content->move(0, 0);
}

void TrayWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    rebuild();
}

void TrayWidget::wheelEvent(QWheelEvent* event)
{
    const QPoint d = event->angleDelta();
    const int step = d.x() != 0 ? d.x() : d.y();
    if (contentW > width() && step != 0) {
        scroller->setValue(scroller->value() - step / 2);
        event->accept();
        return;
    }
    QWidget::wheelEvent(event);
}

void TrayWidget::paintEvent(QPaintEvent*)
{
    // The strip's background is the owner's; the tray paints only its tiles, and while there are
    // none a quiet line saying how to get some.
    if (current != &rootSequence || current->childCount() > 0)
        return;
    QPainter p(this);
    QFont f = font();
    f.setPixelSize(12);
    p.setFont(f);
    p.setPen(QColor(0x80, 0x80, 0x80));
    p.drawText(rect(), Qt::AlignCenter, emptyHint());
}

QString TrayWidget::emptyHint()
{
    return QStringLiteral("Add adjustments from the panel on the right, or drop a filter file here");
}

// ---------------------------------------------------------------------------------------------
// Mouse

void TrayWidget::nodeWasPressed(TrayNode* node)
{
    if (indexOfNode(node) < 0)
        return;
    const Qt::KeyboardModifiers mods = node->pressModifiers;
    if (mods & Qt::ControlModifier) {
        node->setSelected(!node->isSelected());
        emit selectionChanged();
        return;
    }
    if (mods & Qt::ShiftModifier) {
        if (node->isSelected())
            return;
        node->setSelected(true);
        int first = -1, last = -1;
        for (size_t i = 0; i < nodes.size(); ++i)
            if (nodes[i]->isSelected()) {
                if (first < 0)
                    first = int(i);
                last = int(i);
            }
        for (int i = first; i >= 0 && i <= last; ++i)
            nodes[size_t(i)]->setSelected(true);
        emit selectionChanged();
        return;
    }
    pressedWasSelected = node->isSelected();
    clearSelection();
    node->setSelected(true);
    dragged = node;
    dragging = false;
    dragOffset = float(node->x()) - float(node->pressContentPos.x());
    emit selectionChanged();
}

void TrayWidget::dragMoved(const QPointF& contentPos)
{
    if (!dragged)
        return;
    const float wanted = float(std::round(contentPos.x())) + dragOffset;
    if (!dragging) {
        if (std::fabs(wanted - float(dragged->x())) <= 8.0f)
            return;
        dragging = true;
    }
    const int group = dragged->mod() ? dragged->mod()->group() : 1;
    float left = 0.0f;
    float right = float(contentW - dragged->width() - 1);
    for (TrayNode* n : nodes) {
        if (n == dragged || !n->mod())
            continue;
        const int g = n->mod()->group();
        if (g < group)
            left = std::max(left, float(n->x()) + float(n->width()) / 2.0f);
        else if (g > group)
            right = std::min(right, float(n->x()) - float(n->width()) / 2.0f);
    }
    const float x = std::max(left, std::min(wanted, right));
    dragged->raise();
    dragged->move(int(std::lround(x)), dragged->y());
}

void TrayWidget::mouseMoveEvent(QMouseEvent* event)
{
    dragMoved(QPointF(content->mapFrom(this, QPoint(0, 0))) + event->localPos());
}

void TrayWidget::nodeWasReleased(TrayNode* node)
{
    if (dragging) {
        pushSequenceUndo();
        dragging = false;
        // Stable insertion by x: a tile goes behind every tile whose x is not greater.
        std::vector<TrayNode*> order;
        for (TrayNode* n : nodes) {
            auto at = order.begin();
            while (at != order.end() && (*at)->x() <= n->x())
                ++at;
            order.insert(at, n);
        }
        std::vector<std::unique_ptr<ImageMod>> taken = std::move(current->children);
        current->children.clear();
        for (TrayNode* n : order)
            for (auto& m : taken)
                if (m && m.get() == n->mod())
                    current->children.push_back(std::move(m));
        for (auto& m : taken)
            if (m)
                current->children.push_back(std::move(m));
        dragged = nullptr;
        rebuild();
        emit trayAdjusted();
        pressedWasSelected = false;
    } else if (node == dragged && node->isSelected() && pressedWasSelected) {
        node->setSelected(false);
        emit selectionChanged();
    }
    for (auto it = nodes.rbegin(); it != nodes.rend(); ++it)
        (*it)->raise();
    encloser->lower();
    dragged = nullptr;
}

void TrayWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        const bool any = !selectedIndices().empty();
        clearSelection();
        if (previewing)
            setPreviewing(false);
        if (any)
            emit selectionChanged();
    } else if (event->button() == Qt::RightButton) {
        menuNode = nullptr;
        openMenuAt(event->globalPos());
    }
}

void TrayWidget::nodeWasDoubleClicked(TrayNode* node)
{
    const int i = indexOfNode(node);
    if (i < 0 || !node->mod() || node->mod()->kind() != ImageModCompound::compoundKind)
        return;
    setSelected(i);
    editSelectedNested();
}

void TrayWidget::nodeWasRightClicked(TrayNode* node)
{
    if (indexOfNode(node) < 0)
        return;
    if (!node->isSelected()) {
        clearSelection();
        node->setSelected(true);
        emit selectionChanged();
    }
    menuNode = node;
    openMenuAt(QCursor::pos());
}

void TrayWidget::nodeWasHoverPressed(TrayNode*)
{
    // Kept for a preview on long hover; nothing starts the timer yet.
}

void TrayWidget::nodeWantsClosing(TrayNode* node)
{
    const int i = indexOfNode(node);
    if (i < 0)
        return;
    const bool wasSelected = node->isSelected();
    pushSequenceUndo();
    removeModAt(i);
    emit trayAdjusted();
    if (wasSelected)
        emit selectionChanged();
}

void TrayWidget::nodeEnabledWillChange(TrayNode* node)
{
    if (indexOfNode(node) >= 0)
        pushSequenceUndo();
}

void TrayWidget::nodeEnabledChanged(TrayNode* node)
{
    if (indexOfNode(node) >= 0)
        emit trayAdjusted();
}

// ---------------------------------------------------------------------------------------------
// Menu

void TrayWidget::updateMenuState()
{
    const std::vector<int> sel = selectedIndices();
    bool anyEnabled = false, anyDisabled = false, anyCompound = false;
    for (int i : sel) {
        const ImageMod* m = modAt(i);
        if (!m)
            continue;
        anyEnabled |= m->enabled;
        anyDisabled |= !m->enabled;
        anyCompound |= m->kind() == ImageModCompound::compoundKind;
    }
    const QList<QAction*> acts = menu->actions();
    acts[MenuReset]->setEnabled(true);
    acts[MenuDisable]->setEnabled(anyEnabled);
    acts[MenuEnable]->setEnabled(anyDisabled);
    acts[MenuCopy]->setEnabled(!sel.empty());
    acts[MenuDelete]->setEnabled(!sel.empty());
    acts[MenuNest]->setEnabled(!sel.empty());
    acts[MenuPaste]->setEnabled(!clipboard().empty());
    acts[MenuUnnest]->setEnabled(anyCompound);
    acts[MenuEdit]->setEnabled(sel.size() == 1 && anyCompound);
}

void TrayWidget::openMenuAt(const QPoint& globalPos)
{
    updateMenuState();
    menu->popup(globalPos - QPoint(10, 10));
}

void TrayWidget::menuItemChosen(QAction* action)
{
    if (!action)
        return;
    const QString t = action->text();
    const std::vector<int> sel = selectedIndices();
    if (t == QLatin1String("Reset")) {
        if (sel.empty())
            return;
        pushSequenceUndo();
        for (int i : sel) {
            ImageMod* m = modAt(i);
            if (!m)
                continue;
            std::unique_ptr<ImageMod> fresh = m->newInstance();
            const size_t n = std::min(m->variables.size(), fresh->variables.size());
            for (size_t k = 0; k < n; ++k)
                if (m->variables[k] && fresh->variables[k])
                    std::swap(m->variables[k]->data, fresh->variables[k]->data);
            for (size_t k = 0; k < n; ++k)
                m->variableChanged(int32_t(k));
        }
        refreshNodes();
        emit trayAdjusted();
        emit selectionChanged();
    } else if (t == QLatin1String("Disable") || t == QLatin1String("Enable")) {
        if (sel.empty())
            return;
        const bool on = t == QLatin1String("Enable");
        pushSequenceUndo();
        for (int i : sel)
            if (ImageMod* m = modAt(i))
                m->enabled = on;
        refreshNodes();
        emit trayAdjusted();
    } else if (t == QLatin1String("Copy")) {
        copySelected();
    } else if (t == QLatin1String("Paste")) {
        if (clipboard().empty())
            return;
        pushSequenceUndo();
        if (paste())
            emit trayAdjusted();
    } else if (t == QLatin1String("Delete")) {
        if (sel.empty())
            return;
        pushSequenceUndo();
        removeMods(sel);
        emit trayAdjusted();
        emit selectionChanged();
    } else if (t == QLatin1String("Nest")) {
        nestSelected();
    } else if (t == QLatin1String("Un-nest")) {
        unnestSelected();
    } else if (t == QLatin1String("Edit Nested")) {
        editSelectedNested();
    }
}

std::vector<std::unique_ptr<ImageMod>>& TrayWidget::clipboard()
{
    static std::vector<std::unique_ptr<ImageMod>> tiles;
    return tiles;
}

void TrayWidget::copySelected()
{
    const std::vector<int> sel = selectedIndices();
    if (sel.empty())
        return;
    clipboard().clear();
    for (int i : sel)
        if (const ImageMod* m = modAt(i))
            clipboard().push_back(cloneMod(*m));
}

bool TrayWidget::paste()
{
    bool any = false;
    for (const auto& m : clipboard())
        if (m)
            any |= addMod(*m, false, true) >= 0;
    return any;
}

// ---------------------------------------------------------------------------------------------
// Nesting

int TrayWidget::showWords(const QString& title, const QString& text, const QStringList& buttons)
{
    return message ? message(title, text, buttons) : 0;
}

bool TrayWidget::nestSelected()
{
    const std::vector<int> sel = selectedIndices();
    bool allCentral = !sel.empty();
    for (int i : sel)
        if (!modAt(i) || modAt(i)->group() != 1)
            allCentral = false;
    if (!allCentral) {
        showWords(QStringLiteral("Can't Nest Tiles"),
                  QStringLiteral("Could not nest selected tiles. One or more tiles must be selected, and sizing, "
                                 "borders, watermarks, and other non-central tiles cannot be nested."),
                  {QStringLiteral("OK")});
        return false;
    }
    QString name;
    if (!askText || !askText(QStringLiteral("Name Nested Tile"), QStringLiteral("Enter a name for the new nested tile"),
                             QStringLiteral("Name"), QStringLiteral("Nested Tile"), QStringLiteral("Create"),
                             QStringLiteral("Cancel"), name))
        return false;
    pushSequenceUndo();
    auto group = std::make_unique<ImageModCompound>(name.toStdString());
    group->displayName = name.toStdString();
    for (int i : sel)
        group->addChild(cloneMod(*modAt(i)));
    for (auto it = sel.rbegin(); it != sel.rend(); ++it)
        current->children.erase(current->children.begin() + *it);
    const int at = std::min(sel.front(), current->childCount());
    ImageMod* made = group.get();
    current->children.insert(current->children.begin() + at, std::move(group));
    rebuild();
    setSelected(indexOfMod(*current, made));
    emit trayAdjusted();
    emit selectionChanged();
    return true;
}

bool TrayWidget::unnestSelected()
{
    const std::vector<int> sel = selectedIndices();
    ImageMod* m = sel.size() == 1 ? modAt(sel.front()) : nullptr;
    if (!m || m->kind() != ImageModCompound::compoundKind) {
        showWords(QStringLiteral("Can't Unnest Tile"), QStringLiteral("You must select one nested tile to unnest."),
                  {QStringLiteral("OK")});
        return false;
    }
    pushSequenceUndo();
    const int at = sel.front();
    std::unique_ptr<ImageMod> taken = std::move(current->children[size_t(at)]);
    current->children.erase(current->children.begin() + at);
    auto& group = static_cast<ImageModCompound&>(*taken);
    int k = at;
    for (auto& child : group.children)
        if (child)
            current->children.insert(current->children.begin() + k++, std::move(child));
    taken.reset();
    clearSelection();
    rebuild();
    emit trayAdjusted();
    emit selectionChanged();
    return true;
}

bool TrayWidget::editSelectedNested()
{
    const std::vector<int> sel = selectedIndices();
    ImageMod* m = sel.size() == 1 ? modAt(sel.front()) : nullptr;
    if (!m || m->kind() != ImageModCompound::compoundKind)
        return false;
    std::vector<int> path = nestPath;
    path.push_back(sel.front());
    enterNested(path);
    emit selectionChanged();
    return true;
}

void TrayWidget::enterNested(const std::vector<int>& path)
{
    size_t depth = 0;
    ImageModCompound* level = compoundAtPath(rootSequence, path, &depth);
    nestPath.assign(path.begin(), path.begin() + long(depth));
    if (level != current) {
        clearSelection();
        current = level;
    }
    rebuild();
}

void TrayWidget::exitNested()
{
    if (nestPath.empty())
        return;
    const int index = nestPath.back();
    std::vector<int> up = nestPath;
    up.pop_back();
    enterNested(up);
    setSelected(index);
    emit trayAdjusted();
    emit selectionChanged();
}

void TrayWidget::exitComboButtonPressed()
{
    exitNested();
}

void TrayWidget::setPreviewing(bool on)
{
    if (previewing == on)
        return;
    previewing = on;
    rebuild();
}
