#include "document/MVPreviewChooser.h"

#include "document/MVPreviewChooserItem.h"
#include "document/core/GeometryResampling.h"
#include "document/core/ModSequenceRunner.h"
#include "document/core/PreviewList.h"
#include "ui/DevicePixelRatio.h"
#include "ui/MVScroller.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kScrollerWidth = 7;
// Thumbnails this far below the view start with those in view, so a scroll finds them ready.
constexpr int kLookAhead = 160;

const char* const kSectionStyle =
    "QPushButton { border: none; border-bottom: 1px solid #343434; background: transparent; color: #c4c4c4;"
    " font-size: 12px; font-weight: bold; text-align: left; padding-left: 2px; }"
    " QPushButton:hover { color: #f2f2f2; }";
const char* const kCloseStyle =
    "QPushButton { border: 1px solid #4a4a4a; border-radius: 13px; background: #2c2c2c; color: #c4c4c4;"
    " font-size: 13px; }"
    " QPushButton:hover { background: #3a3a3a; color: #f2f2f2; border-color: #e3963e; }"
    " QPushButton:pressed { background: #e3963e; color: #1e1a16; }";

} // namespace

MVPreviewChooser::MVPreviewChooser(bool appendMode, QWidget* parent)
    : QWidget(parent), runner(std::make_unique<ModSequenceRunner>(true, false, 256, 0.5f)), append(appendMode)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_StyledBackground, false);
    viewport = new QWidget(this);
    content = new QWidget(viewport);
    scroller = new MVScroller(this);
    connect(scroller, &MVScroller::scrolled, this, &MVPreviewChooser::scrollerScrolled);
    closer = new QPushButton(QStringLiteral("\u2715"), this);
    closer->setToolTip(QStringLiteral("Close (Esc)"));
    closer->setStyleSheet(QLatin1String(kCloseStyle));
    closer->setFocusPolicy(Qt::NoFocus);
    closer->setCursor(Qt::PointingHandCursor);
    closer->resize(26, 26);
    connect(closer, &QPushButton::clicked, this, &MVPreviewChooser::closeButtonPressed);
    recheckTimer.setInterval(kRecheckInterval);
    connect(&recheckTimer, &QTimer::timeout, this, &MVPreviewChooser::recheckTimerFired);
    if (parent)
        parent->installEventFilter(this);
}

MVPreviewChooser::~MVPreviewChooser()
{
    recheckTimer.stop();
    // The thumbnails' threads read the source: they end before it goes.
    for (MVPreviewChooserItem* i : items)
        delete i;
    items.clear();
}

void MVPreviewChooser::setSource(const FlexImageFloat& base, const std::vector<ImageMod*>& shared)
{
    auto small = std::make_unique<FlexImageFloat>();
    const float d = gDevicePixelRatio > 0.0f ? gDevicePixelRatio : 1.0f;
    const int32_t tw = int32_t(MVPreviewChooserItem::kThumbWidth * d);
    const int32_t th = int32_t(MVPreviewChooserItem::kThumbHeight * d);
    if (base.isEmpty() || !geometryResample(base, *small, {}, tw, th, false))
        return;
    std::vector<std::unique_ptr<ImageMod>> clones = previewClones(shared);
    if (!clones.empty())
        runner->run(rawModList(clones), small.get(), nullptr, -1, 0, nullptr);
    source = std::move(small);
}

void MVPreviewChooser::addSection(int tabID, const QString& name, bool collapsed)
{
    Section s;
    s.tabID = tabID;
    s.name = name;
    s.collapsed = collapsed;
    s.first = int(items.size());
    s.button = new QPushButton(content);
    s.button->setStyleSheet(QLatin1String(kSectionStyle));
    s.button->setFocusPolicy(Qt::NoFocus);
    s.button->setCursor(Qt::PointingHandCursor);
    s.button->setIconSize(QSize(12, 12));
    connect(s.button, &QPushButton::clicked, this, &MVPreviewChooser::sectionCollapsePressed);
    sections.push_back(s);
    updateSectionButton(sections.back());
}

void MVPreviewChooser::addPreset(const QString& name, const ImageMod& preset)
{
    if (sections.empty())
        addSection(0, QString(), false);
    auto* cell = new MVPreviewChooserItem(name, preset, source.get(), content);
    connect(cell, &MVPreviewChooserItem::chosen, this, &MVPreviewChooser::itemChosen);
    items.push_back(cell);
    itemSection.push_back(int(sections.size()) - 1);
    ++sections.back().count;
    updateSectionButton(sections.back());
}

void MVPreviewChooser::begin()
{
    if (placement)
        setGeometry(placement());
    relayout();
    recheckTimer.start();
    recheckTimerFired();
}

