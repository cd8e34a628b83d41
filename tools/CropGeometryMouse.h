#pragma once
#include "mods/CropToolGeometry.h"

#include <QtGui/QMouseEvent>
#include <QtWidgets/QWidget>

// Mouse handling shared by the widgets that drive a CropToolGeometry in view coordinates (the
// crop tool and the boundary chooser). Each keeps its own press, hover and write-back.

// While the button holds an edge: moves it, lets `written` store the new insets and takes the
// event. False when no drag is under way.
template <class Written>
bool continueCropDrag(CropToolGeometry& geometry, QMouseEvent* e, const CropViewRect& view, Written written)
{
    if (!geometry.buttonDown)
        return false;
    const QPointF p = e->localPos();
    geometry.drag(p.x(), p.y(), view);
    written();
    e->accept();
    return true;
}

// Ends a drag; a release without one goes on to the parent.
inline void releaseCropDrag(CropToolGeometry& geometry, QWidget* widget, QMouseEvent* e)
{
    if (!geometry.buttonDown) {
        e->ignore();
        return;
    }
    geometry.release();
    widget->update();
    e->accept();
}

// Drops the hover marks when the pointer leaves, unless a drag holds them. True when dropped.
inline bool leaveCropGeometry(CropToolGeometry& geometry, QWidget* widget)
{
    if (geometry.buttonDown)
        return false;
    geometry.clearHits();
    widget->update();
    return true;
}
