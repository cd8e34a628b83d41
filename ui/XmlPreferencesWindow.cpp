#include "ui/XmlPreferencesWindow.h"

#include "filters/MultiData.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>

#include <algorithm>

namespace {

const char* const kButtonStyle =
    "QPushButton {color:#ffffff; border-radius:4px; background-color: #646464; padding-left:15px; "
    "padding-right:15px; height:28px;}"
    "QPushButton::pressed { background-color: #545454;}";
const char* const kComboStyle =
    "QComboBox {color:#ffffff; border-radius:4px; background-color: #646464; padding-left:15px; "
    "padding-right:15px; height:24px;}"
    "QComboBox::drop-down {border:0px; subcontrol-origin: padding; subcontrol-position: top right; width: 0px; "
    "padding-right:10px; padding-left:0px;}"
    "QComboBox::down-arrow {image: url(:/img/down_arrow.png)}"
    "QComboBox QAbstractItemView { border: 0px; background-color: #000000;}";

constexpr int kMargin = 18;
constexpr int kLabelWidth = 250;
constexpr int kControlWidth = 220;

} // namespace

XmlPreferencesWindow::XmlPreferencesWindow(MultiData& s, QWidget* parent)
    : QWidget(parent, Qt::Dialog), store(s)
{
    setObjectName(QStringLiteral("preferencesWindow"));
    setWindowTitle(QStringLiteral("Preferences"));
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("QWidget#preferencesWindow, QWidget#preferencesContent { background: #2a2a2a; }"
                                 "QLabel, QCheckBox { color: #e6e6e6; }"
                                 "QScrollArea { border: none; background: #2a2a2a; }"));
    scrollArea = new QScrollArea(this);
    scrollArea->setWidgetResizable(false);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    content = new QWidget();
    content->setObjectName(QStringLiteral("preferencesContent"));
    content->setAttribute(Qt::WA_StyledBackground, true);
    scrollArea->setWidget(content);
    closeButton = new QPushButton(QStringLiteral("Done"), this);
    closeButton->setStyleSheet(QString::fromLatin1(kButtonStyle));
    connect(closeButton, &QPushButton::clicked, this, &XmlPreferencesWindow::closeButtonPressed);
    resize(kMargin * 2 + kLabelWidth + kControlWidth + 30, 380);
}

QComboBox* XmlPreferencesWindow::addChoiceRow(const QString& key, const QStringList& choices, const QString& title)
{
    Row row;
    row.key = key;
    row.label = new QLabel(title, content);
    row.choice = new QComboBox(content);
    row.choice->setStyleSheet(QString::fromLatin1(kComboStyle));
    row.choice->addItems(choices);
    const QString fallback = choices.isEmpty() ? QString() : choices.first();
    const QString stored = QString::fromStdString(store.getString(key.toStdString(), fallback.toStdString()));
    row.choice->setCurrentIndex(std::max(0, int(choices.indexOf(stored))));
    connect(row.choice, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &XmlPreferencesWindow::choiceValueChanged);
    rowList.push_back(row);
    layoutRows();
    return row.choice;
}

QCheckBox* XmlPreferencesWindow::addCheckRow(const QString& key, const QString& title, const QString& tip,
                                              bool defaultValue)
{
    Row row;
    row.key = key;
    row.label = new QLabel(title, content);
    row.check = new QCheckBox(content);
    row.check->setToolTip(tip);
    row.label->setToolTip(tip);
    row.check->setChecked(store.getBool(key.toStdString(), defaultValue));
    connect(row.check, &QCheckBox::stateChanged, this, &XmlPreferencesWindow::checkValueChanged);
    rowList.push_back(row);
    layoutRows();
    return row.check;
}

void XmlPreferencesWindow::addColorRows()
{
    addChoiceRow(QStringLiteral("WorkingColorProfile"),
                 {QStringLiteral("No Color Management"), QStringLiteral("Loaded Media Profile"),
                  QStringLiteral("Display"), QStringLiteral("sRGB"), QStringLiteral("Adobe RGB"),
                  QStringLiteral("Rec. 709")},
                 QStringLiteral("Working Color Space (Photos)"));
    addCheckRow(QStringLiteral("ColorProfileBakeImport"), QStringLiteral("Convert Color Space On Load (Photos)"),
                QStringLiteral("Convert a photo's colours into the working space as it loads."), true);
}

const XmlPreferencesWindow::Row* XmlPreferencesWindow::rowOf(QObject* control) const
{
    for (const Row& r : rowList)
        if (r.choice == control || r.check == control)
            return &r;
    return nullptr;
}

void XmlPreferencesWindow::choiceValueChanged(int newIndex)
{
    const Row* r = rowOf(sender());
    if (!r || newIndex < 0)
        return;
    if (store.setString(r->key.toStdString(), r->choice->itemText(newIndex).toStdString()))
        emit preferenceChanged(r->key);
}

void XmlPreferencesWindow::checkValueChanged(int state)
{
    const Row* r = rowOf(sender());
    if (!r)
        return;
    if (store.setBool(r->key.toStdString(), state != Qt::Unchecked))
        emit preferenceChanged(r->key);
}

void XmlPreferencesWindow::closeButtonPressed()
{
    close();
}

void XmlPreferencesWindow::resizeEvent(QResizeEvent* e)
{
    QWidget::resizeEvent(e);
    layoutRows();
}

void XmlPreferencesWindow::layoutRows()
{
    const int buttonH = 30;
    scrollArea->setGeometry(0, 0, width(), std::max(40, height() - buttonH - 2 * 12));
    closeButton->setGeometry(width() - kMargin - 90, height() - 12 - buttonH, 90, buttonH);
    int y = kMargin;
    for (const Row& r : rowList) {
        r.label->setGeometry(kMargin, y, kLabelWidth, 26);
        QWidget* control = r.choice ? static_cast<QWidget*>(r.choice) : static_cast<QWidget*>(r.check);
        control->setGeometry(kMargin + kLabelWidth, y, r.choice ? kControlWidth : 26, 26);
        y += rowStep;
    }
    content->resize(std::max(scrollArea->viewport()->width(), kMargin * 2 + kLabelWidth + kControlWidth),
                    y + kMargin - (rowStep - 26));
}
