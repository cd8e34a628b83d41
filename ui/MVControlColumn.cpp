#include "ui/MVControlColumn.h"

#include "core/ImageMod.h"
#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"
#include "ui/ControlArt.h"
#include "ui/MVColorControl.h"
#include "ui/MVListChooser.h"
#include "ui/MVMultiChoiceWidget.h"
#include "ui/MVPushButton.h"
#include "ui/MVScroller.h"
#include "ui/MVSlider.h"
#include "ui/MVStringInputBox.h"
#include "ui/ToneCurveWidget.h"
#include "ui/qtMultiDataWidget.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QClipboard>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {
constexpr int kHeaderHeight = 30;
constexpr int kLabelHeight = 15;
constexpr int kEntryGap = 8;
constexpr int kScrollerWidth = 8;
// A file or text button sits beside its field.
constexpr int kBrowseWidth = 28;
// Text button variables (see the class comment) are told apart from real buttons by this kind.
constexpr int32_t kTextKind = 100;
constexpr int32_t kFontKind = 101;

int controlWidth()
{
    return MVControlColumn::columnWidth - 2 * MVControlColumn::padding;
}

QColor toQColor(const ImageModVariableDataColor& c)
{
    auto unit = [](float v) { return qreal(std::clamp(v / 255.0f, 0.0f, 1.0f)); };
    return QColor::fromRgbF(unit(c.red), unit(c.green), unit(c.blue), unit(c.alpha));
}

QStringList toQStrings(const std::vector<std::string>& list)
{
    QStringList out;
    for (const std::string& s : list)
        out << QString::fromStdString(s);
    return out;
}

bool parseCurve(const QString& text, std::vector<ToneCurvePoint>& out)
{
    const QStringList parts = text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    if (parts.size() < 4 || parts.size() % 2 != 0)
        return false;
    std::vector<ToneCurvePoint> pts;
    for (int i = 0; i < parts.size(); i += 2) {
        bool okX = false, okY = false;
        const float x = parts[i].toFloat(&okX);
        const float y = parts[i + 1].toFloat(&okY);
        if (!okX || !okY || !(x >= 0.0f && x <= 1.0f) || !(y >= 0.0f && y <= 1.0f))
            return false;
        if (!pts.empty() && x < pts.back().x)
            return false;
        pts.push_back({x, y});
    }
    out = std::move(pts);
    return true;
}
} // namespace

MVControlColumn::MVControlColumn(QWidget* parent) : QWidget(parent)
{
    viewport = new QWidget(this);
    content = new QWidget(viewport);
    scroller = new MVScroller(this);
    scroller->hide();
    connect(scroller, &MVScroller::scrolled, this, &MVControlColumn::scrollTo);
    resize(columnWidth, kHeaderHeight + padding);
}

MVControlColumn::~MVControlColumn() = default;

QString& MVControlColumn::curveClipboard()
{
    static QString text;
    return text;
}

bool MVControlColumn::isCurveText(const QString& text)
{
    std::vector<ToneCurvePoint> pts;
    return parseCurve(text, pts);
}

// ---------------------------------------------------------------------------------------------
// Building

void MVControlColumn::clearControls()
{
    for (Entry& e : entries) {
        delete e.browse;
        delete e.control;
    }
    entries.clear();
    controlList.clear();
}

void MVControlColumn::setMod(ImageMod* mod)
{
    clearControls();
    currentMod = mod;
    title = mod ? QString::fromStdString(mod->labelForTile()) : QString();
    if (mod) {
        entries.reserve(mod->variables.size());
        for (size_t i = 0; i < mod->variables.size(); ++i) {
            ImageModVariable* v = mod->variables[i].get();
            if (v && v->visible && v->data)
                addEntry(int32_t(i), *v);
        }
    }
    for (const Entry& e : entries)
        controlList.push_back(e.control);
    scrollOffset = 0;
    layoutContent();
    update();
    emit heightChanged();
}

