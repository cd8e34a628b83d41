// The main window's side of the scopes and the pixel inspector: the menu entries, the feed from
// each viewer's passes, and the hover and click look-ups.
#include "ui/MainWindow.h"

#include "document/MVMediaWidget.h"
#include "tools/MVHistogramWidget.h"
#include "tools/MVHistogramWindow.h"
#include "tools/MVPixelInfoWidget.h"
#include "tools/MVPixelInfoWindow.h"

#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>
#include <QtGui/QHoverEvent>

void MainWindow::buildScopeWindows()
{
    // Hover moves reach the window from every child, so the inspector follows the cursor
    // without the viewers tracking the mouse themselves.
    setAttribute(Qt::WA_Hover, true);

    histogramWindow = new MVHistogramWindow(this);
    connect(histogramWindow, &MVSubWindow::subWindowClosed, this, [this] { histogramWanted.store(false); });
    // A new size means new scope columns: measure again.
    connect(histogramWindow, &MVSubWindow::subWindowResized, this, [this] {
        if (histogramWanted.load())
            if (MVMediaWidget* v = currentViewer())
                v->requestProcessing();
    });

    auto* inspector = new MVPixelInfoWindow(this);
    pixelInfo = inspector->info;
    pixelInfoWindow = inspector;
}

void MainWindow::attachScopes(MVMediaWidget* viewer)
{
    // Runs on the viewer's worker after each pass.
    viewer->histogramFeed = [this, viewer](const FlexImageFloat& image) {
        if (histogramWanted.load() && histogramSource.load() == viewer)
            histogramWindow->histogram->updateFrom(image);
    };
    // A closed tab's numbers must not stay on show as if they were the next one's.
    connect(viewer, &QObject::destroyed, this, [this, viewer] {
        MVMediaWidget* expected = viewer;
        if (histogramSource.compare_exchange_strong(expected, nullptr))
            histogramWindow->histogram->clearData();
    });
}

void MainWindow::placeSubWindow(QWidget* window, bool top)
{
    // First showing: inside the picture area's right edge, clear of the panel.
    const QRect area = documentArea();
    const QPoint corner = central->mapToGlobal(top ? area.topRight() : area.bottomRight());
    const int x = corner.x() - window->width() - 16;
    const int y = top ? corner.y() + 16 : corner.y() - window->height() - 16;
    window->move(std::max(0, x), std::max(0, y));
}

void MainWindow::toggleHistogramView(int graphType)
{
    MVMediaWidget* viewer = currentViewer();
    MVHistogramWidget* scope = histogramWindow->histogram;
    if (histogramWindow->isVisible() && scope->currentGraphType() == graphType) {
        histogramWanted.store(false);
        histogramWindow->hide();
        return;
    }
    histogramWindow->setGraphType(graphType);
    histogramSource.store(viewer);
    histogramWanted.store(true);
    if (!histogramWindow->isVisible()) {
        if (!histogramWindow->property("placed").toBool()) {
            placeSubWindow(histogramWindow, true);
            histogramWindow->setProperty("placed", true);
        }
        histogramWindow->show();
        histogramWindow->raise();
    }
    if (viewer)
        viewer->requestProcessing();
}

void MainWindow::togglePixelInspector()
{
    if (!pixelInfoWindow->isVisible() && !pixelInfoWindow->property("placed").toBool()) {
        placeSubWindow(pixelInfoWindow, false);
        pixelInfoWindow->setProperty("placed", true);
    }
    pixelInfoWindow->toggleShown();
}

bool MainWindow::inspectPixelAt(const QPoint& windowPos)
{
    for (const MVDocument& d : documents) {
        MVMediaWidget* v = d.viewer;
        if (!v || v->isHidden())
            continue;
        const QPoint local = v->mapFrom(this, windowPos);
        if (!v->rect().contains(local))
            continue;
        int x, y;
        QColor c;
        if (MVPixelInfoWidget::sampleViewer(*v, QPointF(local), x, y, c)) {
            pixelInfo->showPixel(x, y, c);
            return true;
        }
        break;
    }
    pixelInfo->clearPixel();
    return false;
}

void MainWindow::hoverMovedForScopes(QHoverEvent* e)
{
    if (QGuiApplication::mouseButtons() != Qt::NoButton)
        return;
    lastHoverPos = e->pos();
    if (pixelInfoWindow->isVisible())
        inspectPixelAt(lastHoverPos);
}

void MainWindow::pickPixelForInspector()
{
    if (!pixelInfoWindow->isVisible())
        return;
    if (inspectPixelAt(mapFromGlobal(QCursor::pos())))
        pixelInfo->pickShownPixel();
}

void MainWindow::displayFinishedUpdating()
{
    // The histogram follows the current tab: a switch is noticed here and measured once more.
    MVMediaWidget* current = currentViewer();
    if (histogramWanted.load() && histogramSource.exchange(current) != current && current)
        current->requestProcessing();
    // The pixel under a still cursor may have changed with the new picture.
    if (pixelInfoWindow->isVisible() && lastHoverPos.x() >= 0)
        inspectPixelAt(lastHoverPos);
}
