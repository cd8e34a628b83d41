#include "ui/qtMultiDataWidget.h"

#include "filters/MultiData.h"
#include "ui/ControlArt.h"

#include <QtGui/QPainter>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <cmath>

namespace {
constexpr int kCaptionHeight = 13;
constexpr int kGap = 6;
} // namespace

qtMultiDataWidget::qtMultiDataWidget(QWidget* parent) : QWidget(parent)
{
    resize(200, kCaptionHeight + 22);
}

void qtMultiDataWidget::setFields(const QStringList& list)
{
    for (QLineEdit* e : edits)
        delete e;
    edits.clear();
    captions = list;
    values.assign(size_t(list.size()), 0.0f);
    boundStore = nullptr;
    boundKeys.clear();
    for (int i = 0; i < list.size(); ++i) {
        auto* e = new QLineEdit(this);
        e->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        e->setStyleSheet(QStringLiteral(
            "QLineEdit { background: #262626; border: 1px solid #1a1a1a; border-radius: 3px; color: #e6e6e6;"
            " font-size: 11px; padding: 0px 4px; selection-background-color: #5c8cd2; }"));
        e->setText(format(0.0f));
        connect(e, &QLineEdit::editingFinished, this, [this, i] { fieldFinished(i); });
        e->show();
        edits.push_back(e);
    }
    resizeEvent(nullptr);
    update();
}

QString qtMultiDataWidget::format(float v) const
{
    if (hasUnset && v == unsetValue)
        return QString();
    return QString::number(double(v), 'f', decimals);
}

void qtMultiDataWidget::setUnsetValue(float v, const QString& placeholder)
{
    hasUnset = true;
    unsetValue = v;
    for (size_t i = 0; i < edits.size(); ++i) {
        edits[i]->setPlaceholderText(placeholder);
        edits[i]->setText(format(values[i]));
    }
}

void qtMultiDataWidget::setDecimals(int d)
{
    decimals = std::clamp(d, 0, 6);
    for (size_t i = 0; i < edits.size(); ++i)
        edits[i]->setText(format(values[i]));
}

bool qtMultiDataWidget::setValue(int index, float v)
{
    if (index < 0 || index >= fieldCount())
        return false;
    values[size_t(index)] = v;
    edits[size_t(index)]->setText(format(v));
    return true;
}

float qtMultiDataWidget::value(int index) const
{
    return index >= 0 && index < fieldCount() ? values[size_t(index)] : 0.0f;
}

QLineEdit* qtMultiDataWidget::field(int index) const
{
    return index >= 0 && index < fieldCount() ? edits[size_t(index)] : nullptr;
}

bool qtMultiDataWidget::bindToPreferences(MultiData* store, const std::vector<std::string>& keys)
{
    if (!store || keys.size() != values.size())
        return false;
    boundStore = store;
    boundKeys = keys;
    for (size_t i = 0; i < keys.size(); ++i)
        setValue(int(i), store->getFloat(keys[i], values[i]));
    return true;
}

void qtMultiDataWidget::fieldFinished(int index)
{
    if (index < 0 || index >= fieldCount())
        return;
    QLineEdit* e = edits[size_t(index)];
    bool ok = false;
    float typed = e->text().trimmed().toFloat(&ok);
    if (hasUnset && e->text().trimmed().isEmpty()) {
        typed = unsetValue;
        ok = true;
    }
    float& stored = values[size_t(index)];
    if (!ok || !std::isfinite(typed) || (e->text().trimmed() == format(stored) && typed == stored)) {
        e->setText(format(stored));
        return;
    }
    if (typed == stored) {
        e->setText(format(stored));
        return;
    }
    stored = typed;
    e->setText(format(stored));
    if (boundStore)
        boundStore->setFloat(boundKeys[size_t(index)], stored);
    emit dataEdited(index);
}

void qtMultiDataWidget::resizeEvent(QResizeEvent*)
{
    const int n = std::max(1, fieldCount());
    const int w = (width() - kGap * (n - 1)) / n;
    for (int i = 0; i < fieldCount(); ++i)
        edits[size_t(i)]->setGeometry(i * (w + kGap), kCaptionHeight, std::max(10, w), height() - kCaptionHeight);
}

void qtMultiDataWidget::paintEvent(QPaintEvent*)
{
    QPainter g(this);
    QFont f = font();
    f.setPixelSize(9);
    g.setFont(f);
    g.setPen(ControlArt::labelColor());
    for (int i = 0; i < fieldCount(); ++i) {
        const QRect r = edits[size_t(i)]->geometry();
        g.drawText(QRect(r.left() + 2, 0, r.width() - 2, kCaptionHeight - 1), Qt::AlignLeft | Qt::AlignVCenter,
                   captions.at(i));
    }
}
