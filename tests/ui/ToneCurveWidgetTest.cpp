// Curve editing by mouse and keys: insertion order, hit radius, drag clamps, removal by dragging
// out, fixed end points and the tied ends of the hue ring.
#include "core/ImageModVariableDataCurve.h"
#include "ui/ToneCurveWidget.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>

namespace {

// Sent straight to the widget: QTest's own move needs a shown window.
void moveTo(QWidget* w, QPoint p)
{
    QMouseEvent ev(QEvent::MouseMove, p, w->mapToGlobal(p), Qt::NoButton, QApplication::mouseButtons(), Qt::NoModifier);
    QApplication::sendEvent(w, &ev);
}

// 216 x 230 leaves a 200 x 200 graph at (8, 8) above the 10-pixel strip.
struct Editor {
    ImageModVariableDataCurve data;
    ToneCurveWidget w;
    explicit Editor(const std::string& pts, bool closed = false) : data(pts, closed)
    {
        w.resize(216, 230);
        w.setCurveData(&data);
    }
    QPoint at(float x, float y) const { return w.pixelFromUnit(x, y).toPoint(); }
    int count() const { return data.curve.pointCount(); }
    ToneCurvePoint pt(int i) const { return data.curve.points[size_t(i)]; }
};

} // namespace

class ToneCurveWidgetTest : public QObject {
    Q_OBJECT
private slots:
    void pixelMapping()
    {
        Editor e("0 0 1 1");
        QCOMPARE(e.w.pixelFromUnit(0.0f, 0.0f), QPointF(8, 208));
        QCOMPARE(e.w.pixelFromUnit(1.0f, 1.0f), QPointF(208, 8));
        QCOMPARE(e.w.unitFromPixel(QPointF(58, 58)), QPointF(0.25, 0.75));
        QCOMPARE(e.w.hueStripRect(), QRectF(8, 212, 200, 10));
    }

