// Slider arithmetic, clamps, recentring and the grouping of wheel bursts into undo steps.
#include "ui/MVSlider.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>
#include <QtWidgets/QLineEdit>

namespace {

// Sent straight to the widget: QTest's own move needs a shown window.
void moveTo(QWidget* w, QPoint p)
{
    QMouseEvent ev(QEvent::MouseMove, p, w->mapToGlobal(p), Qt::NoButton, QApplication::mouseButtons(), Qt::NoModifier);
    QApplication::sendEvent(w, &ev);
}

void sendWheel(QWidget* w, int dy)
{
    const QPointF at(w->width() / 2.0, 10.0);
    QWheelEvent ev(at, w->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, dy), Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
    QApplication::sendEvent(w, &ev);
}

} // namespace

class MVSliderTest : public QObject {
    Q_OBJECT
private slots:
    void pressMapsXOntoTheRange()
    {
        MVSlider s;
        s.resize(200, 36);
        s.setDisplayRange(-100.0f, 100.0f);
        // Track centre range 8..140; x - 1 is mapped, so the middle is at 75.
        QCOMPARE(s.getTrackLeft(), 8.0f);
        QCOMPARE(s.getTrackRight(), 140.0f);
        QSignalSpy started(&s, &MVSlider::editingStarted);
        QSignalSpy changed(&s, &MVSlider::sliderChanged);
        QTest::mousePress(&s, Qt::LeftButton, Qt::NoModifier, QPoint(75, 11));
        QCOMPARE(started.count(), 1);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(s.value(), 0.0f);
        moveTo(&s, QPoint(42, 11));
        QCOMPARE(s.value(), -50.0f);
        QTest::mouseRelease(&s, Qt::LeftButton, Qt::NoModifier, QPoint(42, 11));
        QCOMPARE(started.count(), 1);
        // Beyond the right end the value stops at displayMax.
        QTest::mousePress(&s, Qt::LeftButton, Qt::NoModifier, QPoint(190, 11));
        QCOMPARE(s.value(), 100.0f);
        QCOMPARE(changed.last().at(0).value<QWidget*>(), static_cast<QWidget*>(&s));
    }

    void hardMinHoldsHoweverFarTheDrag()
    {
        MVSlider s;
        s.resize(200, 36);
        s.setDisplayRange(-100.0f, 100.0f);
        s.setHardMin(true, 0.0f);
        s.setHardMax(true, 40.0f);
        float lowest = 1e9f, highest = -1e9f;
        connect(&s, &MVSlider::sliderChanged, [&] {
            lowest = std::min(lowest, s.value());
            highest = std::max(highest, s.value());
        });
        QTest::mousePress(&s, Qt::LeftButton, Qt::NoModifier, QPoint(100, 11));
        for (int x : {60, 20, 0, -300, -5000})
            moveTo(&s, QPoint(x, 11));
        QCOMPARE(s.value(), 0.0f);
        for (int x : {150, 400, 9000})
            moveTo(&s, QPoint(x, 11));
        QTest::mouseRelease(&s, Qt::LeftButton, Qt::NoModifier, QPoint(9000, 11));
        QCOMPARE(lowest, 0.0f);
        QCOMPARE(highest, 40.0f);
        // The wheel obeys the same clamps.
        for (int i = 0; i < 20; ++i)
            sendWheel(&s, 1200);
        s.scrollTimerFired();
        QCOMPARE(s.value(), 0.0f);
    }

    void wheelStepScalesWithWidth()
    {
        MVSlider s;
        s.resize(200, 36);
        s.setDisplayRange(-100.0f, 100.0f);
        s.setValue(10.0f);
        QSignalSpy changed(&s, &MVSlider::sliderChanged);
        // Downward notches raise the value: 200 * 240 / (200 * 10) = 24, both notches in one step.
        sendWheel(&s, -120);
        sendWheel(&s, -120);
        QVERIFY(s.wheelTimer()->isActive());
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(s.value(), 34.0f);
        QVERIFY(s.wheelFinishTimer()->isActive());
    }

