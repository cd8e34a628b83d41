#include "ui/MVPanelItemListButton.h"

#include "core/ImageModCompound.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

namespace {
QString plusPath(bool lit)
{
    return lit ? QStringLiteral(":/img/panel_button_plus_high.png") : QStringLiteral(":/img/panel_button_plus_low.png");
}
} // namespace

MVPanelItemListButton::MVPanelItemListButton(ImageMod* m, bool owns, bool plus, bool star, QWidget* parent)
    : MVPanelItem(parent), mod(m), ownsMod(owns), hasPlus(plus), hasStar(star)
{
    setFixedHeight(kHeight);
    setMouseTracking(true);
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("border-image: url(:/img/panel_button_bg.png) 8 8 8 8; background: transparent;"
                                 " border-width: 8px; font-size:12px;"));
    if (mod) {
        // A group (a preset) is known by its name; a tile by its label.
        const bool group = mod->kind() == ImageModCompound::compoundKind;
        setNameText(QString::fromStdString(group || mod->displayName.empty() ? mod->name : mod->displayName));
        setToolTip(QString::fromStdString(mod->toolTip));
    }
    plusImage = QPixmap(plusPath(false));
}

MVPanelItemListButton::~MVPanelItemListButton()
{
    if (ownsMod)
        delete mod;
}

ImageMod* MVPanelItemListButton::templateMod() const
{
    return isMirror && mirrorOf ? mirrorOf->mod : mod;
}

void MVPanelItemListButton::setNameText(const QString& t)
{
    nameText = t;
    setText(t);
    if (key.isEmpty())
        key = t;
    update();
}

void MVPanelItemListButton::setStarred(bool s)
{
    if (starred == s)
        return;
    starred = s;
    update();
}

void MVPanelItemListButton::updateAreas()
{
    plusArea = hasPlus ? QRect(width() - 34, 0, 34, height()) : QRect();
    starArea = hasStar ? QRect(0, 0, 48, height()) : QRect();
}

void MVPanelItemListButton::resizeEvent(QResizeEvent* event)
{
    MVPanelItem::resizeEvent(event);
    updateAreas();
}

void MVPanelItemListButton::trackCursor(const QPoint& pos)
{
    // A hidden row gets its resize event late; the areas follow the width now.
    updateAreas();
    const bool inPlus = hasPlus && plusArea.contains(pos);
    const bool inStar = hasStar && starArea.contains(pos);
    if (inStar != starIsHovered) {
        starIsHovered = inStar;
        update();
    }
    if (inPlus != plusIsLit) {
        plusIsLit = inPlus;
        plusImage = QPixmap(plusPath(plusIsLit));
        update();
        emit plusHoverChanged(this);
    }
}

void MVPanelItemListButton::mouseMoveEvent(QMouseEvent* event)
{
    trackCursor(event->pos());
    MVPanelItem::mouseMoveEvent(event);
}

void MVPanelItemListButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton) {
        emit buttonRightClicked(this);
        event->accept();
        return;
    }
    // A click without a move before it still has to know where it landed.
    trackCursor(event->pos());
    MVPanelItem::mousePressEvent(event);
}

void MVPanelItemListButton::leaveEvent(QEvent* event)
{
    MVPanelItem::leaveEvent(event);
    starIsHovered = false;
    if (plusIsLit) {
        plusIsLit = false;
        plusImage = QPixmap(plusPath(false));
        emit plusHoverChanged(this);
    }
    update();
}

void MVPanelItemListButton::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    const bool hot = underMouse();
    if (hot) {
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(isDown() ? QColor(255, 255, 255, 34) : QColor(255, 255, 255, 18));
        p.drawRoundedRect(QRectF(3, 2, width() - 6, height() - 4), 4, 4);
    }
    paintStyledBackground(p);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const int mid = height() / 2;
    // Text lines up under the header's icon, or with a star under the header's title.
    int x = 28;
    if (hasStar) {
        const QString star = starred ? QStringLiteral(":/img/panel_button_star_high.png")
            : starIsHovered          ? QStringLiteral(":/img/panel_button_star_low.png")
                                     : QStringLiteral(":/img/panel_button_star_empty.png");
        p.drawPixmap(QRect(28, mid - 8, 16, 16), QPixmap(star));
        x = 52;
    }
    int right = width() - 10;
    if (hasPlus) {
        // The plus shows while the row is hovered; a lit plus always.
        if (hot || plusIsLit)
            p.drawPixmap(QRect(width() - 26, mid - 8, 16, 16), plusImage);
        right = width() - 32;
    }
    p.setFont(font());
    p.setPen(hot ? QColor(0xff, 0xff, 0xff) : QColor(0xcc, 0xcc, 0xcc));
    const QRect textRect(x, 0, std::max(0, right - x), height());
    p.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter,
               p.fontMetrics().elidedText(nameText, Qt::ElideRight, textRect.width()));
}
