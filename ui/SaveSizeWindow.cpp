#include "ui/SaveSizeWindow.h"

#include "media/MediaFormats.h"

#include <QtGui/QIntValidator>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cmath>

int linkedSide(int edited, int offeredEdited, int offeredOther)
{
    if (edited < 1 || offeredEdited < 1 || offeredOther < 1)
        return std::max(offeredOther, 1);
    const long long other = std::llround(double(edited) * double(offeredOther) / double(offeredEdited));
    return int(std::clamp<long long>(other, 1, 1000000));
}

SaveSizeWindow::SaveSizeWindow(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("SaveSizeDialog"));
    setWindowTitle(QStringLiteral("Choose Save Options"));
    setStyleSheet(QStringLiteral(
        "QDialog#SaveSizeDialog { background: #2a2a2a; }"
        "QLabel { color: #e6e6e6; }"
        "QLineEdit { color: #ffffff; background: #1c1c1c; border: 1px solid #4a4a4a; border-radius: 3px;"
        " padding: 0 4px; }"
        "QLineEdit:disabled { color: #6c6c6c; border-color: #363636; }"
        "QComboBox { color: #ffffff; background: #646464; border-radius: 4px; padding: 2px 12px; min-height: 20px; }"
        "QComboBox QAbstractItemView { background: #000000; color: #ffffff; selection-background-color: #e3963e; }"
        "QPushButton { color: #ffffff; border-radius: 4px; background-color: #646464; padding: 4px 15px;"
        " min-width: 60px; }"
        "QPushButton:pressed { background-color: #545454; }"
        "QPushButton:default { background-color: #e3963e; color: #1e1a16; }"));

    form = new QFormLayout(this);
    form->setContentsMargins(18, 18, 18, 18);
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(10);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);

    dialogText = new QLabel(this);
    dialogText->setWordWrap(true);
    dialogText->hide();
    form->addRow(dialogText);

    auto sizeField = [this]() {
        auto* f = new QLineEdit(this);
        f->setFixedSize(80, 21);
        f->setValidator(new QIntValidator(1, 1000000, f));
        return f;
    };
    widthLabel = new QLabel(QStringLiteral("Width:"), this);
    widthField = sizeField();
    heightLabel = new QLabel(QStringLiteral("Height:"), this);
    heightField = sizeField();
    sizeFieldsLayout = new QHBoxLayout();
    sizeFieldsLayout->setSpacing(8);
    sizeFieldsLayout->addWidget(widthField);
    sizeFieldsLayout->addWidget(heightLabel);
    sizeFieldsLayout->addWidget(heightField);
    sizeFieldsLayout->addStretch(1);
    form->addRow(widthLabel, sizeFieldsLayout);

    qualityLabel = new QLabel(QStringLiteral("Quality:"), this);
    qualityField = new QLineEdit(this);
    qualityField->setFixedSize(80, 21);
    qualityField->setValidator(new QIntValidator(0, 100, qualityField));
    form->addRow(qualityLabel, qualityField);

    typeLabel = new QLabel(QStringLiteral("File Type:"), this);
    typeField = new QComboBox(this);
    for (const MediaFormat& f : mediaSaveFormats())
        typeField->addItem(QString::fromLatin1(f.displayName));
    form->addRow(typeLabel, typeField);

    postfixLabel = new QLabel(QStringLiteral("Add To Name:"), this);
    postfixField = new QLineEdit(this);
    postfixField->setFixedSize(160, 21);
    form->addRow(postfixLabel, postfixField);

    buttons = new QDialogButtonBox(this);
    okButton = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    okButton->setDefault(true);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    // textEdited fires for the user's typing only, so the linked field's update doesn't echo back.
    connect(widthField, &QLineEdit::textEdited, this, &SaveSizeWindow::widthEdited);
    connect(heightField, &QLineEdit::textEdited, this, &SaveSizeWindow::heightEdited);
    connect(qualityField, &QLineEdit::textEdited, this, &SaveSizeWindow::qualityEdited);
    connect(typeField, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &SaveSizeWindow::extensionEdited);
    setQuality(85);
    extensionEdited(typeField->currentIndex());
}

void SaveSizeWindow::setDialogText(const QString& text)
{
    dialogText->setText(text);
    dialogText->setVisible(!text.isEmpty());
    dialogText->setMinimumWidth(320);
}

void SaveSizeWindow::setOfferedSize(int width, int height)
{
    offeredWidth = std::max(width, 1);
    offeredHeight = std::max(height, 1);
    widthField->setText(QString::number(offeredWidth));
    heightField->setText(QString::number(offeredHeight));
}

