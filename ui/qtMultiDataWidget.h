#pragma once
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

#include <string>
#include <vector>

class MultiData;
class QLineEdit;

// A row of several numbers, each a short caption over a small line edit: a point's x and y, the
// four sides of a boundary, or a group of preferences. A finished edit that parses and changes
// a number raises dataEdited with its index; text that doesn't parse is put back. When bound to
// preference keys, each edit is also written through to the store as a float.
class qtMultiDataWidget : public QWidget {
    Q_OBJECT
public:
    explicit qtMultiDataWidget(QWidget* parent = nullptr);

    // One field per caption, all 0; replaces the present fields and drops a binding.
    void setFields(const QStringList& captions);
    int fieldCount() const { return int(values.size()); }
    // From code: raises nothing. An index out of range gives false.
    bool setValue(int index, float v);
    float value(int index) const;
    const std::vector<float>& allValues() const { return values; }
    // Digits after the point in the boxes; 0 prints whole numbers.
    void setDecimals(int d);
    QLineEdit* field(int index) const;
    // A value meaning "not set" (a point left at its default place): shown as an empty box with
    // placeholder text, and an emptied box sets it.
    void setUnsetValue(float v, const QString& placeholder);
    // Reads each key's float (creating it with the shown value when absent) and writes edits
    // back. Needs as many keys as fields; false otherwise, and nothing is bound.
    bool bindToPreferences(MultiData* store, const std::vector<std::string>& keys);

signals:
    void dataEdited(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fieldFinished(int index);
    QString format(float v) const;

    QStringList captions;
    std::vector<float> values;
    std::vector<QLineEdit*> edits;
    int decimals = 2;
    bool hasUnset = false;
    float unsetValue = 0.0f;
    MultiData* boundStore = nullptr;
    std::vector<std::string> boundKeys;
};