void MVControlColumn::watch(QWidget* w)
{
    w->installEventFilter(this);
    for (QWidget* child : w->findChildren<QWidget*>())
        child->installEventFilter(this);
}

void MVControlColumn::addEntry(int32_t index, ImageModVariable& variable)
{
    Entry e;
    e.variable = index;
    e.kind = variable.data->kind();
    e.label = QString::fromStdString(variable.label());
    const int w = controlWidth();

    switch (e.kind) {
    case kVariableFloat: {
        auto* s = new MVSlider(content);
        s->resize(w, 36);
        e.height = 36;
        e.reportsStart = true;
        connect(s, &MVSlider::editingStarted, this, [this, s] { editStarted(s); });
        connect(s, &MVSlider::sliderChanged, this, &MVControlColumn::controlChanged);
        e.control = s;
        break;
    }
    case kVariableCurve: {
        auto* c = new ToneCurveWidget(content);
        const int h = variable.controlKind == ImageModVariable::hueCurveControlKind ? 190 : 176;
        c->resize(w, h);
        e.height = h;
        e.reportsStart = true;
        connect(c, &ToneCurveWidget::editingStarted, this, &MVControlColumn::editStarted);
        connect(c, &ToneCurveWidget::curveChanged, this, &MVControlColumn::controlChanged);
        e.control = c;
        break;
    }
    case kVariableColor: {
        auto* c = new MVColorControl(content);
        c->resize(w, 150);
        e.height = 150;
        e.reportsStart = true;
        connect(c, &MVColorControl::editingStarted, this, [this, c] { editStarted(c); });
        connect(c, &MVColorControl::sliderChanged, this, &MVControlColumn::controlChanged);
        e.control = c;
        break;
    }
    case kVariableButton: {
        // A field or a chooser is headed by what it holds, not by the button's "Edit Text..." caption.
        if (variable.tag == textButtonTag || variable.tag == fontButtonTag)
            e.label = QString::fromStdString(variable.name);
        if (variable.tag == textButtonTag) {
            auto* t = new MVStringInputBox(content);
            t->resize(w, 22);
            e.kind = kTextKind;
            e.reportsStart = true;
            connect(t, &MVStringInputBox::editingStarted, this, [this, t] { editStarted(t); });
            connect(t, &MVStringInputBox::sliderChanged, this, &MVControlColumn::controlChanged);
            e.control = t;
        } else if (variable.tag == fontButtonTag) {
            // Names the family in use; pressing it opens the chooser.
            auto* b = new MVPushButton(QString(), content);
            b->resize(w, 22);
            b->setToolTip(QStringLiteral("Choose the font family."));
            e.kind = kFontKind;
            e.reportsStart = true; // the pick raises aboutToAdjust itself
            connect(b, &QPushButton::clicked, this, [this, b] {
                if (Entry* owner = entryFor(b))
                    chooseFont(*owner);
            });
            e.control = b;
        } else {
            auto* b = new MVPushButton(e.label, content);
            b->resize(w, 22);
            connect(b, &QPushButton::clicked, this, [this, b] { controlChanged(b); });
            e.control = b;
            e.label.clear(); // the button carries its own caption
        }
        e.height = 22;
        break;
    }
    case kVariableChoice: {
        auto* c = new MVListChooser(content);
        c->resize(w, 22);
        e.height = 22;
        connect(c, &MVListChooser::itemChanged, this, [this, c] { controlChanged(c); });
        connect(c, &MVListChooser::itemHovered, this, [this, c] { emit hovered(c); });
        e.control = c;
        break;
    }
    case kVariableMultiChoice: {
        auto* m = new MVMultiChoiceWidget(content);
        m->resize(w, MVMultiChoiceWidget::chipHeight + 4);
        e.height = MVMultiChoiceWidget::chipHeight + 4;
        e.reportsStart = true;
        connect(m, &MVMultiChoiceWidget::editingStarted, this, [this, m] { editStarted(m); });
        connect(m, &MVMultiChoiceWidget::sliderChanged, this, &MVControlColumn::controlChanged);
        e.control = m;
        break;
    }
    case kVariableFile: {
        auto* t = new MVStringInputBox(content);
        t->resize(w - kBrowseWidth - 4, 22);
        t->setPlaceholderText(QStringLiteral("No file"));
        e.height = 22;
        e.reportsStart = true;
        connect(t, &MVStringInputBox::editingStarted, this, [this, t] { editStarted(t); });
        connect(t, &MVStringInputBox::sliderChanged, this, &MVControlColumn::controlChanged);
        e.browse = new MVPushButton(QStringLiteral("..."), content);
        e.browse->resize(kBrowseWidth, 22);
        e.browse->setToolTip(QStringLiteral("Choose a file."));
        e.control = t;
        QPushButton* browse = e.browse;
        connect(browse, &QPushButton::clicked, this, [this, t] {
            if (Entry* owner = entryFor(t))
                browseFile(*owner);
        });
        break;
    }
    case kVariablePixel:
    case kVariableBoundary: {
        auto* m = new qtMultiDataWidget(content);
        if (e.kind == kVariablePixel)
            m->setFields({QStringLiteral("X"), QStringLiteral("Y")});
        else
            m->setFields({QStringLiteral("Left"), QStringLiteral("Top"), QStringLiteral("Right"), QStringLiteral("Bottom")});
        m->setDecimals(e.kind == kVariablePixel ? 0 : 3);
        if (e.kind == kVariablePixel)
            m->setUnsetValue(-1.0f, QStringLiteral("Auto")); // -1 leaves the point at the tile's own place
        m->resize(w, 35);
        e.height = 35;
        connect(m, &qtMultiDataWidget::dataEdited, this, [this, m] { controlChanged(m); });
        e.control = m;
        break;
    }
    default:
        return; // a kind without a control stays off the column
    }
    loadControl(e);
    watch(e.control);
    if (e.browse)
        watch(e.browse);
    e.control->show();
    if (e.browse)
        e.browse->show();
    entries.push_back(e);
}

