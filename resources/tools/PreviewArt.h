#pragma once
class QPainter;

// The quicklook chooser's section marks: 12 x 12, a solid wedge pointing down when the section is
// open and right when it is folded.
void drawPreviewChooserCollapse(QPainter& p, bool open);
