#pragma once
#include "ui/MVPanelItem.h"

#include <QtGui/QPixmap>

// A section title of the tool panel. A press toggles it; the panel flips the state and hides or
// shows the rows up to the next header.
class MVPanelItemHeader : public MVPanelItem {
    Q_OBJECT
public:
    static constexpr int kHeight = 36;

    MVPanelItemHeader(const QString& name, bool collapsed, const QString& iconPath = QString(),
                      QWidget* parent = nullptr);
    int itemKind() const override { return kHeader; }

    QString name() const { return text(); }
    bool isCollapsed() const { return collapsed; }
    void setCollapsed(bool c);

signals:
    void headerToggled(MVPanelItemHeader* header);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool collapsed = false;
    QPixmap icon;
    QPixmap openArrow;
    QPixmap closedArrow;
};
