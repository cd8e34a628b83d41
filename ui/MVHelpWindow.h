#pragma once
#include <QtWidgets/QWidget>

class QTextBrowser;

// The user guide, read inside the program: it ships compiled in, so it works offline and without
// a web browser. Links inside the guide move within it; links to files open on the desktop.
class MVHelpWindow : public QWidget {
    Q_OBJECT
public:
    explicit MVHelpWindow(QWidget* parent = nullptr);
    // Shows the guide at a section (the heading's anchor name); an unknown name shows the top.
    void showSection(const QString& anchor);
    QTextBrowser* browser() const { return view; }

private:
    QTextBrowser* view = nullptr;
};
