#include "ui/MainWindow.h"
#include "ui/MVHelpWindow.h"

#include "desktop_only/MediaCodec.h"
#include "desktop_only/MediaLoading.h"
#include "document/MVMediaWidget.h"
#include "document/qtWidgetDivider.h"
#include "filters/MultiData.h"
#include "filters/PreferenceKeys.h"
#include "filters/PresetLibrary.h"
#include "media/ColorSpaceKind.h"
#include "media/MediaFormats.h"
#include "media/MediaProperties.h"
#include "ui/MVStartupWindow.h"
#include "ui/MVTabBar.h"
#include "ui/MVToolPanel.h"
#include "ui/ModalQuestions.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtGui/QCloseEvent>
#include <QtGui/QDesktopServices>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

const char* const kViewModeTexts[3] = {"Single View", "Split Screen Vertical", "Split Screen Horizontal"};
const char* const kViewModeArt[3] = {"single", "vertical", "horizontal"};

QString folderOf(const QString& path)
{
    return QFileInfo(path).absolutePath();
}

QString openDialogFilter()
{
    QStringList patterns;
    QStringList rows;
    for (const MediaFormat& f : mediaOpenFormats()) {
        QStringList mine;
        for (const QString& ext : QString::fromLatin1(f.extensions).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            mine << QStringLiteral("*.") + ext << QStringLiteral("*.") + ext.toUpper();
        patterns << mine;
        rows << QString::fromLatin1(f.displayName) + QStringLiteral(" (") + mine.join(QLatin1Char(' ')) +
                    QLatin1Char(')');
    }
    return QStringLiteral("All Images (") + patterns.join(QLatin1Char(' ')) + QStringLiteral(");;") +
        rows.join(QStringLiteral(";;")) + QStringLiteral(";;All Files (*)");
}

const char* orientationName(int o)
{
    switch (o) {
    case 2: return "mirrored";
    case 3: return "turned 180\u00b0";
    case 4: return "turned 180\u00b0 and mirrored";
    case 5: return "turned 90\u00b0 right and mirrored";
    case 6: return "turned 90\u00b0 right";
    case 7: return "turned 90\u00b0 left and mirrored";
    case 8: return "turned 90\u00b0 left";
    default: return "upright";
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Construction

MainWindow::MainWindow(const QString& styleSheetText, QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Vantrel Photo"));
    setStyleSheet(styleSheetText);
    setAcceptDrops(true);
    MultiData::global().readFile(preferencesPath());

    central = new QWidget(this);
    central->setObjectName(QStringLiteral("mainBackground"));
    central->setAttribute(Qt::WA_StyledBackground, true);
    central->setStyleSheet(QStringLiteral("QWidget#mainBackground { background-image: url(:/img/main_bg.png); }"));
    setCentralWidget(central);

    buildToolPanel();
    buildPreviews();
    trayArea = new QWidget(central);
    trayArea->setObjectName(QStringLiteral("trayArea"));
    trayArea->setAttribute(Qt::WA_StyledBackground, true);
    trayArea->setStyleSheet(QStringLiteral("QWidget#trayArea { background: #181818; border: 1px solid #343434;"
                                           " border-radius: 6px; }"));

    tabBar = new MVTabBar(central);
    connect(tabBar, &MVTabBar::tabActivated, this, &MainWindow::documentTabChosen);
    connect(tabBar, &MVTabBar::tabRequestedClose, this, &MainWindow::documentTabWantsClosing);

    buildButtons();
    buildMenus();
    buildScopeWindows();
    addDocument();
    restoreWindowGeometry();
    layoutWindow();
    updateWindowTitle();

    // Construction ends with the welcome card; the window itself appears when the card closes.
    startupWindow = new MVStartupWindow();
    startupWindow->setAttribute(Qt::WA_DeleteOnClose);
    connect(startupWindow->loadButton, &QPushButton::clicked, this, &MainWindow::startupButtonPressed);
    connect(startupWindow, &QDialog::finished, this, &MainWindow::startupWindowClosed);
    startupWindow->show();
}

MainWindow::~MainWindow()
{
    delete startupWindow.data();
    // Viewers wait for their workers in their destructors; take them down before the rest.
    for (MVDocument& d : documents)
        delete d.viewer;
}

void MainWindow::restoreWindowGeometry()
{
    const QStringList parts = QString::fromStdString(
        MultiData::global().getString(PrefKeys::kWindowGeometry, PrefKeys::kWindowGeometryDefault))
                                  .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QRect r(100, 100, 1200, 800);
    if (parts.size() == 4) {
        bool ok[4];
        const QRect stored(parts[0].toInt(&ok[0]), parts[1].toInt(&ok[1]), parts[2].toInt(&ok[2]),
                           parts[3].toInt(&ok[3]));
        if (ok[0] && ok[1] && ok[2] && ok[3] && stored.width() >= 400 && stored.height() >= 300)
            r = stored;
    }
    resize(r.size());
    move(r.topLeft());
    if (MultiData::global().getBool(PrefKeys::kIsFullscreen, PrefKeys::kIsFullscreenDefault))
        setWindowState(windowState() | Qt::WindowMaximized);
}

QAction* MainWindow::addMenuAction(QMenu* menu, const char* text, std::initializer_list<const char*> shortcuts,
                                   bool checkable)
{
    QAction* a = menu->addAction(QString::fromUtf8(text));
    QList<QKeySequence> keys;
    for (const char* s : shortcuts)
        keys << QKeySequence(QString::fromUtf8(s));
    if (!keys.isEmpty())
        a->setShortcuts(keys);
    a->setCheckable(checkable);
    menuActions.push_back(a);
    return a;
}

void MainWindow::addWindowAction(const char* text, std::initializer_list<QKeySequence> shortcuts)
{
    QAction* a = new QAction(QString::fromUtf8(text), this);
    a->setShortcuts(QList<QKeySequence>(shortcuts));
    connect(a, &QAction::triggered, this, &MainWindow::actionTriggered);
    addAction(a);
    menuActions.push_back(a);
}

void MainWindow::buildMenus()
{
    QMenuBar* bar = menuBar();
    bar->setStyleSheet(QStringLiteral(
        "QMenuBar { background: #1e1e1e; color: #d8d8d8; border-bottom: 1px solid #121212; padding: 1px 4px; }"
        "QMenuBar::item { padding: 4px 10px; background: transparent; }"
        "QMenuBar::item:selected { background: #3a3a3a; border-radius: 3px; }"
        "QMenu { background: #2a2a2a; color: #e6e6e6; border: 1px solid #141414; padding: 4px 0; }"
        "QMenu::item { padding: 4px 28px 4px 22px; }"
        "QMenu::item:selected { background: #e3963e; color: #1e1a16; }"
        "QMenu::item:disabled { color: #6c6c6c; }"
        "QMenu::separator { height: 1px; background: #3c3c3c; margin: 4px 8px; }"));

    QMenu* file = bar->addMenu(QStringLiteral("File"));
    addMenuAction(file, "Load Photo...", {"o", "Ctrl+o"});
    addMenuAction(file, "New Tab", {"Ctrl+t"});
    addMenuAction(file, "Save As...", {"s", "Ctrl+Shift+s"});
    addMenuAction(file, "Save Over Original", {"Ctrl+s"});
    addMenuAction(file, "Close Photo", {"Ctrl+W"});
    file->addSeparator();
    addMenuAction(file, "Reveal Current File");
    addMenuAction(file, "Load Next");
    addMenuAction(file, "Load Previous");
    addMenuAction(file, "Batch Process Folder...", {"Ctrl+B"});
    file->addSeparator();
    addMenuAction(file, "Load Filter...", {"Ctrl+l"});
    addMenuAction(file, "Export Filter...", {"Ctrl+e"});
    addMenuAction(file, "Save Filter to Presets...", {"+", "="});
    addMenuAction(file, "Reveal Presets Folder");

    QMenu* edit = bar->addMenu(QStringLiteral("Edit"));
    QMenu* editSub = edit->addMenu(QStringLiteral("Edit "));
    addMenuAction(editSub, "Crop/Straighten", {"Ctrl+K"});
    edit->addSeparator();
    addMenuAction(edit, "Undo", {"Ctrl+Z"});
    addMenuAction(edit, "Redo", {"Ctrl+Shift+Z"});
    edit->addSeparator();
    addMenuAction(edit, "Rotate Left", {"L"});
    addMenuAction(edit, "Rotate Right", {"R"});
    edit->addSeparator();
    addMenuAction(edit, "Quicklook Presets", {"F"});
    addMenuAction(edit, "Toggle Original");
    addMenuAction(edit, "Next Preset");
    addMenuAction(edit, "Previous Preset");
    addMenuAction(edit, "Remix Up")->setVisible(false);
    addMenuAction(edit, "Remix Down")->setVisible(false);
    addMenuAction(edit, "Random Preset", {"Ctrl+r"});
    edit->addSeparator();
    addMenuAction(edit, "Nest Selected Tiles", {"n", "Ctrl+n"});
    addMenuAction(edit, "Unnest Selected Tile", {"Shift+n"});

    QMenu* view = bar->addMenu(QStringLiteral("View"));
    addMenuAction(view, "Zoom To 100%", {"8"});
    addMenuAction(view, "Zoom To Fit", {"9"});
    addMenuAction(view, "Zoom Toggle", {"0"});
    view->addSeparator();
    addMenuAction(view, "Show/Hide Tray", {"T"});
    addMenuAction(view, "Show/Hide Tool Panel", {"P"});
    addMenuAction(view, "Show/Hide Render Queue", {"Q"});
    addMenuAction(view, "Show/Hide Pixel Inspector", {"I"});
    view->addSeparator();
    addMenuAction(view, "Luminance Histogram", {"1"});
    addMenuAction(view, "RGB Histogram", {"2"});
    addMenuAction(view, "Luminance Waveform", {"3"});
    addMenuAction(view, "RGB Waveform", {"4"});
    addMenuAction(view, "Chrominance Chart", {"5"});
    view->addSeparator();
    addMenuAction(view, "Toggle Interface", {"Shift+Tab"});
    addMenuAction(view, "Cycle Interface", {"Alt+Tab"});
    view->addSeparator();
    for (int i = 0; i < 3; ++i)
        viewModeActions[i] = addMenuAction(view, kViewModeTexts[i], {}, true);
    viewModeActions[0]->setChecked(true);
    view->addSeparator();
    autohideAction = addMenuAction(view, "Autohide Controls", {}, true);
    autohideAction->setChecked(
        MultiData::global().getBool(PrefKeys::kAutohideControls, PrefKeys::kAutohideControlsDefault));
    hoverPreviewsAction = addMenuAction(view, "Show Hover Previews", {}, true);
    hoverPreviewsAction->setChecked(
        MultiData::global().getBool(PrefKeys::kUseHoverPreviews, PrefKeys::kUseHoverPreviewsDefault));
    view->addSeparator();
    addMenuAction(view, "Media Info", {"Ctrl+i"});

    QMenu* help = bar->addMenu(QStringLiteral("Help "));
    addMenuAction(help, "Help Website");
    help->addSeparator();
    addMenuAction(help, "Send Feedback");
    addMenuAction(help, "Sign Up For The Newsletter");
    addMenuAction(help, "Follow Us On Social Media");
    addMenuAction(help, "Vantrel News");
    addMenuAction(help, "About");

    for (QMenu* m : {file, edit, editSub, view, help})
        connect(m, &QMenu::triggered, this, &MainWindow::menuTriggered);
    setupSaveArea(file, edit);

    // Actions on the window only, without a menu entry.
    addWindowAction("Quicklook Presets (Append)", {QKeySequence(QStringLiteral("Shift+F"))});
    addWindowAction("Left Pressed", {QKeySequence(Qt::Key_Left)});
    addWindowAction("Right Pressed", {QKeySequence(Qt::Key_Right)});
}

void MainWindow::buildButtons()
{
    const QString miniStyle = QStringLiteral("QPushButton { border-image: url(:/img/mini_button_bg.png) 8 8 8 8;"
                                             " border-width: 8px; padding: -8px; }"
                                             "QPushButton:pressed { border-image: url(:/img/mini_button_bg_down.png)"
                                             " 8 8 8 8; }");
    struct Mini {
        const char* icon;
        const char* tip;
        void (MainWindow::*slot)();
    };
    const Mini minis[] = {
        {":/img/minib_icon_hide_p.png", "Show and hide the side panel.", &MainWindow::hidePanelButtonPressed},
        {":/img/minib_icon_hide_t.png", "Show and hide the bottom tray.", &MainWindow::hideTrayButtonPressed},
        {":/img/minib_icon_visible.png", "Temporarily disable and re-enable the image modification tiles in the tray.",
         &MainWindow::previewButtonPressed},
        {":/img/minib_icon_del.png",
         "Delete the image modification tiles in the tray. Press a second time to also delete pinned tiles.",
         &MainWindow::deleteNodesButtonPressed},
        {":/img/minib_icon_previous_preset.png", "Load the previous preset in the Presets tab.",
         &MainWindow::previousPresetButtonPressed},
        {":/img/minib_icon_next_preset.png", "Load the next preset in the Presets tab.",
         &MainWindow::nextPresetButtonPressed},
    };
    for (const Mini& m : minis) {
        auto* b = new QPushButton(central);
        b->setFocusPolicy(Qt::NoFocus);
        b->setStyleSheet(miniStyle);
        b->setIcon(QIcon(QString::fromLatin1(m.icon)));
        b->setIconSize(QSize(16, 16));
        b->setToolTip(QString::fromUtf8(m.tip));
        connect(b, &QPushButton::clicked, this, m.slot);
        miniButtons.push_back(b);
    }

    for (int i = 0; i < 3; ++i) {
        auto* b = new QPushButton(central);
        b->setCheckable(true);
        b->setFocusPolicy(Qt::NoFocus);
        const QString name = QString::fromLatin1(kViewModeArt[i]);
        b->setStyleSheet(QStringLiteral("QPushButton { border-image: url(:/img/panels_%1_inactive.png); }"
                                        "QPushButton:checked { border-image: url(:/img/panels_%1_active.png); }")
                             .arg(name));
        b->setToolTip(QString::fromLatin1(kViewModeTexts[i]));
        connect(b, &QPushButton::clicked, this, &MainWindow::viewportButtonPressed);
        viewportButtons[i] = b;
    }
    viewportButtons[0]->setChecked(true);

    newTabButton = new QPushButton(central);
    newTabButton->setFocusPolicy(Qt::NoFocus);
    newTabButton->setToolTip(QStringLiteral("Open a new document tab."));
    newTabButton->setStyleSheet(QStringLiteral("QPushButton { border-image: url(:/img/new_tab_button.png); }"
                                               "QPushButton:pressed { border-image: url(:/img/new_tab_button_down.png); }"));
    connect(newTabButton, &QPushButton::clicked, this, &MainWindow::newTabButtonPressed);
}

// ---------------------------------------------------------------------------------------------
// Documents

void MainWindow::addDocument()
{
    MVDocument doc;
    doc.tabID = nextTabID++;
    doc.viewer = new MVMediaWidget(central);
    connect(doc.viewer, &MVMediaWidget::emptyClickSignal, this, &MainWindow::onEmptyClick);
    connect(doc.viewer, &MVMediaWidget::imageRepositionedSignal, this, &MainWindow::onImageRepositioned);
    connect(doc.viewer, &MVMediaWidget::displayUpdatedSignal, this, &MainWindow::displayFinishedUpdating);
    attachTray(doc);
    attachScopes(doc.viewer);
    doc.divider = new qtWidgetDivider(central);
    connect(doc.divider, &qtWidgetDivider::dividerMoved, this, &MainWindow::tabDividerAdjusted);
    documents.push_back(std::move(doc));
    documentCount = int(documents.size());
    tabBar->addTab(documents.back().tabID, QStringLiteral("Empty Tab"));
    currentDocument = documentCount - 1;
    tabBar->selectTab(documents.back().tabID);
    paneShares.clear();
    handListToViewer(documents.back());
    layoutWindow();
}

void MainWindow::closeDocumentAt(int index)
{
    if (index < 0 || index >= documentCount)
        return;
    if (activeTool)
        toolRequestedExit(activeTool); // a tool works on one picture
    MVDocument& doc = documents[size_t(index)];
    doc.viewer->clearMedia();
    tabBar->removeTab(doc.tabID);
    detachTray(doc);
    delete doc.viewer;
    delete doc.divider;
    documents.erase(documents.begin() + index);
    documentCount = int(documents.size());
    selectDocument(std::min(index, documentCount - 1));
    paneShares.clear();
    layoutWindow();
}

void MainWindow::selectDocument(int index)
{
    if (index < 0 || index >= documentCount)
        return;
    if (activeTool && index != currentDocument)
        toolRequestedExit(activeTool); // a tool works on one picture
    currentDocument = index;
    tabBar->selectTab(documents[size_t(index)].tabID);
    documents[size_t(index)].viewer->previewBaseStale = true;
    layoutWindow();
    updateWindowTitle();
}

int MainWindow::documentIndexForTab(int tabID) const
{
    for (int i = 0; i < documentCount; ++i)
        if (documents[size_t(i)].tabID == tabID)
            return i;
    return -1;
}

int MainWindow::documentIndexForViewer(const QObject* viewer) const
{
    for (int i = 0; i < documentCount; ++i)
        if (documents[size_t(i)].viewer == viewer)
            return i;
    return -1;
}

MVMediaWidget* MainWindow::currentViewer() const
{
    return currentDocument >= 0 && currentDocument < documentCount ? documents[size_t(currentDocument)].viewer
                                                                     : nullptr;
}

bool MainWindow::displaySettled() const
{
    for (const MVDocument& d : documents) {
        MVMediaWidget* v = d.viewer;
        if (v->isHidden() || !v->hasMedia)
            continue;
        if (v->isProcessing() || v->updateDisplayTimer.isActive() || v->hiResTimer.isActive() ||
            v->finishedPasses() == 0)
            return false;
    }
    return true;
}

bool MainWindow::loadFile(const QString& path)
{
    if (currentDocument < 0 || currentDocument >= documentCount)
        return false;
    if (activeTool)
        toolRequestedExit(activeTool); // a tool works on one picture
    MVDocument& doc = documents[size_t(currentDocument)];
    resetTrayForNewMedia(doc);
    const std::string utf8 = path.toUtf8().toStdString();
    MediaLoadStatus status = MediaLoadStatus::UnsupportedType;
    bool ok = false;
    if (IsLoadableImagePath(utf8) || isNativeImagePath(utf8)) {
        doc.viewer->clearMedia();
        auto* image = new FlexImageFloat(100, 100, 4);
        LoadedMediaInfo info;
        if (LoadMediaFile(*image, utf8, &info, &status)) {
            doc.viewer->setSource(image);
            doc.mediaInfo = std::move(info);
            ok = true;
        } else {
            delete image;
        }
    }
    if (!ok) {
        doc.filePath.clear();
        setWindowFilePath(QString());
        updateWindowTitle();
        showNotice(QStringLiteral("Can't Load File"),
                   QStringLiteral("Vantrel can't open ") + QFileInfo(path).fileName() +
                       QStringLiteral(". You may need to install drivers for this file format or update your "
                                      "operating system."));
        return false;
    }
    MultiData::global().setString(PrefKeys::kLastMediaLoadPath, folderOf(path).toStdString());
    if (MultiData::global().getString("LastImgSavePathStr", "").empty())
        MultiData::global().setString("LastImgSavePathStr", folderOf(path).toStdString());
    doc.filePath = path;
    setWindowFilePath(path);
    handListToViewer(doc);
    updateWindowTitle();
    layoutWindow();
    // A photo to show makes the welcome card pointless.
    if (startupWindow)
        startupWindow->done(QDialog::Accepted);
    return true;
}

void MainWindow::updateWindowTitle()
{
    QString title = QStringLiteral("Vantrel Photo");
    const MVDocument* doc = currentDocument < documentCount ? &documents[size_t(currentDocument)] : nullptr;
    if (doc && !doc->filePath.isEmpty())
        title += QStringLiteral(" - ") + QFileInfo(doc->filePath).fileName();
    setWindowTitle(title);
    updateCropButtonLabel();
    for (const MVDocument& d : documents)
        tabBar->setTabLabel(d.tabID, d.filePath.isEmpty() ? QStringLiteral("Empty Tab") : QFileInfo(d.filePath).fileName());
    tabBar->layoutTabs();
}

void MainWindow::showLoadDialog()
{
    const QString start = QString::fromStdString(MultiData::global().getString(PrefKeys::kLastMediaLoadPath, ""));
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Load Photo"), start, openDialogFilter());
    if (path.isEmpty())
        return;
    // A tab that already shows a photo keeps it; the new one opens beside it.
    if (!documents[size_t(currentDocument)].filePath.isEmpty())
        addDocument();
    loadFile(path);
}

// ---------------------------------------------------------------------------------------------
// Layout

QString MainWindow::neighbourMediaFile(const QString& path, int step)
{
    const QFileInfo current(path);
    const QStringList names = current.dir().entryList(); // the folder's default order
    int start = -1;
    for (int i = 0; i < names.size(); ++i)
        if (names[i].compare(current.fileName(), Qt::CaseInsensitive) == 0) {
            start = i;
            break;
        }
    const int count = int(names.size());
    if (count == 0)
        return QString();
    if (start < 0)
        start = step > 0 ? count - 1 : 0; // the file has gone: begin at the end it would leave from
    for (int i = (start + step + count) % count;; i = (i + step + count) % count) {
        // IsLoadableImagePath compares extensions without regard to case.
        if (IsLoadableImagePath(names[i].toStdString()))
            return current.dir().filePath(names[i]);
        if (i == start)
            return QString();
    }
}

QRect MainWindow::documentArea() const
{
    const int W = central->width(), H = central->height();
    const int right = W - (panelVisible ? panelWidth : 0);
    const int bottom = H - (trayVisible ? trayHeight : 0) - miniStripHeight;
    return QRect(0, topStripHeight, std::max(1, right), std::max(1, bottom - topStripHeight));
}

void MainWindow::layoutWindow()
{
    if (!central)
        return;
    const int W = central->width(), H = central->height();
    const QRect area = documentArea();

    toolPanel->setVisible(panelVisible);
    if (panelVisible)
        toolPanel->setGeometry(W - panelWidth, 0, panelWidth, H);
    trayArea->setVisible(trayVisible);
    if (trayVisible)
        trayArea->setGeometry(trayInset, H - trayHeight, area.width() - 2 * trayInset, trayHeight - trayInset);

    // Top strip: tabs on the left, new tab and view modes on the right.
    const int buttonY = (topStripHeight - 22) / 2;
    int x = area.right() - 6;
    for (int i = 2; i >= 0; --i) {
        x -= 28;
        viewportButtons[i]->setGeometry(x, buttonY, 28, 22);
    }
    x -= 34;
    newTabButton->setGeometry(x, buttonY, 28, 22);
    tabBar->setVisible(documentCount > 1);
    tabBar->setGeometry(0, topStripHeight - MVTabBar::barHeight, std::max(1, x - 8), MVTabBar::barHeight);

    // Mini buttons under the picture, above the tray.
    const int miniY = area.bottom() + 1 + (miniStripHeight - 24) / 2;
    x = trayInset;
    for (size_t i = 0; i < miniButtons.size(); ++i) {
        miniButtons[i]->setGeometry(x, miniY, 30, 24);
        x += (i == 1 || i == 3) ? 38 : 32; // small gaps between the button groups
    }
    miniButtons[0]->setIcon(QIcon(panelVisible ? QStringLiteral(":/img/minib_icon_hide_p.png")
                                               : QStringLiteral(":/img/minib_icon_show_p.png")));
    miniButtons[1]->setIcon(QIcon(trayVisible ? QStringLiteral(":/img/minib_icon_hide_t.png")
                                              : QStringLiteral(":/img/minib_icon_show_t.png")));

    layoutPanes(area);
    layoutTray();
    controlHeightChanged();
    placePluginButton();
}

void MainWindow::layoutPanes(const QRect& area)
{
    for (int i = 0; i < documentCount; ++i)
        documents[size_t(i)].divider->hide();
    if (viewMode == 0 || documentCount < 2) {
        for (int i = 0; i < documentCount; ++i) {
            MVMediaWidget* v = documents[size_t(i)].viewer;
            if (i == currentDocument) {
                v->setGeometry(area);
                v->show();
            } else {
                v->hide();
            }
        }
        return;
    }
    const bool sideBySide = viewMode == 1;
    const int n = documentCount;
    if (int(paneShares.size()) != n)
        paneShares.assign(size_t(n), 1.0f / float(n));
    float sum = 0.0f;
    for (float s : paneShares)
        sum += s;
    const int length = (sideBySide ? area.width() : area.height()) - qtWidgetDivider::thickness * (n - 1);
    double cumulative = 0.0;
    int start = sideBySide ? area.left() : area.top();
    for (int i = 0; i < n; ++i) {
        const int from = int(std::lround(cumulative / sum * length));
        cumulative += paneShares[size_t(i)];
        const int to = i == n - 1 ? length : int(std::lround(cumulative / sum * length));
        const int extent = std::max(1, to - from);
        MVDocument& d = documents[size_t(i)];
        if (sideBySide)
            d.viewer->setGeometry(start, area.top(), extent, area.height());
        else
            d.viewer->setGeometry(area.left(), start, area.width(), extent);
        d.viewer->show();
        start += extent;
        if (i < n - 1) {
            d.divider->setVerticalBar(sideBySide);
            if (sideBySide)
                d.divider->setGeometry(start, area.top(), qtWidgetDivider::thickness, area.height());
            else
                d.divider->setGeometry(area.left(), start, area.width(), qtWidgetDivider::thickness);
            d.divider->show();
            d.divider->raise();
            start += qtWidgetDivider::thickness;
        }
    }
}

void MainWindow::tabDividerAdjusted(qtWidgetDivider* which)
{
    int i = -1;
    for (int k = 0; k + 1 < documentCount; ++k)
        if (documents[size_t(k)].divider == which)
            i = k;
    if (i < 0 || viewMode == 0)
        return;
    const bool sideBySide = viewMode == 1;
    const QRect a = documentArea();
    const QRect first = documents[size_t(i)].viewer->geometry();
    const QRect second = documents[size_t(i + 1)].viewer->geometry();
    const int begin = sideBySide ? first.left() : first.top();
    const int both = sideBySide ? first.width() + second.width() : first.height() + second.height();
    const int minimum = std::min(40, both / 2);
    const int wanted = std::clamp(which->dragPosition - qtWidgetDivider::thickness / 2 - begin, minimum, both - minimum);
    const int length = (sideBySide ? a.width() : a.height()) - qtWidgetDivider::thickness * (documentCount - 1);
    if (length < 1)
        return;
    // Shares become plain fractions of the length, so the pair keeps its sum.
    for (int k = 0; k < documentCount; ++k) {
        const QRect g = documents[size_t(k)].viewer->geometry();
        paneShares[size_t(k)] = float(sideBySide ? g.width() : g.height()) / float(length);
    }
    paneShares[size_t(i)] = float(wanted) / float(length);
    paneShares[size_t(i + 1)] = float(both - wanted) / float(length);
    layoutWindow();
}

void MainWindow::setViewMode(int mode)
{
    viewMode = std::clamp(mode, 0, 2);
    for (int i = 0; i < 3; ++i) {
        viewportButtons[i]->setChecked(i == viewMode);
        viewModeActions[i]->setChecked(i == viewMode);
    }
    layoutWindow();
}

void MainWindow::viewportButtonPressed()
{
    for (int i = 0; i < 3; ++i)
        if (sender() == viewportButtons[i])
            setViewMode(i);
}

void MainWindow::setInterfaceState(bool panelShown, bool trayShown)
{
    panelVisible = panelShown;
    trayVisible = trayShown;
    layoutWindow();
}

void MainWindow::resizeEvent(QResizeEvent* e)
{
    QMainWindow::resizeEvent(e);
    layoutWindow();
}

// ---------------------------------------------------------------------------------------------
// Menus

QAction* MainWindow::actionByText(const QString& text) const
{
    for (QAction* a : menuActions)
        if (a->text() == text)
            return a;
    return nullptr;
}

bool MainWindow::triggerActionByText(const QString& text)
{
    QAction* a = actionByText(text);
    if (!a)
        return false;
    a->trigger();
    return true;
}

void MainWindow::actionTriggered()
{
    if (auto* a = qobject_cast<QAction*>(sender()))
        menuTriggered(a);
}

void MainWindow::menuTriggered(QAction* act)
{
    if (!act || controlMenuTriggered(act))
        return;
    const std::string t = act->text().toUtf8().toStdString();
    if (toolMenuAction(t) || trayMenuAction(t))
        return;
    MVMediaWidget* viewer = currentViewer();
    MVDocument* doc = currentDocument < documentCount ? &documents[size_t(currentDocument)] : nullptr;
    if (saveAreaMenuTriggered(t, act))
        return;

    if (t == "Load Photo...") {
        showLoadDialog();
    } else if (t == "New Tab") {
        newTabButtonPressed();
    } else if (t == "Close Photo") {
        if (doc) {
            doc->viewer->clearMedia();
            doc->filePath.clear();
            doc->mediaInfo = LoadedMediaInfo();
            resetTrayForNewMedia(*doc);
            setWindowFilePath(QString());
            if (documentCount >= 2)
                closeDocumentAt(currentDocument);
        }
        layoutWindow();
        updateWindowTitle();
    } else if (t == "Reveal Current File") {
        if (doc && !doc->filePath.isEmpty())
            revealInFileBrowser(doc->filePath);
    } else if (t == "Load Next" || t == "Load Previous") {
        // The tray stays: a look can be tried through a whole folder.
        if (doc && !doc->filePath.isEmpty()) {
            const QString next = neighbourMediaFile(doc->filePath, t == "Load Next" ? 1 : -1);
            if (!next.isEmpty())
                loadFile(next);
        }
    } else if (t == "Save Filter to Presets...") {
        saveFavoriteFilterPrompt();
    } else if (t == "Reveal Presets Folder") {
        const QString folder = QString::fromStdString(PresetLibrary(dataFolder()).presetsFolder());
        QDir().mkpath(folder);
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    } else if (t == "Quicklook Presets" || t == "Quicklook Presets (Append)") {
        openQuicklook(t == "Quicklook Presets (Append)");
    } else if (t == "Toggle Original") {
        previewButtonPressed();
    } else if (t == "Next Preset") {
        nextPresetButtonPressed();
    } else if (t == "Previous Preset") {
        previousPresetButtonPressed();
    } else if (t == "Random Preset") {
        // The preset index is rand(); the step takes it modulo the count.
        presetStepIndex = std::rand();
        nextPresetButtonPressed();
    } else if (t == "Zoom To 100%") {
        zoomCurrent(1.0f);
    } else if (t == "Zoom To Fit") {
        zoomCurrent(0.0f);
    } else if (t == "Zoom Toggle") {
        if (viewer)
            zoomCurrent(!viewer->fitToWindow && viewer->zoom >= 1.0f ? 0.0f : 1.0f);
    } else if (t == "Show/Hide Tray") {
        setInterfaceState(panelVisible, !trayVisible);
    } else if (t == "Show/Hide Tool Panel") {
        setInterfaceState(!panelVisible, trayVisible);
    } else if (t == "Show/Hide Pixel Inspector") {
        togglePixelInspector();
    } else if (t == "Luminance Histogram") {
        toggleHistogramView(0);
    } else if (t == "RGB Histogram") {
        toggleHistogramView(1);
    } else if (t == "Luminance Waveform") {
        toggleHistogramView(2);
    } else if (t == "RGB Waveform") {
        toggleHistogramView(3);
    } else if (t == "Chrominance Chart") {
        toggleHistogramView(4);
    } else if (t == "Toggle Interface") {
        toggleInterfaceVisibility();
    } else if (t == "Cycle Interface") {
        cycleInterfaceVisibility();
    } else if (t == kViewModeTexts[0]) {
        setViewMode(0);
    } else if (t == kViewModeTexts[1]) {
        setViewMode(1);
    } else if (t == kViewModeTexts[2]) {
        setViewMode(2);
    } else if (t == "Autohide Controls") {
        MultiData::global().setBool(PrefKeys::kAutohideControls, act->isChecked());
    } else if (t == "Show Hover Previews") {
        // The panel reads the flag; it is stored on closing.
        toolPanel->hoverPreviews = act->isChecked();
    } else if (t == "Media Info") {
        showMediaInfo();
    } else if (t == "About") {
        showAbout();
    } else if (t == "Help Website" || t == "Send Feedback" || t == "Sign Up For The Newsletter" ||
               t == "Follow Us On Social Media" || t == "Vantrel News") {
        openHelpPage(act->text());
    } else if (t == "Left Pressed") {
        if (QAction* a = actionByText(QStringLiteral("Load Previous")))
            menuTriggered(a);
    } else if (t == "Right Pressed") {
        if (QAction* a = actionByText(QStringLiteral("Load Next")))
            menuTriggered(a);
    }
}

void MainWindow::zoomCurrent(float zoom)
{
    if (MVMediaWidget* v = currentViewer()) {
        // Zoom about the picture's middle when the cursor is elsewhere.
        const QPoint c = v->mapFromGlobal(QCursor::pos());
        if (v->rect().contains(c))
            v->zoomTo(zoom, -1.0f, -1.0f);
        else
            v->zoomTo(zoom, float(v->width() / 2), float(v->height() / 2));
    }
}

void MainWindow::cycleInterfaceVisibility()
{
    // The state is read from the widgets themselves, so a state reached another way goes on from there.
    const bool panelShown = !toolPanel->isHidden();
    const bool trayShown = !trayArea->isHidden();
    if (panelShown && trayShown)
        setInterfaceState(false, true);
    else if (trayShown)
        setInterfaceState(false, false);
    else if (!panelShown)
        setInterfaceState(true, false);
    else
        setInterfaceState(true, true);
}

void MainWindow::toggleInterfaceVisibility()
{
    if (!panelVisible && !trayVisible)
        setInterfaceState(true, true);
    else
        setInterfaceState(false, false);
}

void MainWindow::hidePanelButtonPressed()
{
    setInterfaceState(!panelVisible, trayVisible);
}

void MainWindow::hideTrayButtonPressed()
{
    setInterfaceState(panelVisible, !trayVisible);
}

// ---------------------------------------------------------------------------------------------
// Dialogs and the desktop

int MainWindow::showMessage(const QString& title, const QString& text, const QString& button1, const QString& button2,
                            const QString& button3)
{
    if (messageHook)
        return messageHook(title, text, QStringList{button1, button2, button3}.filter(QRegularExpression(QStringLiteral("."))));
    QStringList captions;
    for (const QString& caption : {button1, button2, button3})
        if (!caption.isEmpty())
            captions << caption;
    return askWithButtons(this, title, text, captions);
}

void MainWindow::showNotice(const QString& title, const QString& text)
{
    if (messageHook) {
        messageHook(title, text, {QStringLiteral("OK")});
        return;
    }
    auto* box = new QMessageBox(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(title);
    box->setText(text);
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    box->open();
}

QString MainWindow::mediaInfoText(const MVDocument& doc, int outputWidth, int outputHeight)
{
    if (doc.filePath.isEmpty())
        return QStringLiteral("No photo is loaded in this tab.");
    std::unique_ptr<MediaProperties> props = readMediaProperties(doc.filePath.toUtf8().toStdString());
    const int orientation = mediaPropertiesOrientation(props.get());
    QString s;
    auto row = [&s](const QString& label, const QString& value) {
        if (!value.trimmed().isEmpty())
            s += label + QStringLiteral(": ") + value.trimmed() + QLatin1Char('\n');
    };
    const QSize source = doc.viewer ? QSize(doc.viewer->sourceWidth, doc.viewer->sourceHeight) : QSize();
    row(QStringLiteral("File"), QFileInfo(doc.filePath).fileName());
    row(QStringLiteral("Size"), QStringLiteral("%1 x %2 pixels").arg(source.width()).arg(source.height()));
    if (outputWidth != source.width() || outputHeight != source.height())
        row(QStringLiteral("Edited size"), QStringLiteral("%1 x %2 pixels").arg(outputWidth).arg(outputHeight));
    row(QStringLiteral("Orientation"), QStringLiteral("%1 (%2)").arg(orientation).arg(QString::fromUtf8(orientationName(orientation))));
    row(QStringLiteral("Depth"), QStringLiteral("%1 bits per channel").arg(doc.mediaInfo.bitsPerComponent));
    row(QStringLiteral("Colour profile"), doc.mediaInfo.profileName.empty()
                                              ? QStringLiteral("none (treated as sRGB)")
                                              : QString::fromStdString(doc.mediaInfo.profileName));
    if (props) {
        auto key = [&props](const char* k) { return QString::fromStdString(props->value(k)); };
        row(QStringLiteral("Camera"), key("Exif.Image.Make") + QLatin1Char(' ') + key("Exif.Image.Model"));
        row(QStringLiteral("Lens"), key("Exif.Photo.LensModel"));
        row(QStringLiteral("Exposure"), key("Exif.Photo.ExposureTime"));
        row(QStringLiteral("Aperture"), key("Exif.Photo.FNumber"));
        row(QStringLiteral("ISO"), key("Exif.Photo.ISOSpeedRatings"));
        row(QStringLiteral("Focal length"), key("Exif.Photo.FocalLength"));
        row(QStringLiteral("Taken"), key("Exif.Photo.DateTimeOriginal"));
    }
    return s.trimmed();
}

void MainWindow::showMediaInfo()
{
    if (currentDocument >= documentCount)
        return;
    const MVDocument& doc = documents[size_t(currentDocument)];
    const QSize out = doc.viewer->outputPixelSize();
    QDialog dialog(this);
    dialog.setWindowTitle(QStringLiteral("Media Info"));
    dialog.setStyleSheet(QStringLiteral("QDialog { background: #2a2a2a; } QLabel { color: #e6e6e6; }"));
    auto* label = new QLabel(mediaInfoText(doc, out.width(), out.height()), &dialog);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->move(20, 18);
    label->adjustSize();
    auto* done = new QPushButton(QStringLiteral("Done"), &dialog);
    done->setDefault(true);
    connect(done, &QPushButton::clicked, &dialog, &QDialog::accept);
    const int w = std::max(320, label->width() + 40);
    done->setGeometry(w - 100, label->y() + label->height() + 18, 80, 26);
    dialog.setFixedSize(w, done->geometry().bottom() + 16);
    dialog.exec();
}

void MainWindow::showAbout()
{
    QMessageBox box(this);
    box.setWindowTitle(QStringLiteral("About Vantrel Photo"));
    box.setIconPixmap(QPixmap(QStringLiteral(":/img/app_icon_64.png")));
    box.setText(QStringLiteral("<b>Vantrel Photo</b> %1").arg(QStringLiteral("0.1")));
    box.setInformativeText(QStringLiteral("A photo editor built from tiles: each adjustment is a tile in the "
                                          "tray, and the photo itself is never touched until you save."));
    box.addButton(QStringLiteral("Done"), QMessageBox::AcceptRole);
    box.exec();
}

QString MainWindow::helpPageAnchor(const QString& actionText)
{
    if (actionText == QLatin1String("Send Feedback"))
        return QStringLiteral("feedback");
    // The guide is read offline: news, newsletter and community share its last section.
    if (actionText == QLatin1String("Sign Up For The Newsletter") ||
        actionText == QLatin1String("Follow Us On Social Media") || actionText == QLatin1String("Vantrel News"))
        return QStringLiteral("news");
    return QStringLiteral("start");
}

void MainWindow::openHelpPage(const QString& actionText)
{
    if (!helpWindow)
        helpWindow = new MVHelpWindow(this);
    helpWindow->showSection(helpPageAnchor(actionText));
}

void MainWindow::revealInFileBrowser(const QString& path)
{
    // The desktop's file manager selects the file; without one the folder opens.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
        const QDBusMessage reply = bus.call(call, QDBus::Block, 3000);
        if (reply.type() == QDBusMessage::ReplyMessage)
            return;
    }
    QDesktopServices::openUrl(QUrl::fromLocalFile(folderOf(path)));
}

// ---------------------------------------------------------------------------------------------
// Events

bool MainWindow::event(QEvent* e)
{
    // Hover look-ups of the pixel inspector and the autohide of the controls.
    if (e->type() == QEvent::HoverMove && QApplication::mouseButtons() == Qt::NoButton) {
        controlsHoverMoved(central->mapFrom(this, static_cast<QHoverEvent*>(e)->pos()));
        hoverMovedForScopes(static_cast<QHoverEvent*>(e));
    }
    return QMainWindow::event(e);
}

void MainWindow::keyPressEvent(QKeyEvent* e)
{
    switch (e->key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        if (!activeTool)
            deleteSelectedTiles();
        return;
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (activeTool)
            toolRequestedExit(activeTool);
        else
            clearTraySelection();
        return;
    case Qt::Key_Up:
        previousPresetButtonPressed();
        return;
    case Qt::Key_Down:
        nextPresetButtonPressed();
        return;
    default:
        QMainWindow::keyPressEvent(e);
    }
}

void MainWindow::leaveEvent(QEvent* e)
{
    QMainWindow::leaveEvent(e);
}

void MainWindow::storePreferences()
{
    MultiData& prefs = MultiData::global();
    prefs.setStringArray(PrefKeys::kCollapsedToolSections,
                         prefs.getStringArray(PrefKeys::kCollapsedToolSections, PrefKeys::collapsedToolSectionsDefault()));
    prefs.setFloat(PrefKeys::kPreferencesVersion, PrefKeys::kCurrentPreferencesVersion);
    prefs.setFloat(PrefKeys::kDefaultFiltersVersion, 4.2f);
    const QRect g = geometry();
    prefs.setString(PrefKeys::kWindowGeometry,
                    QStringLiteral("%1 %2 %3 %4").arg(g.x()).arg(g.y()).arg(g.width()).arg(g.height()).toStdString());
    prefs.setBool(PrefKeys::kIsFullscreen, isMaximized());
    prefs.setBool(PrefKeys::kUseHoverPreviews, hoverPreviewsAction->isChecked());
    prefs.setInt(PrefKeys::kCurrentTab, toolPanel->currentTab());
    prefs.setString(PrefKeys::kLastFont, prefs.getString(PrefKeys::kLastFont, ""));
    prefs.setStringArray(PrefKeys::kStarredFilterList, prefs.getStringArray(PrefKeys::kStarredFilterList, {}));
    prefs.writeFile(preferencesPath());
}

void MainWindow::closeEvent(QCloseEvent* e)
{
    storePreferences();
    QMainWindow::closeEvent(e);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* e)
{
    if (e->mimeData()->hasUrls())
        e->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* e)
{
    e->setDropAction(Qt::CopyAction);
    for (const QUrl& url : e->mimeData()->urls()) {
        const QString path = url.toLocalFile();
        const std::string utf8 = path.toUtf8().toStdString();
        if (QFileInfo(path).suffix().compare(QLatin1String("vnf"), Qt::CaseInsensitive) == 0)
            loadFilterSlot(path, !(e->keyboardModifiers() & Qt::ShiftModifier));
        else if (QFileInfo(path).suffix().compare(QLatin1String("cube"), Qt::CaseInsensitive) == 0)
            addLutTile(path);
        else if (IsLoadableImagePath(utf8) || isNativeImagePath(utf8))
            loadFile(path);
        else
            showNotice(QStringLiteral("Load Image Error"), QStringLiteral("That file type is not supported."));
    }
    e->accept();
}

// ---------------------------------------------------------------------------------------------
// Slots

void MainWindow::startupWindowClosed(int)
{
    if (!isVisible())
        show();
}

void MainWindow::startupButtonPressed()
{
    if (startupWindow)
        startupWindow->done(QDialog::Accepted);
    showLoadDialog();
}

void MainWindow::newTabButtonPressed()
{
    addDocument();
    updateWindowTitle();
}

void MainWindow::documentTabChosen(int tabID)
{
    const int i = documentIndexForTab(tabID);
    if (i >= 0)
        selectDocument(i);
    updateWindowTitle();
}

void MainWindow::documentTabWantsClosing(int tabID)
{
    if (documentCount < 2)
        return;
    closeDocumentAt(documentIndexForTab(tabID));
    updateWindowTitle();
}

void MainWindow::onEmptyClick()
{
    // In a split, a click on a pane makes its document the current one.
    const int i = documentIndexForViewer(sender());
    if (i >= 0 && i != currentDocument)
        selectDocument(i);
    pickPixelForInspector();
}


// Parts of the window that arrive with their own subsystems: plug-in hand-back, tools, the render
// queue, previews, the tray and its controls, the video shuttle.
void MainWindow::previewProcessorTimerFired() {}
void MainWindow::shuttleControlAdjusted() {}
void MainWindow::setShuttleInPoint() {}
void MainWindow::setShuttleOutPoint() {}
void MainWindow::onImageRepositioned() {}
void MainWindow::videoShuttleUpdateRequest(VideoLoaderSaverTime) {}
void MainWindow::previewButtonPressed() {}
void MainWindow::previewVideoButtonPressed() {}
