#pragma once
#include <QtCore/QString>
#include <QtCore/QStringList>

class QWidget;

// The plain modal questions the main window and the tray ask when no test hook stands in.

// A message with one button per caption, in order; the index of the button pressed, -1 when the
// box was closed without one.
int askWithButtons(QWidget* parent, const QString& title, const QString& text, const QStringList& captions);

// A line of text under `prompt` and `fieldLabel`; false when cancelled, leaving `answer` alone.
bool askForTextInDialog(QWidget* parent, const QString& title, const QString& prompt, const QString& fieldLabel,
                        const QString& defaultText, const QString& okCaption, const QString& cancelCaption,
                        QString& answer);
