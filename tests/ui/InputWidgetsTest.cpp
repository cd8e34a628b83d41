// The small entry widgets: the number box with its scale, the text box, the row of numbers and
// the row of chips. Edits by the user report editingStarted then sliderChanged (or dataEdited);
// setting from code reports nothing.
#include "filters/MultiData.h"
#include "ui/MVInputBox.h"
#include "ui/MVMultiChoiceWidget.h"
#include "ui/MVStringInputBox.h"
#include "ui/qtMultiDataWidget.h"

#include <QtTest/QtTest>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

#include <cmath>
#include <limits>

namespace {
void type(QLineEdit* e, const QString& text)
{
    e->setText(text);
    emit e->editingFinished();
}
} // namespace

class InputWidgetsTest : public QObject {
    Q_OBJECT
private slots:
    void inputBoxScalesBothWays()
    {
        MVInputBox box;
        QCOMPARE(box.text(), QStringLiteral("0"));
        box.setValue(42.4f);
        QCOMPARE(box.text(), QStringLiteral("42")); // scale exactly 1: whole numbers
        QVERIFY(box.setScale(0.01f));
        box.setValue(0.25f);
        QCOMPARE(box.text(), QStringLiteral("25.000"));
        type(box.lineEdit(), QStringLiteral("30"));
        QCOMPARE(box.value(), 30.0f * 0.01f);
        QVERIFY(box.setScale(2.0f));
        QCOMPARE(box.text(), QStringLiteral("0.150"));
        type(box.lineEdit(), QStringLiteral("-1.5"));
        QCOMPARE(box.value(), -3.0f);
        // A zero or non-finite scale would make every number infinite: refused, nothing changes.
        QVERIFY(!box.setScale(0.0f));
        QVERIFY(!box.setScale(std::numeric_limits<float>::infinity()));
        QCOMPARE(box.scale(), 2.0f);
        QCOMPARE(box.text(), QStringLiteral("-1.500"));
    }

    void inputBoxReportsInOrderAndOnlyOnChange()
    {
        MVInputBox box;
        box.setScale(0.5f);
        QStringList order;
        connect(&box, &MVInputBox::editingStarted, [&] { order << QStringLiteral("start:%1").arg(double(box.value())); });
        connect(&box, &MVInputBox::sliderChanged, [&](QWidget* w) {
            QCOMPARE(w, static_cast<QWidget*>(&box));
            order << QStringLiteral("change:%1").arg(double(box.value()));
        });
        box.setValue(3.0f); // from code: silent
        QVERIFY(order.isEmpty());
        type(box.lineEdit(), QStringLiteral("4"));
        QCOMPARE(order, QStringList({QStringLiteral("start:3"), QStringLiteral("change:2")}));
        // The same number typed again, text that isn't a number, and an empty box change nothing.
        type(box.lineEdit(), QStringLiteral("4.000"));
        type(box.lineEdit(), QStringLiteral("four"));
        QCOMPARE(box.text(), QStringLiteral("4.000"));
        type(box.lineEdit(), QString());
        QCOMPARE(order.size(), 2);
        QCOMPARE(box.value(), 2.0f);
    }

    void inputBoxArrowsAndLimits()
    {
        MVInputBox box;
        box.setScale(0.1f);
        box.setStep(5.0f);
        box.setLimits(true, 0.0f, 1.2f);
        box.setValue(1.0f);
        QSignalSpy started(&box, &MVInputBox::editingStarted);
        QSignalSpy changed(&box, &MVInputBox::sliderChanged);
        box.downButton()->click();
        QCOMPARE(box.value(), 1.0f - 5.0f * 0.1f);
        box.upButton()->click();
        box.upButton()->click();
        QCOMPARE(box.value(), 1.2f); // stopped at the limit
        QCOMPARE(changed.count(), 3);
        box.upButton()->click(); // already at the limit: nothing to report
        QCOMPARE(changed.count(), 3);
        QCOMPARE(started.count(), 3);
        type(box.lineEdit(), QStringLiteral("-50"));
        QCOMPARE(box.value(), 0.0f);
        box.setValue(7.0f);
        QCOMPARE(box.value(), 1.2f);
    }

    void stringBoxReportsFinishedChanges()
    {
        MVStringInputBox box;
        box.setText(QStringLiteral("Summer"));
        QStringList order;
        connect(&box, &MVStringInputBox::editingStarted, [&] { order << QStringLiteral("start:") + box.text(); });
        connect(&box, &MVStringInputBox::sliderChanged, [&] { order << QStringLiteral("change:") + box.text(); });
        box.lineEdit()->setText(QStringLiteral("Summ")); // typing without finishing
        QCOMPARE(box.text(), QStringLiteral("Summer"));
        emit box.lineEdit()->editingFinished();
        QCOMPARE(order, QStringList({QStringLiteral("start:Summer"), QStringLiteral("change:Summ")}));
        emit box.lineEdit()->editingFinished(); // focus leaving again is no edit
        QCOMPARE(order.size(), 2);
        type(box.lineEdit(), QString());
        QCOMPARE(order.last(), QStringLiteral("change:"));
    }

