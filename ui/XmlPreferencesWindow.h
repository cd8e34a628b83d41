#pragma once
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

#include <vector>

class MultiData;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;

// The preferences as a column of rows, each bound to one key of the store and written through at
// once on every change.
class XmlPreferencesWindow : public QWidget {
    Q_OBJECT
public:
    explicit XmlPreferencesWindow(MultiData& store, QWidget* parent = nullptr);

    // A combo box of choices; the stored text picks the row (else the first), a change stores the
    // row's text as a string.
    QComboBox* addChoiceRow(const QString& key, const QStringList& choices, const QString& title);
    // A check box; a key with no stored value takes defaultValue. A change stores 0 or 1.
    QCheckBox* addCheckRow(const QString& key, const QString& title, const QString& tip, bool defaultValue = false);
    // The two colour rows.
    void addColorRows();

    struct Row {
        QString key;
        QLabel* label = nullptr;
        QComboBox* choice = nullptr;
        QCheckBox* check = nullptr;
    };
    const std::vector<Row>& rows() const { return rowList; }
    QPushButton* closeButton = nullptr;

    static constexpr int rowStep = 40;

signals:
    // After a value reached the store.
    void preferenceChanged(const QString& key);

public slots:
    void choiceValueChanged(int newIndex);
    void checkValueChanged(int state);
    void closeButtonPressed();

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    void layoutRows();
    const Row* rowOf(QObject* control) const;

    MultiData& store;
    QScrollArea* scrollArea = nullptr;
    QWidget* content = nullptr;
    std::vector<Row> rowList;
};
