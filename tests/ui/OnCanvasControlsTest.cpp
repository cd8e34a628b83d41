// The on-canvas controls: cursor to document pixels, the pixel chooser's hit radius and drags, the
// white point pick, the boundary frame, the colour panel, pass-through of unused presses, and
// which controls a tile gets.
#include "core/ImageModVariableDataBoundary.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataPixel.h"
#include "mods/ImageModExposure.h"
#include "mods/ImageModVignette.h"
#include "mods/ImageModWhitePoint.h"
#include "tools/MVBoundaryChooserControl.h"
#include "tools/MVColorChooserControl.h"
#include "tools/MVPixelChooserControl.h"
#include "tools/OnCanvasControls.h"

#include <QtTest/QtTest>

#include <memory>

namespace {

// Sends one mouse event and says whether the control took it (an untaken one goes to the viewer).
bool send(QWidget& w, QEvent::Type type, QPointF at, Qt::MouseButtons buttons = Qt::LeftButton)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent e(type, at, w.mapToGlobal(at.toPoint()), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&w, &e);
    return e.isAccepted();
}

// A tile with a boundary, which no shipped tile has yet.
class BoundaryMod : public ImageMod
{
public:
    BoundaryMod() : ImageMod("Boundary Test", "Boundary Test") { addBoundary("Area", 0.1f, 0.2f, 0.9f, 0.8f); }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<BoundaryMod>(); }
};

ImageModVariableDataPixel* pixelData(ImageMod& mod, int index)
{
    return mod.variableAt(index)->asPixel();
}

// Picture shown at (100, 50), 400 x 300, for a document of 2000 x 1500: 5 document pixels a pixel.
template <typename Control>
void place(Control& c)
{
    c.resize(700, 500);
    c.setImageRect(100.0, 50.0, 400.0, 300.0);
    c.setDocumentSize(2000, 1500);
}

} // namespace

class OnCanvasControlsTest : public QObject
{
    Q_OBJECT
private slots:
    void mapsBetweenWidgetAndDocumentPixels()
    {
        ImageModVignette mod;
        MVPixelChooserControl c(&mod, 3);
        place(c);
        float x = 0, y = 0;
        QVERIFY(c.documentPoint(QPointF(300.0, 200.0), x, y));
        QCOMPARE(x, 1000.0f);
        QCOMPARE(y, 750.0f);
        QCOMPARE(c.widgetPoint(500.0f, 1500.0f), QPointF(200.0, 350.0));
        QVERIFY(!c.documentPoint(QPointF(99.0, 200.0), x, y));
        QVERIFY(c.documentPoint(QPointF(500.0, 350.0), x, y)); // the far corner belongs to the picture
    }

    void pressWithinTheHitRadiusSelectsThePoint()
    {
        ImageModVignette mod;
        pixelData(mod, 3)->points = {{500.0f, 375.0f}, {1500.0f, 1125.0f}}; // widget (200, 125), (400, 275)
        MVPixelChooserControl c(&mod, 3);
        place(c);
        int about = 0, did = 0;
        connect(&c, &MVFullScreenControl::aboutToAdjust, this, [&] { ++about; });
        connect(&c, &MVFullScreenControl::didAdjust, this, [&] { ++did; });

        // 14 pixels away from the second point: taken, and only announced.
        QVERIFY(send(c, QEvent::MouseButtonPress, QPointF(400.0, 289.0)));
        QCOMPARE(c.activePoint, 1);
        QCOMPARE(about, 1);
        QCOMPARE(did, 0);
        QVERIFY(send(c, QEvent::MouseMove, QPointF(420.0, 300.0)));
        QCOMPARE(did, 1);
        QCOMPARE(pixelData(mod, 3)->points[1], (ImageModPixelPoint{1600.0f, 1250.0f}));
        QCOMPARE(pixelData(mod, 3)->points[0], (ImageModPixelPoint{500.0f, 375.0f}));
        QVERIFY(send(c, QEvent::MouseButtonRelease, QPointF(420.0, 300.0), Qt::NoButton));
        QCOMPARE(c.activePoint, -1);

        // 15 pixels away from both: not the control's, the viewer pans.
        QVERIFY(!send(c, QEvent::MouseButtonPress, QPointF(215.0, 125.0)));
        QCOMPARE(c.activePoint, -1);
        QCOMPARE(about, 1);
        // Dragged far off the picture, a point stays on it.
        QVERIFY(send(c, QEvent::MouseButtonPress, QPointF(200.0, 125.0)));
        QCOMPARE(c.activePoint, 0);
        QVERIFY(send(c, QEvent::MouseMove, QPointF(-50.0, 900.0)));
        QCOMPARE(pixelData(mod, 3)->points[0], (ImageModPixelPoint{0.0f, 1499.0f}));
    }

    void singlePointJumpsToAClickOnThePicture()
    {
        ImageModVignette mod; // its centre starts unset, drawn in the middle
        MVPixelChooserControl c(&mod, 3);
        place(c);
        int did = 0;
        connect(&c, &MVFullScreenControl::didAdjust, this, [&] { ++did; });
        QVERIFY(send(c, QEvent::MouseButtonPress, QPointF(150.0, 80.0)));
        QCOMPARE(did, 1);
        QCOMPARE(pixelData(mod, 3)->points.size(), size_t(1));
        QCOMPARE(pixelData(mod, 3)->points[0], (ImageModPixelPoint{250.0f, 150.0f}));
        send(c, QEvent::MouseButtonRelease, QPointF(150.0, 80.0), Qt::NoButton);
        // Off the picture nothing moves and the event goes on.
        QVERIFY(!send(c, QEvent::MouseButtonPress, QPointF(20.0, 20.0)));
        QCOMPARE(pixelData(mod, 3)->points[0], (ImageModPixelPoint{250.0f, 150.0f}));
    }