MVPreviewChooserItem* MVPreviewChooser::item(int index) const
{
    return index >= 0 && index < int(items.size()) ? items[size_t(index)] : nullptr;
}

QString MVPreviewChooser::sectionName(int index) const
{
    return index >= 0 && index < int(sections.size()) ? sections[size_t(index)].name : QString();
}

bool MVPreviewChooser::isSectionCollapsed(int index) const
{
    return index >= 0 && index < int(sections.size()) && sections[size_t(index)].collapsed;
}

QPushButton* MVPreviewChooser::sectionButton(int index) const
{
    return index >= 0 && index < int(sections.size()) ? sections[size_t(index)].button : nullptr;
}

int MVPreviewChooser::unfinishedCount()
{
    int n = 0;
    for (MVPreviewChooserItem* i : items)
        if (i->state() != MVPreviewChooserItem::Done)
            ++n;
    return n;
}

void MVPreviewChooser::waitForThumbnails()
{
    for (MVPreviewChooserItem* i : items)
        i->waitForIdle();
}

void MVPreviewChooser::updateSectionButton(Section& s)
{
    s.button->setIcon(QIcon(s.collapsed ? QStringLiteral(":/img/preview_chooser_uncollapse.png")
                                        : QStringLiteral(":/img/preview_chooser_collapse.png")));
    // A button reads "&" as a shortcut mark: doubled, it shows as itself.
    s.button->setText(QStringLiteral("  ") + QString(s.name).replace(QLatin1Char('&'), QStringLiteral("&&")) +
                      QStringLiteral("   ") + QString::number(s.count));
}

QRect MVPreviewChooser::cardRect() const
{
    return rect().adjusted(kCardMargin, kCardMargin, -kCardMargin, -kCardMargin);
}

void MVPreviewChooser::relayout()
{
    const QRect card = cardRect();
    closer->move(card.right() - kContentPadding - closer->width() + 4, card.top() + (kTitleHeight - closer->height()) / 2);
    const QRect view(card.left() + kContentPadding, card.top() + kTitleHeight,
                     std::max(1, card.width() - 2 * kContentPadding - kScrollerWidth - 6),
                     std::max(1, card.height() - kTitleHeight - kContentPadding / 2));
    viewport->setGeometry(view);
    scroller->setGeometry(view.right() + 6, view.top(), kScrollerWidth, view.height());

    const int w = view.width();
    const int cw = MVPreviewChooserItem::kCellWidth, ch = MVPreviewChooserItem::kCellHeight;
    const int columns = std::max(1, (w + kSpacing) / (cw + kSpacing));
    // Rows start under the headers' titles, so short sections line up with full ones.
    const int left = 4;
    int y = 0;
    for (Section& s : sections) {
        s.top = y;
        // A section without presets (an empty Starred) has nothing to show.
        s.button->setVisible(s.count > 0);
        if (s.count == 0)
            continue;
        s.button->setGeometry(0, y, w, kHeaderHeight - 6);
        y += kHeaderHeight;
        for (int k = 0; k < s.count; ++k) {
            MVPreviewChooserItem* cell = items[size_t(s.first + k)];
            if (s.collapsed) {
                cell->hide();
                continue;
            }
            cell->move(left + (k % columns) * (cw + kSpacing), y + (k / columns) * (ch + kSpacing));
            cell->show();
        }
        if (!s.collapsed && s.count > 0)
            y += ((s.count + columns - 1) / columns) * (ch + kSpacing) + 4;
    }
    contentHeight = y;
    content->resize(w, std::max(y, view.height()));
    const float range = float(std::max(0, contentHeight - view.height()));
    const float shown = contentHeight > 0 ? float(view.height()) * range / float(contentHeight) : 0.0f;
    scroller->setRange(0.0f, range, shown);
    scroller->setVisible(range > 0.0f);
    scrollPosition = std::clamp(scrollPosition, 0.0f, range);
    scroller->setPosition(scrollPosition);
    content->move(0, -int(scrollPosition));
}

void MVPreviewChooser::scrollerScrolled(float toPosition)
{
    scrollPosition = toPosition;
    content->move(0, -int(std::lround(toPosition)));
    // What came into view starts next.
    if (!recheckTimer.isActive())
        recheckTimer.start();
}

