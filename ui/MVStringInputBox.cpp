#include "ui/MVStringInputBox.h"

#include <QtWidgets/QLineEdit>

MVStringInputBox::MVStringInputBox(QWidget* parent) : QWidget(parent)
{
    edit = new QLineEdit(this);
    edit->setStyleSheet(QStringLiteral(
        "QLineEdit { background: #262626; border: 1px solid #1a1a1a; border-radius: 3px; color: #e6e6e6;"
        " font-size: 11px; padding: 0px 4px; selection-background-color: #5c8cd2; }"));
    connect(edit, &QLineEdit::editingFinished, this, &MVStringInputBox::finished);
    resize(160, 22);
}

void MVStringInputBox::setText(const QString& t)
{
    committed = t;
    edit->setText(t);
}

void MVStringInputBox::setPlaceholderText(const QString& t)
{
    edit->setPlaceholderText(t);
}

void MVStringInputBox::finished()
{
    const QString typed = edit->text();
    if (typed == committed)
        return;
    emit editingStarted();
    committed = typed;
    emit sliderChanged(this);
}

void MVStringInputBox::resizeEvent(QResizeEvent*)
{
    edit->setGeometry(rect());
}