    void whitePointPickTakesTheColourUnderTheClick()
    {
        ImageModWhitePoint mod;
        MVPixelChooserControl c(&mod, ImageModWhitePoint::kNeutralColor);
        place(c);
        float seenX = -1, seenY = -1;
        c.setPickMode([&](float x, float y, float rgb[3]) {
            seenX = x;
            seenY = y;
            rgb[0] = 200.0f;
            rgb[1] = 180.0f;
            rgb[2] = 150.0f;
            return true;
        });
        int about = 0;
        connect(&c, &MVFullScreenControl::aboutToAdjust, this, [&] { ++about; });
        QVERIFY(send(c, QEvent::MouseButtonPress, QPointF(140.0, 90.0)));
        QCOMPARE(about, 1);
        QCOMPARE(seenX, 200.0f);
        QCOMPARE(seenY, 200.0f);
        const ImageModVariableDataColor* color = mod.colorAt(ImageModWhitePoint::kNeutralColor);
        QCOMPARE(color->red, 200.0f);
        QCOMPARE(color->green, 180.0f);
        QCOMPARE(color->blue, 150.0f);
        QVERIFY(!send(c, QEvent::MouseButtonPress, QPointF(10.0, 10.0)));
        QCOMPARE(about, 1);
    }

    void boundaryFrameMovesItsLeftEdge()
    {
        BoundaryMod mod;
        MVBoundaryChooserControl c(&mod, 0);
        place(c);
        const auto* b = static_cast<const ImageModVariableDataBoundary*>(mod.variableAt(0)->data.get());
        // Left edge at 100 + 0.1 * 400 = 140.
        QVERIFY(send(c, QEvent::MouseMove, QPointF(145.0, 200.0), Qt::NoButton) == false);
        QVERIFY(c.geometry.hitLeft);
        QVERIFY(send(c, QEvent::MouseButtonPress, QPointF(145.0, 200.0)));
        QVERIFY(send(c, QEvent::MouseMove, QPointF(185.0, 200.0)));
        QVERIFY(std::abs(b->left - 0.2f) < 1e-6f);
        QVERIFY(std::abs(b->right - 0.9f) < 1e-6f);
        QCOMPARE(b->top, 0.2f);
        send(c, QEvent::MouseButtonRelease, QPointF(185.0, 200.0), Qt::NoButton);
        // Far from the frame: passed on.
        QVERIFY(!send(c, QEvent::MouseButtonPress, QPointF(20.0, 20.0)));
    }

    void colourPanelSetsSaturationAndValue()
    {
        ImageModWhitePoint mod; // any colour variable will do
        MVColorChooserControl c(&mod, ImageModWhitePoint::kNeutralColor);
        place(c);
        int did = 0;
        connect(&c, &MVFullScreenControl::didAdjust, this, [&] { ++did; });
        // The bottom-left of the square is black whatever the hue.
        const QRectF sq = c.squareRect();
        QVERIFY(send(c, QEvent::MouseButtonPress, sq.bottomLeft() + QPointF(0.0, -0.01)));
        QCOMPARE(did, 1);
        const ImageModVariableDataColor* color = mod.colorAt(ImageModWhitePoint::kNeutralColor);
        QVERIFY(color->red < 1.0f && color->green < 1.0f && color->blue < 1.0f);
        // Dragged to the top-right corner at hue 0: pure red.
        QVERIFY(send(c, QEvent::MouseMove, sq.topRight() + QPointF(5.0, -5.0)));
        QCOMPARE(color->red, 255.0f);
        QCOMPARE(color->green, 0.0f);
        send(c, QEvent::MouseButtonRelease, sq.topRight(), Qt::NoButton);
        // On the panel but not on a part: kept; off the panel: the viewer's.
        QVERIFY(send(c, QEvent::MouseButtonPress, c.panelRect().bottomRight() - QPointF(3.0, 3.0)));
        QVERIFY(!send(c, QEvent::MouseButtonPress, QPointF(450.0, 300.0)));
    }

    void tilesGetTheControlsTheirVariablesNeed()
    {
        QWidget host;
        ImageModVignette vignette;
        auto made = createOnCanvasControls(&vignette, nullptr);
        QCOMPARE(made.size(), size_t(1));
        QVERIFY(qobject_cast<MVPixelChooserControl*>(made[0]));
        QCOMPARE(made[0]->variableIndex(), 3);
        qDeleteAll(made);

        ImageModWhitePoint white;
        made = createOnCanvasControls(&white, nullptr);
        QCOMPARE(made.size(), size_t(1));
        auto* pick = qobject_cast<MVPixelChooserControl*>(made[0]);
        QVERIFY(pick && pick->isPickMode());
        qDeleteAll(made);

        BoundaryMod boundary;
        made = createOnCanvasControls(&boundary, nullptr);
        QCOMPARE(made.size(), size_t(1));
        QVERIFY(qobject_cast<MVBoundaryChooserControl*>(made[0]));
        qDeleteAll(made);

        ImageModExposure exposure;
        QVERIFY(createOnCanvasControls(&exposure, nullptr).empty());
        QVERIFY(createOnCanvasControls(nullptr, nullptr).empty());
    }
};

QTEST_MAIN(OnCanvasControlsTest)
#include "OnCanvasControlsTest.moc"
