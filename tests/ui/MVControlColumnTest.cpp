// The control column on its own: one control per variable kind, the order of an edit (one
// about-to-adjust before the value moves, then changes the mod follows), reset to the default,
// the curve clipboard and the placement rule above the tray.
#include "core/ImageMod.h"
#include "core/ImageModVariableDataButton.h"
#include "core/ImageModVariableDataChoice.h"
#include "core/ImageModVariableDataColor.h"
#include "core/ImageModVariableDataCurve.h"
#include "core/ImageModVariableDataFile.h"
#include "core/ImageModVariableDataMultiChoice.h"
#include "core/ImageModVariableDataPixel.h"
#include "core/ImageModVariableDataBoundary.h"
#include "ui/ColorChooserWidget.h"
#include "ui/MVColorChoiceWidget.h"
#include "ui/MVColorControl.h"
#include "ui/MVControlColumn.h"
#include "ui/MVListChooser.h"
#include "ui/MVMultiChoiceWidget.h"
#include "ui/MVPushButton.h"
#include "ui/MVScroller.h"
#include "ui/MVSlider.h"
#include "ui/MVStringInputBox.h"
#include "ui/ToneCurveWidget.h"
#include "ui/qtMultiDataWidget.h"

#include <QtGui/QClipboard>
#include <QtTest/QtTest>
#include <QtWidgets/QLineEdit>

namespace {

// A tile with one variable of every kind, counting what reaches variableChanged.
class ImageModEveryKind : public ImageMod {
public:
    enum { varAmount, varCurve, varHue, varColor, varButton, varText, varPreset, varHues, varFile, varCenter,
           varBounds, varHidden, varOffset };

    ImageModEveryKind() : ImageMod("Every Kind", "Every Kind")
    {
        addFloat("Amount", 1.0f, 0.0f, 2.0f)->data->setDisplayScale(0.0f, 100.0f);
        addCurve("Curve", "0 0 .5 .6 1 1");
        addHueCurve("Hue", "0 .5 1 .5");
        addColor("Tint", 200.0f, 100.0f, 50.0f, 128.0f);
        addButton("Auto", 7, "Auto Level");
        addButton("Words")->tag = MVControlColumn::textButtonTag;
        addChoice("Preset", {"Load Preset...", "Soft", "Strong"}, 0);
        addMultiChoice("Hues", {"255 0 0", "0 255 0", "0 0 255"}, {2});
        addFile("File", "", "*.cube");
        addPixel("Center");
        addBoundary("Bounds", 0.1f, 0.2f, 0.3f, 0.4f);
        addFloat("Hidden", 0.0f, 0.0f, 1.0f)->visible = false;
        ImageModVariable* offset = addFloat("Offset", 0.0f, 0.0f, 0.0f, -1.0f, 1.0f);
        offset->data->hasHardMin = false;
        offset->data->hasHardMax = false;
    }
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModEveryKind>(); }
    void variableChanged(int32_t index) override
    {
        changed.push_back(index);
        if (index == varButton)
            buttonWasPressed = variableAt(varButton)->asButton()->pressed;
        // A preset list fills other values and returns to its first row.
        if (index == varPreset && choiceIndex(varPreset) > 0) {
            variableAt(varAmount)->data->value = choiceIndex(varPreset) == 1 ? 0.5f : 1.75f;
            variableAt(varPreset)->asChoice()->index = 0;
        }
    }

    std::vector<int32_t> changed;
    bool buttonWasPressed = false;
};

void moveTo(QWidget* w, QPoint p)
{
    QMouseEvent ev(QEvent::MouseMove, p, w->mapToGlobal(p), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(w, &ev);
}

template <typename T>
T* controlOf(MVControlColumn& column, int32_t index)
{
    return qobject_cast<T*>(column.controlForVariable(index));
}

} // namespace