void MVPreviewChooser::recheckTimerFired()
{
    int running = 0;
    for (MVPreviewChooserItem* i : items)
        if (i->state() == MVPreviewChooserItem::Working)
            ++running;
    const int viewTop = int(scrollPosition);
    const int viewBottom = viewTop + viewport->height() + kLookAhead;
    // First those in view, then the rest of the open sections, then the folded ones.
    for (int pass = 0; pass < 3 && running < kMaxRunning; ++pass) {
        for (size_t k = 0; k < items.size() && running < kMaxRunning; ++k) {
            MVPreviewChooserItem* cell = items[k];
            if (cell->state() != MVPreviewChooserItem::Waiting)
                continue;
            const bool folded = sections[size_t(itemSection[k])].collapsed;
            const bool inView = !folded && cell->y() + cell->height() >= viewTop && cell->y() <= viewBottom;
            if ((pass == 0 && !inView) || (pass == 1 && folded))
                continue;
            cell->startThumbnail();
            ++running;
        }
    }
    if (running == 0)
        recheckTimer.stop();
    // The cells' waiting marks give way as their pictures arrive.
    for (MVPreviewChooserItem* i : items)
        if (i->isVisible())
            i->update();
}

void MVPreviewChooser::closeButtonPressed()
{
    if (closing)
        return;
    closing = true;
    recheckTimer.stop();
    hide();
    emit closed();
    deleteLater();
}

void MVPreviewChooser::sectionCollapsePressed()
{
    for (Section& s : sections) {
        if (s.button != sender())
            continue;
        s.collapsed = !s.collapsed;
        updateSectionButton(s);
        relayout();
        if (!recheckTimer.isActive())
            recheckTimer.start();
        emit sectionEnabled(s.tabID, s.name, !s.collapsed);
        return;
    }
}

void MVPreviewChooser::itemChosen(MVPreviewChooserItem* which)
{
    if (closing || !which || !which->preset())
        return;
    emit previewChosen(which->preset(), append);
    closeButtonPressed();
}

bool MVPreviewChooser::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && placement && !closing)
        setGeometry(placement());
    return QWidget::eventFilter(watched, event);
}

void MVPreviewChooser::keyPressEvent(QKeyEvent* e)
{
    if (e->key() == Qt::Key_Escape) {
        closeButtonPressed();
        return;
    }
    QWidget::keyPressEvent(e);
}

void MVPreviewChooser::resizeEvent(QResizeEvent*)
{
    relayout();
}

void MVPreviewChooser::wheelEvent(QWheelEvent* e)
{
    if (!scroller->takeWheel(e))
        e->ignore();
}

void MVPreviewChooser::mousePressEvent(QMouseEvent* e)
{
    // A press on the dimmed surround leaves, as Escape does.
    if (!cardRect().contains(e->pos()))
        closeButtonPressed();
}

void MVPreviewChooser::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.fillRect(rect(), QColor(8, 8, 8, 178));
    const QRectF card = QRectF(cardRect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath shape;
    shape.addRoundedRect(card, 10.0, 10.0);
    QLinearGradient fill(card.topLeft(), card.bottomLeft());
    fill.setColorAt(0.0, QColor(0x25, 0x25, 0x25));
    fill.setColorAt(1.0, QColor(0x1b, 0x1b, 0x1b));
    p.fillPath(shape, fill);
    p.setPen(QPen(QColor(0x3c, 0x3c, 0x3c), 1.0));
    p.drawPath(shape);

    const qreal x = card.left() + kContentPadding;
    QFont title = font();
    title.setPixelSize(15);
    title.setBold(true);
    p.setFont(title);
    p.setPen(QColor(0xf2, 0xf2, 0xf2));
    const QString heading = append ? QStringLiteral("Quicklook Presets (Append)") : QStringLiteral("Quicklook Presets");
    const QRectF headingRect(x, card.top() + 9, card.width() / 2, 20);
    p.drawText(headingRect, Qt::AlignLeft | Qt::AlignVCenter, heading);
    QFont small = font();
    small.setPixelSize(11);
    p.setFont(small);
    p.setPen(QColor(0x8e, 0x8e, 0x8e));
    p.drawText(QRectF(x, card.top() + 29, card.width() - 2 * kContentPadding - 40, 16), Qt::AlignLeft | Qt::AlignVCenter,
               append ? QStringLiteral("Click a look to add it after your tiles. Esc closes.")
                      : QStringLiteral("Click a look to apply it to your photo. Esc closes."));
    p.setPen(QPen(QColor(0x12, 0x12, 0x12), 1.0));
    p.drawLine(QPointF(card.left() + 1, card.top() + kTitleHeight - 4.5), QPointF(card.right() - 1, card.top() + kTitleHeight - 4.5));
    p.setPen(QPen(QColor(0x33, 0x33, 0x33), 1.0));
    p.drawLine(QPointF(card.left() + 1, card.top() + kTitleHeight - 3.5), QPointF(card.right() - 1, card.top() + kTitleHeight - 3.5));
}
