#pragma once
#include "ui/MVPanelItem.h"

#include <QtGui/QPixmap>

// A wide picture button that runs a command by number (the crop and spot heal tools).
class MVPanelItemBigButton : public MVPanelItem {
    Q_OBJECT
public:
    static constexpr int kHeight = 44;
    static constexpr int kBigExtra = 43;

    MVPanelItemBigButton(int commandId, const QString& name, bool hasPlus, bool bigSize,
                         const QString& iconPath = QString(), QWidget* parent = nullptr);
    int itemKind() const override { return kBigButton; }

    int commandId = 0;
    bool hasPlus = false;
    bool plusLit() const { return plusIsLit; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QRect plusArea() const;

    bool plusIsLit = false;
    QPixmap picture;
};
