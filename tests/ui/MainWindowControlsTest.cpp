// The control column inside the main window: placed above the tray, one undo step per drag,
// values reaching the viewer's clones, right-click reset, Copy Curve / Paste Curve through the
// dispatch, and autohide by the cursor's height.
#include "ResourceInit.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ModCatalogue.h"
#include "document/MVMediaWidget.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "mods/ImageModTextOverlay.h"
#include "ui/AppTheme.h"
#include "ui/MVControlColumn.h"
#include "ui/MVSlider.h"
#include "ui/MVStringInputBox.h"
#include "ui/MainWindow.h"
#include "ui/ToneCurveWidget.h"
#include "ui/TrayWidget.h"

#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QGraphicsOpacityEffect>
#include <QtWidgets/QPushButton>

namespace {

void moveTo(QWidget* w, QPoint p)
{
    QMouseEvent ev(QEvent::MouseMove, p, w->mapToGlobal(p), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(w, &ev);
}

// The Amount of the viewer's private clone of the first tile.
float viewerAmount(MVMediaWidget* v)
{
    std::lock_guard<std::mutex> lock(v->stateMutex);
    return v->mods.empty() ? -1.0f : v->mods.front()->floatValue(0);
}

// A left drag along a slider through fractions of its track; the release is at the last one.
void dragSlider(MVSlider* s, std::initializer_list<float> fractions)
{
    const float left = s->getTrackLeft(), right = s->getTrackRight();
    auto at = [&](float t) { return QPoint(int(left + 1.0f + t * (right - left)), 11); };
    QTest::mousePress(s, Qt::LeftButton, Qt::NoModifier, at(*fractions.begin()));
    for (auto t = fractions.begin() + 1; t != fractions.end(); ++t)
        moveTo(s, at(*t));
    QTest::mouseRelease(s, Qt::LeftButton, Qt::NoModifier, at(*(fractions.end() - 1)));
}

struct ShownWindow : MainWindow {
    ShownWindow() : MainWindow(AppTheme::styleSheet())
    {
        resize(1200, 800);
        show();
    }
};

void hover(MainWindow& w, QPoint inCentral)
{
    const QPoint p = w.centralWidget()->mapTo(&w, inCentral);
    QHoverEvent ev(QEvent::HoverMove, p, p);
    QApplication::sendEvent(&w, &ev);
}

} // namespace

class MainWindowControlsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        vantrelInitResources();
        catalogue = buildModCatalogue();
    }

    void columnSitsAboveTheTray()
    {
        ShownWindow w;
        std::unique_ptr<ImageMod> curves = createMod(catalogue.mods, "Curves");
        QVERIFY(curves);
        w.showControlsFor(curves.get());
        MVControlColumn* column = w.controlColumn;
        QVERIFY(column && !column->isHidden());
        QCOMPARE(w.panelControls.size(), size_t(2));
        QCOMPARE(column->geometry().bottom() + 1, w.trayArea->geometry().top() - 50);
        QCOMPARE(column->geometry().left(), w.documentArea().left() + MVControlColumn::sideInset);
        QCOMPARE(column->height(), column->naturalHeight());

        // Without the tray it keeps 2 pixels above the area's bottom.
        QVERIFY(w.triggerActionByText(QStringLiteral("Show/Hide Tray")));
        QCOMPARE(column->geometry().bottom() + 1, w.documentArea().bottom() + 1 - 2);
        QVERIFY(w.triggerActionByText(QStringLiteral("Show/Hide Tray")));
        QCOMPARE(column->geometry().bottom() + 1, w.trayArea->geometry().top() - 50);
        // A short window cuts the column at the top of the area.
        w.resize(1200, 420);
        QCOMPARE(column->geometry().top(), w.documentArea().top() + 2);
        QVERIFY(column->height() < column->naturalHeight());

        w.showControlsFor(nullptr);
        QVERIFY(column->isHidden());
        QVERIFY(w.panelControls.empty());
    }

    void dragIsOneUndoStepAndReachesTheViewer()
    {
        ShownWindow w;
        std::unique_ptr<ImageMod> curves = createMod(catalogue.mods, "Curves");
        MVMediaWidget* viewer = w.currentViewer();
        viewer->setMods({curves.get()});
        w.showControlsFor(curves.get());
        auto* slider = qobject_cast<MVSlider*>(w.controlColumn->controlForVariable(0));
        QVERIFY(slider);
        const QString titleBefore = w.windowTitle();

        dragSlider(slider, {0.8f, 0.5f, 0.0f});
        QCOMPARE(w.adjustUndoRequests, 1);
        QCOMPARE(curves->floatValue(0), 0.0f);
        // The viewer works on its own clone, which got the value of the last change.
        QCOMPARE(viewerAmount(viewer), 0.0f);
        QVERIFY(viewer->mods.front().get() != curves.get());
        QCOMPARE(w.windowTitle(), titleBefore);

        // Right press on the slider puts the default back, as one more undo step.
        QTest::mousePress(slider, Qt::RightButton, Qt::NoModifier, QPoint(20, 11));
        QTest::mouseRelease(slider, Qt::RightButton, Qt::NoModifier, QPoint(20, 11));
        QCOMPARE(curves->floatValue(0), 1.0f);
        QCOMPARE(slider->value(), 1.0f);
        QCOMPARE(viewerAmount(viewer), 1.0f);
        QCOMPARE(w.adjustUndoRequests, 2);
        w.showControlsFor(nullptr);
    }

    // A text tile's words are a text field; its family a button naming it. A pick is one undo
    // step, and becomes the family of later text tiles and the "LastFont" preference.
    void pickingAFontIsRemembered()
    {
        ShownWindow w;
        std::unique_ptr<ImageMod> text = createMod(catalogue.mods, "Text Overlay");
        auto* overlay = dynamic_cast<ImageModTextOverlay*>(text.get());
        QVERIFY(overlay);
        w.currentViewer()->setMods({text.get()});
        w.showControlsFor(text.get());
        QVERIFY(qobject_cast<MVStringInputBox*>(w.controlColumn->controlForVariable(ImageModTextOverlay::textIndex)));
        auto* fontButton = qobject_cast<QPushButton*>(w.controlColumn->controlForVariable(ImageModTextOverlay::fontIndex));
        QVERIFY(fontButton);
        const QString before = QString::fromStdString(overlay->fontFamily());
        QCOMPARE(fontButton->text(), before);
        const QString picked = before == QLatin1String("DejaVu Serif") ? QStringLiteral("DejaVu Sans") : QStringLiteral("DejaVu Serif");

        // Cancelled: nothing moves.
        QString offered;
        w.controlColumn->chooseFontHook = [&](const QString& current, QString&) {
            offered = current;
            return false;
        };
        QTest::mouseClick(fontButton, Qt::LeftButton);
        QCOMPARE(offered, before);
        QCOMPARE(w.adjustUndoRequests, 0);
        QCOMPARE(QString::fromStdString(overlay->fontFamily()), before);

        w.controlColumn->chooseFontHook = [&](const QString&, QString& chosen) {
            chosen = picked;
            return true;
        };
        QTest::mouseClick(fontButton, Qt::LeftButton);
        QCOMPARE(QString::fromStdString(overlay->fontFamily()), picked);
        QCOMPARE(fontButton->text(), picked);
        QCOMPARE(w.adjustUndoRequests, 1);
        QCOMPARE(QString::fromStdString(MultiData::global().getString(PrefKeys::kLastFont, "")), picked);
        ImageModTextOverlay fresh;
        QCOMPARE(QString::fromStdString(fresh.fontFamily()), picked);
        // The viewer's clone draws with it.
        {
            std::lock_guard<std::mutex> lock(w.currentViewer()->stateMutex);
            auto* clone = dynamic_cast<ImageModTextOverlay*>(w.currentViewer()->mods.front().get());
            QVERIFY(clone);
            QCOMPARE(QString::fromStdString(clone->fontFamily()), picked);
        }
        w.showControlsFor(nullptr);
        ImageModTextOverlay::setDefaultFontFamily(before.toStdString());
    }

    void trayTileDragIsOneUndoStep()
    {
        ShownWindow w;
        TrayWidget* tray = w.currentTray();
        QVERIFY(tray);
        std::unique_ptr<ImageMod> curves = createMod(catalogue.mods, "Curves");
        const int index = tray->addMod(*curves);
        QVERIFY(index >= 0);
        ImageMod* tile = tray->modAt(index);
        tray->setSelected(index);
        w.traySelectionChanged();
        QCOMPARE(w.controlledMod, tile);
        auto* slider = qobject_cast<MVSlider*>(w.controlColumn->controlForVariable(0));
        QVERIFY(slider);

        dragSlider(slider, {0.5f, 0.25f, -0.5f}); // ends past the track's left end
        QCOMPARE(tile->floatValue(0), 0.0f);
        QVERIFY(tray->modified);
        // The viewer runs the tray's list, with the tile's new value.
        MVMediaWidget* viewer = w.currentViewer();
        {
            std::lock_guard<std::mutex> lock(viewer->stateMutex);
            QCOMPARE(viewer->mods.size(), tray->flatModList(true).size());
            QCOMPARE(viewer->mods.back()->name, std::string("Curves"));
            QCOMPARE(viewer->mods.back()->floatValue(0), 0.0f);
        }

        // One drag, one undo: the value before the drag comes back, and the rebuilt column shows it.
        QVERIFY(w.triggerActionByText(QStringLiteral("Undo")));
        QCOMPARE(tray->modAt(index)->floatValue(0), 1.0f);
        auto* after = qobject_cast<MVSlider*>(w.controlColumn->controlForVariable(0));
        QVERIFY(after);
        QCOMPARE(after->value(), 1.0f);
        QVERIFY(w.triggerActionByText(QStringLiteral("Redo")));
        QCOMPARE(tray->modAt(index)->floatValue(0), 0.0f);
    }

    void curveCopyAndPasteThroughTheDispatch()
    {
        MainWindow w(AppTheme::styleSheet());
        w.resize(1200, 800);
        std::unique_ptr<ImageMod> a = createMod(catalogue.mods, "Curves");
        std::unique_ptr<ImageMod> b = createMod(catalogue.mods, "Curves");
        a->variableAt(1)->asCurve()->curve.setFromString("0 0.1 0.3 0.2 0.7 0.9 1 0.95");
        w.showControlsFor(a.get());
        QWidget* curveA = w.controlColumn->controlForVariable(1);
        QVERIFY(w.controlColumn->isCurveControl(curveA));
        QVERIFY(w.copyCurveAction && w.pasteCurveAction);
        QCOMPARE(w.copyCurveAction->text(), QStringLiteral("Copy Curve"));
        QCOMPARE(w.pasteCurveAction->text(), QStringLiteral("Paste Curve"));
        w.curveMenuControl = curveA;
        w.menuTriggered(w.copyCurveAction);

        w.showControlsFor(b.get());
        QVERIFY(w.curveMenuControl.isNull()); // a rebuilt column forgets the old control
        w.curveMenuControl = w.controlColumn->controlForVariable(1);
        const int before = w.adjustUndoRequests;
        w.menuTriggered(w.pasteCurveAction);
        QCOMPARE(w.adjustUndoRequests, before + 1);
        QVERIFY(b->variableAt(1)->isEqual(*a->variableAt(1)));
        QCOMPARE(b->curveAt(1)->pointCount(), 4);
        w.showControlsFor(nullptr);
    }

    void autohideFollowsTheCursorHeight()
    {
        ShownWindow w;
        std::unique_ptr<ImageMod> tone = createMod(catalogue.mods, "Split Tone");
        QVERIFY(tone);
        w.showControlsFor(tone.get());
        MVControlColumn* column = w.controlColumn;
        const int top = column->geometry().top();
        const int x = column->geometry().center().x();

        // A button held down (a drag elsewhere) leaves the column alone.
        QTest::mousePress(w.centralWidget(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QVERIFY(w.triggerActionByText(QStringLiteral("Autohide Controls")));
        hover(w, QPoint(x, top - 200));
        QVERIFY(!w.nodeControlAnimationTimer->isActive());
        QTest::mouseRelease(w.centralWidget(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QVERIFY(w.triggerActionByText(QStringLiteral("Autohide Controls")));
        QVERIFY(QTest::qWaitFor([&] { return !w.nodeControlAnimationTimer->isActive(); }, 2000));

        // Off: the cursor's height changes nothing.
        hover(w, QPoint(x, top - 200));
        QVERIFY(!w.nodeControlAnimationTimer->isActive());
        QVERIFY(!column->isHidden());

        QVERIFY(w.triggerActionByText(QStringLiteral("Autohide Controls")));
        QVERIFY(w.actionByText(QStringLiteral("Autohide Controls"))->isChecked());
        hover(w, QPoint(x, top - 200));
        QVERIFY(QTest::qWaitFor([&] { return column->isHidden(); }, 2000));
        QCOMPARE(w.controlsOpacity->opacity(), 0.0);
        // Over the panel the column stays as it is.
        hover(w, QPoint(w.centralWidget()->width() - 20, top + 10));
        QVERIFY(column->isHidden());
        // Coming down towards the controls brings them back, fading in.
        hover(w, QPoint(x, top - 10));
        QVERIFY(!column->isHidden());
        QVERIFY(w.controlsOpacity->opacity() < 1.0);
        QVERIFY(QTest::qWaitFor([&] { return !w.nodeControlAnimationTimer->isActive(); }, 2000));
        QCOMPARE(w.controlsOpacity->opacity(), 1.0);

        // Turning autohide off while hidden shows the controls again.
        hover(w, QPoint(x, top - 300));
        QVERIFY(QTest::qWaitFor([&] { return column->isHidden(); }, 2000));
        QVERIFY(w.triggerActionByText(QStringLiteral("Autohide Controls")));
        QVERIFY(QTest::qWaitFor([&] { return !column->isHidden() && w.controlsOpacity->opacity() == 1.0; }, 2000));
        w.showControlsFor(nullptr);
    }

private:
    ModCatalogueContents catalogue;
};

QTEST_MAIN(MainWindowControlsTest)
#include "MainWindowControlsTest.moc"