    void wheelBurstsApartAreSeparateUndoSteps()
    {
        // Real waits: timers never fire early (the finish timer is precise), so 0.5 s can't end a
        // one-second pause and 1.5 s always does.
        for (int gapMs : {500, 1500}) {
            MVSlider s;
            s.resize(200, 36);
            s.setDisplayRange(0.0f, 100.0f);
            QSignalSpy started(&s, &MVSlider::editingStarted);
            QSignalSpy changed(&s, &MVSlider::sliderChanged);
            for (int i = 0; i < 3; ++i)
                sendWheel(&s, -120);
            QTRY_COMPARE(changed.count(), 1);
            QCOMPARE(started.count(), 1);
            QTest::qWait(gapMs);
            sendWheel(&s, -120);
            QTRY_COMPARE(changed.count(), 2);
            QCOMPARE(started.count(), gapMs < 1000 ? 1 : 2);
        }
    }

    void recentringMovesRangeAndScale()
    {
        MVSlider s;
        s.resize(200, 36);
        s.setDisplayRange(0.0f, 10.0f);
        s.setDisplayScale(true, 0.0f, 100.0f);
        s.setRecentering(true);
        // Recentring at once puts the value 0 in the middle.
        QCOMPARE(s.getDisplayMin(), -5.0f);
        QCOMPARE(s.getDisplayMax(), 5.0f);
        QCOMPARE(s.getScaleMin(), -50.0f);
        QCOMPARE(s.minLabelText(), QStringLiteral("-"));
        QCOMPARE(s.maxLabelText(), QStringLiteral("+"));
        // Drag to the right end: value 5, range unchanged while dragging, then recentred on release.
        QTest::mousePress(&s, Qt::LeftButton, Qt::NoModifier, QPoint(141, 11));
        QCOMPARE(s.value(), 5.0f);
        QCOMPARE(s.getDisplayMin(), -5.0f);
        QTest::mouseRelease(&s, Qt::LeftButton, Qt::NoModifier, QPoint(141, 11));
        QCOMPARE(s.getDisplayMin(), 0.0f);
        QCOMPARE(s.getDisplayMax(), 10.0f);
        QCOMPARE(s.getScaleMin(), 0.0f);
        QCOMPARE(s.getScaleMax(), 100.0f);
        QCOMPARE(s.shownValue(), 50.0f);
    }

    void labelsFollowDisplayScaleAndKind()
    {
        MVSlider s;
        s.setDisplayRange(0.0f, 2.0f);
        s.setDisplayScale(true, 0.0f, 100.0f);
        s.setValue(0.5f);
        QCOMPARE(s.valueText(), QStringLiteral("25.00"));
        s.setKind(1);
        QCOMPARE(s.valueText(), QStringLiteral("25"));
        QCOMPARE(s.maxLabelText(), QStringLiteral("100"));
        s.setDisplayScale(false, 0.0f, 1.0f);
        s.setDisplayRange(-0.333333333f, 1234567.0f);
        QCOMPARE(s.minLabelText(), QStringLiteral("-0.333333"));
        QCOMPARE(s.maxLabelText(), QStringLiteral("1.23457e+06"));
    }

    void typedValueIsClampedAndReported()
    {
        MVSlider s;
        s.setDisplayRange(0.0f, 2.0f);
        s.setDisplayScale(true, 0.0f, 100.0f);
        s.setHardMax(true, 1.5f);
        auto* box = s.findChild<QLineEdit*>();
        QVERIFY(box);
        QSignalSpy started(&s, &MVSlider::editingStarted);
        QSignalSpy changed(&s, &MVSlider::sliderChanged);
        box->setText(QStringLiteral("25"));
        s.textEdited();
        QCOMPARE(s.value(), 0.5f);
        box->setText(QStringLiteral("90"));
        s.textEdited();
        QCOMPARE(s.value(), 1.5f);
        QCOMPARE(started.count(), 2);
        QCOMPARE(changed.count(), 2);
        box->setText(QStringLiteral("abc"));
        s.textEdited();
        QCOMPARE(changed.count(), 2);
        QCOMPARE(box->text(), QStringLiteral("75.00"));
    }
};

QTEST_MAIN(MVSliderTest)
#include "MVSliderTest.moc"