// ---------------------------------------------------------------------------------------------
// Values

void MVControlColumn::loadControl(Entry& e)
{
    ImageModVariable* v = currentMod ? currentMod->variableAt(e.variable) : nullptr;
    if (!v || !v->data)
        return;
    switch (e.kind) {
    case kVariableFloat: {
        auto* s = static_cast<MVSlider*>(e.control);
        const ImageModVariableData& d = *v->data;
        if (!(v->data->kind() == kVariableFloat))
            return;
        s->setFromVariableData(d);
        const float shownSpan = d.hasDisplayScale ? d.scaleMax - d.scaleMin : d.displayMax - d.displayMin;
        s->setKind(std::abs(shownSpan) >= 20.0f ? 1 : 0);
        s->setRecentering(!d.hasHardMin && !d.hasHardMax);
        break;
    }
    case kVariableCurve:
        if (ImageModVariableDataCurve* c = v->asCurve()) {
            // Rebinding would drop a point under drag: only a new value object is rebound.
            auto* w = static_cast<ToneCurveWidget*>(e.control);
            if (&w->curve() != &c->curve)
                w->setCurveData(c);
            else
                w->update();
        }
        break;
    case kVariableColor:
        if (const ImageModVariableDataColor* c = v->asColor()) {
            // The chooser keeps hue apart from RGB; setting the colour it shows would lose it for greys.
            auto* w = static_cast<MVColorControl*>(e.control);
            if (w->color().rgba() != toQColor(*c).rgba())
                w->setColor(toQColor(*c));
        }
        break;
    case kTextKind:
        if (const ImageModVariableDataButton* b = v->asButton())
            static_cast<MVStringInputBox*>(e.control)->setText(QString::fromStdString(b->storedText));
        break;
    case kFontKind:
        if (const ImageModVariableDataButton* b = v->asButton())
            static_cast<QPushButton*>(e.control)->setText(
                b->storedText.empty() ? QStringLiteral("Choose Font...") : QString::fromStdString(b->storedText));
        break;
    case kVariableChoice:
        if (const ImageModVariableDataChoice* c = v->asChoice()) {
            auto* chooser = static_cast<MVListChooser*>(e.control);
            const QStringList labels = c->labelSets.empty() ? QStringList() : toQStrings(c->labelSets[0]);
            if (labels != chooser->getItems())
                chooser->setItems(labels, c->index);
            else
                chooser->setCurrentIndex(c->index);
        }
        break;
    case kVariableMultiChoice:
        if (const ImageModVariableDataMultiChoice* m = v->asMultiChoice())
            static_cast<MVMultiChoiceWidget*>(e.control)->setItems(toQStrings(m->labels), m->selected);
        break;
    case kVariableFile:
        if (const ImageModVariableDataFile* f = v->asFile())
            static_cast<MVStringInputBox*>(e.control)->setText(QString::fromStdString(f->path).remove(QChar(0)));
        break;
    case kVariablePixel:
        if (const ImageModVariableDataPixel* p = v->asPixel()) {
            auto* m = static_cast<qtMultiDataWidget*>(e.control);
            const ImageModPixelPoint pt = p->points.empty() ? ImageModPixelPoint{} : p->points.front();
            m->setValue(0, pt.x);
            m->setValue(1, pt.y);
        }
        break;
    case kVariableBoundary:
        if (const ImageModVariableDataBoundary* b = v->asBoundary()) {
            auto* m = static_cast<qtMultiDataWidget*>(e.control);
            m->setValue(0, b->left);
            m->setValue(1, b->top);
            m->setValue(2, b->right);
            m->setValue(3, b->bottom);
        }
        break;
    default:
        break;
    }
}

