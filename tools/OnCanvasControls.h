#pragma once
#include <vector>

class ImageMod;
class MVFullScreenControl;
class MVMediaWidget;

// The on-canvas controls a tile needs, laid over the viewer and following it: a handle for each
// pixel variable (mask, vignette and radial blur centres, the dead pixel), a frame for each
// boundary, the white point's pick; with `withColorPanels`, a floating colour panel for each
// colour variable. The controls are children of the viewer; the caller connects their signals
// and deletes them when the tile's controls go.
std::vector<MVFullScreenControl*> createOnCanvasControls(ImageMod* mod, MVMediaWidget* viewer,
                                                         bool withColorPanels = false);

// The source's colour around a document point (a 3 x 3 average, 0..255); false without a source.
// The point is taken as the same fraction of the source: crop and straighten are not undone.
bool sampleViewerSource(MVMediaWidget* viewer, float docX, float docY, float rgb[3]);
