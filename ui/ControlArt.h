#pragma once
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QPixmap>

// Images of the control widgets. A ":/img/..." path is taken from the resource bundle when the
// bundle has it; until the artwork is generated, the same image is drawn here so every control
// has its look. Pixmaps are made at the device pixel ratio and cached by path.
class ControlArt {
public:
    static QPixmap pixmap(const QString& path);

    // Shared colours of the flat dark controls.
    static QColor trackColor() { return QColor(28, 28, 28); }
    static QColor fillColor() { return QColor(92, 140, 210); }
    static QColor frameColor() { return QColor(24, 24, 24); }
    static QColor faceColor() { return QColor(72, 72, 72); }
    static QColor faceHighColor() { return QColor(90, 90, 90); }
    static QColor labelColor() { return QColor(170, 170, 170); }
    static QColor textColor() { return QColor(230, 230, 230); }
};
