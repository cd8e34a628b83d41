#pragma once
#include "ui/MVPanelItem.h"

#include <QtCore/QRect>
#include <QtGui/QPixmap>

class ImageMod;

// A row that holds a tile template: pressing it makes a tile. Optional areas at the ends: a plus
// (add instead of replace) at the right and a star at the left. A mirror row stands in the
// "Starred" section for another row and shares its template.
class MVPanelItemListButton : public MVPanelItem {
    Q_OBJECT
public:
    static constexpr int kHeight = 36;

    MVPanelItemListButton(ImageMod* mod, bool ownsMod, bool hasPlus, bool hasStar, QWidget* parent = nullptr);
    ~MVPanelItemListButton() override;
    int itemKind() const override { return kListButton; }

    // The row's own template, or for a mirror the template of the row it stands for.
    ImageMod* templateMod() const;

    ImageMod* mod = nullptr;
    bool ownsMod = false;
    QString nameText;
    // Identifies the row in the starred list; the name unless set.
    QString key;
    bool hasPlus = false;
    bool hasStar = false;
    bool deletable = false;
    bool isMirror = false;
    MVPanelItemListButton* mirrorOf = nullptr;
    QRect plusArea;
    QRect starArea;

    void setNameText(const QString& t);
    bool plusLit() const { return plusIsLit; }
    bool starHovered() const { return starIsHovered; }
    bool isStarred() const { return starred; }
    void setStarred(bool s);

signals:
    void plusHoverChanged(MVPanelItemListButton* row);
    void buttonRightClicked(MVPanelItemListButton* row);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void trackCursor(const QPoint& pos);
    void updateAreas();

    bool plusIsLit = false;
    bool starIsHovered = false;
    bool starred = false;
    QPixmap plusImage; // the plus image now shown
};
