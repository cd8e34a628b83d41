#pragma once
#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <cstdint>
#include <functional>
#include <vector>

class ImageMod;
class ImageModVariable;
class MVScroller;
class QPushButton;

// The controls of one tile, stacked in a column that floats over the picture: one control for
// each visible variable, chosen by the kind of its value.
//
//   float        MVSlider with the variable's ranges and display scale (integers when the shown
//                span is 20 or more; recentring when neither end is clamped)
//   curve        ToneCurveWidget editing the variable's curve in place (hue ring for closed curves)
//   colour       MVColorControl: ready swatches over the full chooser
//   button       MVPushButton pressing the mod's button; a button tagged "text" is a text field
//                for its stored text instead (the text overlay keeps its words there), and one
//                tagged "font" is a button naming the family in its stored text that opens a
//                family chooser; a pick raises fontChosen as well
//   choice       MVListChooser
//   multichoice  MVMultiChoiceWidget
//   file         MVStringInputBox with the path, and a "..." button opening a file dialog
//   pixelxy      qtMultiDataWidget "X", "Y" (document pixels; -1 is the default place)
//   boundary     qtMultiDataWidget "Left", "Top", "Right", "Bottom"
//
// Every edit goes the same way: aboutToAdjust(control) once before the value moves (one undo
// step per drag or per pick), then for each change the value is written into the variable, the
// mod's variableChanged(index) runs, and adjusted(control) is raised. Right presses on a control
// never reach it: the column raises rightClicked(control) instead.
class MVControlColumn : public QWidget {
    Q_OBJECT
public:
    static constexpr int columnWidth = 264;
    static constexpr int padding = 12;
    static constexpr int trayClearance = 50;
    static constexpr int bottomClearance = 2;
    static constexpr int sideInset = 12;
    static constexpr const char* textButtonTag = "text";
    static constexpr const char* fontButtonTag = "font";

    explicit MVControlColumn(QWidget* parent = nullptr);
    ~MVControlColumn() override;

    // Builds the controls of mod (null clears). The column doesn't own the mod.
    void setMod(ImageMod* mod);
    ImageMod* mod() const { return currentMod; }
    const std::vector<QWidget*>& controls() const { return controlList; }
    // -1 for a widget that isn't one of the controls.
    int32_t variableIndexOf(const QWidget* control) const;
    QWidget* controlForVariable(int32_t index) const;
    bool isCurveControl(const QWidget* control) const;
    // Height of the whole column with nothing cut off.
    int naturalHeight() const { return contentHeight; }

    // Puts the variable of control back to the value a fresh tile of the class has. False (and
    // nothing raised) for a button, an unknown control or a mod whose fresh instance differs.
    bool resetToDefault(QWidget* control);
    // Curve clipboard: the text form "x y x y ..." goes to the desktop clipboard too.
    bool copyCurve(QWidget* control);
    // Takes the desktop clipboard when it holds a curve, else the last curve copied here. A ring
    // keeps its ends tied. False when there is nothing to paste or control isn't a curve.
    bool pasteCurve(QWidget* control);
    static QString& curveClipboard();
    // Parses "x y x y ..." with at least two points, x rising, all inside the unit square.
    static bool isCurveText(const QString& text);
    // The controls read their variables again (after undo, or a mod that moved other values).
    void refreshValues();

    // Where the column goes in its parent: at the left of the picture area, its bottom
    // trayClearance above the tray's top and never lower than bottomClearance above the area's
    // bottom. A column taller than the room left keeps its top at the area's top and scrolls.
    static QRect placement(int wantedHeight, const QRect& area, bool trayShown, int trayTop);
    void placeIn(const QRect& area, bool trayShown, int trayTop);

    // Asks for a font family, starting at current; false when cancelled. Tests answer here; unset,
    // a list of the installed families opens.
    std::function<bool(const QString& current, QString& chosen)> chooseFontHook;

signals:
    void aboutToAdjust(QWidget* control);
    void adjusted(QWidget* control);
    void rightClicked(QWidget* control);
    void heightChanged();
    void fontChosen(const QString& family);
    // A list control's open list points at another row (MVListChooser::hoveredIndex()).
    void hovered(QWidget* control);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    struct Entry {
        QWidget* control = nullptr;
        int32_t variable = -1;
        int32_t kind = 0;
        QString label;
        int top = 0;      // of the label, in content coordinates
        int height = 0;   // of the control
        QPushButton* browse = nullptr;
        // The control raises editingStarted itself; the others get aboutToAdjust from the column.
        bool reportsStart = false;
    };

    void clearControls();
    void addEntry(int32_t index, ImageModVariable& variable);
    Entry* entryFor(const QWidget* control);
    const Entry* entryFor(const QWidget* control) const;
    Entry* entryOwning(QObject* object);
    void watch(QWidget* w);
    void layoutContent();
    void layoutViewport();
    void editStarted(QWidget* control);
    void controlChanged(QWidget* control);
    void writeBack(const Entry& e);
    void loadControl(Entry& e);
    void browseFile(Entry& e);
    void chooseFont(Entry& e);
    void scrollTo(float position);

    ImageMod* currentMod = nullptr;
    std::vector<Entry> entries;
    std::vector<QWidget*> controlList;
    QWidget* viewport = nullptr;
    QWidget* content = nullptr;
    MVScroller* scroller = nullptr;
    QString title;
    int contentHeight = 0;
    int scrollOffset = 0;
};
