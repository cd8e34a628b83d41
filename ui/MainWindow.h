#pragma once
#include "core/FlexImage.h"
#include "core/ModCatalogue.h"
#include "ui/MVDocument.h"

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtWidgets/QMainWindow>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class ImageMod;
class MVStartupWindow;
class MVHelpWindow;
class MVTabBar;
class MVToolPanel;
class MVSubWindow;
class MVToolWidget;
class MVControlColumn;
class QTimer;
class QGraphicsOpacityEffect;
class MVHistogramWindow;
class MVPixelInfoWidget;
class QHoverEvent;
class MVPanelItemListButton;
class MVPanelItemBigButton;
class QAction;
class QPushButton;
class RenderQueue;
class SaveSizeWindow;
class MVRenderQueueWindow;
class XmlPreferencesWindow;
class TrayWidget;
class MVPreviewPanel;
class MVPreviewChooser;
class MVPreviewBaseBuilder;

// The single top window and the switchboard of the program: it owns the documents and panels,
// builds the menus (whose action texts are the keys of the dispatch) and places every child by
// hand in layoutWindow().
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(const QString& styleSheetText, QWidget* parent = nullptr);
    ~MainWindow() override;

    // The one door by which a file becomes the current document's media.
    bool loadFile(const QString& path);
    void updateWindowTitle();
    // Places the panel, tray, tab bar, panes and buttons.
    void layoutWindow();
    // Sets the view mode (0 single, 1 side by side, 2 stacked) and keeps buttons and actions in step.
    void setViewMode(int mode);
    // Runs the menu action with this text, as if chosen; false when no action has it.
    bool triggerActionByText(const QString& text);
    QAction* actionByText(const QString& text) const;
    MVMediaWidget* currentViewer() const;
    // True when every shown picture has had its passes and none is pending.
    bool displaySettled() const;
    // The document area in the central widget's coordinates.
    QRect documentArea() const;

    // The one way to show a message: a title, a text and up to three buttons; returns the index
    // of the button pressed (0 for the first). Modal.
    int showMessage(const QString& title, const QString& text, const QString& button1 = QStringLiteral("OK"),
                    const QString& button2 = QString(), const QString& button3 = QString());
    // The same without waiting: the window stays usable while the message is up.
    void showNotice(const QString& title, const QString& text);

    // The text of the "Media Info" dialog for a document (also for tests).
    static QString mediaInfoText(const MVDocument& doc, int outputWidth, int outputHeight);
    // "Load Next" / "Load Previous": the next loadable file of path's folder by step (+1, -1),
    // wrapping round and skipping other files; path itself when it is the only one. Empty when
    // the folder has none.
    static QString neighbourMediaFile(const QString& path, int step);
    // The local page a Help entry opens.
    static QString helpPageAnchor(const QString& actionText);

    std::vector<MVDocument> documents;
    int documentCount = 0;
    int currentDocument = 0;
    MVTabBar* tabBar = nullptr;
    MVToolPanel* toolPanel = nullptr;
    QWidget* trayArea = nullptr;
    MVSubWindow* renderQueueWindow = nullptr;
    MVSubWindow* pixelInfoWindow = nullptr;
    MVToolWidget* activeTool = nullptr;
    std::vector<QWidget*> panelControls;
    std::vector<QWidget*> nodeControls;
    bool trayVisible = true;
    bool panelVisible = true;
    int viewMode = 0;
    int nextTabID = 0;
    std::vector<float> paneShares;
    bool pluginMode = false;
    QString pluginCallID;

    // Tool panel: the catalogue it offers, the preset it stepped to last, and its wiring.
    ModCatalogueContents modCatalogue;
    int presetStepIndex = -1;
    // Builds the panel with both tabs; called once from the constructor.
    void buildToolPanel();
    // Reads the preset folders again into the Presets tab.
    void rebuildPresetsTab();
    // Enters the on-canvas tool with this number (MVToolPanelContent::ToolCommand).
    void startTool(int toolID);
    // "Crop/Straighten*" while the current document holds a crop.
    void updateCropButtonLabel();
    // Puts a tile, or each tile of a preset, into the current document's tray.
    void addPanelModToTray(ImageMod* mod, bool append);
    // Shows a preset just saved into "My Presets" in the Presets tab.
    void presetSavedToLibrary(const QString& name);
    // Applies the preset delta steps from the last one (wrapping); false when there are none.
    bool stepPreset(int delta);
    QPushButton* viewportButtons[3] = {nullptr, nullptr, nullptr};
    QPushButton* newTabButton = nullptr;
    std::vector<QPushButton*> miniButtons;

    // --- modal tools: crop and straighten, spot heal, media turns (ui/MainWindowTools.cpp) ---
    // startTool (declared with the panel) lives here: 0 "Crop/Straighten", 1 "Spot Heal"; a running
    // tool of another kind ends first; refuses with a message without a photo (and on video).
    // Lays the tile's on-canvas controls (points, frames, the white point pick) over the current
    // viewer as nodeControls, replacing any before; none for null or while a tool runs.
    void showOnCanvasControlsFor(ImageMod* mod);
    // The tool menu entries and Undo/Redo while a tool runs; true when the text was handled.
    bool toolMenuAction(const std::string& text);
    // A quarter turn of the current photo, one undo step; the crop turns with it.
    void rotateCurrentMedia(bool clockwise);
    // The crop the tool edits: the tray's hidden crop of the document, or null when it has none.
    ImageMod* documentCrop(MVDocument& doc) const;
    // The hand-over of a crop the tool made new: it joins the document's hidden mods.
    void commitCropToDocument(MVDocument& doc, std::unique_ptr<ImageMod> crop);

    // --- tray, undo and filter files (ui/MainWindowTray.cpp) ---
    TrayWidget* currentTray() const;
    // Shows the controls of the current tray's selected tile (none when nothing is selected).
    void rebuildControls();
    // The controls column for one tile; null clears it (ui/MainWindowControls.cpp).
    void showControlsFor(ImageMod* mod);
    // The load-filter flow: replaces the tiles (pinned ones stay) or appends; a damaged or newer
    // file keeps what could be read and says so. True when the file read cleanly.
    bool loadFilterFile(const QString& path, bool removeTrayNodes);
    bool exportFilterTo(const QString& path);
    void deleteSelectedTiles();
    void clearTraySelection();
    // A text question with a title, prompt, field label, default and two captions; false on cancel.
    bool askForText(const QString& title, const QString& prompt, const QString& fieldLabel, const QString& defaultText,
                    const QString& okCaption, const QString& cancelCaption, QString& answer);
    // An open or save file dialog.
    QString chooseFile(bool save, const QString& title, const QString& start, const QString& filter);
    // When set, messages, questions and file dialogs go here instead of modal dialogs (tests).
    std::function<int(const QString& title, const QString& text, const QStringList& buttons)> messageHook;
    std::function<bool(const QString& title, const QString& prompt, const QString& fieldLabel, const QString& defaultText,
                       const QString& okCaption, const QString& cancelCaption, QString& answer)>
        askTextHook;
    std::function<QString(bool save, const QString& title, const QString& start, const QString& filter)> fileDialogHook;

    // --- Control column of the selected tile (MainWindowControls.cpp) ---
    // showControlsFor (declared with the tray block) builds the column; the column doesn't own
    // the mod: whoever deletes it clears the column first.
    MVControlColumn* controlColumn = nullptr;
    ImageMod* controlledMod = nullptr;
    // Undo steps asked for by the controls, one per drag or pick.
    int adjustUndoRequests = 0;
    // Autohide: the column fades to controlsTargetOpacity in steps of the animation timer.
    QTimer* nodeControlAnimationTimer = nullptr;
    QGraphicsOpacityEffect* controlsOpacity = nullptr;
    float controlsTargetOpacity = 1.0f;
    QAction* copyCurveAction = nullptr;
    QAction* pasteCurveAction = nullptr;
    // The control that the Copy Curve / Paste Curve menu was opened on.
    QPointer<QWidget> curveMenuControl;
    // Shows or hides the column by the cursor's height (central widget coordinates).
    void controlsHoverMoved(QPoint pos);
    // Copy Curve and Paste Curve, and keeping the column shown when autohide is turned off;
    // true when the action was one of the curve entries.
    bool controlMenuTriggered(QAction* act);
    // The undo step of one adjustment: the tray snapshots the selected tile.
    void pushTileAdjustUndo();

    // --- Saving, batch, render queue, preferences, LUT files and plug-in hand-back (MainWindowSave.cpp) ---
    // The dialogs the save and batch flows ask through; tests answer them instead.
    struct SaveFlowDialogs {
        std::function<bool(SaveSizeWindow& dialog)> runOptions; // true on OK
        std::function<QString(const QString& title, const QString& start, const QString& filter)> askSavePath;
        std::function<QString(const QString& title, const QString& start, const QString& filter)> askOpenPath;
        std::function<QString(const QString& title, const QString& start)> askFolder;
    };
    SaveFlowDialogs saveDialogs;
    std::shared_ptr<RenderQueue> renderQueue;
    QTimer* processingInfoTimer = nullptr;
    QPushButton* sendToPluginButton = nullptr;
    QPointer<XmlPreferencesWindow> preferencesWindow;
    // Where the hand-back lines go (standard output, which the host reads).
    FILE* pluginOutput = stdout;

    // "Save As..." is (false, true), "Save Over Original" (false, false).
    void saveFlow(bool saveFrameOfVideo, bool showDialog);
    void batchFlow();
    void exportFilterLutFlow();
    void loadLutFlow();
    // Reads the .cube file and adds a "3D LUT" tile; a bad file is named in a message and adds nothing.
    bool addLutTile(const QString& path);
    void showPreferencesWindow();
    // Switches the hand-back on for the host's request id.
    void setPluginMode(const QString& callID);
    // The current document's flat tile list, cloned.
    std::vector<std::unique_ptr<ImageMod>> currentModClones();
    MVRenderQueueWindow* queueWindow() const;
    // The caches folder joined with "pluginreturnfilter.vnf".
    static QString pluginReturnFilterPath();

    // --- previews: hover previews and the quicklook chooser (ui/MainWindowPreviews.cpp) ---
    // The small version of the current photo from which previews start: the source with the
    // crop applied, fitted into the picture area's pixels. Made on a thread of its own.
    FlexImageFloat previewBase;
    // Takes in a finished base, or starts one when the current viewer's base is stale, its size,
    // crop or viewer changed. True when a new base was taken in.
    bool refreshPreviewBase(int width, int height);
    // True when previewBase stands for the current viewer at this size and crop.
    bool previewBaseMatches(int width, int height);
    // The pixel bound of the base: the current viewer's size less its margin, times the ratio.
    QSize previewBaseBound() const;
    // Wires the panel's hover signal and the base's timers; called once from the constructor.
    void buildPreviews();
    // "Quicklook Presets" and its append twin: the chooser over the picture area.
    void openQuicklook(bool append);
    // Lowers the hover preview and gives the viewer its list again.
    void endHoverPreview();
    MVPreviewPanel* previewPanel = nullptr;
    QPointer<MVPreviewChooser> quicklook;
    // Shared, so the window needs no full type of it where it is destroyed.
    std::shared_ptr<MVPreviewBaseBuilder> previewBaseBuilder;
    // The hover signal's append flag, for the hover it comes with.
    bool hoverAppend = false;
    const MVMediaWidget* previewBaseViewer = nullptr;
    std::vector<std::unique_ptr<ImageMod>> previewBaseCrop;
    QSize previewBaseSize;
    // Bumped with each new base; the preview panel is handed a base only when it has an older one.
    int previewBaseGeneration = 0;
    // A build was started because the base no longer stands; cleared when its result comes in.
    bool previewBaseOutdated = false;
    int previewPanelGeneration = 0;
    // While the base is made: a hover or a quicklook waiting for it, polled by previewBaseTimer.
    QTimer* previewBaseTimer = nullptr;
    ImageMod* hoverWaitingMod = nullptr;
    int hoverWaitTicks = 0;
    int quicklookWaiting = -1;
    // Makes the base ahead of the first hover, once the viewer is idle.
    QTimer* previewIdleTimer = nullptr;

    static constexpr int panelWidth = 224;
    static constexpr int trayHeight = 96;
    static constexpr int trayInset = 5;
    static constexpr int topStripHeight = 30;
    static constexpr int miniStripHeight = 30;