class MVControlColumnTest : public QObject {
    Q_OBJECT
private slots:
    void everyKindGetsItsControl()
    {
        ImageModEveryKind mod;
        MVControlColumn column;
        column.setMod(&mod);
        using M = ImageModEveryKind;
        QCOMPARE(int(column.controls().size()), 12); // every variable but the hidden one
        QVERIFY(controlOf<MVSlider>(column, M::varAmount));
        QVERIFY(controlOf<ToneCurveWidget>(column, M::varCurve));
        QCOMPARE(controlOf<ToneCurveWidget>(column, M::varHue)->getMode(), 3);
        QCOMPARE(controlOf<ToneCurveWidget>(column, M::varCurve)->getMode(), 0);
        QVERIFY(controlOf<MVColorControl>(column, M::varColor));
        QCOMPARE(controlOf<MVPushButton>(column, M::varButton)->text(), QStringLiteral("Auto Level"));
        QVERIFY(controlOf<MVStringInputBox>(column, M::varText));
        QCOMPARE(controlOf<MVListChooser>(column, M::varPreset)->getItems().size(), 3);
        QCOMPARE(controlOf<MVMultiChoiceWidget>(column, M::varHues)->selection(), std::vector<int32_t>{2});
        QVERIFY(controlOf<MVStringInputBox>(column, M::varFile));
        QCOMPARE(controlOf<qtMultiDataWidget>(column, M::varCenter)->fieldCount(), 2);
        QCOMPARE(controlOf<qtMultiDataWidget>(column, M::varBounds)->fieldCount(), 4);
        QCOMPARE(controlOf<qtMultiDataWidget>(column, M::varBounds)->value(3), 0.4f);
        QVERIFY(!column.controlForVariable(M::varHidden));
        for (QWidget* c : column.controls())
            QCOMPARE(column.controlForVariable(column.variableIndexOf(c)), c);
        QCOMPARE(column.variableIndexOf(&column), -1);

        // Slider ranges and the way numbers are shown come from the variable.
        MVSlider* amount = controlOf<MVSlider>(column, M::varAmount);
        QCOMPARE(amount->value(), 1.0f);
        QCOMPARE(amount->valueText(), QStringLiteral("50"));
        QCOMPARE(amount->maxLabelText(), QStringLiteral("100"));
        MVSlider* offset = controlOf<MVSlider>(column, M::varOffset);
        QCOMPARE(offset->minLabelText(), QStringLiteral("-")); // unclamped: recentring
        QCOMPARE(offset->valueText(), QStringLiteral("0.00"));
        // The curve widget edits the variable's own curve.
        QCOMPARE(&controlOf<ToneCurveWidget>(column, M::varCurve)->curve(), &mod.variableAt(M::varCurve)->asCurve()->curve);
        const QColor tint = controlOf<MVColorControl>(column, M::varColor)->color();
        QCOMPARE(tint.red(), 200);
        QCOMPARE(tint.alpha(), 128);

        column.setMod(nullptr);
        QVERIFY(column.controls().empty());
        QVERIFY(column.findChildren<MVSlider*>().isEmpty());
    }

    void sliderDragIsOneUndoStepAndTheModFollows()
    {
        ImageModEveryKind mod;
        MVControlColumn column;
        column.setMod(&mod);
        MVSlider* s = controlOf<MVSlider>(column, ImageModEveryKind::varAmount);
        QVERIFY(s);
        std::vector<QString> events;
        std::vector<float> seenByUndo;
        connect(&column, &MVControlColumn::aboutToAdjust, [&](QWidget* c) {
            QCOMPARE(c, static_cast<QWidget*>(s));
            events.push_back(QStringLiteral("start"));
            seenByUndo.push_back(mod.floatValue(ImageModEveryKind::varAmount));
        });
        connect(&column, &MVControlColumn::adjusted, [&](QWidget* c) {
            QCOMPARE(c, static_cast<QWidget*>(s));
            events.push_back(QStringLiteral("change"));
            // Each change is in the mod, with variableChanged run, before the window hears of it.
            QCOMPARE(mod.floatValue(ImageModEveryKind::varAmount), s->value());
            QCOMPARE(mod.changed.back(), int32_t(ImageModEveryKind::varAmount));
        });

        const float left = s->getTrackLeft(), right = s->getTrackRight();
        auto xFor = [&](float t) { return int(std::lround(left + 1.0f + t * (right - left))); };
        QTest::mousePress(s, Qt::LeftButton, Qt::NoModifier, QPoint(xFor(0.25f), 11));
        moveTo(s, QPoint(xFor(0.5f), 11));
        moveTo(s, QPoint(xFor(0.75f), 11));
        moveTo(s, QPoint(-400, 11));
        QTest::mouseRelease(s, Qt::LeftButton, Qt::NoModifier, QPoint(-400, 11));

        const std::vector<QString> want = {QStringLiteral("start"), QStringLiteral("change"), QStringLiteral("change"),
                                           QStringLiteral("change"), QStringLiteral("change")};
        QCOMPARE(events, want);
        QCOMPARE(seenByUndo, std::vector<float>{1.0f}); // the snapshot saw the value before the drag
        QCOMPARE(mod.floatValue(ImageModEveryKind::varAmount), 0.0f);
        QCOMPARE(mod.changed.size(), size_t(4));

        // A second drag is a second step.
        QTest::mousePress(s, Qt::LeftButton, Qt::NoModifier, QPoint(xFor(1.0f) + 30, 11));
        QTest::mouseRelease(s, Qt::LeftButton, Qt::NoModifier, QPoint(xFor(1.0f) + 30, 11));
        QCOMPARE(seenByUndo.size(), size_t(2));
        QCOMPARE(mod.floatValue(ImageModEveryKind::varAmount), 2.0f);
    }

