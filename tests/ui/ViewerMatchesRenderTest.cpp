// What the viewer shows of a look must be the full-size render of that look, scaled: tiles that
// depend on where a pixel stands (vignette, flares, leaks, grain, overlays, borders) see only the
// visible part of a smaller picture in the viewer, and must still land in the same place.
#include "ResourceInit.h"
#include "TestMods.h"
#include "desktop_only/OverlaySeams.h"
#include "document/MVMediaWidget.h"
#include "document/core/HeadlessRender.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataFile.h"
#include "mods/ImageModTextOverlay.h"
#include "ui/AppTheme.h"
#include "ui/MainWindow.h"
#include "ui/TrayWidget.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtTest/QtTest>

#include <algorithm>
#include <cmath>

namespace {

struct Window {
    MainWindow w{AppTheme::styleSheet()};
    Window()
    {
        w.resize(1400, 900);
        w.show();
        if (!QTest::qWaitForWindowExposed(&w))
            qWarning("window not exposed");
    }
    TrayWidget& tray() { return *w.currentTray(); }
    MVMediaWidget& viewer() { return *w.currentViewer(); }
    bool settle() { return QTest::qWaitFor([this] { return w.displaySettled(); }, 20000); }
};

// Mean of an area of the render, in the display's 8-bit units: the box of full-size pixels under
// display pixel (x, y) when the full image is sx x sy times the display.
void boxMean(const FlexImageFloat& full, double sx, double sy, int x, int y, double out[3])
{
    const int x0 = int(std::floor(x * sx)), x1 = std::max(x0 + 1, int(std::floor((x + 1) * sx)));
    const int y0 = int(std::floor(y * sy)), y1 = std::max(y0 + 1, int(std::floor((y + 1) * sy)));
    double s[3] = {0, 0, 0};
    int n = 0;
    for (int yy = y0; yy < std::min(y1, full.height); ++yy) {
        const float* r = full.row(yy);
        for (int xx = x0; xx < std::min(x1, full.width); ++xx, ++n)
            for (int c = 0; c < 3; ++c)
                s[c] += r[xx * full.channels + c];
    }
    for (int c = 0; c < 3; ++c)
        out[c] = n ? s[c] / n : 0.0;
}

struct Agreement {
    double psnr = 0.0;
    double worstColumn = 0.0; // largest mean difference of one column of cells, in 8-bit units
    double worstRow = 0.0;
    int badColumns = 0; // columns of cells whose mean is off by more than 4
    int badRows = 0;
};

// Compares the display's region [left, right] x [top, bottom] (pixels of a picture of
// displayWidth x displayHeight) with the full render averaged over 4 x 4 display-pixel cells, so
// that grain and resampling noise cancel while misplaced falloffs and bands stay visible. Each
// cell may match the render up to one display pixel away: the two resamplers place hard edges
// (a border's inner edge) within a pixel of each other, which is not what this looks for.
Agreement compare(const QImage& shown, const FlexImageFloat& full, int left, int top, int right, int bottom)
{
    const double sx = double(full.width) / shown.width(), sy = double(full.height) / shown.height();
    const int cell = 4;
    const int cw = (right - left + 1) / cell, chh = (bottom - top + 1) / cell;
    std::vector<double> col(size_t(cw), 0.0), row(size_t(chh), 0.0);
    double se = 0.0;
    for (int cy = 0; cy < chh; ++cy)
        for (int cx = 0; cx < cw; ++cx) {
            double a[3] = {0, 0, 0};
            for (int y = 0; y < cell; ++y)
                for (int x = 0; x < cell; ++x) {
                    const QRgb q = shown.pixel(left + cx * cell + x, top + cy * cell + y);
                    a[0] += qRed(q);
                    a[1] += qGreen(q);
                    a[2] += qBlue(q);
                }
            double best[3] = {0, 0, 0}, bestErr = -1.0;
            for (int oy = -1; oy <= 1; ++oy)
                for (int ox = -1; ox <= 1; ++ox) {
                    double b[3] = {0, 0, 0};
                    for (int y = 0; y < cell; ++y)
                        for (int x = 0; x < cell; ++x) {
                            const int px = std::clamp(left + cx * cell + x + ox, 0, shown.width() - 1);
                            const int py = std::clamp(top + cy * cell + y + oy, 0, shown.height() - 1);
                            double m[3];
                            boxMean(full, sx, sy, px, py, m);
                            for (int c = 0; c < 3; ++c)
                                b[c] += m[c];
                        }
                    double err = 0.0;
                    for (int c = 0; c < 3; ++c)
                        err += (a[c] - b[c]) * (a[c] - b[c]);
                    if (bestErr < 0.0 || err < bestErr) {
                        bestErr = err;
                        std::copy(b, b + 3, best);
                    }
                }
            for (int c = 0; c < 3; ++c) {
                const double d = (a[c] - best[c]) / (cell * cell);
                se += d * d;
                col[size_t(cx)] += d / (3.0 * chh);
                row[size_t(cy)] += d / (3.0 * cw);
            }
        }
    Agreement g;
    const double mse = se / (3.0 * cw * chh);
    g.psnr = mse > 0.0 ? 10.0 * std::log10(255.0 * 255.0 / mse) : 99.0;
    for (double v : col) {
        g.worstColumn = std::max(g.worstColumn, std::abs(v));
        g.badColumns += std::abs(v) > 4.0;
    }
    for (double v : row) {
        g.worstRow = std::max(g.worstRow, std::abs(v));
        g.badRows += std::abs(v) > 4.0;
    }
    return g;
}

// The looks whose pixels depend on where they stand, each with values that make it strong.
std::vector<std::unique_ptr<ImageMod>> lookFor(const QString& name)
{
    std::vector<std::unique_ptr<ImageMod>> out;
    std::unique_ptr<ImageMod> m = createMod(catalogue().mods, name.toStdString());
    if (!m)
        return out;
    if (auto* t = dynamic_cast<ImageModTextOverlay*>(m.get()))
        t->setText("Forest Morning");
    if (name == QLatin1String("Fill Out")) {
        // 4:3: bars above and below a 16:9 photo.
        ImageModVariableDataChoice* aspect = nullptr;
        int32_t index = 0;
        for (; !aspect && m->variableAt(index); ++index)
            aspect = m->variableAt(index)->asChoice();
        const auto at = aspect ? std::find(aspect->labelSets[0].begin(), aspect->labelSets[0].end(), "4:3") : std::vector<std::string>::iterator();
        if (!aspect || at == aspect->labelSets[0].end())
            return {};
        aspect->index = int32_t(at - aspect->labelSets[0].begin());
        m->variableChanged(index - 1);
    }
    if (name == QLatin1String("Watermark")) {
        // A mark with soft alpha, saved where the tile can read it.
        static QTemporaryDir dir;
        const QString path = dir.path() + QStringLiteral("/mark.png");
        QImage mark(200, 120, QImage::Format_ARGB32);
        for (int y = 0; y < mark.height(); ++y)
            for (int x = 0; x < mark.width(); ++x)
                mark.setPixel(x, y, qRgba(255, 240 - y, x, (x * 255) / mark.width()));
        if (!mark.save(path))
            return {};
        m->variableAt(0)->asFile()->path = path.toStdString();
        m->variableChanged(0);
    }
    out.push_back(std::move(m));
    return out;
}

} // namespace

