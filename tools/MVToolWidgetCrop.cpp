#include "tools/MVToolWidgetCrop.h"

#include "core/ImageModVariableDataChoice.h"
#include "document/MVMediaWidget.h"
#include "mods/ImageModSize2.h"
#include "tools/CropGeometryMouse.h"
#include "ui/MVListChooser.h"
#include "ui/MVPushButton.h"
#include "ui/MVSlider.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <cmath>

namespace {

QStringList aspectLabels(const ImageModCrop& crop)
{
    QStringList list;
    if (crop.aspectChoice && !crop.aspectChoice->labelSets.empty())
        for (const std::string& s : crop.aspectChoice->labelSets[0])
            list << QString::fromStdString(s);
    return list;
}

} // namespace

MVToolWidgetCrop::MVToolWidgetCrop(MVMediaWidget* viewer, QWidget* parent) : MVToolWidget(viewer, parent)
{
    setObjectName(QStringLiteral("cropTool"));
    refreshTimer.setSingleShot(true);
    refreshTimer.setInterval(500);
    connect(&refreshTimer, &QTimer::timeout, this, &MVToolWidgetCrop::refreshTimerFired);

    aspectList = new MVListChooser(bar);
    aspectList->setItems(aspectLabels(cropCopy), 0);
    connect(aspectList, &MVListChooser::itemChanged, this, [this](int) { controlChanged(aspectList); });

    customAspectBox = new QLineEdit(bar);
    customAspectBox->setPlaceholderText(QStringLiteral("w:h"));
    customAspectBox->setToolTip(QStringLiteral("Custom Aspect"));
    customAspectBox->setStyleSheet(QStringLiteral(
        "QLineEdit { background: #202022; color: #e0e0e0; border: 1px solid #4a4a4e; border-radius: 3px; padding: 1px 4px; }"));
    connect(customAspectBox, &QLineEdit::editingFinished, this, [this] { controlChanged(customAspectBox); });

    straightenLabel = new QLabel(QStringLiteral("Straighten"), bar);
    straightenSlider = new MVSlider(bar);
    if (ImageModVariable* v = cropCopy.variableAt(0); v && v->data)
        straightenSlider->setFromVariableData(*v->data);
    straightenSlider->setDisplayRange(-45.0f, 45.0f);
    straightenSlider->setHardMin(true, -180.0f);
    straightenSlider->setHardMax(true, 180.0f);
    straightenSlider->setValue(0.0f);
    connect(straightenSlider, &MVSlider::sliderChanged, this, [this](QWidget*) { controlChanged(straightenSlider); });

    resetButton = new MVPushButton(QStringLiteral("Reset"), bar);
    doneButton = new MVPushButton(QStringLiteral("Done"), bar);
    rotateLeftButton = new MVPushButton(QStringLiteral("Rotate Left"), bar);
    rotateRightButton = new MVPushButton(QStringLiteral("Rotate Right"), bar);
    for (MVPushButton* b : {resetButton, doneButton, rotateLeftButton, rotateRightButton})
        connect(b, &QPushButton::clicked, this, [this, b] { controlChanged(b); });
    layoutControls();
}

void MVToolWidgetCrop::layoutControls()
{
    if (!bar)
        return;
    const int h = 56;
    const int w = std::min(std::max(width() - 20, 300), 980);
    bar->setGeometry((width() - w) / 2, height() - h - 10, w, h);
    bar->raise();
    // Left to right: turns, aspect, custom box, straighten, then Reset and Done at the right end.
    int x = 20;
    const int y = 16, bh = 24;
    rotateLeftButton->setGeometry(x, y, 86, bh);
    x += 90;
    rotateRightButton->setGeometry(x, y, 92, bh);
    x += 104;
    aspectList->setGeometry(x, y, 86, bh);
    x += 90;
    customAspectBox->setGeometry(x, y, 56, bh);
    x += 68;
    straightenLabel->setGeometry(x, y, 70, bh);
    x += 72;
    const int right = w - 20 - 2 * 64 - 8;
    straightenSlider->setGeometry(x, y - 6, std::max(80, right - x - 10), 36);
    resetButton->setGeometry(w - 20 - 2 * 64 - 4, y, 64, bh);
    doneButton->setGeometry(w - 20 - 64, y, 64, bh);
}

