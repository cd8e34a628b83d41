// Undo of the tray: whole-sequence snapshots that swap with what stands, and value snapshots of
// one tile that find their tile again by path, index and name or are dropped.
#include "ResourceInit.h"
#include "TestMods.h"
#include "core/ImageModCompound.h"
#include "document/UndoCommandAdjustFilter.h"
#include "document/UndoCommandFilterSequence.h"

#include <QtTest/QtTest>

class TrayUndoTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { vantrelInitResources(); }

    void adjustUndoAndRedoRestoreValues()
    {
        TrayWidget tray;
        addTiles(tray, {"Brightness", "Contrast"});
        ImageMod* contrast = tray.modAt(1);
        const float start = contrast->floatValue(0);
        tray.setSelected(1);
        QVERIFY(!tray.modified);
        tray.pushAdjustUndo(); // as a drag starts
        QVERIFY(tray.modified);
        contrast->variables[0]->setFloatValue(start + 0.3f); // the drag's moves push nothing
        contrast->variables[0]->setFloatValue(start + 0.5f);
        QCOMPARE(tray.undoStack()->undoCount(), 1);

        QSignalSpy adjusted(&tray, &TrayWidget::trayAdjusted);
        tray.undo();
        QCOMPARE(tray.modAt(1)->floatValue(0), start);
        QCOMPARE(tray.undoStack()->redoCount(), 1);
        tray.redo();
        QCOMPARE(tray.modAt(1)->floatValue(0), start + 0.5f);
        tray.undo();
        QCOMPARE(tray.modAt(1)->floatValue(0), start);
        QCOMPARE(adjusted.count(), 3);
        // The other tile was never touched.
        QVERIFY(tray.modAt(0)->isEqual(*make("Brightness")));
    }

    void adjustThatNoLongerFindsItsTileIsDropped()
    {
        TrayWidget tray;
        tray.addMod(*make("Brightness"));
        tray.pushAdjustUndo(); // nothing selected: execute fails, nothing kept
        QCOMPARE(tray.undoStack()->undoCount(), 0);
        // A tile renamed since, then one with fewer values: not the tile the snapshot was of.
        tray.setSelected(0);
        for (int change = 0; change < 2; ++change) {
            tray.pushAdjustUndo();
            tray.modAt(0)->variables[0]->setFloatValue(0.8f);
            if (change == 0)
                tray.modAt(0)->name = "Somebody Else";
            else
                tray.modAt(0)->variables.pop_back();
            tray.undo();
            if (change == 0)
                QCOMPARE(tray.modAt(0)->floatValue(0), 0.8f);
            QCOMPARE(tray.undoStack()->undoCount(), 0);
            QCOMPARE(tray.undoStack()->redoCount(), 0);
        }
    }

    void adjustInsideANestedTileFollowsItsPath()
    {
        TrayWidget tray;
        tray.addMod(*make("Brightness"));
        auto group = std::make_unique<ImageModCompound>("G");
        group->addChild(make("Saturation"));
        group->addChild(make("Contrast"));
        tray.addMod(*group);
        tray.setSelected(1);
        QVERIFY(tray.editSelectedNested());
        tray.setSelected(1);
        tray.pushAdjustUndo();
        auto* command = new UndoCommandAdjustFilter(&tray);
        QCOMPARE(command->nestPath, std::vector<int32_t>({1}));
        QCOMPARE(command->tileIndex, 1);
        delete command;
        const float start = tray.modAt(1)->floatValue(0);
        tray.modAt(1)->variables[0]->setFloatValue(start + 0.25f);
        tray.exitNested();
        tray.undo(); // from the top level: the path leads back into the group
        auto* g = static_cast<ImageModCompound*>(tray.modAt(1));
        QCOMPARE(g->children[1]->floatValue(0), start);
        QCOMPARE(tray.undoStack()->redoCount(), 1);
    }

    void sequenceUndoSwapsTilesAndHiddenMods()
    {
        TrayWidget tray;
        addTiles(tray, {"Brightness", "Contrast"});
        tray.modAt(1)->variables[0]->setFloatValue(0.7f);
        tray.setHiddenMod(make("Crop"));
        QVERIFY(tray.hasHiddenModWithTag(0));

        tray.pushSequenceUndo();
        tray.removeModAt(0);
        tray.clearHiddenMods();
        tray.addMod(*make("Custom Straight"));
        QCOMPARE(names(tray), QStringList({"Contrast", "Custom Straight"}));

        tray.undo();
        QCOMPARE(names(tray), QStringList({"Brightness", "Contrast"}));
        QCOMPARE(tray.modAt(1)->floatValue(0), 0.7f);
        QCOMPARE(int(tray.hiddenMods.size()), 1);
        QVERIFY(tray.hasHiddenModWithTag(0));
        // The flat list for the viewer: hidden mods first, then the tiles.
        const std::vector<ImageMod*> flat = tray.flatModList();
        QCOMPARE(int(flat.size()), 3);
        QCOMPARE(flat[0]->name, std::string("Crop"));

        tray.redo();
        QCOMPARE(names(tray), QStringList({"Contrast", "Custom Straight"}));
        QVERIFY(tray.hiddenMods.empty());
        tray.undo();
        QCOMPARE(names(tray), QStringList({"Brightness", "Contrast"}));
    }

    void toggleOriginalLeavesOutOrdinaryTilesOnlyForTheDisplay()
    {
        TrayWidget tray;
        addTiles(tray, {"Crop", "Brightness", "Custom Straight"});
        tray.tilesDisabled = true;
        QCOMPARE(int(tray.flatModList(true).size()), 2);
        QCOMPARE(int(tray.flatModList(false).size()), 3);
    }

    void snapshotWhileNestedComesBackAtTheSameLevel()
    {
        TrayWidget tray;
        auto group = std::make_unique<ImageModCompound>("G");
        group->addChild(make("Saturation"));
        tray.addMod(*group);
        tray.setSelected(0);
        tray.editSelectedNested();
        tray.pushSequenceUndo();
        tray.addMod(*make("Contrast"));
        QCOMPARE(tray.tileCount(), 2);
        tray.undo();
        QCOMPARE(tray.nestedPath(), std::vector<int>({0}));
        QCOMPARE(names(tray), QStringList({"Saturation"}));
    }

    void capAndEmptyStack()
    {
        TrayWidget tray;
        tray.addMod(*make("Brightness"));
        for (int i = 0; i < 101; ++i)
            tray.pushSequenceUndo();
        QCOMPARE(tray.undoStack()->undoCount(), 100);
        for (int i = 0; i < 100; ++i)
            tray.undo();
        QCOMPARE(tray.undoStack()->undoCount(), 0);
        QSignalSpy adjusted(&tray, &TrayWidget::trayAdjusted);
        tray.undo(); // nothing left: still raised
        QCOMPARE(adjusted.count(), 1);

        // Without a stack nothing is pushed and nothing breaks.
        tray.setUndoEnabled(false);
        tray.modified = false;
        tray.pushSequenceUndo();
        tray.pushAdjustUndo();
        QVERIFY(!tray.modified);
        tray.undo();
        QVERIFY(tray.undoStack() == nullptr);
    }

    void titleSuffixMarksChanges()
    {
        TrayWidget tray;
        tray.filterName = QStringLiteral("Warm Film");
        QCOMPARE(tray.modifiedTitleSuffix(), QStringLiteral("Warm Film"));
        tray.pushSequenceUndo();
        QCOMPARE(tray.modifiedTitleSuffix(), QStringLiteral("Warm Film*"));
    }
};

QTEST_MAIN(TrayUndoTest)
#include "TrayUndoTest.moc"
