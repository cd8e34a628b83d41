#pragma once
#include <QtWidgets/QWidget>

#include <vector>

class ImageMod;
class MVMediaWidget;
class UndoStack;
struct MVDocument;

// A modal tool laid over a document's viewer: while it is active it owns the mouse over the picture
// and the document's sequence runs without the mods it replaces. Events it doesn't use fall through
// to the viewer (its parent), so panning and zooming keep working.
class MVToolWidget : public QWidget
{
    Q_OBJECT
public:
    explicit MVToolWidget(MVMediaWidget* viewer, QWidget* parent = nullptr);
    ~MVToolWidget() override;

    virtual void beginEditing(ImageMod* mod);
    // Disables every enabled mod of the sequence carrying one of the tags the tool replaces and
    // remembers it; the base class replaces none.
    virtual void disableOverlappingMods(const std::vector<ImageMod*>& sequence);
    virtual void restoreDisabledMods();
    virtual void updateForMediaChange();
    virtual void setImageRect(double x, double y, double width, double height);
    virtual void controlChanged(QWidget* control);
    virtual void endEditing();
    // Undo and redo inside the tool; false when the tool keeps no history of its own.
    virtual bool undoStep() { return false; }
    virtual bool redoStep() { return false; }

    MVMediaWidget* viewer() const { return mediaWidget; }
    // The strip of buttons and sliders the tool shows at the bottom of the viewer.
    QWidget* controlBar() const { return bar; }
    const std::vector<ImageMod*>& disabled() const { return disabledMods; }
    double imageX = 0.0, imageY = 0.0, imageWidth = 0.0, imageHeight = 0.0;

signals:
    void requestToolExit(MVToolWidget* tool);

protected:
    // Follows the viewer's size and the picture's place in it.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    // Lays the control bar along the bottom edge.
    virtual void layoutControls();
    void disableModsWithTags(const std::vector<ImageMod*>& sequence, std::initializer_list<int> tagList);
    void followViewer();

    MVMediaWidget* mediaWidget = nullptr;
    QWidget* bar = nullptr;
    std::vector<ImageMod*> disabledMods;
};