void MVControlColumn::refreshValues()
{
    for (Entry& e : entries)
        loadControl(e);
    update(); // the colour chips beside the labels
}

void MVControlColumn::writeBack(const Entry& e)
{
    ImageModVariable* v = currentMod ? currentMod->variableAt(e.variable) : nullptr;
    if (!v || !v->data)
        return;
    switch (e.kind) {
    case kVariableFloat:
        if (ImageModVariableData* d = v->asFloat())
            d->setClamped(static_cast<MVSlider*>(e.control)->value());
        break;
    case kVariableCurve:
        break; // the widget edits the curve in place
    case kVariableColor:
        if (ImageModVariableDataColor* c = v->asColor()) {
            const QColor q = static_cast<MVColorControl*>(e.control)->color();
            c->red = float(q.redF()) * 255.0f;
            c->green = float(q.greenF()) * 255.0f;
            c->blue = float(q.blueF()) * 255.0f;
            c->alpha = float(q.alphaF()) * 255.0f;
        }
        break;
    case kTextKind:
        if (ImageModVariableDataButton* b = v->asButton())
            b->storedText = static_cast<MVStringInputBox*>(e.control)->text().toStdString();
        break;
    case kVariableChoice:
        if (ImageModVariableDataChoice* c = v->asChoice())
            c->index = static_cast<MVListChooser*>(e.control)->currentIndex();
        break;
    case kVariableMultiChoice:
        if (ImageModVariableDataMultiChoice* m = v->asMultiChoice())
            m->selected = static_cast<MVMultiChoiceWidget*>(e.control)->selection();
        break;
    case kVariableFile:
        if (ImageModVariableDataFile* f = v->asFile())
            f->path = static_cast<MVStringInputBox*>(e.control)->text().toStdString();
        break;
    case kVariablePixel:
        if (ImageModVariableDataPixel* p = v->asPixel()) {
            auto* m = static_cast<qtMultiDataWidget*>(e.control);
            if (p->points.empty())
                p->points.push_back({});
            p->points.front() = {m->value(0), m->value(1)};
        }
        break;
    case kVariableBoundary:
        if (ImageModVariableDataBoundary* b = v->asBoundary()) {
            auto* m = static_cast<qtMultiDataWidget*>(e.control);
            b->left = m->value(0);
            b->top = m->value(1);
            b->right = m->value(2);
            b->bottom = m->value(3);
        }
        break;
    default:
        break;
    }
}

