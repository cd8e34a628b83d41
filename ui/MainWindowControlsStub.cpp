// Stands in for the controls column until it arrives; the tray only needs the call to link.
#include "ui/MainWindow.h"

void MainWindow::showControlsFor(ImageMod*) {}
