#include "ui/MVRenderQueueWindow.h"

#include "document/core/RenderQueue.h"
#include "ui/MVRenderQueueWidget.h"

#include <QtCore/QFileInfo>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>

#include <cmath>

MVRenderQueueWindow::MVRenderQueueWindow(QWidget* parent) : MVSubWindow(QStringLiteral("Render Queue"), parent)
{
    setObjectName(QStringLiteral("renderQueueWindow"));
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral(
        "QWidget#renderQueueWindow { background: #242424; }"
        "QLabel { color: #d8d8d8; }"
        "QProgressBar { background: #151515; border: 1px solid #3a3a3a; border-radius: 4px; height: 10px; }"
        "QProgressBar::chunk { background: #e3963e; border-radius: 3px; }"
        "QPushButton { color: #ffffff; border-radius: 4px; background-color: #646464; padding: 4px 15px; }"
        "QPushButton:pressed { background-color: #545454; }"
        "QPushButton:disabled { color: #7a7a7a; background-color: #3a3a3a; }"));
    statusLabel = new QLabel(QStringLiteral("Nothing to process."), this);
    statusLabel->setStyleSheet(QStringLiteral("color: #ffffff; font-weight: bold;"));
    progressBar = new QProgressBar(this);
    progressBar->setTextVisible(false);
    progressBar->setRange(0, 1);
    progressBar->setValue(0);
    list = new MVRenderQueueWidget(this);
    connect(list, &MVRenderQueueWidget::cancelItemRequested, this, &MVRenderQueueWindow::cancelItemPressed);
    cancelAllButton = new QPushButton(QStringLiteral("Cancel Processing"), this);
    cancelAllButton->setFocusPolicy(Qt::NoFocus);
    cancelAllButton->setEnabled(false);
    connect(cancelAllButton, &QPushButton::clicked, this, &MVRenderQueueWindow::cancelAllRequested);
    resize(360, 300);
    layoutChildren();
}

QString MVRenderQueueWindow::fileName(const std::string& path)
{
    return QFileInfo(QString::fromStdString(path)).fileName();
}

QString MVRenderQueueWindow::progressText(const RenderQueueSnapshot& s)
{
    if (!s.running || s.total <= 0)
        return QString();
    const int position = s.position > 0 ? s.position : std::min(s.finished + 1, s.total);
    QString text = QStringLiteral("File %1 of %2").arg(position).arg(s.total);
    if (s.secondsLeft >= 0.0) {
        const long seconds = std::lround(s.secondsLeft);
        text += QStringLiteral(", about %1:%2 left").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
    }
    return text;
}

void MVRenderQueueWindow::showSnapshot(const RenderQueueSnapshot& s)
{
    const QString progress = progressText(s);
    if (!progress.isEmpty()) {
        statusLabel->setText(s.failed.empty() ? progress
                                              : progress + QStringLiteral(", %1 failed").arg(s.failed.size()));
    } else if (!s.failed.empty()) {
        statusLabel->setText(QStringLiteral("Finished; %1 failed.").arg(s.failed.size()));
    } else {
        statusLabel->setText(QStringLiteral("Nothing to process."));
    }
    progressBar->setRange(0, std::max(s.total, 1));
    progressBar->setValue(s.running ? s.finished : 0);
    cancelAllButton->setEnabled(s.running);

    std::vector<MVRenderQueueRow> rows;
    if (s.running && s.runningID >= 0)
        rows.push_back({s.runningID, QStringLiteral("Rendering ") + fileName(s.currentName), true, false});
    // Failures come before the waiting files, so a long list doesn't scroll them out of sight.
    for (const RenderQueueRecord& r : s.failed)
        rows.push_back({r.itemID, QStringLiteral("Failed: ") + fileName(r.sourcePath) + QStringLiteral(" (could not be "
                                                                                                      "loaded or written)"),
                        false, true});
    for (const RenderQueueWaiting& w : s.waiting)
        rows.push_back({w.itemID, fileName(w.sourcePath), true, false});
    list->setRows(rows);
}

void MVRenderQueueWindow::cancelItemPressed(int myID)
{
    emit cancelItemRequested(myID);
}

void MVRenderQueueWindow::resizeEvent(QResizeEvent* e)
{
    MVSubWindow::resizeEvent(e);
    layoutChildren();
}

void MVRenderQueueWindow::layoutChildren()
{
    const int W = width(), H = height();
    const int m = 12;
    statusLabel->setGeometry(m, m, W - 2 * m, 20);
    progressBar->setGeometry(m, m + 26, W - 2 * m, 10);
    const int buttonH = 28;
    cancelAllButton->setGeometry(W - m - 150, H - m - buttonH, 150, buttonH);
    const int listTop = m + 26 + 10 + 12;
    list->setGeometry(m - 8, listTop, W - 2 * m + 8, std::max(20, H - listTop - buttonH - 2 * m));
}
