// The main window as a person meets it: a photo on screen, the hand-placed layout, the interface
// states, split views, the menus' texts and keys, the media info and the preferences written on closing.
#include "ResourceInit.h"
#include "document/MVMediaWidget.h"
#include "document/qtWidgetDivider.h"
#include "filters/MultiData.h"
#include "ui/AppTheme.h"
#include "ui/MVToolPanel.h"
#include "ui/MainWindow.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImageReader>
#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>

namespace {

// An sRGB photo with EXIF, for the info; and a colourful one without a profile, for the pixels.
const QString kPhoto = QStringLiteral(VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg");
const QString kLeaf = QStringLiteral(VANTREL_TESTDATA "/canon_eos70d_leaf_2560x1600.jpg");

QColor blockMean(const QImage& img, int cx, int cy, int radius)
{
    long r = 0, g = 0, b = 0, n = 0;
    for (int y = cy - radius; y <= cy + radius; ++y)
        for (int x = cx - radius; x <= cx + radius; ++x) {
            const QRgb p = img.pixel(x, y);
            r += qRed(p);
            g += qGreen(p);
            b += qBlue(p);
            ++n;
        }
    return QColor(int(r / n), int(g / n), int(b / n));
}

void saveShot(QWidget& w, const char* name)
{
    const QByteArray dir = qgetenv("VANTREL_SHOT_DIR");
    if (!dir.isEmpty())
        w.grab().save(QString::fromLocal8Bit(dir) + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
}

bool settle(MainWindow& w)
{
    return QTest::qWaitFor([&w] { return w.displaySettled(); }, 15000);
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        if (!QFile::exists(kPhoto))
            QSKIP("test photos are not available");
    }

    void photoAppearsOnScreen()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1200, 800);
        MVMediaWidget* viewer = w.currentViewer();
        QSignalSpy updated(viewer, &MVMediaWidget::displayUpdatedSignal);
        QVERIFY(w.loadFile(kLeaf));
        QVERIFY(w.isVisible()); // the welcome card gave way
        QCOMPARE(w.windowTitle(), QStringLiteral("Vantrel Photo - canon_eos70d_leaf_2560x1600.jpg"));
        QVERIFY(updated.count() > 0 || updated.wait(15000));
        QVERIFY(settle(w));
        saveShot(w, "fit");

        const QImage shot = w.grab().toImage();
        const QRect drawn(viewer->mapTo(&w, QPoint(int(viewer->drawX), int(viewer->drawY))),
                          QSize(int(viewer->drawWidth), int(viewer->drawHeight)));
        QVERIFY(drawn.width() > 600 && w.rect().contains(drawn));
        // The picture fits the area left of the panel, above the tray, keeping its shape.
        QVERIFY(std::abs(double(drawn.width()) / drawn.height() - 2560.0 / 1600.0) < 0.01);

        QImageReader reader(kLeaf);
        reader.setAutoTransform(true);
        const QImage expected = reader.read().scaled(drawn.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        QVERIFY(!expected.isNull());
        // Block means on a grid: the two resamplers differ in detail, not in the picture. A wrong
        // crop, offset, turn or channel order moves the means far beyond these bounds.
        int compared = 0;
        long sumError = 0;
        for (int gy = 1; gy < 6; ++gy)
            for (int gx = 1; gx < 8; ++gx) {
                const int x = drawn.width() * gx / 8, y = drawn.height() * gy / 6;
                const QColor want = blockMean(expected, x, y, 6);
                const QColor got = blockMean(shot, drawn.x() + x, drawn.y() + y, 6);
                const int error = std::max({std::abs(want.red() - got.red()), std::abs(want.green() - got.green()),
                                            std::abs(want.blue() - got.blue())});
                QVERIFY2(error <= 24, qPrintable(QStringLiteral("at %1,%2: %3 on screen, %4 in the file")
                                                     .arg(x).arg(y).arg(got.name(), want.name())));
                sumError += error;
                ++compared;
            }
        QCOMPARE(compared, 35);
        QVERIFY2(sumError <= 6 * compared, qPrintable(QString::number(double(sumError) / compared)));
        // Outside the picture the window is its own dark grey.
        const QColor frame = shot.pixelColor(drawn.x() - 5, drawn.center().y());
        QVERIFY(frame.red() < 50 && frame.red() == frame.green());

        // 100% shows one photo pixel per screen pixel.
        QVERIFY(w.triggerActionByText(QStringLiteral("Zoom To 100%")));
        QCOMPARE(viewer->zoom, 1.0f);
        QCOMPARE(int(viewer->drawWidth), 2560);
        QVERIFY(settle(w));
        saveShot(w, "full_size");
        QVERIFY(w.triggerActionByText(QStringLiteral("Zoom Toggle")));
        QVERIFY(viewer->fitToWindow);
        QVERIFY(w.triggerActionByText(QStringLiteral("Zoom Toggle")));
        QCOMPARE(viewer->zoom, 1.0f);
        QVERIFY(w.triggerActionByText(QStringLiteral("Zoom To Fit")));
        QVERIFY(viewer->fitToWindow);
        QVERIFY(settle(w));
    }

    void layoutPlacesPanelTrayAndPicture()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1200, 800);
        w.show();
        const QWidget* c = w.centralWidget();
        const int W = c->width(), H = c->height();
        QCOMPARE(w.toolPanel->geometry(), QRect(W - 224, 0, 224, H));
        QCOMPARE(w.trayArea->geometry().bottom(), H - 1 - MainWindow::trayInset);
        QCOMPARE(w.trayArea->geometry().left(), 5);
        QCOMPARE(w.trayArea->geometry().top(), H - 96);
        const QRect area = w.currentViewer()->geometry();
        QCOMPARE(area, w.documentArea());
        QCOMPARE(area.right(), W - 224 - 1);
        QVERIFY(area.bottom() < H - 96);