void MVToolWidgetCrop::beginEditing(ImageMod* mod)
{
    modBeingEdited = dynamic_cast<ImageModCrop*>(mod);
    if (!modBeingEdited) {
        freshCrop = std::make_unique<ImageModCrop>();
        modBeingEdited = freshCrop.get();
    }
    cropCopy.copyFrom(*modBeingEdited);
    cropAtStart = std::make_unique<ImageModCrop>();
    cropAtStart->copyFrom(*modBeingEdited);
    const float keepCustom = geometry.customAspect;
    const bool keepSwap = geometry.allowSwapAspect;
    readCropState(cropCopy, geometry);
    geometry.customAspect = keepCustom;
    geometry.allowSwapAspect = keepSwap;
    if (geometry.customAspect <= 0.0f && cropCopy.aspectChoice &&
        cropCopy.aspectChoice->index == ImageModAspectRatio::customIndex)
        geometry.customAspect = cropCopy.aspect.floatValue(1);
    savedStraighten = mediaWidget ? mediaWidget->viewRotation : 0.0f;
    aspectList->setCurrentIndex(cropCopy.aspectChoice ? cropCopy.aspectChoice->index : 0);
    if (geometry.customAspect > 0.0f)
        customAspectBox->setText(QString::number(double(geometry.customAspect), 'g', 4));
    straightenSlider->setValue(cropCopy.straighten());
    showStraightenInViewer(cropCopy.straighten());
    setMouseTracking(true);
    applyCropState();
}

void MVToolWidgetCrop::disableOverlappingMods(const std::vector<ImageMod*>& sequence)
{
    disableModsWithTags(sequence, {kTagCrop, kTagSize, kTagBorder});
    if (mediaWidget) {
        geometryWasApplied = mediaWidget->applyGeometry;
        mediaWidget->setApplyGeometry(false);
    }
}

void MVToolWidgetCrop::restoreDisabledMods()
{
    MVToolWidget::restoreDisabledMods();
    if (mediaWidget)
        mediaWidget->setApplyGeometry(geometryWasApplied);
}

void MVToolWidgetCrop::updateForMediaChange()
{
    MVToolWidget::updateForMediaChange();
    applyCropState();
}

void MVToolWidgetCrop::setAspectLock(float ratio, bool followsOrientation)
{
    if (!(ratio > 0.0f))
        return;
    geometry.customAspect = ratio;
    geometry.allowSwapAspect = followsOrientation;
    customAspectBox->setText(QString::number(double(ratio), 'g', 4));
    applyCropState();
}

void MVToolWidgetCrop::mediaRotated(bool clockwise)
{
    rotateCropInsets(geometry.leftInset, geometry.rightInset, geometry.topInset, geometry.bottomInset, clockwise);
    followViewer();
    applyCropState();
}

float MVToolWidgetCrop::parseAspect(const QString& text)
{
    const QString t = text.trimmed();
    for (QChar sep : {QChar(':'), QChar('x'), QChar('/')}) {
        const int at = t.indexOf(sep);
        if (at > 0) {
            bool okW = false, okH = false;
            const double w = t.left(at).trimmed().toDouble(&okW);
            const double h = t.mid(at + 1).trimmed().toDouble(&okH);
            if (okW && okH && w > 0.0 && h > 0.0 && std::isfinite(w / h))
                return std::clamp(float(w / h), 0.01f, 100.0f);
            return 0.0f;
        }
    }
    bool ok = false;
    const double v = t.toDouble(&ok);
    return ok && v > 0.0 && std::isfinite(v) ? std::clamp(float(v), 0.01f, 100.0f) : 0.0f;
}

