// The main window's side of the tray: a tray per tab, filter files in and out (a damaged file
// keeps what could be read), presets, remix as one undo step, the menu's undo, deleting tiles.
#include "ResourceInit.h"
#include "TestMods.h"
#include "filters/FilterFile.h"
#include "ui/AppTheme.h"
#include "ui/MainWindow.h"
#include "ui/TrayNode.h"
#include "ui/TrayNodeLabel.h"
#include "ui/TrayWidget.h"

#include <QtCore/QMimeData>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>
#include <QtTest/QtTest>

namespace {

// Drops reach the window only through a running drag; the test hands them over directly.
class DropWindow : public MainWindow {
public:
    using MainWindow::MainWindow;
    using MainWindow::dropEvent;
};

// A window whose dialogs are answered by the test.
struct Window {
    DropWindow w{AppTheme::styleSheet()};
    QStringList titles, texts;
    int answer = 0;
    QString text;
    QString file;

    explicit Window(std::initializer_list<const char*> tiles = {})
    {
        w.resize(1200, 800);
        w.show();
        if (!QTest::qWaitForWindowExposed(&w))
            qWarning("window not exposed");
        w.messageHook = [this](const QString& t, const QString& x, const QStringList&) {
            titles << t;
            texts << x;
            return answer;
        };
        w.askTextHook = [this](const QString& t, const QString&, const QString&, const QString&, const QString&,
                               const QString&, QString& out) {
            titles << t;
            out = text;
            return true;
        };
        w.fileDialogHook = [this](bool, const QString&, const QString&, const QString&) { return file; };
        addTiles(tray(), tiles);
    }
    TrayWidget& tray() { return *w.currentTray(); }
};

} // namespace

