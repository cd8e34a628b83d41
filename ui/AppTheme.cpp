#include "ui/AppTheme.h"

namespace {

QColor greyMix(const QColor& a, const QColor& b, float t)
{
    auto mix = [t](int x, int y) { return int(float(x) + (float(y) - float(x)) * t); };
    return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()));
}

AppThemeColors makeColors()
{
    AppThemeColors c;
    c.background = QColor(60, 60, 60);
    c.dark = QColor(40, 40, 40);
    c.light = QColor(80, 80, 80);
    c.text = QColor(0, 0, 0);
    c.highlight = QColor(100, 100, 100);
    c.base = QColor((c.background.red() + c.light.red()) / 2, (c.background.green() + c.light.green()) / 2,
                    (c.background.blue() + c.light.blue()) / 2);
    auto alt = [](int d, int b) { return int(float(d) * 0.2f + float(b) * 0.8f); };
    c.alternate = QColor(alt(c.dark.red(), c.base.red()), alt(c.dark.green(), c.base.green()),
                         alt(c.dark.blue(), c.base.blue()));
    return c;
}

} // namespace

const AppThemeColors& AppTheme::colors()
{
    static const AppThemeColors c = makeColors();
    return c;
}

QPalette AppTheme::buildPalette(const QPalette& start)
{
    const AppThemeColors& c = colors();
    QPalette p = start;
    const QPalette::ColorGroup all = QPalette::All;
    p.setColor(all, QPalette::Window, c.background);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::Link, QPalette::LinkVisited,
                                     QPalette::BrightText, QPalette::HighlightedText})
        p.setColor(all, role, c.text);
    p.setColor(all, QPalette::Base, c.base);
    p.setColor(all, QPalette::AlternateBase, c.alternate);
    p.setColor(all, QPalette::Highlight, c.highlight);

    // Bevel roles: one even ramp from light down to dark, so frames shade the same way everywhere.
    p.setColor(all, QPalette::Light, c.light);
    p.setColor(all, QPalette::Midlight, greyMix(c.light, c.dark, 0.25f));
    p.setColor(all, QPalette::Button, greyMix(c.light, c.dark, 0.5f));
    p.setColor(all, QPalette::Mid, greyMix(c.light, c.dark, 0.75f));
    p.setColor(all, QPalette::Dark, c.dark);
    p.setColor(all, QPalette::Shadow, c.dark);
    p.setColor(all, QPalette::ButtonText, c.text);

    p.setColor(QPalette::Disabled, QPalette::Text, c.dark);
    return p;
}

QString AppTheme::styleSheet()
{
    QString s;
    for (const char* part : {"QWidget {", "color: #ffffff;", "font: 11px 'Bitstream Vera Sans';", "}",
                             "QWidget[enabled=\"false\"] {", "color: #777777;", "}", "QWidget:disabled {",
                             "color: #777777;", "}"})
        s += QLatin1String(part);
    return s;
}