void SaveSizeWindow::setQuality(int quality)
{
    qualityField->setText(QString::number(std::clamp(quality, 0, 100)));
}

void SaveSizeWindow::setExtension(const QString& extension)
{
    QString ext = extension.trimmed().toLower();
    if (ext.startsWith(QLatin1Char('.')))
        ext.remove(0, 1);
    const std::vector<MediaFormat>& formats = mediaSaveFormats();
    for (size_t i = 0; i < formats.size(); ++i)
        if (mediaFormatHasExtension(formats[i], ext.toStdString())) {
            setExtensionIndex(int(i));
            return;
        }
}

void SaveSizeWindow::setExtensionIndex(int index)
{
    if (index >= 0 && index < typeField->count())
        typeField->setCurrentIndex(index);
}

void SaveSizeWindow::setPostfix(const QString& postfix)
{
    postfixField->setText(postfix);
}

void SaveSizeWindow::hideRow(QWidget* label)
{
    int row = -1;
    QFormLayout::ItemRole role;
    form->getWidgetPosition(label, &row, &role);
    if (row < 0)
        return;
    const QFormLayout::TakeRowResult taken = form->takeRow(row);
    label->hide();
    if (taken.fieldItem) {
        if (QWidget* w = taken.fieldItem->widget()) {
            w->hide();
        } else if (QLayout* l = taken.fieldItem->layout()) {
            for (int i = 0; i < l->count(); ++i)
                if (QWidget* w = l->itemAt(i)->widget())
                    w->hide();
        }
        if (taken.fieldItem->layout() == sizeFieldsLayout)
            sizeFieldsLayout = nullptr;
        delete taken.fieldItem;
    }
    delete taken.labelItem;
}

void SaveSizeWindow::hideSizeFields()
{
    hideRow(widthLabel);
}

void SaveSizeWindow::disablePostfixFields()
{
    postfixLabel->setEnabled(false);
    postfixField->setEnabled(false);
    // A plain save has no use for a greyed row either.
    hideRow(postfixLabel);
}

void SaveSizeWindow::hideQualityFields()
{
    hideRow(qualityLabel);
}

void SaveSizeWindow::setOkButtonText(const QString& text)
{
    okButton->setText(text);
}

int SaveSizeWindow::resultWidth() const
{
    bool ok = false;
    const int w = widthField->text().toInt(&ok);
    return ok && w > 0 ? w : offeredWidth;
}

int SaveSizeWindow::resultHeight() const
{
    bool ok = false;
    const int h = heightField->text().toInt(&ok);
    return ok && h > 0 ? h : offeredHeight;
}

int SaveSizeWindow::resultQuality() const
{
    bool ok = false;
    const int q = qualityField->text().toInt(&ok);
    return ok ? std::clamp(q, 0, 100) : 85;
}

int SaveSizeWindow::resultExtensionIndex() const
{
    return std::max(typeField->currentIndex(), 0);
}

QString SaveSizeWindow::resultExtension() const
{
    const std::vector<MediaFormat>& formats = mediaSaveFormats();
    const int i = resultExtensionIndex();
    if (i >= int(formats.size()))
        return QStringLiteral("jpg");
    return QString::fromLatin1(formats[size_t(i)].extensions).section(QLatin1Char(' '), 0, 0);
}

QString SaveSizeWindow::resultPostfix() const
{
    return postfixField->text();
}

bool SaveSizeWindow::sizeChanged() const
{
    return resultWidth() != offeredWidth || resultHeight() != offeredHeight;
}

void SaveSizeWindow::widthEdited(const QString& newText)
{
    bool ok = false;
    const int w = newText.toInt(&ok);
    if (ok && w > 0)
        heightField->setText(QString::number(linkedSide(w, offeredWidth, offeredHeight)));
}

void SaveSizeWindow::heightEdited(const QString& newText)
{
    bool ok = false;
    const int h = newText.toInt(&ok);
    if (ok && h > 0)
        widthField->setText(QString::number(linkedSide(h, offeredHeight, offeredWidth)));
}

void SaveSizeWindow::qualityEdited(const QString& newText)
{
    bool ok = false;
    const int q = newText.toInt(&ok);
    if (ok && q > 100)
        qualityField->setText(QStringLiteral("100"));
}

void SaveSizeWindow::extensionEdited(int newIndex)
{
    const std::vector<MediaFormat>& formats = mediaSaveFormats();
    const bool applies = newIndex >= 0 && newIndex < int(formats.size()) && formats[size_t(newIndex)].qualityApplies;
    qualityField->setEnabled(applies);
    qualityLabel->setEnabled(applies);
}