    void choicePickOpensTheStepBeforeWriting()
    {
        ImageModEveryKind mod;
        MVControlColumn column;
        column.setMod(&mod);
        MVListChooser* chooser = controlOf<MVListChooser>(column, ImageModEveryKind::varPreset);
        MVSlider* amount = controlOf<MVSlider>(column, ImageModEveryKind::varAmount);
        int starts = 0;
        connect(&column, &MVControlColumn::aboutToAdjust, [&] {
            ++starts;
            QCOMPARE(mod.floatValue(ImageModEveryKind::varAmount), 1.0f);
        });
        QSignalSpy adjusted(&column, &MVControlColumn::adjusted);
        chooser->showList();
        QVERIFY(chooser->openList());
        emit chooser->openList()->itemChosen(2);
        QCOMPARE(starts, 1);
        QCOMPARE(adjusted.count(), 1);
        // The mod filled the amount and went back to its first row; both controls show it.
        QCOMPARE(mod.floatValue(ImageModEveryKind::varAmount), 1.75f);
        QCOMPARE(amount->value(), 1.75f);
        QCOMPARE(chooser->currentIndex(), 0);
        QCOMPARE(mod.choiceIndex(ImageModEveryKind::varPreset), 0);
    }

    void otherControlsWriteTheirValues()
    {
        using M = ImageModEveryKind;
        ImageModEveryKind mod;
        MVControlColumn column;
        column.setMod(&mod);
        QSignalSpy starts(&column, &MVControlColumn::aboutToAdjust);
        QSignalSpy adjusted(&column, &MVControlColumn::adjusted);

        // A swatch sets red, green and blue and keeps the strength.
        MVColorControl* color = controlOf<MVColorControl>(column, M::varColor);
        MVColorChoiceWidget* swatches = color->swatches();
        const QPoint third(4 + 3 * (MVColorChoiceWidget::swatchSize + MVColorChoiceWidget::swatchGap) + 10, 14);
        QCOMPARE(swatches->swatchAt(third), 3);
        QTest::mousePress(swatches, Qt::LeftButton, Qt::NoModifier, third);
        const ImageModVariableDataColor* c = mod.colorAt(M::varColor);
        QCOMPARE(QColor(int(std::lround(c->red)), int(std::lround(c->green)), int(std::lround(c->blue))),
                 swatches->selectedColor());
        QCOMPARE(int(std::lround(c->alpha)), 128);
        QCOMPARE(starts.count(), 1);
        QCOMPARE(adjusted.count(), 1);

        // Chips keep the order in which they were turned on.
        MVMultiChoiceWidget* hues = controlOf<MVMultiChoiceWidget>(column, M::varHues);
        QTest::mousePress(hues, Qt::LeftButton, Qt::NoModifier, hues->chipRect(0).center());
        QTest::mousePress(hues, Qt::LeftButton, Qt::NoModifier, hues->chipRect(2).center());
        QCOMPARE(mod.multiChoiceAt(M::varHues)->selected, std::vector<int32_t>{0});
        QTest::mousePress(hues, Qt::LeftButton, Qt::NoModifier, hues->chipRect(1).center());
        QCOMPARE(mod.multiChoiceAt(M::varHues)->selected, (std::vector<int32_t>{0, 1}));
        QCOMPARE(starts.count(), 4);

        // The button presses the mod's button: pressed during the call, cleared after.
        controlOf<MVPushButton>(column, M::varButton)->click();
        QVERIFY(mod.buttonWasPressed);
        QVERIFY(!mod.variableAt(M::varButton)->asButton()->pressed);
        QCOMPARE(starts.count(), 5);

        // Text, file path, point and boundary fields.
        auto type = [](QLineEdit* e, const QString& text) {
            e->setText(text);
            emit e->editingFinished();
        };
        type(controlOf<MVStringInputBox>(column, M::varText)->lineEdit(), QStringLiteral("Hello"));
        QCOMPARE(mod.variableAt(M::varText)->asButton()->storedText, std::string("Hello"));
        type(controlOf<MVStringInputBox>(column, M::varFile)->lineEdit(), QStringLiteral("/tmp/look.cube"));
        QCOMPARE(mod.fileAt(M::varFile)->path, std::string("/tmp/look.cube"));
        type(controlOf<qtMultiDataWidget>(column, M::varCenter)->field(1), QStringLiteral("640"));
        QCOMPARE(mod.pixelAt(M::varCenter)->points.front().x, -1.0f);
        QCOMPARE(mod.pixelAt(M::varCenter)->points.front().y, 640.0f);
        type(controlOf<qtMultiDataWidget>(column, M::varBounds)->field(2), QStringLiteral("0.75"));
        QCOMPARE(mod.boundaryAt(M::varBounds)->right, 0.75f);
        QCOMPARE(mod.boundaryAt(M::varBounds)->left, 0.1f);
        QCOMPARE(starts.count(), 9);
        QCOMPARE(adjusted.count(), starts.count());
        // Typing what is already there is no edit.
        type(controlOf<qtMultiDataWidget>(column, M::varBounds)->field(2), QStringLiteral("0.750"));
        QCOMPARE(starts.count(), 9);
    }

