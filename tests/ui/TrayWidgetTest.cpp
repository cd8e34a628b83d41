// The tray as a person uses it: tile order and positions, pressing, dragging within a group,
// the replacement rule of tags with pinned survivors, nesting and its refusals, copy and paste.
#include "ResourceInit.h"
#include "TestMods.h"
#include "core/ImageModCompound.h"
#include "ui/TrayNode.h"
#include "ui/TrayNodeLabel.h"
#include "ui/TrayWidget.h"

#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

namespace {

QList<int> xs(const TrayWidget& tray)
{
    QList<int> out;
    for (TrayNode* n : tray.tileNodes())
        out << n->x();
    return out;
}

void press(TrayNode* node, Qt::KeyboardModifiers mods = Qt::NoModifier, QPoint at = QPoint(40, 40))
{
    QTest::mousePress(node, Qt::LeftButton, mods, at);
}

void release(TrayNode* node, QPoint at = QPoint(40, 40))
{
    QTest::mouseRelease(node, Qt::LeftButton, Qt::NoModifier, at);
}

// A press and release in place: a click as the tray's own handlers see it.
void click(TrayNode* node, Qt::KeyboardModifiers mods = Qt::NoModifier)
{
    press(node, mods);
    release(node);
}

// A move with the left button held, delivered to the tile that holds the grab.
void moveHeld(TrayNode* node, QPoint at)
{
    QMouseEvent ev(QEvent::MouseMove, QPointF(at), node->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(node, &ev);
}

struct Words {
    QStringList titles, texts;
};

// A tray in a window, with its dialogs answered by the test.
struct Fixture {
    QWidget window;
    TrayWidget* tray;
    Words words;
    QString answer = QStringLiteral("Group");
    bool accept = true;

    Fixture(std::initializer_list<const char*> tiles = {})
    {
        window.resize(1400, 91);
        tray = new TrayWidget(&window);
        tray->setGeometry(0, 0, 1400, 91);
        tray->message = [this](const QString& t, const QString& x, const QStringList&) {
            words.titles << t;
            words.texts << x;
            return 0;
        };
        tray->askText = [this](const QString& t, const QString&, const QString&, const QString&, const QString&,
                               const QString&, QString& out) {
            words.titles << t;
            out = answer;
            return accept;
        };
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qWarning("tray window not exposed");
        addTiles(*tray, tiles);
    }
    void add(const char* name) { tray->addMod(*make(name)); }
};

} // namespace

class TrayWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { vantrelInitResources(); }
    void init() { TrayWidget::clipboard().clear(); }

    void tilesSortByGroupAndLayOutWithGapsAndTucks()
    {
        Fixture f;
        QCOMPARE(f.tray->contentWidth(), 100); // empty tray
        f.add("Custom Straight");
        f.add("Brightness");
        f.add("Crop");
        f.add("Contrast");
        QCOMPARE(names(*f.tray), QStringList({"Crop", "Brightness", "Contrast", "Custom Straight"}));
        // 18 to start, -2 overlap between tiles, +10 more where the group changes.
        QCOMPARE(xs(*f.tray), QList<int>({18, 118, 208, 308}));
        QCOMPARE(f.tray->contentWidth(), 308 + 92 + 20);

        // A mask tile is 99 wide and its right neighbour tucks 9 pixels under it.
        f.add("Luminance Mask");
        f.add("Saturation");
        QCOMPARE(names(*f.tray),
                 QStringList({"Crop", "Brightness", "Contrast", "Luminance Mask", "Saturation", "Custom Straight"}));
        const QList<int> x = xs(*f.tray);
        QCOMPARE(f.tray->nodeAt(3)->look(), TrayNode::LookSelector);
        QCOMPARE(f.tray->nodeAt(3)->width(), 99);
        QCOMPARE(x[4], x[3] + 99 - 9);
        QCOMPARE(x[5], x[4] + 92 - 2 + 10);

        // Removing keeps the order by group; the group gap follows.
        f.tray->removeModAt(0);
        QCOMPARE(names(*f.tray).first(), QStringLiteral("Brightness"));
        QCOMPARE(f.tray->nodeAt(0)->x(), 18);
    }

