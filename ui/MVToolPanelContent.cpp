#include "ui/MVToolPanelContent.h"

#include "filters/FileFilter.h"
#include "filters/PresetLibrary.h"
#include "ui/MVPanelItemBigButton.h"
#include "ui/MVPanelItemListButton.h"
#include "ui/MVToolPanel.h"

#include <QtCore/QFile>

#include <algorithm>

namespace {

QString fromFs(const std::string& s)
{
    return QFile::decodeName(s.c_str());
}

// The shown name of a preset file: no extension, "_" as a blank, as the tile will read.
QString presetTitle(QString file)
{
    const int dot = file.lastIndexOf(QLatin1Char('.'));
    if (dot > 0)
        file.truncate(dot);
    return file.replace(QLatin1Char('_'), QLatin1Char(' '));
}

} // namespace

QString MVToolPanelContent::cropButtonLabel(bool cropInForce)
{
    return cropInForce ? QStringLiteral("Crop/Straighten*") : QStringLiteral("Crop/Straighten");
}

void MVToolPanelContent::fillAdjustments(MVToolPanel& panel, const ModCatalogueContents& catalogue)
{
    const int tab = MVToolPanel::kAdjustmentsTab;
    panel.clearTab(tab);
    panel.addBigButton(tab, kToolCrop, cropButtonLabel(false), false, false, QStringLiteral(":/img/tools_icon_crop.png"));
    panel.addBigButton(tab, kToolSpotHeal, QStringLiteral("Spot Heal"), false, false,
                       QStringLiteral(":/img/tools_icon_heal.png"));
    for (const ModCatalogueContents::Range& section : catalogue.sections) {
        const QString title = QString::fromStdString(section.title);
        panel.addHeader(tab, title, panel.isSectionCollapsed(title), QString::fromStdString(section.icon));
        for (const ImageMod* mod : catalogue.modsIn(section)) {
            // Tiles that hold a slot replace their like unless added through the plus.
            panel.addListButton(!mod->tags.empty(), tab, const_cast<ImageMod*>(mod), false, false);
        }
    }
    panel.relayout();
}

void MVToolPanelContent::fillPresets(MVToolPanel& panel, const PresetLibrary& library, const ModCatalogue& catalogue)
{
    const int tab = MVToolPanel::kPresetsTab;
    panel.clearTab(tab);
    const QString starredTitle = QLatin1String(MVToolPanel::kStarredSection);
    panel.addHeader(tab, starredTitle, panel.isSectionCollapsed(starredTitle), QStringLiteral(":/img/tools_icon_starred.png"));

    std::vector<std::string> groups = library.groups();
    // The user's own presets come first; the shipped groups follow in name order.
    std::stable_partition(groups.begin(), groups.end(),
                          [](const std::string& g) { return g == PresetLibrary::kMyPresets; });
    for (const std::string& group : groups) {
        std::vector<std::string> files = library.presetsIn(group);
        if (files.empty())
            continue;
        std::stable_sort(files.begin(), files.end(), [](const std::string& a, const std::string& b) {
            return QString::compare(fromFs(a), fromFs(b), Qt::CaseInsensitive) < 0;
        });
        const QString groupTitle = fromFs(group);
        panel.addHeader(tab, groupTitle, panel.isSectionCollapsed(groupTitle), QStringLiteral(":/img/tools_icon_presets.png"));
        const bool mine = group == PresetLibrary::kMyPresets;
        for (const std::string& file : files) {
            auto* preset = new FileFilter(library.presetsFolder() + group + "/" + file, catalogue);
            MVPanelItemListButton* row = panel.addListButton(true, tab, preset, true, true);
            if (!row)
                continue;
            const QString title = presetTitle(fromFs(file));
            row->key = groupTitle + QLatin1Char('/') + title;
            row->setNameText(title);
            row->setToolTip(groupTitle + QStringLiteral(": ") + title);
            row->deletable = mine;
        }
    }
    // Stars and the mirrored rows follow the rows just made.
    panel.setStarredNames(panel.starredNames());
}

QString MVToolPanelContent::presetPath(const MVPanelItemListButton* row)
{
    if (!row)
        return QString();
    const auto* preset = dynamic_cast<const FileFilter*>(row->templateMod());
    return preset ? fromFs(preset->path()) : QString();
}

bool MVToolPanelContent::deletePreset(MVToolPanel& panel, MVPanelItemListButton* row)
{
    if (!row)
        return false;
    MVPanelItemListButton* original = row->isMirror && row->mirrorOf ? row->mirrorOf : row;
    const QString path = presetPath(original);
    if (!original->deletable || path.isEmpty())
        return false;
    if (QFile::exists(path) && !QFile::remove(path))
        return false;
    if (panel.starredNames().contains(original->key))
        panel.toggleStarred(original);
    return panel.removeListButton(original);
}
