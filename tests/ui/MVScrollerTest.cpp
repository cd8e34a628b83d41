// Scroller: the wheel is ignored when the content fits, steps are gathered and scaled, a handle
// drag maps pixels onto the range, and momentum stops at the end of the range.
#include "ui/MVScroller.h"
#include "ui/MVScrollerHandle.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>

namespace {

bool sendWheel(QWidget* w, int dy, Qt::ScrollPhase phase = Qt::NoScrollPhase, QPoint pixels = QPoint())
{
    const QPointF at(3, 50);
    QWheelEvent ev(at, w->mapToGlobal(at.toPoint()), pixels, QPoint(0, dy), Qt::NoButton, Qt::NoModifier, phase,
                   false);
    ev.setAccepted(false);
    QApplication::sendEvent(w, &ev);
    return ev.isAccepted();
}

} // namespace

class MVScrollerTest : public QObject {
    Q_OBJECT
private slots:
    void wheelIgnoredWhenContentFits()
    {
        // Same shape as a panel whose rows are shorter than the panel: range 0, view 0.
        for (auto range : {std::pair<float, float>{0.0f, 0.0f}, std::pair<float, float>{300.0f, 300.0f}}) {
            MVScroller s;
            s.resize(7, 200);
            s.setRange(0.0f, range.first, range.second);
            QVERIFY(s.contentFits());
            QSignalSpy scrolled(&s, &MVScroller::scrolled);
            QVERIFY(!sendWheel(&s, -120));
            QVERIFY(!s.activationTimer()->isActive());
            QTest::qWait(20);
            QCOMPARE(scrolled.count(), 0);
            QCOMPARE(s.getPosition(), 0.0f);
            QVERIFY(!s.handle()->isVisibleTo(&s));
        }
    }

    void wheelStepsAreGatheredAndScaled()
    {
        MVScroller s;
        s.resize(7, 200);
        s.setRange(0.0f, 1000.0f, 200.0f);
        QSignalSpy scrolled(&s, &MVScroller::scrolled);
        // First notch of a gesture: 120 * 1.6 * 0.3 * 1.8; the next two: 120 * 1.6 * 0.3 each, in one step.
        QVERIFY(sendWheel(&s, -120));
        QTRY_COMPARE(scrolled.count(), 1);
        QCOMPARE(s.getPosition(), 103.68f);
        QVERIFY(sendWheel(&s, -120));
        QVERIFY(sendWheel(&s, -120));
        QTRY_COMPARE(scrolled.count(), 2);
        QCOMPARE(s.getPosition(), 218.88f);
        // Upward past the top clamps at the minimum.
        for (int i = 0; i < 10; ++i)
            sendWheel(&s, 120);
        QTRY_COMPARE(scrolled.count(), 3);
        QCOMPARE(s.getPosition(), 0.0f);
    }

    void handleDragMapsPixelsOntoRange()
    {
        MVScroller s;
        s.resize(7, 200);
        s.setRange(0.0f, 1000.0f, 200.0f);
        // Handle 200 * 200 / 1000 = 40 pixels, so the track is 160 pixels for the range of 1000.
        QCOMPARE(s.handle()->height(), 40);
        QSignalSpy scrolled(&s, &MVScroller::scrolled);
        s.handleDragged(16);
        QCOMPARE(s.getPosition(), 100.0f);
        QCOMPARE(s.handle()->y(), 16);
        s.handleDragged(1000);
        QCOMPARE(s.getPosition(), 1000.0f);
        QCOMPARE(s.handle()->y(), 160);
        QCOMPARE(scrolled.count(), 2);
    }

    void momentumCarriesOnAndStopsAtTheEnd()
    {
        MVScroller s;
        s.resize(7, 200);
        s.setRange(0.0f, 1000.0f, 200.0f);
        s.setPosition(700.0f);
        sendWheel(&s, 0, Qt::ScrollBegin);
        sendWheel(&s, 0, Qt::ScrollUpdate, QPoint(0, -100));
        QTRY_VERIFY(!s.activationTimer()->isActive());
        const float afterUpdate = s.getPosition();
        QVERIFY(afterUpdate > 700.0f);
        // Lifting the fingers with speed left: the list keeps going until it meets the end.
        sendWheel(&s, 0, Qt::ScrollEnd, QPoint(0, -100));
        QTRY_VERIFY(s.inertiaTimer()->isActive() || s.getPosition() == 1000.0f);
        QTRY_VERIFY_WITH_TIMEOUT(!s.inertiaTimer()->isActive(), 3000);
        QCOMPARE(s.getPosition(), 1000.0f);
        QCOMPARE(s.getMomentum(), 0.0f);
    }
};

QTEST_MAIN(MVScrollerTest)
#include "MVScrollerTest.moc"
