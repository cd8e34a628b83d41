#include "PreviewArt.h"

#include "ArtworkPalette.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

void drawPreviewChooserCollapse(QPainter& p, bool open)
{
    p.setRenderHint(QPainter::Antialiasing, true);
    QPainterPath wedge;
    if (open) {
        wedge.moveTo(2.0, 4.0);
        wedge.lineTo(10.0, 4.0);
        wedge.lineTo(6.0, 8.8);
    } else {
        wedge.moveTo(4.0, 2.0);
        wedge.lineTo(8.8, 6.0);
        wedge.lineTo(4.0, 10.0);
    }
    wedge.closeSubpath();
    // The open mark carries the accent; a folded one steps back to grey.
    const QColor fill = open ? ArtworkPalette::accent() : ArtworkPalette::textMuted();
    p.setPen(QPen(fill.darker(130), 0.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    p.drawPath(wedge);
}