    void looksFollowTheKind()
    {
        Fixture f{"Brightness", "Saloon", "Luminance Mask"};
        auto group = std::make_unique<ImageModCompound>("Nest");
        f.tray->addMod(*group);
        QCOMPARE(f.tray->nodeAt(0)->look(), TrayNode::LookPlain);
        QCOMPARE(f.tray->nodeAt(1)->look(), TrayNode::LookCamera);
        QCOMPARE(f.tray->nodeAt(2)->look(), TrayNode::LookSelector);
        QCOMPARE(f.tray->nodeAt(3)->look(), TrayNode::LookCombo);
        QCOMPARE(f.tray->nodeAt(3)->width(), 100);
        for (TrayNode* n : f.tray->tileNodes())
            QCOMPARE(n->height(), 65);
        QCOMPARE(f.tray->nodeAt(0)->closeButton()->geometry(), QRect(7, 8, 13, 13));
    }

    void cropDraggedRightStopsLeftOfFirstCentralMiddle()
    {
        Fixture f{"Crop", "Brightness", "Contrast"};
        TrayNode* crop = f.tray->nodeAt(0);
        TrayNode* first = f.tray->nodeAt(1);
        press(crop);
        QCOMPARE(f.tray->draggedNode(), crop);
        moveHeld(crop, QPoint(40 + 1000, 40));
        QVERIFY(f.tray->isDragging());
        // Limit: the first central tile's x less half its width.
        QCOMPARE(crop->x(), first->x() - 46);
        QVERIFY(crop->x() + crop->width() / 2 < first->x() + first->width() / 2);
        release(crop);
        QCOMPARE(names(*f.tray), QStringList({"Crop", "Brightness", "Contrast"}));
        QCOMPARE(xs(*f.tray), QList<int>({18, 118, 208}));
        QCOMPARE(f.tray->undoStack()->undoCount(), 1);
    }

    void centralTileDraggedReordersWithinItsGroup()
    {
        Fixture f{"Crop", "Brightness", "Contrast", "Custom Straight"};
        QSignalSpy adjusted(f.tray, &TrayWidget::trayAdjusted);
        TrayNode* contrast = f.tray->nodeAt(2);
        press(contrast);
        moveHeld(contrast, QPoint(40 - 2000, 40)); // far left: stops right of the crop's middle
        QCOMPARE(contrast->x(), 18 + 46);
        release(contrast);
        QCOMPARE(names(*f.tray), QStringList({"Crop", "Contrast", "Brightness", "Custom Straight"}));
        QCOMPARE(adjusted.count(), 1);

        // A border dragged left can't pass the last central tile's middle.
        TrayNode* border = f.tray->nodeAt(3);
        TrayNode* lastCentral = f.tray->nodeAt(2);
        press(border);
        moveHeld(border, QPoint(40 - 2000, 40));
        QCOMPARE(border->x(), lastCentral->x() + 46);
        release(border);
        QCOMPARE(names(*f.tray).last(), QStringLiteral("Custom Straight"));
    }

    void moveOfEightPixelsOrLessIsNoDrag()
    {
        Fixture f{"Brightness", "Contrast"};
        TrayNode* n = f.tray->nodeAt(0);
        press(n);
        moveHeld(n, QPoint(48, 40));
        QVERIFY(!f.tray->isDragging());
        QCOMPARE(n->x(), 18);
        moveHeld(n, QPoint(49, 40));
        QVERIFY(f.tray->isDragging());
        QCOMPARE(n->x(), 27);
        release(n);
    }