    void rightPressResetsInsteadOfEditing()
    {
        using M = ImageModEveryKind;
        ImageModEveryKind mod;
        MVControlColumn column;
        column.setMod(&mod);
        MVSlider* s = controlOf<MVSlider>(column, M::varAmount);
        ToneCurveWidget* curve = controlOf<ToneCurveWidget>(column, M::varCurve);
        mod.variableAt(M::varAmount)->data->value = 0.3f;
        mod.variableAt(M::varCurve)->asCurve()->curve.setFromString("0 0 .2 .9 1 1");
        column.refreshValues();
        QCOMPARE(s->value(), 0.3f);

        QSignalSpy right(&column, &MVControlColumn::rightClicked);
        QSignalSpy starts(&column, &MVControlColumn::aboutToAdjust);
        QTest::mousePress(s, Qt::RightButton, Qt::NoModifier, QPoint(s->getTrackRight(), 11));
        QTest::mousePress(curve, Qt::RightButton, Qt::NoModifier, QPoint(60, 60));
        QCOMPARE(right.count(), 2);
        QCOMPARE(right.at(0).at(0).value<QWidget*>(), static_cast<QWidget*>(s));
        QCOMPARE(right.at(1).at(0).value<QWidget*>(), static_cast<QWidget*>(curve));
        QCOMPARE(starts.count(), 0); // a right press moves nothing and opens no undo step
        QCOMPARE(mod.floatValue(M::varAmount), 0.3f);
        QCOMPARE(curve->curve().pointCount(), 3);

        QVERIFY(column.resetToDefault(s));
        QCOMPARE(mod.floatValue(M::varAmount), 1.0f);
        QCOMPARE(s->value(), 1.0f);
        QCOMPARE(starts.count(), 1);
        QVERIFY(column.resetToDefault(curve));
        const ToneCurve& reset = mod.variableAt(M::varCurve)->asCurve()->curve;
        QCOMPARE(reset.pointCount(), 3);
        QCOMPARE(reset.points[1].y, 0.6f);
        // The widget follows the new value object, not the one that was replaced.
        QCOMPARE(&curve->curve(), &reset);
        QCOMPARE(starts.count(), 2);
        QCOMPARE(mod.changed.back(), int32_t(M::varCurve));
        // A button has no default to go back to.
        QVERIFY(!column.resetToDefault(controlOf<MVPushButton>(column, M::varButton)));
        QVERIFY(!column.resetToDefault(&column));
        QCOMPARE(starts.count(), 2);
    }

    void curveClipboardRoundTrip()
    {
        using M = ImageModEveryKind;
        ImageModEveryKind from, to;
        MVControlColumn a, b;
        a.setMod(&from);
        b.setMod(&to);
        // Values that a six-digit text form would round.
        from.variableAt(M::varCurve)->asCurve()->curve.points = {{0.0f, 0.0312345671f}, {0.123456789f, 0.7654321f},
                                                                   {0.5f, 0.5f}, {1.0f, 0.987654321f}};
        from.variableAt(M::varCurve)->asCurve()->curve.rebuild();
        QVERIFY(a.copyCurve(controlOf<ToneCurveWidget>(a, M::varCurve)));
        QSignalSpy starts(&b, &MVControlColumn::aboutToAdjust);
        QSignalSpy adjusted(&b, &MVControlColumn::adjusted);
        QVERIFY(b.pasteCurve(controlOf<ToneCurveWidget>(b, M::varCurve)));
        QCOMPARE(starts.count(), 1);
        QCOMPARE(adjusted.count(), 1);
        const ToneCurve& got = to.variableAt(M::varCurve)->asCurve()->curve;
        const ToneCurve& sent = from.variableAt(M::varCurve)->asCurve()->curve;
        QCOMPARE(got.pointCount(), 4);
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(got.points[size_t(i)].x, sent.points[size_t(i)].x);
            QCOMPARE(got.points[size_t(i)].y, sent.points[size_t(i)].y);
        }
        QCOMPARE(got.entries, sent.entries); // the table was rebuilt from the pasted points
        QVERIFY(to.variableAt(M::varCurve)->isEqual(*from.variableAt(M::varCurve)));

