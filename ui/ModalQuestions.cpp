#include "ui/ModalQuestions.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

int askWithButtons(QWidget* parent, const QString& title, const QString& text, const QStringList& captions)
{
    QMessageBox box(parent);
    box.setWindowTitle(title);
    box.setText(text);
    QList<QAbstractButton*> buttons;
    for (const QString& caption : captions)
        buttons << box.addButton(caption, QMessageBox::AcceptRole);
    box.exec();
    return int(buttons.indexOf(box.clickedButton()));
}

bool askForTextInDialog(QWidget* parent, const QString& title, const QString& prompt, const QString& fieldLabel,
                        const QString& defaultText, const QString& okCaption, const QString& cancelCaption,
                        QString& answer)
{
    QInputDialog dialog(parent);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt + QStringLiteral("\n\n") + fieldLabel);
    dialog.setTextValue(defaultText);
    dialog.setOkButtonText(okCaption);
    dialog.setCancelButtonText(cancelCaption);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    answer = dialog.textValue();
    return true;
}
