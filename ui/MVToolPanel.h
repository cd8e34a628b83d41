#pragma once
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

#include <vector>

class ImageMod;
class MultiData;
class MVPanelItem;
class MVPanelItemBigButton;
class MVPanelItemHeader;
class MVPanelItemListButton;
class MVScroller;
class QAction;
class QMenu;
class QPushButton;

// The side panel from which tiles and presets are picked. Tabs of rows placed by hand, headers
// that fold their section away, a starred section that mirrors starred rows. The panel changes
// nothing outside itself: it raises signals and the main window carries them out.
class MVToolPanel : public QWidget {
    Q_OBJECT
public:
    static constexpr int kAdjustmentsTab = 0;
    static constexpr int kPresetsTab = 1;
    static constexpr int kTabBarHeight = 30;
    static constexpr int kScrollerWidth = 7;
    // Row width is the panel's less this: the scroller and the margins around the rows.
    static constexpr int kRowInset = 31;
    static constexpr int kLeftMargin = 8;
    static constexpr int kTopMargin = 8;
    static const char* const kStarredSection;

    struct Tab {
        std::vector<MVPanelItem*> items;
        int id = 0;
        float scrollPosition = 0.0f;
        QPushButton* button = nullptr;
        QString name;
    };

    // prefs receives the collapsed sections and starred rows; the global store when null.
    explicit MVToolPanel(QWidget* parent = nullptr, MultiData* prefs = nullptr);
    ~MVToolPanel() override;

    void addTab(const QString& name, int id);
    MVPanelItemHeader* addHeader(int tabId, const QString& name, bool collapsed, const QString& iconPath = QString());
    // Appends a row for mod; with ownsMod the row deletes the mod. Null for an unknown tab (an
    // owned mod is then deleted).
    MVPanelItemListButton* addListButton(bool hasPlus, int tabId, ImageMod* mod, bool ownsMod, bool hasStar);
    MVPanelItemBigButton* addBigButton(int tabId, int commandId, const QString& name, bool append, bool bigSize,
                                       const QString& iconPath = QString());
    // Puts a row in name order into the section whose header is called sectionName, in the first
    // tab that has one. Null when there is no such header (an owned mod is then deleted).
    MVPanelItemListButton* insertListButton(const QString& sectionName, ImageMod* mod, bool ownsMod = true,
                                            bool hasPlus = true, bool hasStar = true);
    // Takes every row out of a tab (rows go at the next event loop turn); its scroll place stays.
    void clearTab(int tabId);
    // Takes one row out, with any mirror of it. False when the row isn't in the panel.
    bool removeListButton(MVPanelItemListButton* row);

    // Entries "flag name", one per section ever toggled: the preference "CollapsedToolSections".
    void setCollapsedSections(const QStringList& entries);
    QStringList collapsedSections() const { return collapsedEntries; }
    bool isSectionCollapsed(const QString& name) const;

    // Keys of the starred rows, in the order of the Starred section: "StarredFilterList".
    void setStarredNames(const QStringList& names);
    QStringList starredNames() const { return starred; }
    // Stars or unstars the row (for a mirror, the row it stands for), stores the list and
    // rebuilds the Starred section. Gives the new state.
    bool toggleStarred(MVPanelItemListButton* row);

    void setCurrentTab(int id);
    int currentTab() const { return current; }
    void relayout();

    const Tab* tab(int id) const;
    std::vector<MVPanelItemListButton*> listButtons(int tabId, bool withMirrors = true) const;
    MVPanelItemHeader* header(int tabId, const QString& name) const;
    MVPanelItemBigButton* bigButton(int commandId) const;
    // The rows under a header, up to the next one.
    std::vector<MVPanelItemListButton*> sectionRows(int tabId, const QString& name) const;

    bool hoverPreviews = true;
    MVScroller* scroller = nullptr;
    QWidget* content = nullptr;
    QWidget* tabBar = nullptr;
    QMenu* contextMenu = nullptr;

signals:
    void modButtonClicked(MVPanelItemListButton* clicker, bool append, bool star);
    void comIDButtonClicked(MVPanelItemBigButton* button, bool append);
    void deleteButtonClicked(MVPanelItemListButton* row);
    void imageModHovered(ImageMod* myHoveredMod, bool append);

public slots:
    void scrollerScrolled(float pos);
    void headerToggled(MVPanelItemHeader* header);
    void plusHoverChanged(MVPanelItemListButton* row);
    void panelItemEntered(MVPanelItem* item);
    void modButtonClickedSlot();
    void comIDButtonClickedSlot();
    void tabButtonClicked();
    void buttonRightClicked(MVPanelItemListButton* row);
    void menuTriggered(QAction* action);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Tab* tabById(int id);
    void adopt(Tab& t, MVPanelItem* item, size_t index);
    void connectListButton(MVPanelItemListButton* row);
    void dropItem(MVPanelItem* item);
    void hoverOver(MVPanelItem* item);
    void endHover();
    void rebuildStarredSection();
    void refreshStarFlags();
    void layoutTabBar();

    MultiData* prefs = nullptr;
    std::vector<Tab> tabs;
    int current = 0;
    QWidget* viewport = nullptr;
    QStringList collapsedEntries;
    QStringList starred;
    QPointer<MVPanelItemListButton> hoveredRow;
    QPointer<MVPanelItemListButton> menuRow;
};