public slots:
    void startupWindowClosed(int resultCode);
    void tabDividerAdjusted(qtWidgetDivider* which);
    void sendToPluginHost();
    void loadFilterSlot(QString fileName, bool removeTrayNodes = true);
    void toolRequestedExit(MVToolWidget* whichTool);
    void viewportButtonPressed();
    void newTabButtonPressed();
    void documentTabChosen(int tabID);
    void documentTabWantsClosing(int tabID);
    void cancelRenderQueueItem(int ID);
    void processingInfoTimerFired();
    void previewProcessorTimerFired();
    void traySelectionChanged();
    void trayContentChanged();
    void menuTriggered(QAction* act);
    void actionTriggered();
    void controlHeightChanged();
    void controlHovered(QWidget* control);
    void controlAdjusted(QWidget* control);
    void controlRightClicked(QWidget* control);
    void shuttleControlAdjusted();
    void setShuttleInPoint();
    void setShuttleOutPoint();
    void controlAboutToBeAdjusted();
    void modButtonClicked(MVPanelItemListButton* clicker, bool append, bool star);
    void comIDButtonClicked(MVPanelItemBigButton* button);
    void deleteFavoriteClicked(MVPanelItemListButton* row);
    void imageModHovered(ImageMod* mod);
    void filterPreviewChosen(ImageMod* mod, bool append);
    void previewSectionEnabled(int tabID, QString sectionName, bool enabled);
    void saveFavoriteFilterPrompt();
    void onEmptyClick();
    void onImageRepositioned();
    void videoShuttleUpdateRequest(VideoLoaderSaverTime myTime);
    void hidePanelButtonPressed();
    void hideTrayButtonPressed();
    void nextPresetButtonPressed();
    void previousPresetButtonPressed();
    void toggleHistogramView(int graphType);
    void previewButtonPressed();
    void deleteNodesButtonPressed();
    void previewVideoButtonPressed();
    void cancelProcessingButtonPressed();
    void cycleInterfaceVisibility();
    void toggleInterfaceVisibility();
    void startupButtonPressed();
    void nodeControlAnimationTimerFired();
    void displayFinishedUpdating();

