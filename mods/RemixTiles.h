#pragma once
#include <functional>
#include <vector>

class ImageMod;

// "Remix Up" (delta 10) and "Remix Down" (delta -10): every variation variable of the flat list
// moves by delta, walking from the last mod to the first. pushUndo runs once, just before the first
// change, so the whole step is one undo; a list without variation variables changes nothing and
// never calls it. A variable reached twice (a group and its child both in the list) moves once.
// Returns true when anything moved; the caller then reprocesses as for any changed tile.
bool remixTiles(const std::vector<ImageMod*>& mods, float delta, const std::function<void()>& pushUndo);
