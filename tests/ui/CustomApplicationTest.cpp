// Start-up and application object: file-open events before and after the main window exists,
// the choice of the file to open, the theme, the fonts and the welcome card.
#include "ResourceInit.h"
#include "ui/AppStartup.h"
#include "ui/AppTheme.h"
#include "ui/CustomApplication.h"
#include "ui/MainWindow.h"
#include "ui/MVStartupWindow.h"
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QFileOpenEvent>
#include <QtGui/QFontDatabase>
#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtTest/QtTest>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>

namespace {

CustomApplication* theApp()
{
    return static_cast<CustomApplication*>(QCoreApplication::instance());
}

MVStartupWindow* shownStartupWindow()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* s = qobject_cast<MVStartupWindow*>(w); s && s->isVisible())
            return s;
    return nullptr;
}

QColor rgb(int v) { return QColor(v, v, v); }

} // namespace

class CustomApplicationTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;
    QString photoA, photoB, photoC, notAnImage;

    static QString writePhoto(const QString& path, QRgb colour)
    {
        QImage img(24, 16, QImage::Format_RGB32);
        img.fill(colour);
        return img.save(path, "PNG") ? path : QString();
    }

    void resetApp()
    {
        theApp()->pendingFiles.clear();
        theApp()->mainWindow = nullptr;
    }

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        QVERIFY(dir.isValid());
        photoA = writePhoto(dir.filePath("a.png"), qRgb(200, 10, 10));
        photoB = writePhoto(dir.filePath("b.png"), qRgb(10, 200, 10));
        photoC = writePhoto(dir.filePath("c d.png"), qRgb(10, 10, 200));
        QVERIFY(!photoA.isEmpty() && !photoB.isEmpty() && !photoC.isEmpty());
        notAnImage = dir.filePath("notes.txt");
        QFile f(notAnImage);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("not pixels");
    }

    void fileOpenEventsBeforeTheWindowAreQueuedInOrder()
    {
        resetApp();
        QCoreApplication::postEvent(theApp(), new QFileOpenEvent(photoA));
        QCoreApplication::postEvent(theApp(), new QFileOpenEvent(photoB));
        QVERIFY(theApp()->pendingFiles.isEmpty()); // nothing happens until the events are delivered
        QCoreApplication::processEvents();
        QCOMPARE(theApp()->pendingFiles, QStringList({photoA, photoB}));
    }

    void startupOpensOnlyTheFirstQueuedFileAndIgnoresTheArgument()
    {
        resetApp();
        theApp()->pendingFiles = QStringList({photoA, photoB});
        MainWindow w(AppTheme::styleSheet());
        w.hide();
        theApp()->mainWindow = &w;
        QByteArray arg0("vantrel"), arg1 = photoC.toUtf8();
        char* argv[] = {arg0.data(), arg1.data(), nullptr};
        const QByteArray picked = AppStartup::pickStartupFile(theApp()->pendingFiles, 2, argv);
        QCOMPARE(picked, photoA.toUtf8());
        QVERIFY(AppStartup::isOpenableFile(picked));
        QVERIFY(w.loadFile(QString::fromUtf8(picked)));
        QCOMPARE(w.windowFilePath(), photoA);
        QCOMPARE(theApp()->pendingFiles.size(), 2); // the rest stay unread
        resetApp();
    }

    void pickStartupFileFromTheCommandLine()
    {
        QByteArray arg0("vantrel"), arg1 = photoC.toUtf8(), empty;
        char* withPath[] = {arg0.data(), arg1.data(), nullptr};
        QCOMPARE(AppStartup::pickStartupFile({}, 2, withPath), photoC.toUtf8());
        char* bare[] = {arg0.data(), nullptr};
        QVERIFY(AppStartup::pickStartupFile({}, 1, bare).isEmpty());
        char* emptyArg[] = {arg0.data(), empty.data(), nullptr};
        QVERIFY(AppStartup::pickStartupFile({}, 2, emptyArg).isEmpty());
        // A queued name is handed on as UTF-8, whatever the locale.
        const QString accented = QString::fromUtf8("/tmp/caf\xc3\xa9 \xe6\x97\xa5.jpg");
        QCOMPARE(AppStartup::pickStartupFile({accented}, 1, bare), QByteArray("/tmp/caf\xc3\xa9 \xe6\x97\xa5.jpg"));
        // Filter files after the photo are looks to apply; the plug-in id is never one.
        QByteArray look("/tmp/Warm.VNF"), flag("--plugin-id"), id("id.vnf"), second("b.vnf");
        char* withLooks[] = {arg0.data(), arg1.data(), look.data(), flag.data(), id.data(), second.data(), nullptr};
        QCOMPARE(AppStartup::pickFilterFiles(6, withLooks), QStringList({"/tmp/Warm.VNF", "b.vnf"}));
        QVERIFY(AppStartup::pickFilterFiles(2, withPath).isEmpty());
    }

    void onlyExistingNonFolderPathsAreOpened()
    {
        QVERIFY(AppStartup::isOpenableFile(photoC.toUtf8())); // a space in the name is fine
        QVERIFY(AppStartup::isOpenableFile(notAnImage.toUtf8()));
        QVERIFY(!AppStartup::isOpenableFile(dir.path().toUtf8()));
        QVERIFY(!AppStartup::isOpenableFile(dir.filePath("missing.jpg").toUtf8()));
        QVERIFY(!AppStartup::isOpenableFile(QByteArray()));
    }

    void fileOpenAfterTheWindowLoadsAtOnce()
    {
        resetApp();
        MainWindow w(AppTheme::styleSheet());
        theApp()->mainWindow = &w;
        QFileOpenEvent ev(photoB);
        QVERIFY(QCoreApplication::sendEvent(theApp(), &ev));
        QCOMPARE(w.windowFilePath(), photoB);
        QVERIFY(theApp()->pendingFiles.isEmpty());

        // Posted events take the same road once delivered.
        QCoreApplication::postEvent(theApp(), new QFileOpenEvent(photoC));
        QCoreApplication::processEvents();
        QCOMPARE(w.windowFilePath(), photoC);
        QVERIFY(theApp()->pendingFiles.isEmpty());
        resetApp();
    }

    void pluginModeQueuesInsteadOfOpening()
    {
        resetApp();
        MainWindow w(AppTheme::styleSheet());
        theApp()->mainWindow = &w;
        QVERIFY(w.loadFile(photoA));
        w.pluginMode = true;
        QFileOpenEvent ev(photoB);
        QVERIFY(QCoreApplication::sendEvent(theApp(), &ev)); // handled, even though only queued
        QCOMPARE(theApp()->pendingFiles, QStringList({photoB}));
        QCOMPARE(w.windowFilePath(), photoA);
        resetApp();
    }

    void otherEventsAreNotSwallowed()
    {
        // A type nobody handles: the base class declines it, so must we.
        QEvent ev(QEvent::Type(999));
        QVERIFY(!QCoreApplication::sendEvent(theApp(), &ev));
        QVERIFY(theApp()->pendingFiles.isEmpty());
    }

    void paletteCarriesTheFiveThemeColours()
    {
        const QPalette p = AppTheme::buildPalette(QPalette(Qt::white));
        for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive}) {
            QCOMPARE(p.color(g, QPalette::Window), rgb(60));
            QCOMPARE(p.color(g, QPalette::Base), rgb(70));          // (60 + 80) / 2
            QCOMPARE(p.color(g, QPalette::AlternateBase), rgb(64)); // 40 * 0.2 + 70 * 0.8
            QCOMPARE(p.color(g, QPalette::Highlight), rgb(100));
            for (QPalette::ColorRole r : {QPalette::WindowText, QPalette::Text, QPalette::Link, QPalette::LinkVisited,
                                          QPalette::BrightText, QPalette::HighlightedText})
                QCOMPARE(p.color(g, r), rgb(0));
        }
        QCOMPARE(p.color(QPalette::Disabled, QPalette::Text), rgb(40));
        QCOMPARE(p.color(QPalette::Disabled, QPalette::Window), rgb(60));

        // The bevel roles form one grey ramp from light down to dark.
        const QPalette::ColorRole ramp[] = {QPalette::Light, QPalette::Midlight, QPalette::Button, QPalette::Mid,
                                            QPalette::Dark, QPalette::Shadow};
        QCOMPARE(p.color(QPalette::Active, QPalette::Light), rgb(80));
        QCOMPARE(p.color(QPalette::Active, QPalette::Dark), rgb(40));
        for (int i = 0; i < 6; ++i) {
            const QColor c = p.color(QPalette::Active, ramp[i]);
            QVERIFY(c.red() == c.green() && c.green() == c.blue());
            QVERIFY(c.red() >= 40 && c.red() <= 80);
            if (i > 0)
                QVERIFY(c.red() <= p.color(QPalette::Active, ramp[i - 1]).red());
        }

        const AppThemeColors& t = AppTheme::colors();
        QCOMPARE(t.base, rgb(70));
        QCOMPARE(t.alternate, rgb(64));
    }

    void paletteSurvivesSwitchingToFusion()
    {
        // main() sets the palette before the style; the style must not replace it.
        QApplication::setPalette(AppTheme::buildPalette(QGuiApplication::palette()));
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
        QCOMPARE(QApplication::palette().color(QPalette::Window), rgb(60));
        QCOMPARE(QApplication::palette().color(QPalette::AlternateBase), rgb(64));
        QCOMPARE(QApplication::palette().color(QPalette::Disabled, QPalette::Text), rgb(40));
    }

    void bundledFontsRegisterTheVeraFamily()
    {
        QVERIFY(AppStartup::loadFonts());
        QFontDatabase db;
        QVERIFY(db.families().contains(QStringLiteral("Bitstream Vera Sans")));
        QVERIFY(db.bold(QStringLiteral("Bitstream Vera Sans"), QStringLiteral("Bold")));
    }

    void pluginFolderBesideTheProgramJoinsTheLibraryPaths()
    {
        QTemporaryDir root;
        QVERIFY(QDir(root.path()).mkpath("bin"));
        const QString bin = root.filePath("bin");
        const QStringList before = QCoreApplication::libraryPaths();
        QVERIFY(!AppStartup::addPluginLibraryPath(bin));
        QCOMPARE(QCoreApplication::libraryPaths(), before);

        QVERIFY(QDir(root.path()).mkpath("PlugIns"));
        QVERIFY(AppStartup::addPluginLibraryPath(bin));
        const QString plugins = QDir(root.filePath("PlugIns")).canonicalPath();
        QVERIFY(QCoreApplication::libraryPaths().contains(plugins));
        QCoreApplication::removeLibraryPath(plugins);
    }

    void welcomeCardShowsUntilClosedThenTheWindowAppears()
    {
        resetApp();
        MainWindow w(AppTheme::styleSheet());
        w.hide();
        QCOMPARE(w.windowTitle(), QStringLiteral("Vantrel Photo"));
        MVStartupWindow* card = shownStartupWindow();
        QVERIFY(card != nullptr);
        QVERIFY(card->windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(card->size(), QSize(640, 400));
        QCOMPARE(card->minimumSize(), card->maximumSize());
        QCOMPARE(card->loadButton->geometry(), QRect(304, 296, 240, 48));
        QVERIFY(!w.isVisible());

        QPointer<MVStartupWindow> guard(card);
        card->reject();
        QVERIFY(w.isVisible());
        QTRY_VERIFY(guard.isNull()); // the card deletes itself once closed
    }

    void loadButtonTurnsAmberUnderTheMouse()
    {
        MainWindow w(AppTheme::styleSheet());
        MVStartupWindow* card = shownStartupWindow();
        QVERIFY(card != nullptr);
        // A point inside the button but clear of its glyph and label.
        const QPoint probe(MVStartupWindow::buttonX + 14, MVStartupWindow::buttonY + 24);
        const QColor normal = card->grab().toImage().pixelColor(probe);
        QVERIFY(normal.red() == normal.green() && normal.green() == normal.blue());
        QVERIFY(normal.red() > 40 && normal.red() < 80);

        QVERIFY(QTest::qWaitForWindowExposed(card));
        QTest::mouseMove(card->loadButton, QPoint(20, 20));
        QTRY_VERIFY(card->loadButton->underMouse());
        const QImage hovered = card->grab().toImage();
        const QColor hot = hovered.pixelColor(probe);
        QVERIFY2(hot.red() > 200 && hot.red() > hot.green() && hot.green() > hot.blue(),
                 qPrintable(hot.name()));
        // The art around the button is the card's own background, not the button's.
        QCOMPARE(hovered.pixelColor(MVStartupWindow::buttonX - 20, MVStartupWindow::buttonY + 24),
                 card->grab().toImage().pixelColor(MVStartupWindow::buttonX - 20, MVStartupWindow::buttonY + 24));
    }

    void loadingAPhotoDismissesTheCard()
    {
        MainWindow w(AppTheme::styleSheet());
        w.hide();
        QVERIFY(shownStartupWindow() != nullptr);
        QVERIFY(!w.loadFile(notAnImage)); // undecodable: nothing changes
        QVERIFY(w.windowFilePath().isEmpty());
        QVERIFY(shownStartupWindow() != nullptr);
        QVERIFY(w.loadFile(photoA));
        QVERIFY(shownStartupWindow() == nullptr);
        QVERIFY(w.isVisible());
    }

    void welcomeArtIsBundledAtBothDensities()
    {
        const struct { const char* name; QSize size; } art[] = {
            {":/img/vn_photo_startup", {640, 400}},
            {":/img/startup_loadphoto", {240, 48}},
            {":/img/startup_loadphoto_high", {240, 48}},
        };
        for (const auto& a : art) {
            const QString base = QString::fromLatin1(a.name);
            QCOMPARE(QImage(base + ".png").size(), a.size);
            QCOMPARE(QImage(base + "@2x.png").size(), a.size * 2);
        }
    }
};

// The application object under test must be the one the program uses, so this main() is
// QTEST_MAIN with CustomApplication in place of QApplication.
int main(int argc, char** argv)
{
    CustomApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    CustomApplicationTest tc;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&tc, argc, argv);
}

#include "CustomApplicationTest.moc"
