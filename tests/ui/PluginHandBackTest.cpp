// The hand-back to a host program: the two lines on standard output, the one filter file in the
// caches folder, the command line that switches the mode on.
#include "ResourceInit.h"
#include "core/ModCatalogue.h"
#include "filters/FilterFile.h"
#include "filters/MultiData.h"
#include "ui/AppStartup.h"
#include "ui/AppTheme.h"
#include "ui/MainWindow.h"
#include "ui/TrayWidget.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QPushButton>

#include <cstdio>
#include <memory>

namespace {

// Collects what the window writes to its hand-back stream.
class CapturedOutput {
public:
    CapturedOutput() : file(std::tmpfile()) {}
    ~CapturedOutput()
    {
        if (file)
            std::fclose(file);
    }
    QStringList lines() const
    {
        std::rewind(file);
        QByteArray all;
        char buffer[512];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0)
            all.append(buffer, int(n));
        std::fseek(file, 0, SEEK_END);
        QStringList result = QString::fromUtf8(all).split(QLatin1Char('\n'));
        if (!all.endsWith('\n'))
            result << QStringLiteral("<no newline>");
        result.removeLast();
        return result;
    }
    FILE* file;
};

} // namespace

class PluginHandBackTest : public QObject
{
    Q_OBJECT

    ModCatalogueContents catalogue;
    QTemporaryDir cache;

    std::unique_ptr<ImageMod> tile(const char* name, float amount)
    {
        std::unique_ptr<ImageMod> m = createMod(catalogue.mods, name);
        if (m && m->variableCount() > 0)
            m->variableAt(0)->setFloatValue(amount);
        return m;
    }

    static QString expectedPath() { return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)) + QStringLiteral("/pluginreturnfilter.vnf"); }

private slots:
    void initTestCase()
    {
        // A private caches folder, so the test never touches the user's.
        qputenv("XDG_CACHE_HOME", cache.path().toUtf8());
        vantrelInitResources();
        catalogue = buildModCatalogue();
        MultiData::global().clear();
    }

    void theFileLivesInTheCachesFolderItself()
    {
        QCOMPARE(MainWindow::pluginReturnFilterPath(), cache.path() + QStringLiteral("/pluginreturnfilter.vnf"));
    }

    void anEmptyTrayClearsTheHostsFilterAndWritesNoFile()
    {
        QFile::remove(expectedPath());
        MainWindow w(AppTheme::styleSheet());
        CapturedOutput out;
        w.pluginOutput = out.file;
        w.sendToPluginHost();
        QCOMPARE(out.lines(), QStringList{QStringLiteral("pluginreturn -clearmods -id NULLID")});
        QVERIFY(!QFile::exists(expectedPath()));
    }

    void tilesAreWrittenToTheOneFileAndNamedWithItsPath()
    {
        MainWindow w(AppTheme::styleSheet());
        CapturedOutput out;
        w.pluginOutput = out.file;
        TrayWidget* tray = w.currentTray();
        QVERIFY(tray);
        auto blur = tile("Blur", 12.0f);
        QVERIFY(blur && tray->addMod(*blur) >= 0);
        w.sendToPluginHost();
        // A second hand-back overwrites the first. Disabled tiles are still tiles: the host gets a
        // filter, not a clear.
        tray->clearTray(false);
        auto exposure = tile("Exposure", 0.3f);
        auto tint = tile("Tint", 40.0f);
        QVERIFY(exposure && tint);
        QVERIFY(tray->addMod(*exposure) >= 0);
        QVERIFY(tray->addMod(*tint) >= 0);
        for (int i = 0; i < tray->tileCount(); ++i)
            tray->modAt(i)->enabled = false;
        w.sendToPluginHost();
        const QString line = QStringLiteral("pluginreturn -filter ") + expectedPath() + QStringLiteral(" -id NULLID");
        QCOMPARE(out.lines(), (QStringList{line, line}));
        int32_t status = -1;
        ModList read = readFilter(expectedPath().toStdString(), catalogue.mods, status);
        QCOMPARE(status, int32_t(kFilterReadOk));
        QCOMPARE(read.size(), size_t(2));
        QCOMPARE(QString::fromStdString(read[0]->name), QString::fromStdString(tray->modAt(0)->name));
        QVERIFY(!read[0]->enabled);
        QCOMPARE(QDir(cache.path()).entryList(QStringList{QStringLiteral("*.vnf")}, QDir::Files).size(), 1);

        // Emptied again, the host is told to clear; the old file stays for nobody to read.
        tray->clearTray(false);
        w.sendToPluginHost();
        QCOMPARE(out.lines().last(), QStringLiteral("pluginreturn -clearmods -id NULLID"));
    }

    void pluginModeTakesTheSaveKeysAndTheHostsId()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(!w.pluginMode);
        QVERIFY(w.actionByText(QStringLiteral("Send To Premiere")) == nullptr);
        QVERIFY(w.sendToPluginButton->isHidden());
        w.setPluginMode(QStringLiteral("req-42"));
        QVERIFY(w.pluginMode);
        QAction* send = w.actionByText(QStringLiteral("Send To Premiere"));
        QVERIFY(send);
        QCOMPARE(send->shortcuts(), (QList<QKeySequence>{QKeySequence(QStringLiteral("s")),
                                                         QKeySequence(QStringLiteral("Ctrl+s"))}));
        QVERIFY(w.actionByText(QStringLiteral("Save Over Original"))->shortcuts().isEmpty());
        QCOMPARE(w.sendToPluginButton->text(), QStringLiteral("Send To Premiere"));
        QVERIFY(!w.sendToPluginButton->isHidden());

        CapturedOutput out;
        w.pluginOutput = out.file;
        QTest::mouseClick(w.sendToPluginButton, Qt::LeftButton); // released() is the button's signal
        QVERIFY(w.triggerActionByText(QStringLiteral("Send To Premiere")));
        QCOMPARE(out.lines(), (QStringList{QStringLiteral("pluginreturn -clearmods -id req-42"),
                                           QStringLiteral("pluginreturn -clearmods -id req-42")}));
    }

    void theCommandLineSwitchesTheModeOn()
    {
        char prog[] = "vantrel", flag[] = "--plugin-id", id[] = "abc 1", photo[] = "/tmp/photo.jpg";
        char* withBoth[] = {prog, flag, id, photo, nullptr};
        bool present = false;
        QCOMPARE(AppStartup::pickPluginID(4, withBoth, &present), QStringLiteral("abc 1"));
        QVERIFY(present);
        QCOMPARE(AppStartup::pickStartupFile({}, 4, withBoth), QByteArray("/tmp/photo.jpg"));
        char* photoFirst[] = {prog, photo, flag, id, nullptr};
        QCOMPARE(AppStartup::pickStartupFile({}, 4, photoFirst), QByteArray("/tmp/photo.jpg"));
        QCOMPARE(AppStartup::pickPluginID(4, photoFirst), QStringLiteral("abc 1"));
        char* bare[] = {prog, flag, nullptr};
        QCOMPARE(AppStartup::pickPluginID(2, bare, &present), QStringLiteral("NULLID"));
        QVERIFY(present);
        QVERIFY(AppStartup::pickStartupFile({}, 2, bare).isEmpty()); // the flag is never a file
        char* none[] = {prog, photo, nullptr};
        QVERIFY(AppStartup::pickPluginID(2, none, &present).isEmpty());
        QVERIFY(!present);
    }
};

QTEST_MAIN(PluginHandBackTest)
#include "PluginHandBackTest.moc"
