#pragma once
// Registers the compiled-in resource bundle; the bundle lives in a static library, so the
// linker would drop it unless something calls in.
void vantrelInitResources();