void MVToolWidgetCrop::chooseAspect(int row)
{
    aspectList->setCurrentIndex(row);
    controlChanged(aspectList);
}

void MVToolWidgetCrop::setCustomAspectText(const QString& text)
{
    customAspectBox->setText(text);
    controlChanged(customAspectBox);
}

void MVToolWidgetCrop::setStraighten(float degrees)
{
    straightenSlider->setValue(degrees);
    controlChanged(straightenSlider);
}

void MVToolWidgetCrop::controlChanged(QWidget* control)
{
    if (control == doneButton) {
        emit requestToolExit(this);
        return;
    }
    if (control == rotateLeftButton || control == rotateRightButton) {
        emit rotateRequested(control == rotateRightButton);
        return;
    }
    if (control == resetButton) {
        // The aspect stays; the cut and the turn go.
        geometry.resetInsets();
        for (int32_t i = 0; i <= 4; ++i)
            if (ImageModVariable* v = cropCopy.variableAt(i); v && v->asFloat())
                v->asFloat()->value = 0.0f;
        straightenSlider->setValue(0.0f);
        showStraightenInViewer(0.0f);
    } else if (control == straightenSlider) {
        const float v = straightenSlider->value();
        if (ImageModVariable* var = cropCopy.variableAt(0); var && var->asFloat())
            var->asFloat()->setClamped(v);
        showStraightenInViewer(cropCopy.straighten());
        refreshTimer.start(500);
    } else if (control == aspectList) {
        const int row = aspectList->currentIndex();
        if (cropCopy.aspectChoice && row >= 0 && row < cropCopy.aspectChoice->labelCount())
            cropCopy.aspectChoice->index = row;
        if (row == ImageModAspectRatio::customIndex) {
            float custom = parseAspect(customAspectBox->text());
            if (!(custom > 0.0f))
                custom = std::max(0.01f, cropCopy.aspect.floatValue(1));
            geometry.customAspect = custom;
            customAspectBox->setText(QString::number(double(custom), 'g', 4));
        } else {
            geometry.customAspect = 0.0f;
        }
        geometry.listAspect = cropCopy.aspect.aspectValue();
    } else if (control == customAspectBox) {
        const float custom = parseAspect(customAspectBox->text());
        if (custom > 0.0f) {
            geometry.customAspect = custom;
            aspectList->setCurrentIndex(ImageModAspectRatio::customIndex);
        }
    }
    applyCropState();
}

void MVToolWidgetCrop::applyCropState()
{
    int32_t w = 0, h = 0;
    if (mediaWidget) {
        w = mediaWidget->sourceWidth;
        h = mediaWidget->sourceHeight;
    }
    cropPixels = ::applyCropState(geometry, cropCopy, w, h);
    geometry.listAspect = cropCopy.aspectChoice ? cropCopy.aspect.aspectValue() : 0.0f;
    update();
}

bool MVToolWidgetCrop::cropChanged() const
{
    if (!cropAtStart)
        return false;
    const int32_t before = cropAtStart->aspectChoice ? cropAtStart->aspectChoice->index : 0;
    const int32_t now = cropCopy.aspectChoice ? cropCopy.aspectChoice->index : 0;
    return !cropCopy.isEqual(*cropAtStart) || before != now ||
        cropCopy.aspect.floatValue(1) != cropAtStart->aspect.floatValue(1);
}

void MVToolWidgetCrop::endEditing()
{
    applyCropState();
    if (modBeingEdited) {
        // copyFrom carries cp0..cp3, the straighten and the aspect list with its custom value; the
        // tile's own on/off state is not the tool's to change.
        const bool wasEnabled = modBeingEdited->enabled;
        modBeingEdited->copyFrom(cropCopy);
        modBeingEdited->enabled = wasEnabled;
    }
    refreshTimer.stop();
    showStraightenInViewer(savedStraighten);
    setMouseTracking(false);
    geometry.clearHits();
    geometry.release();
}