protected:
    bool event(QEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dropEvent(QDropEvent* e) override;

private:
    void buildMenus();
    void buildButtons();
    QAction* addMenuAction(QMenu* menu, const char* text, std::initializer_list<const char*> shortcuts = {},
                           bool checkable = false);
    void addWindowAction(const char* text, std::initializer_list<QKeySequence> shortcuts);
    void addDocument();
    void closeDocumentAt(int index);
    void selectDocument(int index);
    int documentIndexForTab(int tabID) const;
    int documentIndexForViewer(const QObject* viewer) const;
    // The viewer gets the flat list of the current document's tiles.
    void handListToViewer(MVDocument& doc);
    void zoomCurrent(float zoom);
    void setInterfaceState(bool panelShown, bool trayShown);
    void showLoadDialog();
    void showMediaInfo();
    void showAbout();
    void openHelpPage(const QString& actionText);
    void revealInFileBrowser(const QString& path);
    void storePreferences();
    void restoreWindowGeometry();
    void layoutPanes(const QRect& area);
    // --- tray (ui/MainWindowTray.cpp) ---
    bool trayMenuAction(const std::string& text);
    void attachTray(MVDocument& doc);
    void detachTray(MVDocument& doc);
    void resetTrayForNewMedia(MVDocument& doc);
    void layoutTray();
    // Saving area: the queue, its window and timer, the plug-in button, the extra menu entries.
    void setupSaveArea(QMenu* fileMenu, QMenu* editMenu);
    // The menu texts of the saving area; false when t isn't one of them.
    bool saveAreaMenuTriggered(const std::string& t, QAction* act);
    void placePluginButton();

    QWidget* central = nullptr;
    QPointer<MVStartupWindow> startupWindow;
    QPointer<MVHelpWindow> helpWindow;
    std::vector<QAction*> menuActions;
    QAction* viewModeActions[3] = {nullptr, nullptr, nullptr};
    QAction* autohideAction = nullptr;
    QAction* hoverPreviewsAction = nullptr;

    // --- scopes and pixel inspector (ui/MainWindowScopes.cpp) ---
public:
    MVHistogramWindow* histogramWindow = nullptr;
    MVPixelInfoWidget* pixelInfo = nullptr;
    void togglePixelInspector();

private:
    void buildScopeWindows();
    // Gives a new viewer its feed into the scopes.
    void attachScopes(MVMediaWidget* viewer);
    void hoverMovedForScopes(QHoverEvent* e);
    // Shows the pixel of the pane under a point of this window; false outside any picture.
    bool inspectPixelAt(const QPoint& windowPos);
    void pickPixelForInspector();
    void placeSubWindow(QWidget* window, bool top);
    // The viewer whose passes reach the histogram, and whether it wants them; read by workers.
    std::atomic<MVMediaWidget*> histogramSource{nullptr};
    std::atomic<bool> histogramWanted{false};
    QPoint lastHoverPos{-1, -1};
};
