#pragma once
#include <QtGui/QColor>
#include <QtGui/QPalette>
#include <QtCore/QString>

// The five colours the whole dark theme is built from, plus the two derived from them.
struct AppThemeColors
{
    QColor background;
    QColor dark;
    QColor light;
    QColor text;
    QColor highlight;
    QColor base;      // channel mean of background and light, truncated
    QColor alternate; // dark * 0.2 + base * 0.8, truncated
};

class AppTheme
{
public:
    // Process-wide theme colours; widgets that draw themselves read them from here.
    static const AppThemeColors& colors();

    // The application palette: starts from `start` and overrides every role the theme owns.
    static QPalette buildPalette(const QPalette& start);

    // The application's base style sheet, one text.
    static QString styleSheet();
};
