#pragma once

// Gives the core's overlay tiles what they can't do themselves: decoding PNG files (borders,
// watermarks) through Qt, and setting type through FreeType with the bundled Vera as the fallback
// face. Called once at start-up by the editor and the command line tool.
void installOverlaySeams();
