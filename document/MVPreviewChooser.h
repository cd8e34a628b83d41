#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <vector>

class ModSequenceRunner;
class MVPreviewChooserItem;
class MVScroller;
class QPushButton;

// The quicklook window: the current photo through each preset, one thumbnail a preset, in the
// sections of the tool panel's Presets tab. A click applies that preset (replacing the tiles, or
// appended in append mode); Escape or the close button leaves without a change.
//
// The photo is made small once and run through the mods that every thumbnail shares (the tray's
// tiles in append mode, its pinned tiles otherwise); each thumbnail then runs only its preset, on
// a thread of its own. A timer starts the thumbnails a few at a time, those in view first.
class MVPreviewChooser : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kRecheckInterval = 33;
    // Thumbnails worked on at once; the machine has few cores and the GUI needs one.
    static constexpr int kMaxRunning = 2;
    static constexpr int kTitleHeight = 52;
    static constexpr int kHeaderHeight = 34;
    static constexpr int kCardMargin = 14;
    static constexpr int kContentPadding = 16;
    static constexpr int kSpacing = 10;

    MVPreviewChooser(bool appendMode, QWidget* parent = nullptr);
    ~MVPreviewChooser() override;

    // The picture the thumbnails start from: base resampled to the thumbnails' size, then run
    // through shared (cloned; nothing is kept).
    void setSource(const FlexImageFloat& base, const std::vector<ImageMod*>& shared);
    // Sections and presets in the order shown; a preset joins the last section (it is copied).
    void addSection(int tabID, const QString& name, bool collapsed);
    void addPreset(const QString& name, const ImageMod& preset);
    // Lays out and starts the thumbnails.
    void begin();

    bool isAppendMode() const { return append; }
    int thumbnailCount() const { return int(items.size()); }
    MVPreviewChooserItem* item(int index) const;
    int sectionCount() const { return int(sections.size()); }
    QString sectionName(int index) const;
    bool isSectionCollapsed(int index) const;
    QPushButton* sectionButton(int index) const;
    QPushButton* closeButton() const { return closer; }
    // Thumbnails not yet finished.
    int unfinishedCount();
    // Blocks until every started thumbnail is done (tests).
    void waitForThumbnails();
    // Where the chooser goes in its parent; asked again when the parent is resized.
    std::function<QRect()> placement;

    std::unique_ptr<ModSequenceRunner> runner;
    QTimer recheckTimer;

signals:
    void previewChosen(ImageMod* mod, bool append);
    void sectionEnabled(int tabID, QString sectionName, bool enabled);
    void closed();

public slots:
    void scrollerScrolled(float toPosition);
    void recheckTimerFired();
    void closeButtonPressed();
    void sectionCollapsePressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;

private:
    struct Section {
        int tabID = 0;
        QString name;
        bool collapsed = false;
        QPushButton* button = nullptr;
        int top = 0;
        int first = 0; // index of its first item
        int count = 0;
    };

    void itemChosen(MVPreviewChooserItem* which);
    void relayout();
    void updateSectionButton(Section& s);
    QRect cardRect() const;

    bool append = false;
    bool closing = false;
    std::unique_ptr<FlexImageFloat> source;
    std::vector<Section> sections;
    std::vector<MVPreviewChooserItem*> items;
    std::vector<int> itemSection;
    QWidget* viewport = nullptr;
    QWidget* content = nullptr;
    MVScroller* scroller = nullptr;
    QPushButton* closer = nullptr;
    float scrollPosition = 0.0f;
    int contentHeight = 0;
};