    void multiDataRowEditsOneNumber()
    {
        qtMultiDataWidget row;
        row.setFields({QStringLiteral("Left"), QStringLiteral("Top"), QStringLiteral("Right")});
        QCOMPARE(row.fieldCount(), 3);
        QVERIFY(row.setValue(1, 0.5f));
        QVERIFY(!row.setValue(3, 1.0f));
        QVERIFY(!row.setValue(-1, 1.0f));
        QCOMPARE(row.value(3), 0.0f);
        QCOMPARE(row.field(1)->text(), QStringLiteral("0.50"));
        QSignalSpy edited(&row, &qtMultiDataWidget::dataEdited);
        type(row.field(2), QStringLiteral("12.25"));
        QCOMPARE(edited.count(), 1);
        QCOMPARE(edited.at(0).at(0).toInt(), 2);
        QCOMPARE(row.allValues(), (std::vector<float>{0.0f, 0.5f, 12.25f}));
        type(row.field(0), QStringLiteral("x"));
        QCOMPARE(row.field(0)->text(), QStringLiteral("0.00"));
        type(row.field(1), QStringLiteral("0.5"));
        QCOMPARE(edited.count(), 1);
        row.setDecimals(0);
        QCOMPARE(row.field(2)->text(), QStringLiteral("12"));
        // New fields start from zero.
        row.setFields({QStringLiteral("X"), QStringLiteral("Y")});
        QCOMPARE(row.allValues(), (std::vector<float>{0.0f, 0.0f}));
    }

    void multiDataRowWritesThroughToPreferences()
    {
        MultiData store;
        store.setFloat("MarginX", 3.5f);
        qtMultiDataWidget row;
        row.setFields({QStringLiteral("X"), QStringLiteral("Y")});
        row.setValue(1, 9.0f);
        QVERIFY(!row.bindToPreferences(&store, {"MarginX"})); // one key for two fields
        QVERIFY(!row.bindToPreferences(nullptr, {"MarginX", "MarginY"}));
        QVERIFY(row.bindToPreferences(&store, {"MarginX", "MarginY"}));
        QCOMPARE(row.value(0), 3.5f);
        QCOMPARE(row.value(1), 9.0f);
        QCOMPARE(store.typeOf("MarginY"), std::string("float")); // created with the shown value
        type(row.field(1), QStringLiteral("-2"));
        QCOMPARE(store.getFloat("MarginY", 0.0f), -2.0f);
        QCOMPARE(store.getFloat("MarginX", 0.0f), 3.5f);
    }

    // A point at its default place (-1) reads "Auto" rather than "-1"; emptying a box puts it back there.
    void multiDataRowShowsUnsetAsPlaceholder()
    {
        qtMultiDataWidget row;
        row.setFields({QStringLiteral("X"), QStringLiteral("Y")});
        row.setDecimals(0);
        row.setValue(0, -1.0f);
        row.setValue(1, 40.0f);
        row.setUnsetValue(-1.0f, QStringLiteral("Auto"));
        QCOMPARE(row.field(0)->text(), QString());
        QCOMPARE(row.field(0)->placeholderText(), QStringLiteral("Auto"));
        QCOMPARE(row.field(1)->text(), QStringLiteral("40"));
        QSignalSpy edited(&row, &qtMultiDataWidget::dataEdited);
        type(row.field(0), QStringLiteral(""));
        QCOMPARE(edited.count(), 0); // still unset
        type(row.field(0), QStringLiteral("120"));
        QCOMPARE(row.value(0), 120.0f);
        type(row.field(1), QStringLiteral(""));
        QCOMPARE(edited.count(), 2);
        QCOMPARE(row.value(1), -1.0f);
        QCOMPARE(row.field(1)->text(), QString());
        // A typed -1 is the same thing.
        type(row.field(0), QStringLiteral("-1"));
        QCOMPARE(row.value(0), -1.0f);
        QCOMPARE(row.field(0)->text(), QString());
    }

    void chipsKeepTheOrderOfSelection()
    {
        MVMultiChoiceWidget chips;
        chips.resize(240, 24);
        chips.setItems({QStringLiteral("255 0 0"), QStringLiteral("Skin"), QStringLiteral("0 0 255")}, {2, 7, 2, -1, 0});
        QCOMPARE(chips.selection(), (std::vector<int32_t>{2, 0})); // out of range and repeats dropped
        QSignalSpy started(&chips, &MVMultiChoiceWidget::editingStarted);
        QSignalSpy changed(&chips, &MVMultiChoiceWidget::sliderChanged);
        QTest::mousePress(&chips, Qt::LeftButton, Qt::NoModifier, chips.chipRect(1).center());
        QCOMPARE(chips.selection(), (std::vector<int32_t>{2, 0, 1}));
        QTest::mousePress(&chips, Qt::LeftButton, Qt::NoModifier, chips.chipRect(2).center());
        QCOMPARE(chips.selection(), (std::vector<int32_t>{0, 1}));
        QTest::mousePress(&chips, Qt::RightButton, Qt::NoModifier, chips.chipRect(0).center());
        QCOMPARE(chips.selection(), (std::vector<int32_t>{0, 1}));
        QCOMPARE(started.count(), 2);
        QCOMPARE(changed.count(), 2);

        QCOMPARE(MVMultiChoiceWidget::labelColor(QStringLiteral("255 127 0")), QColor(255, 127, 0));
        QVERIFY(!MVMultiChoiceWidget::labelColor(QStringLiteral("255 127")).isValid());
        QVERIFY(!MVMultiChoiceWidget::labelColor(QStringLiteral("256 0 0")).isValid());
        QVERIFY(!MVMultiChoiceWidget::labelColor(QStringLiteral("Skin")).isValid());
    }
};

QTEST_MAIN(InputWidgetsTest)
#include "InputWidgetsTest.moc"