class ViewerMatchesRenderTest : public QObject
{
    Q_OBJECT

    void check(const QString& name, bool zoomed, const QString& photo)
    {
        if (!QFile::exists(photo))
            QSKIP("the test photos are absent");
        std::vector<std::unique_ptr<ImageMod>> look = lookFor(name);
        QVERIFY2(!look.empty(), qPrintable(name));
        Window win;
        QVERIFY(win.w.loadFile(photo));
        QVERIFY(win.settle());
        for (const auto& m : look)
            win.tray().addMod(*m);
        win.w.trayContentChanged();
        MVMediaWidget& v = win.viewer();
        if (zoomed) {
            // 100 % about a point right of and below the centre: only a part of the picture is worked on.
            v.zoomTo(1.0f, float(v.width()) * 0.8f, float(v.height()) * 0.75f);
            v.requestProcessing();
        }
        QVERIFY(win.settle());

        const QImage shown = v.displayCopy().convertToFormat(QImage::Format_RGB32);
        QVERIFY(!shown.isNull());
        int left, top, right, bottom;
        {
            std::lock_guard<std::mutex> lock(v.stateMutex);
            v.visibleRegion(shown.width(), shown.height(), left, top, right, bottom);
        }
        FlexImageFloat full;
        std::vector<ImageMod*> list;
        for (int i = 0; i < win.tray().tileCount(); ++i)
            list.push_back(win.tray().modAt(i));
        {
            std::lock_guard<std::mutex> lock(v.sourceMutex);
            QVERIFY(v.sourceImage);
            QVERIFY(renderFullSize(*v.sourceImage, list, full));
            // A look that changes nothing would agree trivially.
            bool changed = full.width != v.sourceImage->width || full.height != v.sourceImage->height;
            for (int y = 0; !changed && y < full.height; y += 7)
                for (int x = 0; !changed && x < full.width * full.channels; ++x)
                    changed = std::abs(full.row(y)[x] - v.sourceImage->row(y)[x]) > 8.0f;
            QVERIFY2(changed, qPrintable(name + QStringLiteral(" leaves the photo as it is")));
        }
        // The picture's proportions must agree before its pixels can.
        QVERIFY2(std::abs(double(full.width) / full.height - double(shown.width()) / shown.height()) < 0.01,
                 qPrintable(QStringLiteral("%1: %2x%3 shown, %4x%5 rendered")
                                .arg(name).arg(shown.width()).arg(shown.height()).arg(full.width).arg(full.height)));
        const Agreement g = compare(shown, full, left, top, right, bottom);
        const QByteArray shots = qgetenv("VANTREL_SHOT_DIR");
        if (!shots.isEmpty()) {
            const QString base = QString::fromLocal8Bit(shots) + QLatin1Char('/') + QString(name).remove(QLatin1Char(' '))
                + (zoomed ? QStringLiteral("_zoomed") : QString());
            win.w.grab().save(base + QStringLiteral("_viewer.png"));
            shown.save(base + QStringLiteral("_display.png"));
        }
        const QString what = QStringLiteral("%1%2: PSNR %3 dB, worst column %4 (%6 off), worst row %5 (%7 off)")
                                 .arg(name, zoomed ? QStringLiteral(" at 100%") : QString())
                                 .arg(g.psnr, 0, 'f', 1)
                                 .arg(g.worstColumn, 0, 'f', 1)
                                 .arg(g.worstRow, 0, 'f', 1)
                                 .arg(g.badColumns)
                                 .arg(g.badRows);
        qInfo("%s", qPrintable(what));
        QVERIFY2(g.psnr >= 30.0, qPrintable(what));
        // A border's edges may land a pixel apart in the two resamplers; a band is many columns wide.
        QVERIFY2(g.badColumns <= 2 && g.badRows <= 2, qPrintable(what));
    }

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        installOverlaySeams();
    }

    void fitAndZoomed_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("zoomed");
        QTest::addColumn<QString>("photo");
        const QString forest = QStringLiteral(VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg");
        for (const char* n : {"Vignette", "Radial Blur", "Lens Flare", "Lightleak", "Grain", "Text Overlay",
                              "Paper", "Custom Rounded", "Fill Out", "Watermark"}) {
            QTest::newRow(n) << QString::fromLatin1(n) << false << forest;
            QTest::newRow(qPrintable(QStringLiteral("%1 at 100%").arg(QLatin1String(n)))) << QString::fromLatin1(n) << true
                                                                                          << forest;
        }
    }

    void fitAndZoomed()
    {
        QFETCH(QString, name);
        QFETCH(bool, zoomed);
        QFETCH(QString, photo);
        check(name, zoomed, photo);
    }
};

QTEST_MAIN(ViewerMatchesRenderTest)
#include "ViewerMatchesRenderTest.moc"
