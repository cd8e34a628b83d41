// The preview widgets on their own: the hover panel's worker (its picture, its newest-request
// rule, a late picture after the hover ended) and the quicklook chooser's scheduling (a few
// thumbnails at a time, those in view first, folded sections last), its choice and its leaving.
#include "ResourceInit.h"
#include "TestMods.h"
#include "document/MVImageWithProcessing.h"
#include "document/MVPreviewChooser.h"
#include "document/MVPreviewChooserItem.h"
#include "document/MVPreviewPanel.h"

#include <QtTest/QtTest>
#include <QtWidgets/QPushButton>

#include <cstdlib>

namespace {

// A colourful ramp: red across, green down, blue constant.
void fillRamp(FlexImageFloat& img, int w, int h)
{
    img.resize(w, h, 3);
    for (int y = 0; y < h; ++y) {
        float* r = img.row(y);
        for (int x = 0; x < w; ++x, r += 3) {
            r[0] = 255.0f * float(x) / float(w - 1);
            r[1] = 255.0f * float(y) / float(h - 1);
            r[2] = 96.0f;
        }
    }
}

bool isGrey(const QImage& img)
{
    for (int y = 0; y < img.height(); y += 7)
        for (int x = 0; x < img.width(); x += 7) {
            const QRgb p = img.pixel(x, y);
            if (std::abs(qRed(p) - qGreen(p)) > 1 || std::abs(qGreen(p) - qBlue(p)) > 1)
                return false;
        }
    return true;
}

std::vector<std::unique_ptr<ImageMod>> listOf(const char* name)
{
    std::vector<std::unique_ptr<ImageMod>> l;
    l.push_back(make(name));
    return l;
}

} // namespace

class MVPreviewWidgetsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { vantrelInitResources(); }

    void panelShowsItsListOverTheBaseAndAppearsWithThePicture()
    {
        QWidget host;
        host.resize(600, 400);
        auto* panel = new MVPreviewPanel(&host);
        panel->setGeometry(host.rect());
        host.show();
        FlexImageFloat base;
        fillRamp(base, 300, 200);
        QVERIFY(panel->isHidden());
        panel->showPreview(listOf("Greyscale Channel Mixer"), &base, nullptr, QStringLiteral("Grey"));
        // Hidden until its picture exists: no empty frame over the viewer.
        QVERIFY(panel->isHidden() || panel->resultSerial() == panel->requestSerial());
        QTRY_VERIFY(panel->isVisible());
        panel->waitForIdle();
        const QImage img = panel->resultCopy();
        QCOMPARE(img.size(), QSize(300, 200));
        QVERIFY(isGrey(img));
        QCOMPARE(panel->resultSerial(), panel->requestSerial());
        // Drawn at its own size in the middle: a small base is never blown up.
        const QRectF r = panel->pictureRect();
        QCOMPARE(r.size(), QSizeF(300, 200));
        QCOMPARE(r.topLeft(), QPointF(150, 100));
        panel->resize(220, 400);
        QVERIFY(panel->pictureRect().width() <= 200.0);

        // Without a new base the one it has serves; an empty list shows it as it is.
        panel->showPreview({}, nullptr, nullptr, QStringLiteral("Plain"));
        panel->waitForIdle();
        QTRY_COMPARE(panel->resultSerial(), panel->requestSerial());
        const QImage plain = panel->resultCopy();
        QCOMPARE(QColor(plain.pixel(299, 0)).red(), 255);
        QCOMPARE(QColor(plain.pixel(0, 199)).green(), 255);
        QCOMPARE(QColor(plain.pixel(0, 0)).blue(), 96);
    }

    void requestsDuringAPassEndWithTheNewest()
    {
        QWidget host;
        auto* panel = new MVPreviewPanel(&host);
        panel->resize(400, 300);
        FlexImageFloat base;
        fillRamp(base, 640, 480);
        panel->showPreview(listOf("Blur"), &base, nullptr, QStringLiteral("1"));
        for (int i = 0; i < 4; ++i)
            panel->showPreview(listOf("Vignette"), nullptr, nullptr, QString::number(i + 2));
        panel->showPreview(listOf("Greyscale Channel Mixer"), nullptr, nullptr, QStringLiteral("last"));
        panel->waitForIdle();
        QCOMPARE(panel->resultSerial(), panel->requestSerial());
        QVERIFY(isGrey(panel->resultCopy()));
    }

    void aPictureThatArrivesAfterTheHoverEndedStaysHidden()
    {
        QWidget host;
        host.resize(400, 300);
        auto* panel = new MVPreviewPanel(&host);
        host.show();
        FlexImageFloat base;
        fillRamp(base, 200, 100);
        panel->showPreview(listOf("Exposure"), &base, nullptr, QStringLiteral("x"));
        panel->endPreview();
        panel->waitForIdle();
        QTest::qWait(30);
        QVERIFY(panel->isHidden());
        QVERIFY(!panel->isActive());
    }

    void chooserStartsAFewThumbnailsAtATimeThoseInViewFirst()
    {
        FlexImageFloat base;
        fillRamp(base, 360, 240);
        MVPreviewChooser chooser(false);
        chooser.resize(700, 420);
        chooser.setSource(base, {});
        const char* names[] = {"Exposure", "Greyscale Channel Mixer", "Vignette", "Contrast", "Saturation", "Tint"};
        for (int s = 0; s < 3; ++s) {
            chooser.addSection(1, QStringLiteral("Section %1").arg(s), s == 2);
            for (const char* n : names)
                chooser.addPreset(QLatin1String(n), *make(n));
        }
        QCOMPARE(chooser.thumbnailCount(), 18);
        QCOMPARE(chooser.sectionCount(), 3);
        chooser.show();
        chooser.begin();
        int started = 0;
        for (int i = 0; i < chooser.thumbnailCount(); ++i)
            if (chooser.item(i)->state() != MVPreviewChooserItem::Waiting) {
                ++started;
                // The first ones started are the top of the first section, in view.
                QVERIFY(i < MVPreviewChooser::kMaxRunning);
            }
        QCOMPARE(started, MVPreviewChooser::kMaxRunning);
        QVERIFY(chooser.recheckTimer.isActive());
        QCOMPARE(chooser.recheckTimer.interval(), 33);
        // The folded section's cells stay hidden, and its header's mark says so.
        QVERIFY(chooser.item(12)->isHidden());
        QVERIFY(chooser.item(0)->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(chooser.unfinishedCount() == 0, 30000);
        QTRY_VERIFY(!chooser.recheckTimer.isActive());
        chooser.waitForThumbnails();
        for (int i = 0; i < chooser.thumbnailCount(); ++i) {
            const QImage img = chooser.item(i)->thumbnail()->resultCopy();
            QVERIFY(!img.isNull());
            QCOMPARE(isGrey(img), chooser.item(i)->name() == QStringLiteral("Greyscale Channel Mixer"));
        }
    }

    void chooserSharedModsRunUnderEveryThumbnail()
    {
        FlexImageFloat base;
        fillRamp(base, 360, 240);
        MVPreviewChooser chooser(true);
        chooser.resize(500, 400);
        std::unique_ptr<ImageMod> grey = make("Greyscale Channel Mixer");
        chooser.setSource(base, {grey.get()});
        chooser.addSection(1, QStringLiteral("Looks"), false);
        chooser.addPreset(QStringLiteral("Exposure"), *make("Exposure"));
        chooser.begin();
        QTRY_VERIFY_WITH_TIMEOUT(chooser.unfinishedCount() == 0, 20000);
        chooser.waitForThumbnails();
        QVERIFY(isGrey(chooser.item(0)->thumbnail()->resultCopy()));
    }

    void choosingEmitsTheCellsOwnCopyAndLeaves()
    {
        FlexImageFloat base;
        fillRamp(base, 120, 80);
        QWidget host;
        host.resize(600, 500);
        QPointer<MVPreviewChooser> chooser = new MVPreviewChooser(true, &host);
        chooser->placement = [&host] { return host.rect().adjusted(0, 0, -100, 0); };
        chooser->setSource(base, {});
        chooser->addSection(1, QStringLiteral("A & B"), false);
        std::unique_ptr<ImageMod> exposure = make("Exposure");
        chooser->addPreset(QStringLiteral("Exposure"), *exposure);
        host.show();
        chooser->begin();
        chooser->show();
        QCOMPARE(chooser->geometry(), QRect(0, 0, 500, 500));
        host.resize(700, 500);
        QCOMPARE(chooser->geometry(), QRect(0, 0, 600, 500));
        QVERIFY(chooser->sectionButton(0)->text().contains(QStringLiteral("A && B")));

        std::vector<std::pair<ImageMod*, bool>> chosen;
        bool sameAsPreset = false;
        connect(chooser.data(), &MVPreviewChooser::previewChosen, this, [&](ImageMod* m, bool append) {
            chosen.emplace_back(m, append);
            // Checked during the signal: the copy goes with the chooser afterwards.
            sameAsPreset = m && m->isEqual(*exposure);
        });
        QSignalSpy closed(chooser.data(), &MVPreviewChooser::closed);
        MVPreviewChooserItem* cell = chooser->item(0);
        chooser->waitForThumbnails();
        QTest::mouseClick(cell, Qt::LeftButton, Qt::NoModifier, cell->rect().center());
        QCOMPARE(chosen.size(), size_t(1));
        QVERIFY(chosen[0].first && chosen[0].first != exposure.get() && sameAsPreset);
        QCOMPARE(chosen[0].second, true);
        QCOMPARE(closed.count(), 1);
        QTRY_VERIFY(chooser.isNull());
    }

    void escapeAndAPressBesideTheCardLeaveWithoutAChoice()
    {
        FlexImageFloat base;
        fillRamp(base, 120, 80);
        for (int way = 0; way < 2; ++way) {
            QPointer<MVPreviewChooser> chooser = new MVPreviewChooser(false);
            chooser->resize(500, 400);
            chooser->setSource(base, {});
            chooser->addSection(1, QStringLiteral("Looks"), false);
            chooser->addPreset(QStringLiteral("Tint"), *make("Tint"));
            chooser->show();
            chooser->begin();
            int chosen = 0;
            connect(chooser.data(), &MVPreviewChooser::previewChosen, this, [&chosen] { ++chosen; });
            QSignalSpy closed(chooser.data(), &MVPreviewChooser::closed);
            if (way == 0)
                QTest::keyClick(chooser.data(), Qt::Key_Escape);
            else
                QTest::mouseClick(chooser.data(), Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
            QCOMPARE(closed.count(), 1);
            QCOMPARE(chosen, 0);
            QTRY_VERIFY(chooser.isNull());
        }
    }
};

QTEST_MAIN(MVPreviewWidgetsTest)
#include "MVPreviewWidgetsTest.moc"
