#pragma once
#include <QtWidgets/QWidget>

#include <vector>

class QPushButton;

// The document tabs: a labelled button per document with a close button beside it. Tabs are known
// by their tabID, never by position.
class MVTabBar : public QWidget
{
    Q_OBJECT
public:
    explicit MVTabBar(QWidget* parent = nullptr);

    void addTab(int tabID, const QString& label);
    void removeTab(int tabID);
    void setTabLabel(int tabID, const QString& label);
    void selectTab(int tabID);
    int selectedTab() const { return selected; }
    int count() const { return int(tabs.size()); }
    // Natural widths, or all equal when they don't fit the bar less its margins.
    void layoutTabs();

    static constexpr int barHeight = 26;
    static constexpr int margin = 4;

signals:
    void tabActivated(int tabID);
    void tabRequestedClose(int tabID);

public slots:
    void closeButtonPressed();
    void tabButtonClicked();

protected:
    void resizeEvent(QResizeEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

private:
    struct Tab {
        int tabID;
        QPushButton* button;
        QPushButton* closeButton;
    };
    int indexOf(int tabID) const;
    void refreshStyles();
    std::vector<Tab> tabs;
    int selected = -1;
};