    void pressInsertsInXOrder()
    {
        Editor e("0 0 0.5 0.5 1 1");
        QSignalSpy started(&e.w, &ToneCurveWidget::editingStarted);
        QSignalSpy changed(&e.w, &ToneCurveWidget::curveChanged);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.75f, 0.25f));
        QCOMPARE(e.count(), 4);
        QCOMPARE(e.pt(2).x, 0.75f);
        QCOMPARE(e.pt(2).y, 0.25f);
        QCOMPARE(e.w.getActivePoint(), 2);
        QCOMPARE(e.w.getHoverPoint(), 2);
        QCOMPARE(started.count(), 1);
        QCOMPARE(changed.count(), 1);
        // The table follows the new point.
        QVERIFY(e.data.curve.lookup(0.75f) < 0.5f);
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.75f, 0.25f));
        QCOMPARE(e.w.getActivePoint(), -1);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.25f, 0.75f));
        QCOMPARE(e.count(), 5);
        QCOMPARE(e.pt(1).x, 0.25f);
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.25f, 0.75f));
        // At the x of a point, out of its reach: the new one goes after it.
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.5f, 0.9f));
        QCOMPARE(e.count(), 6);
        QCOMPARE(e.pt(2).y, 0.5f);
        QCOMPARE(e.pt(3).x, 0.5f);
        QCOMPARE(e.pt(3).y, 0.9f);
    }

    void hitRadiusPicksInsteadOfInserting()
    {
        Editor e("0 0 0.5 0.5 1 1");
        // 8 pixels = 0.04 of the graph: a hit.
        moveTo(&e.w, e.at(0.5f, 0.5f) + QPoint(0, 8));
        QCOMPARE(e.w.getHoverPoint(), 1);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.5f, 0.5f) + QPoint(0, 8));
        QCOMPARE(e.count(), 3);
        QCOMPARE(e.w.getActivePoint(), 1);
        // Dragging keeps the grab offset: moving 20 pixels up moves the point 0.1.
        moveTo(&e.w, e.at(0.5f, 0.5f) + QPoint(0, -12));
        QCOMPARE(e.pt(1).y, 0.6f);
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.5f, 0.5f));
        // 12 pixels = 0.06: a miss, so the press inserts.
        moveTo(&e.w, e.at(0.5f, 0.6f) + QPoint(12, 0));
        QCOMPARE(e.w.getHoverPoint(), -1);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.5f, 0.6f) + QPoint(12, 0));
        QCOMPARE(e.count(), 4);
    }

    void dragClampsBetweenNeighbours()
    {
        Editor e("0 0 0.25 0.25 0.5 0.5 1 1");
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.25f, 0.25f));
        moveTo(&e.w, e.at(0.9f, 1.2f));
        QCOMPARE(e.pt(1).x, 0.5f);
        QCOMPARE(e.pt(1).y, 1.0f);
        moveTo(&e.w, e.at(-0.2f, -0.1f));
        QCOMPARE(e.pt(1).x, 0.0f);
        QCOMPARE(e.pt(1).y, 0.0f);
        QCOMPARE(e.count(), 4);
    }

    void dragPastLimitRemovesForGood()
    {
        Editor e("0 0 0.5 0.5 1 1");
        QSignalSpy changed(&e.w, &ToneCurveWidget::curveChanged);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.5f, 0.5f));
        moveTo(&e.w, e.at(0.5f, 1.28f));
        QCOMPARE(e.count(), 3);
        moveTo(&e.w, e.at(0.5f, 1.32f));
        QCOMPARE(e.count(), 2);
        QCOMPARE(e.w.getActivePoint(), -1);
        QCOMPARE(e.w.getHoverPoint(), -1);
        QCOMPARE(changed.count(), 2);
        // The neighbours are untouched and the table is the identity again.
        QCOMPARE(e.pt(0).x, 0.0f);
        QCOMPARE(e.pt(1).y, 1.0f);
        QVERIFY(e.data.curve.isIdentity());
        moveTo(&e.w, e.at(0.5f, 0.5f));
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.5f, 0.5f));
        QCOMPARE(e.count(), 2);
        // Sideways past -0.3 removes as well.
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.4f, 0.6f));
        QCOMPARE(e.count(), 3);
        moveTo(&e.w, e.at(-0.32f, 0.6f));
        QCOMPARE(e.count(), 2);
    }

    void endPointsStayPut()
    {
        Editor e("0 0 0.5 0.5 1 1");
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.0f, 0.0f));
        QCOMPARE(e.w.getActivePoint(), 0);
        moveTo(&e.w, e.at(0.4f, -2.0f));
        QCOMPARE(e.count(), 3);
        QCOMPARE(e.pt(0).x, 0.0f);
        QCOMPARE(e.pt(0).y, 0.0f);
        moveTo(&e.w, e.at(0.4f, 0.2f));
        QCOMPARE(e.pt(0).x, 0.0f);
        QCOMPARE(e.pt(0).y, 0.2f);
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.4f, 0.2f));
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(1.0f, 1.0f));
        moveTo(&e.w, e.at(3.0f, 0.7f));
        QCOMPARE(e.count(), 3);
        QCOMPARE(e.pt(2).x, 1.0f);
        QCOMPARE(e.pt(2).y, 0.7f);
    }

    void deleteKeyRemovesOnlyInnerPoints()
    {
        Editor e("0 0 0.5 0.6 1 1");
        QSignalSpy changed(&e.w, &ToneCurveWidget::curveChanged);
        moveTo(&e.w, e.at(0.0f, 0.0f));
        QCOMPARE(e.w.getHoverPoint(), 0);
        QTest::keyClick(&e.w, Qt::Key_Delete);
        moveTo(&e.w, e.at(1.0f, 1.0f));
        QTest::keyClick(&e.w, Qt::Key_Backspace);
        QCOMPARE(e.count(), 3);
        QCOMPARE(changed.count(), 0);
        moveTo(&e.w, e.at(0.5f, 0.6f));
        QTest::keyClick(&e.w, Qt::Key_Backspace);
        QCOMPARE(e.count(), 2);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(e.w.getHoverPoint(), -1);
    }

    void hueRingTiesItsEnds()
    {
        Editor e("0 0.5 0.5 0.5 1 0.5", true);
        QCOMPARE(e.w.getMode(), 3);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.0f, 0.5f));
        moveTo(&e.w, e.at(0.0f, 0.8f));
        QCOMPARE(e.pt(0).y, 0.8f);
        QCOMPARE(e.pt(2).y, 0.8f);
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(0.0f, 0.8f));
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, e.at(1.0f, 0.8f));
        moveTo(&e.w, e.at(1.0f, 0.3f));
        QCOMPARE(e.pt(0).y, 0.3f);
        QCOMPARE(e.pt(0).x, 0.0f);
        QCOMPARE(e.pt(2).x, 1.0f);
    }

    void hueStripDragShiftsTheRing()
    {
        Editor e("0 0.5 1 0.5", true);
        QSignalSpy changed(&e.w, &ToneCurveWidget::curveChanged);
        QTest::mousePress(&e.w, Qt::LeftButton, Qt::NoModifier, QPoint(60, 217));
        QCOMPARE(e.count(), 2);
        // t = ((x - 10) - 100) / 100.
        moveTo(&e.w, QPoint(160, 217));
        QCOMPARE(e.w.getHueShift(), 0.5f);
        QCOMPARE(e.data.curve.hueOffset, 90.0f);
        moveTo(&e.w, QPoint(-400, 217));
        QCOMPARE(e.data.curve.hueOffset, 360.0f);
        QTest::mouseRelease(&e.w, Qt::LeftButton, Qt::NoModifier, QPoint(-400, 217));
        QCOMPARE(changed.count(), 2);
        // The same strip in a plain curve is just part of the widget: a press there inserts nothing.
        Editor plain("0 0 1 1");
        QTest::mousePress(&plain.w, Qt::LeftButton, Qt::NoModifier, QPoint(60, 217));
        QCOMPARE(plain.count(), 3);
        QCOMPARE(plain.pt(1).y, 0.0f);
    }

    void wheelNudgesTheHoverPoint()
    {
        Editor e("0 0 0.5 0.5 1 1");
        QSignalSpy started(&e.w, &ToneCurveWidget::editingStarted);
        QSignalSpy changed(&e.w, &ToneCurveWidget::curveChanged);
        moveTo(&e.w, e.at(0.5f, 0.5f));
        const QPointF at = e.at(0.5f, 0.5f);
        QWheelEvent ev(at, e.w.mapToGlobal(at.toPoint()), QPoint(), QPoint(0, 1000), Qt::NoButton, Qt::NoModifier,
                       Qt::NoScrollPhase, false);
        QApplication::sendEvent(&e.w, &ev);
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(started.count(), 1);
        // s = min(216, 230) * 1e-6, so 1000 units of wheel lift the point by 0.216.
        QVERIFY(std::abs(e.pt(1).y - 0.716f) < 1e-5f);
        QCOMPARE(e.pt(1).x, 0.5f);
    }

    void rightPressOnlyReports()
    {
        Editor e("0 0 1 1");
        QSignalSpy right(&e.w, &ToneCurveWidget::rightClicked);
        QTest::mousePress(&e.w, Qt::RightButton, Qt::NoModifier, e.at(0.5f, 0.2f));
        QCOMPARE(right.count(), 1);
        QCOMPARE(e.count(), 2);
    }
};

QTEST_MAIN(ToneCurveWidgetTest)
#include "ToneCurveWidgetTest.moc"
