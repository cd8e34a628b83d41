#pragma once
#include "ui/MVPushButton.h"

#include <QtCore/QPointer>
#include <QtCore/QStringList>

#include "ui/MVListChooserList.h"

// A button that shows the current row of a list and opens the list to pick another.
class MVListChooser : public MVPushButton {
    Q_OBJECT
public:
    explicit MVListChooser(QWidget* parent = nullptr);
    ~MVListChooser() override;

    void setItems(const QStringList& list, int current = 0);
    const QStringList& getItems() const { return items; }
    // From code: raises nothing.
    void setCurrentIndex(int i);
    int currentIndex() const { return current; }
    QString currentText() const;
    // The open list, null when closed.
    MVListChooserList* openList() const { return list; }
    void showList();
    // The row the open list points at (shown live while the pointer moves), else the current one.
    int hoveredIndex() const { return hovered; }

signals:
    void itemChanged(int index);
    // hoveredIndex() changed. The list's end brings it back to the current row before any choice
    // is reported, so a live preview is undone before the change is made for good.
    void itemHovered(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void chosen(int row);
    void hoverMoved(int row);
    void hoverEnded();

    QStringList items;
    int current = -1;
    int hovered = -1;
    QPointer<MVListChooserList> list;
};
