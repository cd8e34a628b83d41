#pragma once
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <vector>

class ImageMod;
class QPushButton;
class TrayNodeLabel;
class TrayWidget;

// One tile of the tray: its mod's name, a close button, and disable and pin toggles. The tile
// only reports; the tray decides.
class TrayNode : public QWidget {
    Q_OBJECT
public:
    enum Look { LookPlain = 0, LookCombo = 1, LookCamera = 2, LookSelector = 3 };
    static constexpr int buttonSize = 13;

    // The look follows the mod's kind and is fixed here.
    TrayNode(ImageMod* mod, TrayWidget* tray, QWidget* parent);
    ~TrayNode() override;

    ImageMod* mod() const { return modPtr; }
    Look look() const { return tileLook; }
    static Look lookForKind(int kind);
    static int widthForLook(Look look);
    int tileWidth() const { return widthForLook(tileLook); }

    bool isSelected() const { return selected; }
    void setSelected(bool on);
    // Text, style and button states from the mod as it stands.
    void refresh();
    QString labelText() const;
    TrayNodeLabel* label() const { return nameLabel; }
    QPushButton* closeButton() const { return closeBtn; }
    QPushButton* disableButton() const { return disableBtn; }
    QPushButton* pinButton() const { return pinBtn; }
    QTimer* hoverTimer() { return &hover; }
    // The modifiers and the cursor (in the tray's content coordinates) of the last left press.
    Qt::KeyboardModifiers pressModifiers;
    QPointF pressContentPos;

signals:
    void nodeCloseRequested(TrayNode* node);
    void nodeEnabledWillChange(TrayNode* node);
    void nodeEnabledChanged(TrayNode* node);
    void nodePressed(TrayNode* node);
    void nodeDoubleClicked(TrayNode* node);
    void nodeRightClicked(TrayNode* node);
    void nodeHoverPressed(TrayNode* node);
    void nodeReleased(TrayNode* node);

public slots:
    void pinButtonPressed();
    void disableButtonPressed();
    void closeButtonPressed();
    void hoverTimerFired();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void applyStyle();

    ImageMod* modPtr;
    TrayWidget* tray;
    Look tileLook;
    bool selected = false;
    QPushButton* closeBtn = nullptr;
    QPushButton* disableBtn = nullptr;
    QPushButton* pinBtn = nullptr;
    TrayNodeLabel* nameLabel = nullptr;
    QTimer hover;
    std::vector<QWidget*> ownedChildren;
};
