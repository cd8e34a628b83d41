#include "ui/TrayNode.h"

#include "core/ImageMod.h"
#include "ui/TrayNodeLabel.h"
#include "ui/TrayWidget.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleOption>

namespace {

struct LookArt {
    int width;
    const char* normal;
    const char* selected;
};

const LookArt kLooks[4] = {
    {92, ":/img/traynode.png", ":/img/traynodesel.png"},
    {100, ":/img/traynode_combo.png", ":/img/traynodesel_combo.png"},
    {92, ":/img/traynode_camera.png", ":/img/traynodesel.png"},
    {99, ":/img/traynode_selector.png", ":/img/traynode_selector_sel.png"},
};

// The label and buttons live on the plain tile's face; combo and selector tiles are wider by a
// right margin where their art shows the stack or the tab.
constexpr int kFaceWidth = 92;

QPushButton* makeButton(QWidget* parent, int x, int y)
{
    auto* b = new QPushButton(parent);
    b->setFocusPolicy(Qt::NoFocus);
    b->setGeometry(x, y, TrayNode::buttonSize, TrayNode::buttonSize);
    b->setCursor(Qt::ArrowCursor);
    return b;
}

} // namespace

TrayNode::TrayNode(ImageMod* mod, TrayWidget* owner, QWidget* parent)
    : QWidget(parent), modPtr(mod), tray(owner), tileLook(lookForKind(mod ? mod->kind() : 0))
{
    setAttribute(Qt::WA_StyledBackground, true);
    setFixedSize(tileWidth(), TrayWidget::tileHeight);

    closeBtn = makeButton(this, 7, 8);
    closeBtn->setStyleSheet(QStringLiteral("QPushButton { border-image: url(:/img/traynodeclosebutton.png); }"
                                           "QPushButton:pressed { border-image: url(:/img/traynodeclosebuttondown.png); }"));
    closeBtn->setToolTip(QStringLiteral("Remove this tile"));
    const int pinX = kFaceWidth - 7 - buttonSize;
    pinBtn = makeButton(this, pinX, 8);
    pinBtn->setCheckable(true);
    pinBtn->setStyleSheet(QStringLiteral("QPushButton { border-image: url(:/img/traynodepinbutton.png); }"
                                         "QPushButton:hover { border-image: url(:/img/traynodepinbuttonhigh.png); }"
                                         "QPushButton:checked { border-image: url(:/img/traynodepinbuttondown.png); }"));
    pinBtn->setToolTip(QStringLiteral("Pin: the tile stays when the tray is cleared or a preset is applied"));
    disableBtn = makeButton(this, pinX - 2 - buttonSize, 8);
    disableBtn->setCheckable(true);
    disableBtn->setStyleSheet(QStringLiteral(
        "QPushButton { border-image: url(:/img/traynodedisablebutton.png); }"
        "QPushButton:hover { border-image: url(:/img/traynodedisablebuttonhigh.png); }"
        "QPushButton:checked { border-image: url(:/img/traynodeenablebutton.png); }"));
    disableBtn->setToolTip(QStringLiteral("Disable or enable this tile"));

    nameLabel = new TrayNodeLabel(this);
    ownedChildren = {closeBtn, pinBtn, disableBtn, nameLabel};

    connect(closeBtn, &QPushButton::clicked, this, &TrayNode::closeButtonPressed);
    connect(disableBtn, &QPushButton::clicked, this, &TrayNode::disableButtonPressed);
    connect(pinBtn, &QPushButton::clicked, this, &TrayNode::pinButtonPressed);
    hover.setSingleShot(true);
    connect(&hover, &QTimer::timeout, this, &TrayNode::hoverTimerFired);
    refresh();
}

TrayNode::~TrayNode() = default;

TrayNode::Look TrayNode::lookForKind(int kind)
{
    switch (kind) {
    case 2: return LookCamera;
    case 3: return LookCombo;
    case 4: return LookSelector;
    default: return LookPlain;
    }
}

int TrayNode::widthForLook(Look look)
{
    return kLooks[look].width;
}

void TrayNode::setSelected(bool on)
{
    if (selected == on)
        return;
    selected = on;
    applyStyle();
}

QString TrayNode::labelText() const
{
    if (!modPtr)
        return QString();
    std::string text = modPtr->labelForTile();
    if (text.empty())
        text = modPtr->displayName.empty() ? modPtr->name : modPtr->displayName;
    return QString::fromStdString(text);
}

void TrayNode::refresh()
{
    nameLabel->setLabelText(labelText());
    nameLabel->placeIn(kFaceWidth, TrayWidget::tileHeight);
    const bool enabled = !modPtr || modPtr->enabled;
    disableBtn->setChecked(!enabled);
    pinBtn->setChecked(modPtr && modPtr->pinned);
    nameLabel->setOpacity(enabled ? 1.0f : 0.4f);
    setToolTip(modPtr ? QString::fromStdString(modPtr->toolTip) : QString());
    applyStyle();
}

void TrayNode::applyStyle()
{
    const LookArt& art = kLooks[tileLook];
    const char* image = selected ? art.selected : art.normal;
    setStyleSheet(QStringLiteral("TrayNode { border-image: url(%1) 20 40 20 40; border-width: 10px 20px 10px 20px; }")
                      .arg(QLatin1String(image)));
    nameLabel->setTextColor(selected ? QColor(0xff, 0xff, 0xff) : QColor(0x1c, 0x1c, 0x1c));
}

void TrayNode::pinButtonPressed()
{
    if (modPtr)
        modPtr->pinned = !modPtr->pinned;
    refresh();
}

void TrayNode::disableButtonPressed()
{
    emit nodeEnabledWillChange(this);
    if (modPtr)
        modPtr->enabled = !modPtr->enabled;
    refresh();
    emit nodeEnabledChanged(this);
}

void TrayNode::closeButtonPressed()
{
    emit nodeCloseRequested(this);
}

void TrayNode::hoverTimerFired()
{
    emit nodeHoverPressed(this);
}

void TrayNode::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton) {
        emit nodeRightClicked(this);
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    hover.stop();
    pressModifiers = event->modifiers();
    pressContentPos = tray ? QPointF(mapTo(tray->contentWidget(), QPoint(0, 0))) + event->localPos() : event->localPos();
    // Qt's implicit grab keeps the moves and the release coming to this tile while the button is down.
    emit nodePressed(this);
}

void TrayNode::mouseMoveEvent(QMouseEvent* event)
{
    if (tray && tray->draggedNode() == this)
        tray->dragMoved(QPointF(mapTo(tray->contentWidget(), QPoint(0, 0))) + event->localPos());
}

void TrayNode::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    emit nodeReleased(this);
}

void TrayNode::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit nodeDoubleClicked(this);
}

void TrayNode::paintEvent(QPaintEvent*)
{
    // Style sheets on a plain QWidget subclass only paint through the style.
    QStyleOption opt;
    opt.initFrom(this);
    QPainter p(this);
    style()->drawPrimitive(QStyle::PE_Widget, &opt, &p, this);
}
