#pragma once
#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <vector>

class MVScroller;
class QLabel;
class QPushButton;
class QWheelEvent;

// One line of the queue's list.
struct MVRenderQueueRow {
    int itemID = 0;
    QString text;
    bool cancellable = true;
    bool failed = false;
};

// The queue's list: a scrolling column of word-wrapped rows, each with a cancel button unless it
// is a record of an item that already ended.
class MVRenderQueueWidget : public QWidget {
    Q_OBJECT
public:
    explicit MVRenderQueueWidget(QWidget* parent = nullptr);

    // Rebuilds the rows; the scroll position is kept where it still fits.
    void setRows(const std::vector<MVRenderQueueRow>& rows);
    int rowCount() const { return int(labels.size()); }
    QLabel* rowLabel(int i) const { return labels[size_t(i)]; }
    // Null for a row without a button.
    QPushButton* rowButton(int i) const { return buttons[size_t(i)]; }

    static constexpr int scrollerWidth = 7;

signals:
    void cancelItemRequested(int itemID);

public slots:
    void scrollerScrolled(float scrollPos);
    void cancelButtonPressed();

protected:
    void resizeEvent(QResizeEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;

private:
    void layoutRows();

    MVScroller* scroller = nullptr;
    QWidget* column = nullptr;
    std::vector<QLabel*> labels;
    std::vector<QPushButton*> buttons;
    std::vector<int> ids;
    float scrollPosition = 0.0f;
};
