#include "document/UndoCommandAdjustFilter.h"

#include "core/ImageMod.h"
#include "ui/TrayWidget.h"

UndoCommandAdjustFilter::UndoCommandAdjustFilter(TrayWidget* owner) : tray(owner)
{
    if (!tray)
        return;
    tileIndex = tray->selectedIndex();
    for (int step : tray->nestedPath())
        nestPath.push_back(step);
}

ImageMod* UndoCommandAdjustFilter::findTile() const
{
    if (!tray || tileIndex < 0)
        return nullptr;
    const std::vector<int> path(nestPath.begin(), nestPath.end());
    size_t depth = 0;
    ImageModCompound* level = TrayWidget::compoundAtPath(tray->rootSequence, path, &depth);
    // A level that no longer stands means the tile is gone as well.
    if (!level || depth != path.size() || tileIndex >= level->childCount())
        return nullptr;
    return level->children[size_t(tileIndex)].get();
}

bool UndoCommandAdjustFilter::execute()
{
    ImageMod* mod = findTile();
    if (!mod)
        return false;
    variables.clear();
    for (const auto& v : mod->variables)
        variables.push_back(v && v->data ? v->data->clone() : nullptr);
    modName = mod->name;
    return true;
}

bool UndoCommandAdjustFilter::undo()
{
    ImageMod* mod = findTile();
    if (!mod || size_t(mod->variableCount()) != variables.size() || mod->name != modName)
        return false;
    for (size_t i = 0; i < variables.size(); ++i) {
        if (!mod->variables[i])
            continue;
        std::swap(mod->variables[i]->data, variables[i]);
    }
    tray->refreshNodes();
    // Dependent state follows the restored values; text values carry their own.
    for (size_t i = 0; i < variables.size(); ++i) {
        const ImageModVariable* v = mod->variables[i].get();
        if (v && v->data && v->data->kind() == kVariableButton)
            continue;
        mod->variableChanged(int32_t(i));
    }
    return true;
}