void MVControlColumn::editStarted(QWidget* control)
{
    if (entryFor(control))
        emit aboutToAdjust(control);
}

void MVControlColumn::controlChanged(QWidget* control)
{
    const Entry* e = entryFor(control);
    if (!e || !currentMod)
        return;
    if (!e->reportsStart)
        emit aboutToAdjust(control);
    const int32_t index = e->variable;
    if (e->kind == kVariableButton) {
        currentMod->pressButton(index);
    } else {
        writeBack(*e);
        currentMod->variableChanged(index);
    }
    // A mod may move other values in variableChanged (a preset list filling a curve).
    refreshValues();
    emit adjusted(control);
}

void MVControlColumn::browseFile(Entry& e)
{
    ImageModVariable* v = currentMod ? currentMod->variableAt(e.variable) : nullptr;
    const ImageModVariableDataFile* f = v ? v->asFile() : nullptr;
    if (!f)
        return;
    const QString filter = f->filter.empty() ? QStringLiteral("All Files (*)")
                                             : QStringLiteral("%1 (%2)").arg(e.label, QString::fromStdString(f->filter));
    const QString path = QFileDialog::getOpenFileName(window(), e.label, QString::fromStdString(f->path), filter);
    if (path.isEmpty())
        return;
    auto* box = static_cast<MVStringInputBox*>(e.control);
    if (path == box->text())
        return;
    emit aboutToAdjust(box);
    box->setText(path);
    writeBack(e);
    currentMod->variableChanged(e.variable);
    refreshValues();
    emit adjusted(box);
}

void MVControlColumn::chooseFont(Entry& e)
{
    ImageModVariable* v = currentMod ? currentMod->variableAt(e.variable) : nullptr;
    ImageModVariableDataButton* b = v ? v->asButton() : nullptr;
    if (!b)
        return;
    const QString current = QString::fromStdString(b->storedText);
    QString chosen;
    if (chooseFontHook) {
        if (!chooseFontHook(current, chosen))
            return;
    } else {
        const QStringList families = QFontDatabase().families();
        bool ok = false;
        const int at = std::max(0, int(families.indexOf(current)));
        chosen = QInputDialog::getItem(window(), QStringLiteral("Choose Font"), QStringLiteral("Font family:"),
                                       families, at, false, &ok);
        if (!ok)
            return;
    }
    chosen = chosen.trimmed();
    if (chosen.isEmpty())
        return;
    // The same family again still counts as a choice for new tiles, but changes nothing here.
    if (chosen != current) {
        emit aboutToAdjust(e.control);
        b->storedText = chosen.toStdString();
        currentMod->variableChanged(e.variable);
        refreshValues();
        emit adjusted(e.control);
    }
    emit fontChosen(chosen);
}

bool MVControlColumn::resetToDefault(QWidget* control)
{
    Entry* e = entryFor(control);
    if (!e || !currentMod || e->kind == kVariableButton)
        return false;
    const std::unique_ptr<ImageMod> fresh = currentMod->newInstance();
    ImageModVariable* mine = currentMod->variableAt(e->variable);
    const ImageModVariable* wanted = fresh ? fresh->variableAt(e->variable) : nullptr;
    if (!mine || !mine->data || !wanted || !wanted->data || wanted->data->kind() != mine->data->kind() ||
        wanted->name != mine->name)
        return false;
    emit aboutToAdjust(control);
    mine->data = wanted->data->clone();
    loadControl(*e); // the curve widget must follow the new value object
    currentMod->variableChanged(e->variable);
    refreshValues();
    emit adjusted(control);
    return true;
}

bool MVControlColumn::copyCurve(QWidget* control)
{
    const Entry* e = entryFor(control);
    ImageModVariable* v = e && currentMod ? currentMod->variableAt(e->variable) : nullptr;
    const ImageModVariableDataCurve* c = v ? v->asCurve() : nullptr;
    if (!c)
        return false;
    QStringList numbers;
    for (const ToneCurvePoint& p : c->curve.points)
        numbers << QString::number(double(p.x), 'g', 9) << QString::number(double(p.y), 'g', 9);
    curveClipboard() = numbers.join(QLatin1Char(' '));
    if (QClipboard* board = QGuiApplication::clipboard())
        board->setText(curveClipboard());
    return true;
}