class MainWindowTrayTest : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

    QString writeLook(const char* fileName, std::initializer_list<const char*> mods, float firstValue)
    {
        ModList list;
        for (const char* m : mods)
            list.push_back(make(m));
        list[0]->variables[0]->setFloatValue(firstValue);
        const QString path = dir.path() + QLatin1Char('/') + QLatin1String(fileName);
        if (!writeFilter(list, path.toStdString()))
            qFatal("could not write %s", qPrintable(path));
        return path;
    }

    QString writeFile(const char* fileName, const QByteArray& bytes)
    {
        const QString path = dir.path() + QLatin1Char('/') + QLatin1String(fileName);
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            qFatal("could not write %s", qPrintable(path));
        return path;
    }

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        QVERIFY(dir.isValid());
        qputenv("XDG_DATA_HOME", (dir.path() + QStringLiteral("/data")).toUtf8());
    }

    void eachTabHasItsOwnTray()
    {
        Window win;
        TrayWidget* first = win.w.currentTray();
        QVERIFY(first);
        QCOMPARE(first->parentWidget(), win.w.trayArea);
        win.w.newTabButtonPressed();
        TrayWidget* second = win.w.currentTray();
        QVERIFY(second && second != first);
        QVERIFY(second->isVisibleTo(win.w.trayArea) && !first->isVisibleTo(win.w.trayArea));
        QCOMPARE(second->geometry(), win.w.trayArea->rect().adjusted(1, 1, -1, -1));
        QPointer<TrayWidget> gone = second;
        win.w.documentTabWantsClosing(win.w.documents[1].tabID);
        QVERIFY(gone.isNull());
        QCOMPARE(win.w.currentTray(), first);
    }

    void damagedFilterShowsTheMessageAndKeepsWhatCouldBeRead()
    {
        const QString good = writeLook("Warm_Matte.vnf", {"Brightness", "Contrast"}, 0.3f);
        QFile f(good);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QByteArray xml = f.readAll();
        f.close();
        QVERIFY(xml.contains("name=\"Contrast\""));
        xml.replace("name=\"Contrast\"", "name=\"No Such Tile\"");
        const QString damaged = writeFile("Damaged_Look.vnf", xml);

        Window win{"Saturation"};
        win.w.loadFilterSlot(damaged);
        QCOMPARE(names(win.tray()), QStringList({"Brightness"}));
        QCOMPARE(win.tray().modAt(0)->floatValue(0), 0.3f);
        QCOMPARE(win.titles, QStringList({"Filter Load Error"}));
        QCOMPARE(win.texts.first(), QStringLiteral("This filter may have loaded incorrectly. It may either be damaged or "
                                                   "have come from a newer version of Vantrel."));
        QCOMPARE(win.tray().filterName, QStringLiteral("Damaged Look"));
        // Loading is one undo step.
        win.w.triggerActionByText(QStringLiteral("Undo"));
        QCOMPARE(names(win.tray()), QStringList({"Saturation"}));

        // A file with nothing readable changes nothing but says so.
        win.w.loadFilterSlot(writeFile("junk.vnf", "not a filter"));
        QCOMPARE(names(win.tray()), QStringList({"Saturation"}));
        QCOMPARE(win.titles.size(), 2);
    }

    void loadingReplacesKeepingPinnedOrAppends()
    {
        const QString look = writeLook("Look.vnf", {"Brightness", "Custom Straight"}, 0.2f);
        Window win{"Saturation", "Dynamics"};
        win.tray().modAt(1)->pinned = true;
        win.w.loadFilterSlot(look, true);
        QCOMPARE(names(win.tray()), QStringList({"Dynamics", "Brightness", "Custom Straight"}));
        QVERIFY(win.titles.isEmpty());
        win.w.loadFilterSlot(look, false);
        // Borders hold one tag: the appended border replaces the first.
        QCOMPARE(names(win.tray()), QStringList({"Dynamics", "Brightness", "Brightness", "Custom Straight"}));
        // An empty name empties the tray, pinned tiles kept, and forgets the filter's name.
        win.w.loadFilterSlot(QString(), true);
        QCOMPARE(names(win.tray()), QStringList({"Dynamics"}));
        QVERIFY(win.tray().filterName.isEmpty());
    }

    void droppedFilterReplacesOrWithShiftAppends()
    {
        const QString look = writeLook("Drop.VNF", {"Contrast"}, 0.6f);
        Window win{"Saturation"};
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(look)});
        QDropEvent append(QPointF(50, 50), Qt::CopyAction, &mime, Qt::NoButton, Qt::ShiftModifier);
        win.w.dropEvent(&append);
        QCOMPARE(names(win.tray()), QStringList({"Saturation", "Contrast"}));
        QDropEvent replace(QPointF(50, 50), Qt::CopyAction, &mime, Qt::NoButton, Qt::NoModifier);
        win.w.dropEvent(&replace);
        QCOMPARE(names(win.tray()), QStringList({"Contrast"}));
        QCOMPARE(win.tray().modAt(0)->floatValue(0), 0.6f);
    }

    void exportedFilterLoadsBackEqual()
    {
        Window win{"Crop", "Brightness"};
        win.tray().modAt(1)->variables[0]->setFloatValue(0.45f);
        win.tray().modAt(1)->enabled = false;
        win.file = dir.path() + QStringLiteral("/exported"); // the extension is added
        QVERIFY(win.w.triggerActionByText(QStringLiteral("Export Filter...")));
        QVERIFY(QFile::exists(win.file + QStringLiteral(".vnf")));

        Window other;
        other.w.loadFilterSlot(win.file + QStringLiteral(".vnf"));
        QCOMPARE(other.tray().tileCount(), 2);
        for (int i = 0; i < 2; ++i)
            QVERIFY(other.tray().modAt(i)->isEqual(*win.tray().modAt(i)));
        QVERIFY(other.titles.isEmpty());

        // An empty tray writes nothing and says so.
        Window empty;
        empty.file = dir.path() + QStringLiteral("/nothing.vnf");
        empty.w.triggerActionByText(QStringLiteral("Export Filter..."));
        QVERIFY(!QFile::exists(empty.file));
        QCOMPARE(empty.titles, QStringList({"Export Filter"}));
    }

    void savingToPresetsAsksBeforeOverwriting()
    {
        Window win{"Brightness"};
        win.text = QStringLiteral("My Look");
        win.w.saveFavoriteFilterPrompt();
        const QString path = dir.path() + QStringLiteral("/data/com.vantrel.photo/Presets/My Presets/My Look.vnf");
        QVERIFY2(QFile::exists(path), qPrintable(path));
        QCOMPARE(win.titles, QStringList({"Choose Preset Name"}));
        QCOMPARE(win.tray().filterName, QStringLiteral("My Look"));

        win.tray().addMod(*make("Contrast"));
        win.answer = 1; // "Cancel"
        win.w.saveFavoriteFilterPrompt();
        QCOMPARE(win.titles.last(), QStringLiteral("Filter Overwrite Warning"));
        int32_t status = 0;
        QCOMPARE(int(readFilter(path.toStdString(), catalogue().mods, status).size()), 1);
        win.answer = 0; // "Overwrite"
        win.w.saveFavoriteFilterPrompt();
        QCOMPARE(int(readFilter(path.toStdString(), catalogue().mods, status).size()), 2);

        win.text = QString();
        win.w.saveFavoriteFilterPrompt();
        QCOMPARE(win.titles.last(), QStringLiteral("Name Filter"));
        QCOMPARE(win.texts.last(), QStringLiteral("No filter name was chosen"));
    }

    void remixIsOneUndoStep()
    {
        Window win{"Brightness"};
        win.w.triggerActionByText(QStringLiteral("Remix Up"));
        QCOMPARE(win.tray().undoStack()->undoCount(), 0); // nothing to remix

        win.tray().addMod(*make("Saloon"));
        win.tray().addMod(*make("Plastic"));
        ImageModVariable* a = win.tray().modAt(1)->variableNamed("Variation");
        ImageModVariable* b = win.tray().modAt(2)->variableNamed("Variation");
        QVERIFY(a && b);
        const float va = a->floatValue(), vb = b->floatValue();
        win.w.triggerActionByText(QStringLiteral("Remix Up"));
        QCOMPARE(win.tray().undoStack()->undoCount(), 1);
        QCOMPARE(win.tray().modAt(1)->variableNamed("Variation")->floatValue(), va + 10.0f);
        QCOMPARE(win.tray().modAt(2)->variableNamed("Variation")->floatValue(), vb + 10.0f);
        win.w.triggerActionByText(QStringLiteral("Undo"));
        QCOMPARE(win.tray().modAt(1)->variableNamed("Variation")->floatValue(), va);
        QCOMPARE(win.tray().modAt(2)->variableNamed("Variation")->floatValue(), vb);
        win.w.triggerActionByText(QStringLiteral("Redo"));
        win.w.triggerActionByText(QStringLiteral("Remix Down"));
        QCOMPARE(win.tray().modAt(1)->variableNamed("Variation")->floatValue(), va);
    }

    void deleteButtonSparesPinnedUntilTheSecondPress()
    {
        Window win{"Brightness", "Contrast"};
        win.tray().modAt(0)->pinned = true;
        win.w.deleteNodesButtonPressed();
        QCOMPARE(names(win.tray()), QStringList({"Brightness"}));
        win.w.deleteNodesButtonPressed();
        QCOMPARE(win.tray().tileCount(), 0);
        win.w.triggerActionByText(QStringLiteral("Undo"));
        QCOMPARE(names(win.tray()), QStringList({"Brightness"}));
    }

    void deleteKeyRemovesTheSelectedTiles()
    {
        Window win{"Brightness", "Contrast", "Saturation"};
        win.tray().setSelected(1);
        QTest::keyClick(&win.w, Qt::Key_Delete);
        QCOMPARE(names(win.tray()), QStringList({"Brightness", "Saturation"}));
        win.tray().setSelected(0);
        QTest::keyClick(&win.w, Qt::Key_Escape);
        QVERIFY(win.tray().selectedIndices().empty());
    }

    // The window's style sheet gives every widget white text; the names on the light tiles must
    // stay dark, and turn white only on the orange selected face.
    void tileNamesReadableInTheWindow()
    {
        Window win;
        const QString photo = QStringLiteral(VANTREL_TESTDATA "/olympus_em1_forest_1920x1080.jpg");
        if (QFile::exists(photo))
            QVERIFY(win.w.loadFile(photo));
        win.tray().addMod(*make("Vignette"));
        win.tray().addMod(*make("Brightness"));
        win.w.trayContentChanged();
        // Any later polish (a style sheet set anywhere above the tiles) must not change them.
        win.w.setStyleSheet(win.w.styleSheet());
        QTest::qWait(50);
        // Darkest and lightest pixel of the text: the label has no background of its own.
        auto inkRange = [](TrayNode* node) {
            const QImage img = node->grab().toImage();
            const QRect r = node->label()->geometry().intersected(img.rect());
            int darkest = 255, lightest = 0;
            for (int y = r.top(); y <= r.bottom(); ++y)
                for (int x = r.left(); x <= r.right(); ++x) {
                    const int v = qGray(img.pixel(x, y));
                    darkest = std::min(darkest, v);
                    lightest = std::max(lightest, v);
                }
            return std::pair<int, int>(darkest, lightest);
        };
        const auto plain = inkRange(win.tray().nodeAt(0));
        QVERIFY2(plain.first < 90, qPrintable(QStringLiteral("plain tile's darkest ink %1").arg(plain.first)));
        win.tray().setSelected(1);
        QTest::qWait(50);
        const auto chosen = inkRange(win.tray().nodeAt(1));
        QVERIFY2(chosen.second > 230, qPrintable(QStringLiteral("selected tile's lightest ink %1").arg(chosen.second)));
    }

    void nestFromTheMenuAsksForAName()
    {
        Window win{"Brightness", "Contrast"};
        win.tray().setSelected(0);
        win.text = QStringLiteral("Base");
        win.w.triggerActionByText(QStringLiteral("Nest Selected Tiles"));
        QCOMPARE(win.titles, QStringList({"Name Nested Tile"}));
        QCOMPARE(names(win.tray()), QStringList({"Base", "Contrast"}));
        win.w.triggerActionByText(QStringLiteral("Unnest Selected Tile"));
        QCOMPARE(names(win.tray()), QStringList({"Brightness", "Contrast"}));
        QCOMPARE(win.tray().undoStack()->undoCount(), 2);
    }
};

QTEST_MAIN(MainWindowTrayTest)
#include "MainWindowTrayTest.moc"
