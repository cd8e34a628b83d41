#pragma once
#include "core/ImageModCompound.h"
#include "document/core/UndoStack.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <vector>

class ImageMod;
class QAction;
class QMenu;
class QPushButton;
class QScrollBar;
class TrayNode;

// The strip under the picture that shows the filter as tiles, left to right in the order they
// run. It is the one writer of the sequence: others ask it to add or remove mods and listen to
// trayAdjusted. It also keeps what belongs to the document's recipe beside the tiles: the hidden
// mods (a crop), the filter's name, the modified flag, "Toggle Original" and the undo stack.
class TrayWidget : public QWidget {
    Q_OBJECT
public:
    static constexpr int tileHeight = 65;

    explicit TrayWidget(QWidget* parent = nullptr);
    ~TrayWidget() override;

    // --- the sequence ---
    // Clones mod into sequence (the current one when null). A mod whose tags are already held in
    // the root or the preview sequence replaces those holders (forceReplace) or, without it, every
    // holder up to a pinned one, which stays and blocks the add. Returns the new tile's index in
    // the sequence, the blocking mod's index there, or -1.
    int addMod(ImageModCompound* sequence, const ImageMod& mod, bool forceReplace = false, bool refresh = true);
    int addMod(const ImageMod& mod, bool forceReplace = false, bool refresh = true)
    {
        return addMod(nullptr, mod, forceReplace, refresh);
    }
    // Indices are of the current sequence; out-of-range ones are ignored.
    void removeModAt(int index);
    void removeMods(std::vector<int> indices);
    // Empties the root (and leaves any nested level); with keepPinned the pinned tiles stay in order.
    void clearTray(bool keepPinned);

    ImageModCompound rootSequence{"Root"};
    ImageModCompound previewSequence{"Preview"};
    // The root, or the compound being edited.
    ImageModCompound* currentSequence() const { return current; }
    int tileCount() const { return current->childCount(); }
    // Shown in the middle of an empty root.
    static QString emptyHint();
    ImageMod* modAt(int index) const;
    TrayNode* nodeAt(int index) const;
    const std::vector<TrayNode*>& tileNodes() const { return nodes; }
    // The root's tiles in order (live, not clones), for writing a filter.
    std::vector<const ImageMod*> rootTiles() const;
    // What the viewer runs: the hidden mods, then the root's tiles. With `forDisplay` and
    // "Toggle Original" on, the ordinary adjustments are left out.
    std::vector<ImageMod*> flatModList(bool forDisplay = true) const;

    // --- selection ---
    std::vector<int> selectedIndices() const;
    // Selects the tile alone.
    void setSelected(int index);
    void clearSelection();
    // The first selected tile's index and mod, or -1 / null.
    int selectedIndex() const;
    ImageMod* selectedMod() const;

    // --- nesting ---
    // Path of indices from the root; an empty path is the root. The walk stops at the level
    // reached when a step is out of range or no compound.
    void enterNested(const std::vector<int>& path);
    const std::vector<int>& nestedPath() const { return nestPath; }
    // Both ask and refuse through the dialog hooks; true when the sequence changed.
    bool nestSelected();
    bool unnestSelected();
    // Edit Nested on the selected compound; false when the selection isn't one compound.
    bool editSelectedNested();
    void exitNested();

    // --- the tile clipboard, shared by every tray ---
    static std::vector<std::unique_ptr<ImageMod>>& clipboard();
    void copySelected();
    // Adds clones of the clipboard with addMod; true when anything was added.
    bool paste();

    // --- preview ---
    void setPreviewing(bool on);
    bool isPreviewing() const { return previewing; }

    // --- the document's recipe beside the tiles ---
    std::vector<std::unique_ptr<ImageMod>> hiddenMods;
    // Replaces any hidden mod sharing a tag with mod; takes ownership.
    void setHiddenMod(std::unique_ptr<ImageMod> mod);
    void clearHiddenMods() { hiddenMods.clear(); }
    bool hasHiddenModWithTag(int32_t tag) const;
    QString filterName;
    bool modified = false;
    bool tilesDisabled = false;
    // The filter's name with "*" when the tray changed since it was loaded.
    QString modifiedTitleSuffix() const;