void MVToolWidgetCrop::showStraightenInViewer(float degrees)
{
    if (!mediaWidget)
        return;
    mediaWidget->viewRotation = degrees;
    mediaWidget->update();
}

void MVToolWidgetCrop::refreshTimerFired()
{
    if (!mediaWidget)
        return;
    {
        std::lock_guard<std::mutex> lock(mediaWidget->stateMutex);
        mediaWidget->needsResample = true;
    }
    mediaWidget->requestProcessing();
}

// ---------------------------------------------------------------------------------------------
// Mouse

void MVToolWidgetCrop::updateCursorShape()
{
    const CropToolGeometry& g = geometry;
    if ((g.hitLeft && g.hitTop) || (g.hitRight && g.hitBottom))
        setCursor(Qt::SizeFDiagCursor);
    else if ((g.hitRight && g.hitTop) || (g.hitLeft && g.hitBottom))
        setCursor(Qt::SizeBDiagCursor);
    else if (g.hitLeft || g.hitRight)
        setCursor(Qt::SizeHorCursor);
    else if (g.hitTop || g.hitBottom)
        setCursor(Qt::SizeVerCursor);
    else if (g.hitInside)
        setCursor(Qt::SizeAllCursor);
    else
        unsetCursor();
}

void MVToolWidgetCrop::mousePressEvent(QMouseEvent* e)
{
    const QPointF p = e->localPos();
    if (!geometry.buttonDown)
        geometry.hitTest(p.x(), p.y(), viewRect(), width(), height());
    if (e->button() == Qt::LeftButton && geometry.press(p.x(), p.y())) {
        e->accept();
        update();
        return;
    }
    e->ignore();
}

void MVToolWidgetCrop::mouseMoveEvent(QMouseEvent* e)
{
    if (continueCropDrag(geometry, e, viewRect(), [this] { applyCropState(); }))
        return;
    const QPointF p = e->localPos();
    const bool was = geometry.anyHit();
    const bool hit = geometry.hitTest(p.x(), p.y(), viewRect(), width(), height());
    updateCursorShape();
    if (hit || was)
        update();
    if (hit)
        e->accept();
    else
        e->ignore();
}

void MVToolWidgetCrop::mouseReleaseEvent(QMouseEvent* e)
{
    releaseCropDrag(geometry, this, e);
}

void MVToolWidgetCrop::leaveEvent(QEvent* e)
{
    MVToolWidget::leaveEvent(e);
    if (leaveCropGeometry(geometry, this))
        unsetCursor();
}

// ---------------------------------------------------------------------------------------------
// Drawing

