// The guide that ships inside the program: every Help entry lands on a section that exists, and
// the guide's shortcut table keeps up with the menus.
#include "ResourceInit.h"
#include "ui/AppTheme.h"
#include "ui/MVHelpWindow.h"
#include "ui/MainWindow.h"

#include <QtCore/QFile>
#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTextBrowser>

class MVHelpWindowTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { vantrelInitResources(); }

    void everyHelpEntryOpensAnExistingSection()
    {
        QFile page(QStringLiteral(":/guide/user-guide.html"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(page.readAll());
        MainWindow w(AppTheme::styleSheet());
        QMenu* help = nullptr;
        for (QAction* a : w.menuBar()->actions())
            if (a->text() == QLatin1String("Help "))
                help = a->menu();
        QVERIFY(help);
        int entries = 0;
        for (QAction* a : help->actions()) {
            if (a->isSeparator() || a->text() == QLatin1String("About"))
                continue;
            const QString anchor = MainWindow::helpPageAnchor(a->text());
            QVERIFY2(html.contains(QStringLiteral("<a name=\"%1\"").arg(anchor)), qPrintable(a->text() + " -> " + anchor));
            ++entries;
        }
        QCOMPARE(entries, 5);
    }

    void sectionScrollsTheGuide()
    {
        MVHelpWindow window;
        window.resize(600, 400);
        window.showSection(QStringLiteral("start"));
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.browser()->document()->toPlainText().contains(QStringLiteral("Keyboard shortcuts")));
        const int top = window.browser()->verticalScrollBar()->value();
        QVERIFY(top < 20);
        // Reporting a problem is near the end of a long page.
        window.showSection(QStringLiteral("feedback"));
        QVERIFY(window.browser()->verticalScrollBar()->value() > top + 1000);
    }

    void shortcutTableNamesEveryMenuShortcut()
    {
        QFile page(QStringLiteral(":/guide/user-guide.html"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        QTextDocument doc;
        doc.setHtml(QString::fromUtf8(page.readAll()));
        const QString text = doc.toPlainText();
        const QString table = text.mid(text.indexOf(QStringLiteral("Keys")));
        MainWindow w(AppTheme::styleSheet());
        for (QAction* a : w.findChildren<QAction*>()) {
            if (a->shortcuts().isEmpty() || a->menu())
                continue;
            // Window-only actions are listed under the entry they stand for.
            if (a->text() == QLatin1String("Left Pressed") || a->text() == QLatin1String("Right Pressed") ||
                a->text() == QLatin1String("Quicklook Presets (Append)"))
                continue;
            QString name = a->text();
            if (name.endsWith(QLatin1String(" Histogram")) || name.endsWith(QLatin1String(" Waveform")) ||
                name == QLatin1String("Chrominance Chart"))
                name = QStringLiteral("histograms, waveforms");
            QVERIFY2(table.contains(name.section(QLatin1Char(' '), 0, 1)), qPrintable(a->text()));
        }
    }
};

QTEST_MAIN(MVHelpWindowTest)
#include "MVHelpWindowTest.moc"