    // --- undo ---
    UndoStack* undoStack() const { return stack.get(); }
    // Drops the stack (a tray without one pushes nothing) or gives it a fresh one.
    void setUndoEnabled(bool enabled);
    // Each marks the tray modified and pushes a snapshot; nothing without a stack.
    void pushSequenceUndo();
    void pushAdjustUndo();
    // The snapshot swap of undo: the root's tiles and the hidden mods trade places with the
    // given lists, the nested level is entered again as far as it still stands, tiles rebuilt.
    void swapSequence(std::vector<std::unique_ptr<ImageMod>>& tiles, std::vector<std::unique_ptr<ImageMod>>& hidden);
    // Runs the stack and raises trayAdjusted even when there was nothing to do.
    void undo();
    void redo();

    // --- rebuilding and look ---
    // Re-sorts the current sequence by group and lays the tiles out again.
    void rebuild();
    // Refreshes every tile's text and look without moving anything.
    void refreshNodes();
    QWidget* contentWidget() const { return content; }
    int contentWidth() const;

    // Dialog hooks, so the owner can route the words through its own dialogs (and tests can
    // answer them). message returns the index of the button pressed; askText returns false on
    // cancel. Defaults are modal Qt dialogs.
    std::function<int(const QString& title, const QString& text, const QStringList& buttons)> message;
    std::function<bool(const QString& title, const QString& prompt, const QString& fieldLabel,
                       const QString& defaultText, const QString& okCaption, const QString& cancelCaption,
                       QString& answer)>
        askText;

    // The stable three-way sort by group of a sequence's children.
    static void sortByGroup(ImageModCompound& sequence);
    // The compound at path below root, stopping where the walk can't go on.
    static ImageModCompound* compoundAtPath(ImageModCompound& root, const std::vector<int>& path, size_t* depth = nullptr);

    // Drag state (read by tests).
    TrayNode* draggedNode() const { return dragged; }
    bool isDragging() const { return dragging; }
    QMenu* contextMenu() const { return menu; }
    // Enables the menu items for the selection as it stands (done before the menu opens).
    void updateMenuState();

signals:
    void trayAdjusted();
    void selectionChanged();

public slots:
    void nodeWantsClosing(TrayNode* node);
    void nodeEnabledWillChange(TrayNode* node);
    void nodeEnabledChanged(TrayNode* node);
    void nodeWasPressed(TrayNode* node);
    void nodeWasDoubleClicked(TrayNode* node);
    void nodeWasRightClicked(TrayNode* node);
    void nodeWasReleased(TrayNode* node);
    void nodeWasHoverPressed(TrayNode* node);
    void scrollerScrolled(float position);
    void exitComboButtonPressed();
    void menuItemChosen(QAction* action);

public:
    // A move of the cursor while a tile is held, in content coordinates (also fed by the tile,
    // which holds the mouse grab).
    void dragMoved(const QPointF& contentPos);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int indexOfNode(const TrayNode* node) const;
    void openMenuAt(const QPoint& globalPos);
    void updateScroller();
    int showWords(const QString& title, const QString& text, const QStringList& buttons);

    ImageModCompound* current = &rootSequence;
    std::vector<int> nestPath;
    std::vector<TrayNode*> nodes;
    QWidget* content = nullptr;
    QScrollBar* scroller = nullptr;
    QWidget* centralBand = nullptr;
    QWidget* encloser = nullptr;
    QPushButton* exitButton = nullptr;
    QMenu* menu = nullptr;
    TrayNode* menuNode = nullptr;
    TrayNode* dragged = nullptr;
    float dragOffset = 0.0f;
    bool dragging = false;
    bool pressedWasSelected = false;
    bool previewing = false;
    int contentW = 100;
    QPixmap separatorPixmap;
    QPixmap sectionSeparatorPixmap;
    std::unique_ptr<UndoStack> stack;
    friend class TrayNode;
};