        // Into a hue ring the ends stay tied.
        QVERIFY(b.pasteCurve(controlOf<ToneCurveWidget>(b, M::varHue)));
        const ToneCurve& ring = to.variableAt(M::varHue)->asCurve()->curve;
        QCOMPARE(ring.points.back().y, ring.points.front().y);
        QCOMPARE(ring.points.back().x, 1.0f);

        // Not a curve: nothing is pasted and no step is opened.
        QGuiApplication::clipboard()->setText(QStringLiteral("0 0 .5"));
        MVControlColumn::curveClipboard() = QStringLiteral("1 0 0 1");
        const int before = starts.count();
        QVERIFY(!b.pasteCurve(controlOf<ToneCurveWidget>(b, M::varCurve)));
        QCOMPARE(starts.count(), before);
        QVERIFY(!b.pasteCurve(controlOf<MVSlider>(b, M::varAmount)));
        QVERIFY(!b.copyCurve(controlOf<MVSlider>(b, M::varAmount)));

        QVERIFY(MVControlColumn::isCurveText(QStringLiteral("0 0 1 1")));
        QVERIFY(MVControlColumn::isCurveText(QStringLiteral(" 0 0\n0.5 0.5  1 1 ")));
        QVERIFY(!MVControlColumn::isCurveText(QStringLiteral("0 0")));          // one point
        QVERIFY(!MVControlColumn::isCurveText(QStringLiteral("0 0 1")));        // odd count
        QVERIFY(!MVControlColumn::isCurveText(QStringLiteral("0 0 1.2 1")));    // outside the square
        QVERIFY(!MVControlColumn::isCurveText(QStringLiteral("0.6 0 0.4 1")));  // x falling
        QVERIFY(!MVControlColumn::isCurveText(QStringLiteral("0 0 nan 1")));
    }

    void placementKeepsAboveTheTray()
    {
        // Area 0..799 wide from y 30 to y 643 inclusive; the tray starts at y 674.
        const QRect area(0, 30, 800, 614);
        const QRect r = MVControlColumn::placement(300, area, true, 674);
        QCOMPARE(r.left(), MVControlColumn::sideInset);
        QCOMPARE(r.width(), MVControlColumn::columnWidth);
        QCOMPARE(r.bottom() + 1, 674 - 50);
        QCOMPARE(r.height(), 300);
        // A tray lower than the area allows: the column stops 2 pixels above the area's bottom.
        const QRect low = MVControlColumn::placement(300, area, true, 900);
        QCOMPARE(low.bottom() + 1, 644 - 2);
        // Without a tray the same lowest place holds.
        const QRect hidden = MVControlColumn::placement(300, area, false, 674);
        QCOMPARE(hidden.bottom() + 1, 642);
        // Too tall: the top stays inside the area and the column is cut to the room left.
        const QRect tall = MVControlColumn::placement(5000, area, true, 674);
        QCOMPARE(tall.top(), 32);
        QCOMPARE(tall.bottom() + 1, 624);
    }

    void tallColumnScrolls()
    {
        ImageModEveryKind mod;
        QWidget host;
        host.resize(900, 500);
        auto* column = new MVControlColumn(&host);
        column->setMod(&mod);
        QVERIFY(column->naturalHeight() > 600);
        column->placeIn(QRect(0, 0, 900, 400), true, 450);
        QCOMPARE(column->geometry(), QRect(MVControlColumn::sideInset, 2, MVControlColumn::columnWidth, 396));
        MVScroller* scroller = column->findChild<MVScroller*>();
        QVERIFY(scroller && !scroller->isHidden());
        // Scrolling moves the controls up by the position.
        QWidget* first = column->controls().front();
        const int y0 = first->mapTo(column, QPoint(0, 0)).y();
        emit scroller->scrolled(120.0f);
        QCOMPARE(first->mapTo(column, QPoint(0, 0)).y(), y0 - 120);
        // A short tile fits and needs no scroller.
        ImageMod* none = nullptr;
        column->setMod(none);
        column->placeIn(QRect(0, 0, 900, 400), true, 450);
        QVERIFY(scroller->isHidden());
    }
};

QTEST_MAIN(MVControlColumnTest)
#include "MVControlColumnTest.moc"