    void pressReleaseOnSelectedTileDeselects()
    {
        Fixture f{"Brightness", "Contrast", "Saturation"};
        QSignalSpy sel(f.tray, &TrayWidget::selectionChanged);
        click(f.tray->nodeAt(1));
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({1}));
        click(f.tray->nodeAt(1));
        QVERIFY(f.tray->selectedIndices().empty());
        QCOMPARE(sel.count(), 3); // select, press again (re-select), deselect on release
        QVERIFY(f.tray->draggedNode() == nullptr);
        QCOMPARE(f.tray->undoStack()->undoCount(), 0);
    }

    void controlAndShiftSelection()
    {
        Fixture f{"Brightness", "Contrast", "Saturation", "Dynamics"};
        click(f.tray->nodeAt(0));
        click(f.tray->nodeAt(3), Qt::ShiftModifier);
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({0, 1, 2, 3}));
        click(f.tray->nodeAt(2), Qt::ControlModifier);
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({0, 1, 3}));
        QVERIFY(!f.tray->isDragging());
        // A press on empty tray clears the selection.
        QTest::mouseClick(f.tray, Qt::LeftButton, Qt::NoModifier, QPoint(1300, 40));
        QVERIFY(f.tray->selectedIndices().empty());
    }

    void tagsReplaceButPinnedSurvive()
    {
        Fixture f{"Brightness"};
        std::unique_ptr<ImageMod> saloon = make("Saloon");
        std::unique_ptr<ImageMod> plastic = make("Plastic");
        saloon->tags = {7};
        plastic->tags = {7};
        // Tags belong to the class; these two get theirs by hand, on the tiles as well.
        const int at = f.tray->addMod(*saloon);
        QCOMPARE(at, 1);
        f.tray->modAt(1)->tags = {7};
        // Unpinned: the new look replaces the old.
        QCOMPARE(f.tray->addMod(*plastic), 1);
        QCOMPARE(names(*f.tray), QStringList({"Brightness", "Plastic"}));
        f.tray->modAt(1)->tags = {7};
        // Pinned: nothing is added and the pinned one's index comes back.
        f.tray->modAt(1)->pinned = true;
        QCOMPARE(f.tray->addMod(*saloon), 1);
        QCOMPARE(names(*f.tray), QStringList({"Brightness", "Plastic"}));
        // Forced, even the pinned one goes.
        QCOMPARE(f.tray->addMod(*saloon, true), 1);
        QCOMPARE(names(*f.tray), QStringList({"Brightness", "Saloon"}));
        // A holder inside a group counts too.
        auto group = std::make_unique<ImageModCompound>("G");
        group->addChild(cloneMod(*saloon));
        group->children[0]->tags = {7};
        group->children[0]->pinned = true;
        f.tray->removeModAt(1);
        f.tray->addMod(*group);
        static_cast<ImageModCompound*>(f.tray->modAt(1))->children[0]->tags = {7};
        QCOMPARE(f.tray->addMod(*plastic), -1); // blocked by the pinned look inside the group
        QCOMPARE(f.tray->tileCount(), 2);
    }

    void clearTrayKeepsPinnedInOrder()
    {
        Fixture f{"Brightness", "Contrast", "Saturation", "Dynamics"};
        f.tray->modAt(1)->pinned = true;
        f.tray->modAt(3)->pinned = true;
        f.tray->clearTray(true);
        QCOMPARE(names(*f.tray), QStringList({"Contrast", "Dynamics"}));
        f.tray->clearTray(false);
        QCOMPARE(f.tray->tileCount(), 0);
        QCOMPARE(f.tray->contentWidth(), 100);
    }

    void nestingABorderIsRefusedAndSelectionKept()
    {
        Fixture f{"Brightness", "Custom Straight"};
        click(f.tray->nodeAt(0));
        click(f.tray->nodeAt(1), Qt::ControlModifier);
        QVERIFY(!f.tray->nestSelected());
        QCOMPARE(f.words.titles, QStringList({"Can't Nest Tiles"}));
        QCOMPARE(f.words.texts.first(),
                 QStringLiteral("Could not nest selected tiles. One or more tiles must be selected, and sizing, borders, "
                                "watermarks, and other non-central tiles cannot be nested."));
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({0, 1}));
        QCOMPARE(names(*f.tray), QStringList({"Brightness", "Custom Straight"}));
        QCOMPARE(f.tray->undoStack()->undoCount(), 0);

        // Nothing selected is refused the same way; un-nesting a plain tile has its own words.
        f.tray->clearSelection();
        QVERIFY(!f.tray->nestSelected());
        f.tray->setSelected(0);
        QVERIFY(!f.tray->unnestSelected());
        QCOMPARE(f.words.titles.last(), QStringLiteral("Can't Unnest Tile"));
        QCOMPARE(f.words.texts.last(), QStringLiteral("You must select one nested tile to unnest."));
    }

    void nestThenUnnestRestoresTheSequence()
    {
        Fixture f{"Crop", "Brightness", "Contrast", "Saturation", "Custom Straight"};
        f.tray->modAt(2)->variables[0]->setFloatValue(0.25f);
        std::vector<std::unique_ptr<ImageMod>> before;
        for (const ImageMod* m : f.tray->rootTiles())
            before.push_back(cloneMod(*m));

        // Cancel leaves everything.
        f.tray->setSelected(2);
        f.accept = false;
        QVERIFY(!f.tray->nestSelected());
        QCOMPARE(f.tray->tileCount(), 5);

        f.accept = true;
        f.answer = QStringLiteral("Punch");
        click(f.tray->nodeAt(3), Qt::ControlModifier);
        QSignalSpy adjusted(f.tray, &TrayWidget::trayAdjusted);
        QVERIFY(f.tray->nestSelected());
        QCOMPARE(adjusted.count(), 1);
        QCOMPARE(names(*f.tray), QStringList({"Crop", "Brightness", "Punch", "Custom Straight"}));
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({2}));
        auto* group = static_cast<ImageModCompound*>(f.tray->modAt(2));
        QCOMPARE(group->childCount(), 2);
        QCOMPARE(group->children[0]->name, std::string("Contrast"));
        QCOMPARE(f.tray->nodeAt(2)->look(), TrayNode::LookCombo);
        QCOMPARE(f.tray->nodeAt(2)->labelText(), QStringLiteral("Punch"));

        QVERIFY(f.tray->unnestSelected());
        QCOMPARE(f.tray->tileCount(), int(before.size()));
        for (int i = 0; i < f.tray->tileCount(); ++i)
            QVERIFY2(f.tray->modAt(i)->isEqual(*before[size_t(i)]), qPrintable(QString::number(i)));
        QCOMPARE(f.tray->modAt(2)->floatValue(0), 0.25f);
        QCOMPARE(f.tray->undoStack()->undoCount(), 2);
    }

    void editNestedShowsTheGroupAndExitSelectsIt()
    {
        Fixture f{"Brightness"};
        auto group = std::make_unique<ImageModCompound>("G");
        group->addChild(make("Contrast"));
        group->addChild(make("Saturation"));
        f.tray->addMod(*group);
        f.tray->setSelected(1);
        f.tray->updateMenuState();
        QVERIFY(f.tray->contextMenu()->actions()[8]->isEnabled()); // "Edit Nested"
        QVERIFY(f.tray->editSelectedNested());
        QCOMPARE(f.tray->nestedPath(), std::vector<int>({1}));
        QCOMPARE(names(*f.tray), QStringList({"Contrast", "Saturation"}));
        QCOMPARE(f.tray->nodeAt(0)->x(), 24); // nested tiles start further in
        QCOMPARE(f.tray->contentWidth(), 24 + 92 - 2 + 92 + 56);
        f.add("Dynamics"); // goes into the group
        QCOMPARE(f.tray->tileCount(), 3);
        QSignalSpy adjusted(f.tray, &TrayWidget::trayAdjusted);
        f.tray->exitComboButtonPressed();
        QVERIFY(f.tray->nestedPath().empty());
        QCOMPARE(adjusted.count(), 1);
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({1}));
        QCOMPARE(static_cast<ImageModCompound*>(f.tray->modAt(1))->childCount(), 3);
        // A path that runs out stops at the level reached.
        f.tray->enterNested({1, 0, 5});
        QCOMPARE(f.tray->nestedPath(), std::vector<int>({1}));
        f.tray->enterNested({7});
        QVERIFY(f.tray->nestedPath().empty());
    }

    void menuStateCopyAndPasteAcrossTrays()
    {
        Fixture f{"Brightness", "Contrast"};
        f.tray->modAt(0)->variables[0]->setFloatValue(0.4f);
        f.tray->modAt(1)->enabled = false;
        QMenu* menu = f.tray->contextMenu();
        QStringList texts;
        for (QAction* a : menu->actions())
            texts << a->text();
        QCOMPARE(texts, QStringList({"Reset", "Disable", "Enable", "Copy", "Paste", "Delete", "Nest", "Un-nest",
                                     "Edit Nested"}));
        f.tray->updateMenuState();
        QVERIFY(menu->actions()[0]->isEnabled());
        QVERIFY(!menu->actions()[3]->isEnabled()); // Copy: nothing selected
        QVERIFY(!menu->actions()[4]->isEnabled()); // Paste: empty clipboard

        f.tray->setSelected(0);
        click(f.tray->nodeAt(1), Qt::ControlModifier);
        f.tray->updateMenuState();
        QVERIFY(menu->actions()[1]->isEnabled() && menu->actions()[2]->isEnabled()); // one on, one off
        QVERIFY(!menu->actions()[7]->isEnabled()); // Un-nest: no group
        f.tray->menuItemChosen(menu->actions()[3]);
        QCOMPARE(int(TrayWidget::clipboard().size()), 2);

        Fixture g{"Saturation"};
        g.tray->updateMenuState();
        QVERIFY(g.tray->contextMenu()->actions()[4]->isEnabled());
        g.tray->menuItemChosen(g.tray->contextMenu()->actions()[4]);
        QCOMPARE(names(*g.tray), QStringList({"Saturation", "Brightness", "Contrast"}));
        QCOMPARE(g.tray->modAt(1)->floatValue(0), 0.4f);
        QVERIFY(!g.tray->modAt(2)->enabled);
        QVERIFY(g.tray->modAt(1) != f.tray->modAt(0));
        QCOMPARE(g.tray->undoStack()->undoCount(), 1);

        // Disable and Delete through the menu.
        g.tray->setSelected(1);
        g.tray->menuItemChosen(g.tray->contextMenu()->actions()[1]);
        QVERIFY(!g.tray->modAt(1)->enabled);
        QCOMPARE(g.tray->nodeAt(1)->label()->opacity(), 0.4f);
        g.tray->menuItemChosen(g.tray->contextMenu()->actions()[5]);
        QCOMPARE(names(*g.tray), QStringList({"Saturation", "Contrast"}));
    }

    void rightPressDoubleClickAndReset()
    {
        Fixture f{"Brightness"};
        auto group = std::make_unique<ImageModCompound>("G");
        group->addChild(make("Contrast"));
        f.tray->addMod(*group);
        f.tray->setSelected(0);
        // A right press on an unselected tile makes it the selection, then the menu opens.
        QTest::mousePress(f.tray->nodeAt(1), Qt::RightButton, Qt::NoModifier, QPoint(40, 40));
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({1}));
        QTRY_VERIFY(f.tray->contextMenu()->isVisible());
        QVERIFY(f.tray->contextMenu()->actions()[7]->isEnabled()); // Un-nest
        f.tray->contextMenu()->hide();

        // Reset puts the tile's values back to neutral as one undo step.
        const float neutral = f.tray->modAt(0)->floatValue(0);
        f.tray->modAt(0)->variables[0]->setFloatValue(neutral + 0.3f);
        f.tray->setSelected(0);
        f.tray->menuItemChosen(f.tray->contextMenu()->actions()[0]);
        QCOMPARE(f.tray->modAt(0)->floatValue(0), neutral);
        QCOMPARE(f.tray->undoStack()->undoCount(), 1);
        f.tray->undo();
        QCOMPARE(f.tray->modAt(0)->floatValue(0), neutral + 0.3f);

        // A double click on a group edits it; on a plain tile it does nothing.
        QTest::mouseDClick(f.tray->nodeAt(0), Qt::LeftButton, Qt::NoModifier, QPoint(40, 40));
        QVERIFY(f.tray->nestedPath().empty());
        QTest::mouseDClick(f.tray->nodeAt(1), Qt::LeftButton, Qt::NoModifier, QPoint(40, 40));
        QCOMPARE(f.tray->nestedPath(), std::vector<int>({1}));
        QCOMPARE(names(*f.tray), QStringList({"Contrast"}));
    }

    void tileButtons()
    {
        Fixture f{"Brightness", "Contrast"};
        QSignalSpy adjusted(f.tray, &TrayWidget::trayAdjusted);
        QTest::mouseClick(f.tray->nodeAt(0)->disableButton(), Qt::LeftButton);
        QVERIFY(!f.tray->modAt(0)->enabled);
        QCOMPARE(adjusted.count(), 1);
        QTest::mouseClick(f.tray->nodeAt(0)->pinButton(), Qt::LeftButton);
        QVERIFY(f.tray->modAt(0)->pinned);
        QTest::mouseClick(f.tray->nodeAt(1)->closeButton(), Qt::LeftButton);
        QCOMPARE(names(*f.tray), QStringList({"Brightness"}));
        QCOMPARE(adjusted.count(), 2);
        QCOMPARE(f.tray->undoStack()->undoCount(), 2);
    }

    void scrollingMovesTheContentOnlyWhenItIsWider()
    {
        Fixture f;
        f.tray->resize(400, 91);
        f.add("Brightness");
        f.tray->scrollerScrolled(50.0f);
        QCOMPARE(f.tray->contentWidget()->x(), 0);
        for (const char* n : {"Contrast", "Saturation", "Dynamics", "Brightness", "Contrast"})
            f.add(n);
        QVERIFY(f.tray->contentWidth() > 400);
        f.tray->scrollerScrolled(50.0f);
        QCOMPARE(f.tray->contentWidget()->x(), -50);
    }

    // An empty tray says how to fill it; the line goes with the first tile and comes back when
    // the last one leaves.
    void emptyTrayShowsAHint()
    {
        Fixture f;
        // Distinct shades in the strip's middle, where no tile stands while there are few.
        auto shadesInMiddle = [&f] {
            QCoreApplication::processEvents();
            const QImage img = f.tray->grab().toImage();
            QSet<QRgb> seen;
            for (int y = 0; y < img.height(); ++y)
                for (int x = img.width() / 3; x < img.width() * 2 / 3; ++x)
                    seen.insert(img.pixel(x, y));
            return seen.size();
        };
        QVERIFY2(shadesInMiddle() > 4, "no hint in the empty tray");
        f.add("Brightness");
        QCOMPARE(shadesInMiddle(), 1);
        f.tray->clearTray(false);
        QVERIFY(shadesInMiddle() > 4);
    }

    void previewingHidesCentralTilesFromTheSelection()
    {
        Fixture f{"Crop", "Brightness"};
        click(f.tray->nodeAt(0));
        click(f.tray->nodeAt(1), Qt::ControlModifier);
        f.tray->setPreviewing(true);
        QVERIFY(f.tray->isPreviewing());
        QCOMPARE(f.tray->selectedIndices(), std::vector<int>({0}));
        f.tray->removeModAt(1); // no central tile left: previewing ends by itself
        QVERIFY(!f.tray->isPreviewing());
    }
};

QTEST_MAIN(TrayWidgetTest)
#include "TrayWidgetTest.moc"
