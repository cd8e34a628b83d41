#pragma once
#include <QtWidgets/QAbstractButton>

// A row of the tool panel. The panel places rows by hand and asks each for its kind.
class MVPanelItem : public QAbstractButton {
    Q_OBJECT
public:
    enum Kind { kListButton = 0, kBigButton = 1, kHeader = 2 };

    explicit MVPanelItem(QWidget* parent = nullptr);
    virtual int itemKind() const = 0;

signals:
    void panelItemEntered(MVPanelItem* item);

protected:
    void enterEvent(QEvent* event) override;
    // Draws the style sheet's border-image, which a plain QAbstractButton would skip.
    void paintStyledBackground(QPainter& p);
};