bool MVControlColumn::pasteCurve(QWidget* control)
{
    const Entry* e = entryFor(control);
    ImageModVariable* v = e && currentMod ? currentMod->variableAt(e->variable) : nullptr;
    ImageModVariableDataCurve* c = v ? v->asCurve() : nullptr;
    if (!c)
        return false;
    std::vector<ToneCurvePoint> pts;
    const QClipboard* board = QGuiApplication::clipboard();
    if (!(board && parseCurve(board->text(), pts)) && !parseCurve(curveClipboard(), pts))
        return false;
    if (c->curve.closed) {
        pts.front().x = 0.0f;
        pts.back().x = 1.0f;
        pts.back().y = pts.front().y;
    }
    emit aboutToAdjust(control);
    c->curve.points = std::move(pts);
    c->curve.rebuild();
    control->update();
    currentMod->variableChanged(e->variable);
    refreshValues();
    emit adjusted(control);
    return true;
}

// ---------------------------------------------------------------------------------------------
// Lookup

MVControlColumn::Entry* MVControlColumn::entryFor(const QWidget* control)
{
    for (Entry& e : entries)
        if (e.control == control)
            return &e;
    return nullptr;
}

const MVControlColumn::Entry* MVControlColumn::entryFor(const QWidget* control) const
{
    for (const Entry& e : entries)
        if (e.control == control)
            return &e;
    return nullptr;
}

MVControlColumn::Entry* MVControlColumn::entryOwning(QObject* object)
{
    for (QObject* o = object; o && o != this; o = o->parent())
        for (Entry& e : entries)
            if (e.control == o || e.browse == o)
                return &e;
    return nullptr;
}

int32_t MVControlColumn::variableIndexOf(const QWidget* control) const
{
    const Entry* e = entryFor(control);
    return e ? e->variable : -1;
}

QWidget* MVControlColumn::controlForVariable(int32_t index) const
{
    for (const Entry& e : entries)
        if (e.variable == index)
            return e.control;
    return nullptr;
}

bool MVControlColumn::isCurveControl(const QWidget* control) const
{
    const Entry* e = entryFor(control);
    return e && e->kind == kVariableCurve;
}

// ---------------------------------------------------------------------------------------------
// Events

