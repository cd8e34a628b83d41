#include "ui/MVHelpWindow.h"

#include <QtCore/QUrl>
#include <QtWidgets/QTextBrowser>
#include <QtWidgets/QVBoxLayout>

MVHelpWindow::MVHelpWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setWindowTitle(QStringLiteral("Vantrel Photo Guide"));
    resize(820, 760);
    view = new QTextBrowser(this);
    view->setOpenExternalLinks(true);
    // Readable on the dark theme: the guide is a light page, like paper.
    view->setStyleSheet(QStringLiteral("QTextBrowser { background: #f4f1ec; color: #1d1b18; border: none;"
                                       " padding: 18px 26px; selection-background-color: #e3963e; }"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    view->setSource(QUrl(QStringLiteral("qrc:/guide/user-guide.html")));
}

void MVHelpWindow::showSection(const QString& anchor)
{
    // Shown first: the browser lays the page out for its width before it can find the anchor.
    show();
    raise();
    activateWindow();
    view->document()->adjustSize();
    view->scrollToAnchor(anchor);
}