void MVToolWidgetCrop::paintEvent(QPaintEvent*)
{
    if (!(imageWidth > 0.0) || !(imageHeight > 0.0))
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, false);
    const CropFrameEdges e = geometry.edges(viewRect());
    // Insets past each other leave an empty frame at the meeting point.
    const float left = e.left, top = e.top;
    const float right = std::max(e.right, e.left), bottom = std::max(e.bottom, e.top);
    const float fw = right - left, fh = bottom - top;
    const float W = float(width()), H = float(height());

    // 1. Everything outside the frame is dimmed.
    const QBrush mask(QColor(8, 8, 10, 185));
    p.fillRect(QRectF(0, 0, W, top), mask);
    p.fillRect(QRectF(0, bottom, W, H - bottom), mask);
    p.fillRect(QRectF(0, top, left, fh), mask);
    p.fillRect(QRectF(right, top, W - right, fh), mask);

    // 2. The aspect's cut inside the frame, hatched lightly and outlined.
    float sideBar = 0.0f, topBar = 0.0f;
    geometry.aspectBars({left, right, top, bottom}, sideBar, topBar);
    float innerL = left, innerR = right, innerT = top, innerB = bottom;
    const QBrush barFill(QColor(8, 8, 10, 95));
    QPen barPen(QColor(255, 196, 90, 210), 1.0, Qt::DashLine);
    if (sideBar > 0.0f) {
        innerL += sideBar;
        innerR -= sideBar;
        p.fillRect(QRectF(left, top, sideBar, fh), barFill);
        p.fillRect(QRectF(innerR, top, sideBar, fh), barFill);
    } else if (topBar > 0.0f) {
        innerT += topBar;
        innerB -= topBar;
        p.fillRect(QRectF(left, top, fw, topBar), barFill);
        p.fillRect(QRectF(left, innerB, fw, topBar), barFill);
    }

    // 3. Thirds and a centre cross over what will be kept.
    const float kw = innerR - innerL, kh = innerB - innerT;
    p.setPen(QPen(QColor(255, 255, 255, 80), 1.0));
    for (float f : {1.0f / 3.0f, 2.0f / 3.0f}) {
        p.drawLine(QLineF(innerL + kw * f, innerT, innerL + kw * f, innerB));
        p.drawLine(QLineF(innerL, innerT + kh * f, innerR, innerT + kh * f));
    }
    const float cx = innerL + kw * 0.5f, cy = innerT + kh * 0.5f;
    p.setPen(QPen(QColor(255, 255, 255, 140), 1.0));
    p.drawLine(QLineF(cx - 8, cy, cx + 8, cy));
    p.drawLine(QLineF(cx, cy - 8, cx, cy + 8));

    // 4. The bars' outline.
    if (sideBar > 0.0f || topBar > 0.0f) {
        p.setPen(barPen);
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(innerL, innerT, kw, kh));
    }

    // 5. The frame in two tones, so it shows on light and dark photos alike.
    const QLineF sides[4] = {QLineF(left, top, right, top), QLineF(right, top, right, bottom),
                             QLineF(right, bottom, left, bottom), QLineF(left, bottom, left, top)};
    p.setPen(QPen(QColor(0, 0, 0, 200), 3.0));
    for (const QLineF& l : sides)
        p.drawLine(l);
    p.setPen(QPen(QColor(240, 240, 240), 1.0));
    for (const QLineF& l : sides)
        p.drawLine(l);

    // 6. Corner circles where the cursor is or the drag holds.
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(QPen(QColor(0, 0, 0, 200), 1.0));
    p.setBrush(QColor(114, 187, 255));
    const CropToolGeometry& g = geometry;
    const struct {
        bool on;
        float x, y;
    } corners[4] = {{g.hitLeft && g.hitTop, left, top}, {g.hitRight && g.hitTop, right, top},
                    {g.hitLeft && g.hitBottom, left, bottom}, {g.hitRight && g.hitBottom, right, bottom}};
    for (const auto& c : corners)
        if (c.on)
            p.drawEllipse(QRectF(c.x - 5.0f, c.y - 5.0f, 10.0, 10.0));

    // 7. Where the cut lies and its size, in source pixels.
    if (mediaWidget && mediaWidget->sourceWidth > 0 && fw > 60.0f && fh > 34.0f) {
        const int32_t cw = mediaWidget->sourceWidth - cropPixels.left - cropPixels.right;
        const int32_t ch = mediaWidget->sourceHeight - cropPixels.top - cropPixels.bottom;
        const QString text = QStringLiteral("%1, %2\n%3 x %4")
                                 .arg(cropPixels.left)
                                 .arg(cropPixels.top)
                                 .arg(std::max(cw, 0))
                                 .arg(std::max(ch, 0));
        QFont font = p.font();
        font.setPixelSize(11);
        p.setFont(font);
        const QRectF box(innerL + 10.0f, innerT + 8.0f, 120.0, 34.0);
        p.setPen(QColor(0, 0, 0, 190));
        p.drawText(box.translated(1, 1), Qt::AlignLeft | Qt::AlignTop, text);
        p.setPen(QColor(245, 245, 245));
        p.drawText(box, Qt::AlignLeft | Qt::AlignTop, text);
    }
}