        w.hidePanelButtonPressed();
        QVERIFY(w.toolPanel->isHidden());
        QCOMPARE(w.currentViewer()->width(), W);
        w.hideTrayButtonPressed();
        QVERIFY(w.trayArea->isHidden());
        QCOMPARE(w.currentViewer()->geometry().bottom(), H - 1 - MainWindow::miniStripHeight);
    }

    void cycleInterfaceGoesThroughFourStates()
    {
        MainWindow w(AppTheme::styleSheet());
        w.show();
        auto state = [&w] { return QPair<bool, bool>(!w.toolPanel->isHidden(), !w.trayArea->isHidden()); };
        using S = QPair<bool, bool>;
        const S order[] = {S(false, true), S(false, false), S(true, false), S(true, true)};
        for (const S& next : order) {
            QVERIFY(w.triggerActionByText(QStringLiteral("Cycle Interface")));
            QCOMPARE(state(), next);
        }
        // Started with only the tray hidden (panel only), it goes on from there: both shown.
        QVERIFY(w.triggerActionByText(QStringLiteral("Show/Hide Tray")));
        QCOMPARE(state(), S(true, false));
        QVERIFY(w.triggerActionByText(QStringLiteral("Cycle Interface")));
        QCOMPARE(state(), S(true, true));
        // Toggle hides both, then shows both; from a half state it hides both.
        QVERIFY(w.triggerActionByText(QStringLiteral("Toggle Interface")));
        QCOMPARE(state(), S(false, false));
        QVERIFY(w.triggerActionByText(QStringLiteral("Toggle Interface")));
        QCOMPARE(state(), S(true, true));
        w.hidePanelButtonPressed();
        QVERIFY(w.triggerActionByText(QStringLiteral("Toggle Interface")));
        QCOMPARE(state(), S(false, false));
    }

    void splitViewsShareTheAreaBetweenDocuments()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1200, 800);
        w.show();
        QVERIFY(w.loadFile(kPhoto));
        QVERIFY(w.triggerActionByText(QStringLiteral("New Tab")));
        QCOMPARE(w.documentCount, 2);
        QCOMPARE(w.currentDocument, 1);
        QVERIFY(w.loadFile(kPhoto));
        MVMediaWidget* a = w.documents[0].viewer;
        MVMediaWidget* b = w.documents[1].viewer;
        QVERIFY(a->isHidden() && !b->isHidden()); // single view shows the current tab only

        w.viewportButtons[1]->click();
        QCOMPARE(w.viewMode, 1);
        QVERIFY(w.actionByText(QStringLiteral("Split Screen Vertical"))->isChecked());
        QVERIFY(!w.actionByText(QStringLiteral("Single View"))->isChecked());
        const QRect area = w.documentArea();
        QVERIFY(!a->isHidden() && !b->isHidden());
        QCOMPARE(a->geometry().left(), area.left());
        QCOMPARE(b->geometry().right(), area.right());
        QVERIFY(std::abs(a->width() - b->width()) <= 1);
        QCOMPARE(b->geometry().left() - a->geometry().right() - 1, qtWidgetDivider::thickness);
        qtWidgetDivider* divider = w.documents[0].divider;
        QCOMPARE(divider->geometry(), QRect(a->geometry().right() + 1, area.top(), 4, area.height()));
        QVERIFY(settle(w));
        saveShot(w, "split_vertical");

        // Dragging the divider moves the boundary; the pair keeps its room.
        const int both = a->width() + b->width();
        divider->dragPosition = area.left() + 300;
        emit divider->dividerMoved(divider);
        QCOMPARE(a->width(), 300 - 2);
        QCOMPARE(a->width() + b->width(), both);

        QVERIFY(w.triggerActionByText(QStringLiteral("Split Screen Horizontal")));
        QVERIFY(w.viewportButtons[2]->isChecked() && !w.viewportButtons[1]->isChecked());
        QCOMPARE(a->geometry().top(), area.top());
        QCOMPARE(b->geometry().bottom(), area.bottom());
        QCOMPARE(a->width(), area.width());
        QVERIFY(settle(w));
        saveShot(w, "split_horizontal");

        // A click on a pane makes its document current.
        QTest::mouseClick(a, Qt::LeftButton, Qt::NoModifier, a->rect().center());
        QCOMPARE(w.currentDocument, 0);

        // The last tab can't be closed from the bar; "Close Photo" with two closes the tab.
        QVERIFY(w.triggerActionByText(QStringLiteral("Close Photo")));
        QCOMPARE(w.documentCount, 1);
        w.documentTabWantsClosing(w.documents[0].tabID);
        QCOMPARE(w.documentCount, 1);
        QVERIFY(w.triggerActionByText(QStringLiteral("Close Photo")));
        QVERIFY(w.documents[0].filePath.isEmpty());
        QVERIFY(!w.currentViewer()->hasMedia);
        QCOMPARE(w.windowTitle(), QStringLiteral("Vantrel Photo"));
    }

    void menusCarryTheirTextsAndKeys()
    {
        MainWindow w(AppTheme::styleSheet());
        QStringList titles;
        for (QAction* a : w.menuBar()->actions())
            titles << a->text();
        QCOMPARE(titles, QStringList({"File", "Edit", "View", "Help "}));
        QCOMPARE(w.actionByText(QStringLiteral("Load Photo..."))->shortcuts(),
                 QList<QKeySequence>({QKeySequence(QStringLiteral("o")), QKeySequence(QStringLiteral("Ctrl+o"))}));
        QCOMPARE(w.actionByText(QStringLiteral("Zoom Toggle"))->shortcut(), QKeySequence(QStringLiteral("0")));
        QCOMPARE(w.actionByText(QStringLiteral("Cycle Interface"))->shortcut(), QKeySequence(QStringLiteral("Alt+Tab")));
        QVERIFY(!w.actionByText(QStringLiteral("Remix Up"))->isVisible());
        QVERIFY(w.actionByText(QStringLiteral("Autohide Controls"))->isCheckable());
        // The append form of the quicklook exists only as a window action.
        QAction* append = w.actionByText(QStringLiteral("Quicklook Presets (Append)"));
        QVERIFY(append && w.actions().contains(append));
        QCOMPARE(MainWindow::helpPageAnchor(QStringLiteral("Send Feedback")), QStringLiteral("feedback"));
        QVERIFY(!w.triggerActionByText(QStringLiteral("No Such Entry")));
    }

    void loadNextWrapsAndSkipsOtherFiles()
    {
        QTemporaryDir dir;
        for (const char* name : {"a.jpg", "B.TXT", "c.JPG", "d.png"}) {
            QFile f(dir.filePath(QString::fromLatin1(name)));
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        const auto next = [&](const char* from, int step) {
            return QFileInfo(MainWindow::neighbourMediaFile(dir.filePath(QString::fromLatin1(from)), step)).fileName();
        };
        QCOMPARE(next("a.jpg", 1), QStringLiteral("c.JPG")); // B.TXT skipped
        QCOMPARE(next("d.png", 1), QStringLiteral("a.jpg")); // wraps at the end
        QCOMPARE(next("a.jpg", -1), QStringLiteral("d.png")); // and at the start
        QCOMPARE(next("C.jpg", 1), QStringLiteral("d.png"));  // names compare without case
        QTemporaryDir lone;
        QFile only(lone.filePath(QStringLiteral("only.jpg")));
        QVERIFY(only.open(QIODevice::WriteOnly));
        QFile other(lone.filePath(QStringLiteral("notes.txt")));
        QVERIFY(other.open(QIODevice::WriteOnly));
        QCOMPARE(QFileInfo(MainWindow::neighbourMediaFile(only.fileName(), 1)).fileName(), QStringLiteral("only.jpg"));
    }

    void mediaInfoListsTheSourcesFacts()
    {
        MainWindow w(AppTheme::styleSheet());
        QCOMPARE(MainWindow::mediaInfoText(w.documents[0], -1, -1), QStringLiteral("No photo is loaded in this tab."));
        QVERIFY(w.loadFile(kPhoto));
        const QString text = MainWindow::mediaInfoText(w.documents[0], 1920, 1080);
        QVERIFY2(text.contains(QStringLiteral("Size: 1920 x 1080 pixels")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("Depth: 8 bits per channel")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("Orientation: 1 (upright)")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("Colour profile: sRGB")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("Camera: OLYMPUS")), qPrintable(text));
        QVERIFY(!text.contains(QStringLiteral("Edited size")));
        QVERIFY(MainWindow::mediaInfoText(w.documents[0], 800, 600).contains(QStringLiteral("Edited size: 800 x 600")));
    }

    void closingWritesThePreferencesInOrder()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1000, 700);
        w.show();
        MultiData::global().clear();
        QVERIFY(w.close());
        QFile f(QString::fromStdString(preferencesPath()));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(f.readAll());
        const char* keys[] = {"CollapsedToolSections", "PreferencesVersion", "DefaultFiltersVersion", "WindowGeometry",
                              "IsFullscreen", "UseHoverPreviews", "CurrentTab", "LastFont", "StarredFilterList"};
        int last = -1;
        for (const char* k : keys) {
            const int at = text.indexOf(QLatin1Char('<') + QLatin1String(k));
            QVERIFY2(at > last, k);
            last = at;
        }
        MultiData check;
        QVERIFY(check.readFile(preferencesPath()));
        QCOMPARE(check.getFloat("PreferencesVersion", 0.0f), 3.0f);
        QCOMPARE(check.getFloat("DefaultFiltersVersion", 0.0f), 4.2f);
        QCOMPARE(check.getBool("IsFullscreen", true), false);
        const QStringList g = QString::fromStdString(check.getString("WindowGeometry", "")).split(' ');
        QCOMPARE(g.size(), 4);
        QCOMPARE(g[2].toInt(), 1000);
        QCOMPARE(g[3].toInt(), 700);
    }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