bool MVControlColumn::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type t = event->type();
    const bool rightPress = (t == QEvent::MouseButtonPress || t == QEvent::MouseButtonDblClick) &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton;
    if (rightPress || t == QEvent::ContextMenu) {
        Entry* e = entryOwning(watched);
        if (!e)
            return false;
        if (rightPress)
            emit rightClicked(e->control);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void MVControlColumn::wheelEvent(QWheelEvent* event)
{
    // Wheels over the controls belong to them; what reaches the column scrolls it.
    if (!scroller->isHidden() && scroller->takeWheel(event))
        return;
    event->ignore();
}

void MVControlColumn::scrollTo(float position)
{
    scrollOffset = std::max(0, int(std::lround(position)));
    content->move(0, -scrollOffset);
    update();
}

// ---------------------------------------------------------------------------------------------
// Layout and look

void MVControlColumn::layoutContent()
{
    int y = 4;
    for (Entry& e : entries) {
        e.top = y;
        if (!e.label.isEmpty())
            y += kLabelHeight;
        e.control->move(padding, y);
        e.control->resize(e.control->width(), e.height);
        if (e.browse) {
            e.browse->move(padding + e.control->width() + 4, y);
        }
        y += e.height + kEntryGap;
    }
    const int body = entries.empty() ? 0 : y - kEntryGap + padding;
    content->resize(columnWidth, std::max(1, body));
    contentHeight = kHeaderHeight + body;
}

QRect MVControlColumn::placement(int wantedHeight, const QRect& area, bool trayShown, int trayTop)
{
    int bottom = area.bottom() + 1 - bottomClearance; // exclusive bottom edge
    if (trayShown)
        bottom = std::min(bottom, trayTop - trayClearance);
    const int top = std::max(area.top() + bottomClearance, bottom - wantedHeight);
    return QRect(area.left() + sideInset, top, columnWidth, std::max(0, bottom - top));
}

void MVControlColumn::placeIn(const QRect& area, bool trayShown, int trayTop)
{
    setGeometry(placement(contentHeight, area, trayShown, trayTop));
    // A hidden column gets its resize event only when shown; the scroller must be right now.
    layoutViewport();
}

void MVControlColumn::resizeEvent(QResizeEvent*)
{
    layoutViewport();
}

void MVControlColumn::layoutViewport()
{
    const int room = std::max(0, height() - kHeaderHeight);
    viewport->setGeometry(0, kHeaderHeight, width(), room);
    const int body = content->height();
    if (body > room && room > 0) {
        scroller->setGeometry(width() - kScrollerWidth - 3, kHeaderHeight, kScrollerWidth, room - 4);
        scroller->setRange(0.0f, float(body - room), float(room));
        scroller->show();
        scroller->raise();
        scrollTo(std::min(float(scrollOffset), float(body - room)));
        scroller->setPosition(float(scrollOffset));
    } else {
        scroller->hide();
        scrollTo(0.0f);
    }
}

void MVControlColumn::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    g.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    g.setPen(QPen(QColor(255, 255, 255, 28), 1));
    g.setBrush(QColor(22, 22, 22, 222));
    g.drawRoundedRect(frame, 7, 7);

    // Header: the tile's name over a hairline.
    QFont head = font();
    head.setPixelSize(12);
    head.setBold(true);
    g.setFont(head);
    g.setPen(ControlArt::textColor());
    g.drawText(QRect(padding, 0, width() - 2 * padding, kHeaderHeight), Qt::AlignLeft | Qt::AlignVCenter,
               g.fontMetrics().elidedText(title, Qt::ElideRight, width() - 2 * padding));
    g.setPen(QPen(QColor(255, 255, 255, 22), 1));
    g.drawLine(QPointF(padding, kHeaderHeight - 0.5), QPointF(width() - padding, kHeaderHeight - 0.5));

    // Labels are painted here, above their controls, clipped to the scrolled body.
    QFont f = font();
    f.setPixelSize(10);
    g.setFont(f);
    g.setPen(ControlArt::labelColor());
    g.setClipRect(QRect(0, kHeaderHeight, width(), height() - kHeaderHeight));
    for (const Entry& e : entries) {
        if (e.label.isEmpty())
            continue;
        const int y = kHeaderHeight + e.top - scrollOffset;
        g.drawText(QRect(padding + 1, y, width() - 2 * padding, kLabelHeight - 2), Qt::AlignLeft | Qt::AlignVCenter,
                   g.fontMetrics().elidedText(e.label.toUpper(), Qt::ElideRight, width() - 2 * padding - 30));
        if (e.kind == kVariableColor) {
            // The chosen colour at a glance, at the label's right end, over a check for its alpha.
            const QColor c = static_cast<const MVColorControl*>(e.control)->color();
            const QRectF chip(width() - padding - 26.5, y + 1.5, 26.0, kLabelHeight - 5.0);
            g.setPen(Qt::NoPen);
            g.setBrush(QColor(200, 200, 200));
            g.drawRoundedRect(chip, 3, 3);
            g.setBrush(QColor(120, 120, 120));
            g.drawRect(QRectF(chip.left() + 13.0, chip.top(), 13.0, chip.height() / 2.0));
            g.drawRect(QRectF(chip.left(), chip.center().y(), 13.0, chip.height() / 2.0));
            g.setPen(QPen(QColor(12, 12, 12), 1));
            g.setBrush(c);
            g.drawRoundedRect(chip, 3, 3);
            g.setPen(ControlArt::labelColor());
        }
    }
}
