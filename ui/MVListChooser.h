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

    void setItems(const QStringList& list, int current = 0);
    const QStringList& getItems() const { return items; }
    // From code: raises nothing.
    void setCurrentIndex(int i);
    int currentIndex() const { return current; }
    QString currentText() const;
    // The open list, null when closed.
    MVListChooserList* openList() const { return list; }
    void showList();

signals:
    void itemChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void chosen(int row);

    QStringList items;
    int current = -1;
    QPointer<MVListChooserList> list;
};
