// Saving from the window as a person meets it: the refusals, the options dialog, the confirmation,
// what lands on disk, the batch wizard feeding the render queue, and the preferences window.
#include "ResourceInit.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ModCatalogue.h"
#include "desktop_only/MediaLoading.h"
#include "document/MVMediaWidget.h"
#include "document/core/HeadlessRender.h"
#include "document/core/RenderQueue.h"
#include "filters/MultiData.h"
#include "media/MediaFormats.h"
#include "mods/ImageModCrop.h"
#include "ui/AppTheme.h"
#include "ui/MVRenderQueueWidget.h"
#include "ui/MVRenderQueueWindow.h"
#include "ui/MainWindow.h"
#include "ui/SaveSizeWindow.h"
#include "ui/TrayWidget.h"
#include "ui/XmlPreferencesWindow.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>

#include <memory>

namespace {

const QString kSmall = QStringLiteral(VANTREL_TESTDATA "/orientation_6.jpg");       // 400x640 stored, 640x400 upright
const QString kHdr = QStringLiteral(VANTREL_TESTDATA "/tigers.hdr");                 // loads, can't be written
const QString kCube = QStringLiteral(VANTREL_TESTDATA "/TEAL_ORANGE_16.cube");

struct Message {
    QString title;
    QString text;
    QStringList buttons;
};

// Answers every message with a fixed button and keeps what was asked.
struct MessageLog {
    std::vector<Message> seen;
    int answer = 0;
    explicit MessageLog(MainWindow& w)
    {
        w.messageHook = [this](const QString& title, const QString& text, const QStringList& buttons) {
            seen.push_back({title, text, buttons});
            return answer;
        };
    }
    QStringList titles() const
    {
        QStringList t;
        for (const Message& m : seen)
            t << m.title;
        return t;
    }
};

QByteArray digest(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

std::unique_ptr<ImageMod> tile(const ModCatalogue& catalogue, const char* name, float amount)
{
    std::unique_ptr<ImageMod> m = createMod(catalogue, name);
    if (m && m->variableCount() > 0)
        m->variableAt(0)->setFloatValue(amount);
    return m;
}

// With VANTREL_SHOT_DIR set, a picture of the widget for looking at.
void saveShot(QWidget& w, const char* name)
{
    const QByteArray dir = qgetenv("VANTREL_SHOT_DIR");
    if (!dir.isEmpty())
        w.grab().save(QString::fromLocal8Bit(dir) + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
}

// The editor's 8-bit file sample of a rendered float: truncate(v * 257), high byte.
int fileSample(float v)
{
    const double scaled = double(v) * 257.0;
    const long long t = scaled <= 0.0 ? 0 : (long long)scaled;
    return int((t & 0xffff) >> 8);
}

} // namespace

class SaveFlowTest : public QObject
{
    Q_OBJECT

private:
    ModCatalogueContents catalogue;

    // A five-tile look with a crop, so geometry, spatial and colour tiles all take part.
    std::vector<std::unique_ptr<ImageMod>> look()
    {
        std::vector<std::unique_ptr<ImageMod>> mods;
        mods.push_back(tile(catalogue.mods, "Exposure", 0.4f));
        mods.push_back(tile(catalogue.mods, "Tint", 30.0f));
        mods.push_back(tile(catalogue.mods, "Blur", 12.0f));
        mods.push_back(tile(catalogue.mods, "Contrast", 0.3f));
        auto crop = std::make_unique<ImageModCrop>();
        crop->variableAt(1)->setFloatValue(0.125f); // cut an eighth off the left
        mods.push_back(std::move(crop));
        for (const auto& m : mods)
            if (!m)
                return {};
        return mods;
    }

    // Puts the tiles in the current tray, as a person would have built them.
    static void putInTray(MainWindow& w, const std::vector<ImageMod*>& mods)
    {
        TrayWidget* tray = w.currentTray();
        QVERIFY(tray);
        tray->clearTray(false);
        for (ImageMod* m : mods)
            QVERIFY(tray->addMod(*m) >= 0);
        QCOMPARE(tray->tileCount(), int(mods.size()));
        w.trayContentChanged();
    }

    static std::vector<ImageMod*> raw(const std::vector<std::unique_ptr<ImageMod>>& mods)
    {
        std::vector<ImageMod*> list;
        for (const auto& m : mods)
            list.push_back(m.get());
        return list;
    }

private slots:
    void initTestCase()
    {
        vantrelInitResources();
        catalogue = buildModCatalogue();
        if (!QFile::exists(kSmall))
            QSKIP("test photos are not available");
    }

    void init() { MultiData::global().clear(); }

    void withoutAFileBothSavesSayNoFileLoaded()
    {
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        bool dialogShown = false;
        w.saveDialogs.runOptions = [&](SaveSizeWindow&) { return dialogShown = true; };
        QVERIFY(w.triggerActionByText(QStringLiteral("Save As...")));
        QVERIFY(w.triggerActionByText(QStringLiteral("Save Over Original")));
        QCOMPARE(log.titles(), (QStringList{QStringLiteral("No File Loaded"), QStringLiteral("No File Loaded")}));
        QCOMPARE(log.seen[0].text, QStringLiteral("No file loaded to save."));
        QCOMPARE(log.seen[0].buttons, QStringList{QStringLiteral("OK")});
        QVERIFY(!dialogShown);
    }

    void aNeverStoredQualityOffers85AndTheSizeOfTheLook()
    {
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        QVERIFY(w.loadFile(kSmall));
        auto mods = look();
        QVERIFY(!mods.empty());
        putInTray(w, raw(mods));
        QVERIFY(!MultiData::global().contains("LastImageSaveQuality"));
        QString quality, width, height, type;
        bool postfixShown = true;
        w.saveDialogs.runOptions = [&](SaveSizeWindow& d) {
            quality = d.qualityField->text();
            width = d.widthField->text();
            height = d.heightField->text();
            type = d.typeField->currentText();
            postfixShown = d.postfixField->isVisibleTo(&d);
            d.show();
            saveShot(d, "save_dialog");
            return false; // Cancel ends the flow
        };
        bool pathAsked = false;
        w.saveDialogs.askSavePath = [&](const QString&, const QString&, const QString&) {
            pathAsked = true;
            return QString();
        };
        QVERIFY(w.triggerActionByText(QStringLiteral("Save As...")));
        QCOMPARE(quality, QStringLiteral("85"));
        QCOMPARE(width, QStringLiteral("560")); // 640 less the eighth the crop takes
        QCOMPARE(height, QStringLiteral("400"));
        QCOMPARE(type, QStringLiteral("Jpeg Image"));
        QVERIFY(!postfixShown);
        QVERIFY(!pathAsked);
        QVERIFY(log.seen.empty());
        QCOMPARE(MultiData::global().getInt("LastImageSaveQuality", -1), 85); // the read stored the default
    }

    void saveOverOriginalOnAFormatThatCantBeWrittenNamesSaveAs()
    {
        if (!QFile::exists(kHdr))
            QSKIP("no HDR test file");
        QTemporaryDir dir;
        const QString copy = dir.filePath(QStringLiteral("tigers.hdr"));
        QVERIFY(QFile::copy(kHdr, copy));
        const QByteArray before = digest(copy);
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        QVERIFY(w.loadFile(copy));
        QVERIFY(w.triggerActionByText(QStringLiteral("Save Over Original")));
        QCOMPARE(log.titles(), QStringList{QStringLiteral("Can't Save Format")});
        QCOMPARE(log.seen[0].text,
                 QStringLiteral("You must use Save As instead, Vantrel can't save in this image's format."));
        QCOMPARE(digest(copy), before);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
    }

    void theSavedFileHoldsTheFullSizeRenderOfTheLook()
    {
        QTemporaryDir dir;
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        QVERIFY(w.loadFile(kSmall));
        auto mods = look();
        putInTray(w, raw(mods));
        w.saveDialogs.runOptions = [](SaveSizeWindow& d) {
            d.typeField->setCurrentIndex(1); // "PNG Image": no loss, so pixels compare exactly
            return true;
        };
        QString askedTitle, askedStart, askedFilter;
        w.saveDialogs.askSavePath = [&](const QString& title, const QString& start, const QString& filter) {
            askedTitle = title;
            askedStart = start;
            askedFilter = filter;
            return dir.filePath(QStringLiteral("saved")); // no extension: the chosen one is added
        };
        QVERIFY(w.triggerActionByText(QStringLiteral("Save As...")));
        QVERIFY2(log.seen.empty(), log.seen.empty() ? "" : qPrintable(log.seen[0].title));
        QCOMPARE(askedTitle, QStringLiteral("Save File As"));
        QVERIFY(askedStart.endsWith(QStringLiteral("/orientation_6.png")));
        QCOMPARE(askedFilter, QStringLiteral("PNG Image files (*.png)"));
        const QString saved = dir.filePath(QStringLiteral("saved.png"));
        QVERIFY(QFile::exists(saved));
        QCOMPARE(QString::fromStdString(MultiData::global().getString("LastImgSaveExtensionStr", "")),
                 QStringLiteral("png"));
        QCOMPARE(QString::fromStdString(MultiData::global().getString("LastImgSavePathStr", "")), dir.path());

        FlexImageFloat source(1, 1, 4), expected(1, 1, 4), written(1, 1, 4);
        QVERIFY(LoadMediaFile(source, kSmall.toStdString(), nullptr));
        const auto trayTiles = w.currentModClones();
        QCOMPARE(trayTiles.size(), mods.size());
        QVERIFY(renderFullSize(source, raw(trayTiles), expected));
        QVERIFY(LoadMediaFile(written, saved.toStdString(), nullptr));
        QCOMPARE(written.width, 560);
        QCOMPARE(written.height, 400);
        QCOMPARE(expected.width, written.width);
        long differing = 0;
        for (int32_t y = 0; y < written.height; ++y)
            for (int32_t x = 0; x < written.width; ++x)
                for (int c = 0; c < 3; ++c)
                    if (int(written.row(y)[x * written.channels + c]) !=
                        fileSample(expected.row(y)[x * expected.channels + c]))
                        ++differing;
        QCOMPARE(differing, 0L);
    }

    void aNewWidthKeepsTheAspectAndSetsTheFileSize()
    {
        QCOMPARE(linkedSide(1000, 3000, 2000), 667);
        QCOMPARE(linkedSide(667, 2000, 3000), 1001);
        QCOMPARE(linkedSide(1, 4000, 10), 1); // never below one pixel
        QCOMPARE(linkedSide(0, 300, 200), 200);

        QTemporaryDir dir;
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        QVERIFY(w.loadFile(kSmall));
        w.saveDialogs.runOptions = [](SaveSizeWindow& d) {
            QTest::keyClicks(d.widthField, QString()); // focus
            d.widthField->clear();
            QTest::keyClicks(d.widthField, QStringLiteral("320"));
            return d.heightField->text() == QStringLiteral("200");
        };
        w.saveDialogs.askSavePath = [&](const QString&, const QString&, const QString&) {
            return dir.filePath(QStringLiteral("half.jpg"));
        };
        QVERIFY(w.triggerActionByText(QStringLiteral("Save As...")));
        QVERIFY(log.seen.empty());
        FlexImageFloat half(1, 1, 4);
        QVERIFY(LoadMediaFile(half, dir.filePath(QStringLiteral("half.jpg")).toStdString(), nullptr));
        QCOMPARE(half.width, 320);
        QCOMPARE(half.height, 200);
    }

    void theOptionsDialogTakesTheSaveTable()
    {
        SaveSizeWindow d;
        QCOMPARE(d.windowTitle(), QStringLiteral("Choose Save Options"));
        QCOMPARE(d.typeField->count(), 5);
        QCOMPARE(d.typeField->itemText(3), QStringLiteral("PNG-16 Image"));
        d.setExtension(QStringLiteral(".PNG")); // the first row with the extension
        QCOMPARE(d.resultExtensionIndex(), 1);
        QVERIFY(!d.qualityField->isEnabled()); // PNG takes no quality
        d.setExtension(QStringLiteral("tiff"));
        QCOMPARE(d.resultExtensionIndex(), 2);
        QCOMPARE(d.resultExtension(), QStringLiteral("tif"));
        d.setExtension(QStringLiteral("bmp")); // unknown: left as it was
        QCOMPARE(d.resultExtensionIndex(), 2);
        d.setExtensionIndex(0);
        QVERIFY(d.qualityField->isEnabled());

        d.setQuality(140);
        QCOMPARE(d.resultQuality(), 100);
        d.qualityField->setText(QString());
        QCOMPARE(d.resultQuality(), 85);
        d.qualityEdited(QStringLiteral("250"));
        QCOMPARE(d.qualityField->text(), QStringLiteral("100"));

        d.setOfferedSize(3000, 2000);
        d.heightField->clear();
        QTest::keyClicks(d.heightField, QStringLiteral("500")); // typed: each key re-links the width
        QCOMPARE(d.widthField->text(), QStringLiteral("750"));
        QVERIFY(d.sizeChanged());
        d.widthField->clear(); // an empty field means the offered size
        QCOMPARE(d.resultWidth(), 3000);
        QCOMPARE(d.resultHeight(), 500);

        d.hideQualityFields();
        d.hideSizeFields();
        QVERIFY(!d.qualityField->isVisibleTo(&d));
        QVERIFY(!d.widthField->isVisibleTo(&d));
        QVERIFY(d.typeField->isVisibleTo(&d));
        d.disablePostfixFields();
        QVERIFY(!d.postfixField->isEnabled());
        d.setOkButtonText(QStringLiteral("Next"));
        QCOMPARE(d.okButton->text(), QStringLiteral("Next"));
    }

    void savingOverTheOriginalAsksFirstAndAFailedSaveKeepsIt()
    {
        QTemporaryDir dir;
        const QString copy = dir.filePath(QStringLiteral("mine.jpg"));
        QVERIFY(QFile::copy(kSmall, copy));
        const QByteArray before = digest(copy);
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        QVERIFY(w.loadFile(copy));
        w.saveDialogs.runOptions = [](SaveSizeWindow&) { return true; };
        w.saveDialogs.askSavePath = [&](const QString&, const QString&, const QString&) { return copy; };

        log.answer = 1; // "Cancel"
        QVERIFY(w.triggerActionByText(QStringLiteral("Save As...")));
        QCOMPARE(log.titles(), QStringList{QStringLiteral("Confirm Overwrite")});
        QCOMPARE(log.seen[0].text, QStringLiteral("You have chosen to save over your original file (") + copy +
                                       QStringLiteral("). Do you want to continue and overwrite your original file?"));
        QCOMPARE(log.seen[0].buttons, (QStringList{QStringLiteral("Overwrite"), QStringLiteral("Cancel")}));
        QCOMPARE(digest(copy), before);

        // A crop that leaves no pixel makes the render fail before anything is written.
        ImageModCrop crop;
        crop.variableAt(1)->setFloatValue(0.7f);
        crop.variableAt(2)->setFloatValue(0.6f);
        putInTray(w, {&crop});
        log.seen.clear();
        log.answer = 0;
        QVERIFY(w.triggerActionByText(QStringLiteral("Save Over Original")));
        QCOMPARE(log.titles(), QStringList{QStringLiteral("Processing Error")});
        QCOMPARE(log.seen[0].text, QStringLiteral("There was an error processing your media. You may need to try "
                                                  "another location, format, size, or quality setting."));
        QCOMPARE(digest(copy), before);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("mine.jpg")}); // no leftovers

        // Without the tile the same save goes through and replaces the file.
        putInTray(w, {});
        log.seen.clear();
        QVERIFY(w.triggerActionByText(QStringLiteral("Save Over Original")));
        QVERIFY(log.seen.empty());
        QVERIFY(digest(copy) != before);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("mine.jpg")});
    }

    void theBatchWizardFeedsTheQueue()
    {
        QTemporaryDir in, out;
        for (const char* name : {"a.jpg", "b.jpg", "c.JPG"})
            QVERIFY(QFile::copy(kSmall, in.filePath(QString::fromLatin1(name))));
        QFile note(in.filePath(QStringLiteral("notes.txt")));
        QVERIFY(note.open(QIODevice::WriteOnly));
        note.write("not a photo");
        note.close();

        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        auto mods = look();
        QVERIFY(!mods.empty());
        putInTray(w, raw(mods));
        QStringList folderTitles;
        w.saveDialogs.askFolder = [&](const QString& title, const QString&) {
            folderTitles << title;
            return folderTitles.size() == 1 ? in.path() : out.path();
        };
        QString optionsTitle, optionsText, postfix;
        bool sizeHidden = false;
        w.saveDialogs.runOptions = [&](SaveSizeWindow& d) {
            optionsTitle = d.windowTitle();
            optionsText = d.dialogText->text();
            postfix = d.postfixField->text();
            sizeHidden = !d.widthField->isVisibleTo(&d) && !d.heightField->isVisibleTo(&d);
            d.typeField->setCurrentIndex(1);
            d.show();
            saveShot(d, "batch_options");
            return true;
        };
        QVERIFY(w.triggerActionByText(QStringLiteral("Batch Process Folder...")));
        QCOMPARE(log.titles(), (QStringList{QStringLiteral("Choose Input Folder"), QStringLiteral("Choose Output Folder")}));
        QCOMPARE(log.seen[0].text, QStringLiteral("First, select the folder containing the files you want to batch process."));
        QCOMPARE(log.seen[1].text,
                 QStringLiteral("Finally, select the folder where you want to save your batch processed files."));
        QCOMPARE(folderTitles, (QStringList{QStringLiteral("Choose Folder To Process"), QStringLiteral("Choose Ouput Folder")}));
        QCOMPARE(optionsTitle, QStringLiteral("Image Saving Options"));
        QCOMPARE(optionsText, QStringLiteral("Next, set the saving options for images."));
        QCOMPARE(postfix, QStringLiteral("_batch"));
        QVERIFY(sizeHidden);
        QVERIFY(w.queueWindow()->isVisible());
        // The wizard returns at once; the queue does the work.
        QVERIFY(w.renderQueue->waitUntilIdle(60000));
        w.processingInfoTimerFired();
        for (const char* name : {"a_batch.png", "b_batch.png", "c_batch.png"})
            QVERIFY2(QFile::exists(out.filePath(QString::fromLatin1(name))), name);
        QCOMPARE(QDir(out.path()).entryList(QDir::Files).size(), 3);
        FlexImageFloat one(1, 1, 4);
        QVERIFY(LoadMediaFile(one, out.filePath(QStringLiteral("a_batch.png")).toStdString(), nullptr));
        QCOMPARE(one.width, 560);
        QVERIFY(!w.processingInfoTimer->isActive());
        QCOMPARE(QString::fromStdString(MultiData::global().getString("LastBatchSaveDir", "")), out.path());

        // An empty folder ends the wizard with its message.
        QTemporaryDir empty;
        folderTitles.clear();
        log.seen.clear();
        w.saveDialogs.askFolder = [&](const QString&, const QString&) { return empty.path(); };
        QVERIFY(w.triggerActionByText(QStringLiteral("Batch Process Folder...")));
        QCOMPARE(log.titles(), (QStringList{QStringLiteral("Choose Input Folder"), QStringLiteral("No media found")}));
        QCOMPARE(log.seen[1].text, QStringLiteral("No media was found to batch process."));
    }

    void theQueueWindowShowsProgressRowsAndFailures()
    {
        RenderQueueSnapshot s;
        QCOMPARE(MVRenderQueueWindow::progressText(s), QString());
        s.running = true;
        s.position = 3;
        s.finished = 2;
        s.total = 20;
        QCOMPARE(MVRenderQueueWindow::progressText(s), QStringLiteral("File 3 of 20"));
        s.secondsLeft = 65.4;
        QCOMPARE(MVRenderQueueWindow::progressText(s), QStringLiteral("File 3 of 20, about 1:05 left"));
        s.runningID = 3;
        s.currentName = "/photos/c.jpg";
        s.waiting = {{4, "/photos/d.jpg"}, {5, "/photos/e.jpg"}};
        s.failed = {{1, "/photos/a.jpg", "/out/a.jpg", RenderQueueOutcome::Failed}};

        MVRenderQueueWindow window;
        QCOMPARE(window.windowTitle(), QStringLiteral("Render Queue"));
        window.resize(360, 300);
        window.showSnapshot(s);
        QCOMPARE(window.statusLabel->text(), QStringLiteral("File 3 of 20, about 1:05 left, 1 failed"));
        QCOMPARE(window.progressBar->maximum(), 20);
        QCOMPARE(window.progressBar->value(), 2);
        QVERIFY(window.cancelAllButton->isEnabled());
        MVRenderQueueWidget* list = window.list;
        QCOMPARE(list->rowCount(), 4);
        QCOMPARE(list->rowLabel(0)->text(), QStringLiteral("Rendering c.jpg"));
        QVERIFY(list->rowLabel(1)->text().startsWith(QStringLiteral("Failed: a.jpg")));
        QVERIFY(list->rowButton(1) == nullptr); // a record has nothing to cancel
        QCOMPARE(list->rowLabel(2)->text(), QStringLiteral("d.jpg"));
        QSignalSpy cancel(&window, &MVRenderQueueWindow::cancelItemRequested);
        QTest::mouseClick(list->rowButton(3), Qt::LeftButton);
        QCOMPARE(cancel.count(), 1);
        QCOMPARE(cancel.at(0).at(0).toInt(), 5);

        s = RenderQueueSnapshot();
        window.showSnapshot(s);
        QVERIFY(!window.cancelAllButton->isEnabled());
        QCOMPARE(window.statusLabel->text(), QStringLiteral("Nothing to process."));
    }

    void cancelProcessingAsksBeforeStoppingAll()
    {
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        log.answer = 1; // "No"
        w.cancelProcessingButtonPressed();
        QCOMPARE(log.titles(), QStringList{QStringLiteral("Cancel Processing")});
        QCOMPARE(log.seen[0].text, QStringLiteral("Do you want to cancel all items currently in the processing queue?"));
        QCOMPARE(w.renderQueue->command, RenderQueue::commandNone);
        log.answer = 0;
        w.cancelProcessingButtonPressed();
        QCOMPARE(w.renderQueue->command, RenderQueue::commandCancelAll);
    }

    void preferenceRowsWriteThroughAtOnce()
    {
        MultiData store;
        store.setString("Fruit", "pear");
        XmlPreferencesWindow window(store);
        QComboBox* fruit = window.addChoiceRow(QStringLiteral("Fruit"),
                                               {QStringLiteral("apple"), QStringLiteral("pear"), QStringLiteral("fig")},
                                               QStringLiteral("Fruit"));
        QCOMPARE(fruit->currentIndex(), 1);
        QComboBox* unknown = window.addChoiceRow(QStringLiteral("Veg"), {QStringLiteral("kale"), QStringLiteral("leek")},
                                                 QStringLiteral("Veg"));
        QCOMPARE(unknown->currentIndex(), 0);
        QCheckBox* on = window.addCheckRow(QStringLiteral("Flag"), QStringLiteral("Flag"), QString(), true);
        QVERIFY(on->isChecked()); // absent: the caller's default
        QSignalSpy changed(&window, &XmlPreferencesWindow::preferenceChanged);
        fruit->setCurrentIndex(2);
        QCOMPARE(store.getString("Fruit", ""), std::string("fig"));
        QCOMPARE(store.typeOf("Fruit"), std::string("string"));
        on->setChecked(false);
        QCOMPARE(store.getBool("Flag", true), false);
        QCOMPARE(store.typeOf("Flag"), std::string("bool"));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.at(1).at(0).toString(), QStringLiteral("Flag"));
        QCOMPARE(window.rows()[1].label->y() - window.rows()[0].label->y(), XmlPreferencesWindow::rowStep);
    }

    void thePreferencesWindowOffersTheColourAndSavingRows()
    {
        MainWindow w(AppTheme::styleSheet());
        QVERIFY(w.triggerActionByText(QStringLiteral("Preferences...")));
        QPointer<XmlPreferencesWindow> first = w.preferencesWindow;
        QVERIFY(first);
        QStringList titles;
        for (const XmlPreferencesWindow::Row& r : first->rows())
            titles << r.label->text();
        QCOMPARE(titles.mid(0, 2), (QStringList{QStringLiteral("Working Color Space (Photos)"),
                                                 QStringLiteral("Convert Color Space On Load (Photos)")}));
        QVERIFY(titles.contains(QStringLiteral("Show Hover Previews")));
        QVERIFY(titles.contains(QStringLiteral("Default Save Quality")));
        QCOMPARE(first->rows()[0].choice->count(), 6);
        QCOMPARE(first->rows()[0].choice->itemText(5), QStringLiteral("Rec. 709"));
        // The hover flag written here is what the menu shows and what closing stores.
        for (const XmlPreferencesWindow::Row& r : first->rows())
            if (r.key == QLatin1String("UseHoverPreviews"))
                r.check->setChecked(false);
        QVERIFY(!w.actionByText(QStringLiteral("Show Hover Previews"))->isChecked());
        for (const XmlPreferencesWindow::Row& r : first->rows())
            if (r.key == QLatin1String("LastImageSaveQuality"))
                r.choice->setCurrentIndex(r.choice->findText(QStringLiteral("70")));
        QCOMPARE(MultiData::global().getInt("LastImageSaveQuality", 85), 70);
        // Opened again, the window is built afresh.
        QVERIFY(w.triggerActionByText(QStringLiteral("Preferences...")));
        QVERIFY(first.isNull());
        QVERIFY(w.preferencesWindow);
    }

    void lutFilesGoOutAndComeInAsTiles()
    {
        QTemporaryDir dir;
        MainWindow w(AppTheme::styleSheet());
        MessageLog log(w);
        QVERIFY(w.loadFile(kSmall));
        const QString bad = dir.filePath(QStringLiteral("bad.cube"));
        QFile f(bad);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("LUT_3D_SIZE 2\n0 0 0\n1 1\n");
        f.close();
        w.saveDialogs.askOpenPath = [&](const QString&, const QString&, const QString&) { return bad; };
        QVERIFY(w.triggerActionByText(QStringLiteral("Load LUT...")));
        QCOMPARE(log.titles(), QStringList{QStringLiteral("Can't Load LUT")});
        QVERIFY(log.seen[0].text.startsWith(QStringLiteral("Vantrel can't read bad.cube: ")));
        QVERIFY(w.currentModClones().empty());

        if (QFile::exists(kCube)) {
            log.seen.clear();
            w.saveDialogs.askOpenPath = [&](const QString&, const QString&, const QString&) { return kCube; };
            QVERIFY(w.triggerActionByText(QStringLiteral("Load LUT...")));
            QVERIFY(log.seen.empty());
            auto mods = w.currentModClones();
            QCOMPARE(mods.size(), size_t(1));
            QCOMPARE(QString::fromStdString(mods[0]->displayName), QStringLiteral("3D LUT"));
            QCOMPARE(QString::fromStdString(mods[0]->fileAt(1)->path), kCube);

            // Dropping the same file adds a second tile.
            QMimeData mime;
            mime.setUrls({QUrl::fromLocalFile(kCube)});
            QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            // As a drag arrives: it enters the window first, which makes the window the target.
            w.show();
            QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&w, &enter);
            QVERIFY(enter.isAccepted());
            QCoreApplication::sendEvent(&w, &drop);
            QVERIFY2(log.seen.empty(), log.seen.empty() ? "" : qPrintable(log.seen[0].title));
            QCOMPARE(w.currentModClones().size(), size_t(2));
        }

        const QString exported = dir.filePath(QStringLiteral("look"));
        w.saveDialogs.askSavePath = [&](const QString&, const QString&, const QString&) { return exported; };
        QVERIFY(w.triggerActionByText(QStringLiteral("Export Filter LUT...")));
        QFile cube(exported + QStringLiteral(".cube"));
        QVERIFY(cube.open(QIODevice::ReadOnly));
        const QByteArray text = cube.readAll();
        QVERIFY(text.contains("TITLE \"look\""));
        QVERIFY(text.contains("LUT_3D_SIZE 33"));
    }
};

QTEST_MAIN(SaveFlowTest)
#include "SaveFlowTest.moc"
