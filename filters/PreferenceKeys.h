#pragma once
#include <string>
#include <vector>

// Keys of the preferences store that several parts of the program share, with their defaults.
namespace PrefKeys {

inline constexpr const char* kPreferencesVersion = "PreferencesVersion";
inline constexpr const char* kDefaultFiltersVersion = "DefaultFiltersVersion";
inline constexpr const char* kWindowGeometry = "WindowGeometry";
inline constexpr const char* kIsFullscreen = "IsFullscreen";
inline constexpr const char* kUseHoverPreviews = "UseHoverPreviews";
inline constexpr const char* kAutohideControls = "AutohideControls";
inline constexpr const char* kCurrentTab = "CurrentTab";
inline constexpr const char* kLastFont = "LastFont";
inline constexpr const char* kCollapsedToolSections = "CollapsedToolSections";
inline constexpr const char* kStarredFilterList = "StarredFilterList";
inline constexpr const char* kLastMediaLoadPath = "LastMediaLoadPath";

// The value the main window stores on closing.
inline constexpr float kCurrentPreferencesVersion = 3.0f;
// Absent means no default set has been unpacked yet.
inline constexpr float kDefaultFiltersVersionDefault = 0.0f;
inline constexpr const char* kWindowGeometryDefault = "100 100 1200 800";
inline constexpr bool kIsFullscreenDefault = false;
inline constexpr bool kUseHoverPreviewsDefault = true;
inline constexpr bool kAutohideControlsDefault = false;
inline constexpr int kCurrentTabDefault = 0;

// One entry per collapsible tool section: collapsed flag, a blank, the section's name.
inline std::vector<std::string> collapsedToolSectionsDefault()
{
    return { "0 Advanced Light", "0 Advanced Color", "0 Photographic", "0 Masks", "0 Borders", "0 Utility" };
}

} // namespace PrefKeys
