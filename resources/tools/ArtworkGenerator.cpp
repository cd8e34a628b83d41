// Draws every image the program ships and writes it under the given resources folder:
//   vantrel_artwork <resources-dir>
// Output is deterministic; the committed PNGs are its result and can be regenerated at any time.
#include "ArtworkCanvas.h"
#include "BorderArt.h"
#include "SampleScene.h"
#include "StartupArt.h"
#include "PanelArt.h"
#include "PreviewArt.h"
#include "TrayArt.h"
#include "WindowArt.h"
#include <QtCore/QDir>
#include <QtGui/QGuiApplication>
#include <cstdio>
#include <functional>

namespace {

struct Artwork
{
    const char* name; // under img/, without ".png"
    int width;
    int height;
    std::function<void(QPainter&)> draw;
};

bool writeImage(const QImage& img, const QString& path, const char* format, int quality)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!img.save(path, format, quality)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s (%dx%d)\n", qPrintable(path), img.width(), img.height());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <resources-dir>\n", argv[0]);
        return 2;
    }
    if (!loadArtworkFonts()) {
        std::fprintf(stderr, "the Bitstream Vera fonts are missing (package ttf-bitstream-vera)\n");
        return 1;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);

    const Artwork artworks[] = {
        {"vn_photo_startup", 640, 400, [](QPainter& p) { drawStartupBackground(p); }},
        {"startup_loadphoto", 240, 48, [](QPainter& p) { drawLoadPhotoButton(p, false); }},
        {"startup_loadphoto_high", 240, 48, [](QPainter& p) { drawLoadPhotoButton(p, true); }},
        {"main_bg", 32, 32, [](QPainter& p) { drawMainBackground(p, 32, 32); }},
        {"panel_bg", 224, 32, [](QPainter& p) { drawPanelBackground(p, 224, 32); }},
        {"mini_button_bg", 30, 24, [](QPainter& p) { drawMiniButtonBackground(p, 30, 24, false); }},
        {"mini_button_bg_down", 30, 24, [](QPainter& p) { drawMiniButtonBackground(p, 30, 24, true); }},
        {"minib_icon_hide_p", 16, 16, [](QPainter& p) { drawMiniIcon(p, "hide_p"); }},
        {"minib_icon_show_p", 16, 16, [](QPainter& p) { drawMiniIcon(p, "show_p"); }},
        {"minib_icon_hide_t", 16, 16, [](QPainter& p) { drawMiniIcon(p, "hide_t"); }},
        {"minib_icon_show_t", 16, 16, [](QPainter& p) { drawMiniIcon(p, "show_t"); }},
        {"minib_icon_visible", 16, 16, [](QPainter& p) { drawMiniIcon(p, "visible"); }},
        {"minib_icon_del", 16, 16, [](QPainter& p) { drawMiniIcon(p, "del"); }},
        {"minib_icon_previous_preset", 16, 16, [](QPainter& p) { drawMiniIcon(p, "previous_preset"); }},
        {"minib_icon_next_preset", 16, 16, [](QPainter& p) { drawMiniIcon(p, "next_preset"); }},
        {"mini_icon_cancel", 16, 16, [](QPainter& p) { drawMiniIcon(p, "cancel"); }},
        {"down_arrow", 10, 6, [](QPainter& p) { drawDownArrow(p, 10, 6); }},
        {"panels_single_inactive", 28, 22, [](QPainter& p) { drawViewModeButton(p, "single", false); }},
        {"panels_single_active", 28, 22, [](QPainter& p) { drawViewModeButton(p, "single", true); }},
        {"panels_vertical_inactive", 28, 22, [](QPainter& p) { drawViewModeButton(p, "vertical", false); }},
        {"panels_vertical_active", 28, 22, [](QPainter& p) { drawViewModeButton(p, "vertical", true); }},
        {"panels_horizontal_inactive", 28, 22, [](QPainter& p) { drawViewModeButton(p, "horizontal", false); }},
        {"panels_horizontal_active", 28, 22, [](QPainter& p) { drawViewModeButton(p, "horizontal", true); }},
        {"new_tab_button", 28, 22, [](QPainter& p) { drawNewTabButton(p, false); }},
        {"new_tab_button_down", 28, 22, [](QPainter& p) { drawNewTabButton(p, true); }},
        {"default_image_thumb", 160, 120, [](QPainter& p) { drawPlaceholderThumb(p, 160, 120); }},
        {"app_icon_64", 64, 64, [](QPainter& p) { drawEmblem(p, QRectF(2, 2, 60, 60)); }},
        // Tool panel.
        {"toolpanelbg", 48, 48, [](QPainter& p) { drawToolPanelBackground(p, 48, 48); }},
        {"panel_header_bg", 32, 36, [](QPainter& p) { drawPanelHeaderBackground(p, 32, 36); }},
        {"panel_button_bg", 32, 36, [](QPainter& p) { drawPanelButtonBackground(p, 32, 36); }},
        {"panel_button_plus_low", 16, 16, [](QPainter& p) { drawPanelPlus(p, false); }},
        {"panel_button_plus_high", 16, 16, [](QPainter& p) { drawPanelPlus(p, true); }},
        {"panel_button_star_empty", 16, 16, [](QPainter& p) { drawPanelStar(p, "empty"); }},
        {"panel_button_star_low", 16, 16, [](QPainter& p) { drawPanelStar(p, "low"); }},
        {"panel_button_star_high", 16, 16, [](QPainter& p) { drawPanelStar(p, "high"); }},
        {"panel_button_collapse_w", 12, 12, [](QPainter& p) { drawPanelCollapseArrow(p, true); }},
        {"panel_button_uncollapse_w", 12, 12, [](QPainter& p) { drawPanelCollapseArrow(p, false); }},
        {"tools_icon_basics", 16, 16, [](QPainter& p) { drawSectionIcon(p, "basics"); }},
        {"tools_icon_light", 16, 16, [](QPainter& p) { drawSectionIcon(p, "light"); }},
        {"tools_icon_color", 16, 16, [](QPainter& p) { drawSectionIcon(p, "color"); }},
        {"tools_icon_photographic", 16, 16, [](QPainter& p) { drawSectionIcon(p, "photographic"); }},
        {"tools_icon_selectors", 16, 16, [](QPainter& p) { drawSectionIcon(p, "selectors"); }},
        {"tools_icon_borders", 16, 16, [](QPainter& p) { drawSectionIcon(p, "borders"); }},
        {"tools_icon_utility", 16, 16, [](QPainter& p) { drawSectionIcon(p, "utility"); }},
        {"tools_icon_starred", 16, 16, [](QPainter& p) { drawSectionIcon(p, "starred"); }},
        {"tools_icon_presets", 16, 16, [](QPainter& p) { drawSectionIcon(p, "presets"); }},
        {"tools_icon_crop", 22, 22, [](QPainter& p) { drawToolButtonIcon(p, "crop"); }},
        {"tools_icon_heal", 22, 22, [](QPainter& p) { drawToolButtonIcon(p, "heal"); }},
        // Quicklook chooser.
        {"preview_chooser_collapse", 12, 12, [](QPainter& p) { drawPreviewChooserCollapse(p, true); }},
        {"preview_chooser_uncollapse", 12, 12, [](QPainter& p) { drawPreviewChooserCollapse(p, false); }},
    };
    bool ok = true;
    for (const Artwork& a : artworks) {
        for (int scale : {1, 2}) {
            ArtworkCanvas canvas(a.width, a.height, scale);
            a.draw(canvas.painter());
            const QString suffix = scale == 1 ? QString() : QStringLiteral("@2x");
            ok &= writeImage(canvas.finish(), out + QStringLiteral("/img/") + QLatin1String(a.name) + suffix +
                                                  QStringLiteral(".png"), "PNG", -1);
        }
    }
    // The tray's nine-slice faces and small buttons: one file each, drawn at twice the logical
    // size, which the style sheets' slice numbers expect.
    const Artwork trayArt[] = {
        {"traynode", 92, 65, [](QPainter& p) { drawTrayTile(p, "plain", 92, 65); }},
        {"traynodesel", 92, 65, [](QPainter& p) { drawTrayTile(p, "plain_sel", 92, 65); }},
        {"traynode_combo", 100, 65, [](QPainter& p) { drawTrayTile(p, "combo", 100, 65); }},
        {"traynodesel_combo", 100, 65, [](QPainter& p) { drawTrayTile(p, "combo_sel", 100, 65); }},
        {"traynode_camera", 92, 65, [](QPainter& p) { drawTrayTile(p, "camera", 92, 65); }},
        {"traynode_selector", 99, 65, [](QPainter& p) { drawTrayTile(p, "selector", 99, 65); }},
        {"traynode_selector_sel", 99, 65, [](QPainter& p) { drawTrayTile(p, "selector_sel", 99, 65); }},
        {"traynodeclosebutton", 13, 13, [](QPainter& p) { drawTrayButton(p, "close", 13); }},
        {"traynodeclosebuttondown", 13, 13, [](QPainter& p) { drawTrayButton(p, "close_down", 13); }},
        {"traynodedisablebutton", 13, 13, [](QPainter& p) { drawTrayButton(p, "disable", 13); }},
        {"traynodedisablebuttonhigh", 13, 13, [](QPainter& p) { drawTrayButton(p, "disable_high", 13); }},
        {"traynodeenablebutton", 13, 13, [](QPainter& p) { drawTrayButton(p, "enable", 13); }},
        {"traynodepinbutton", 13, 13, [](QPainter& p) { drawTrayButton(p, "pin", 13); }},
        {"traynodepinbuttonhigh", 13, 13, [](QPainter& p) { drawTrayButton(p, "pin_high", 13); }},
        {"traynodepinbuttondown", 13, 13, [](QPainter& p) { drawTrayButton(p, "pin_down", 13); }},
        {"traynode_exit_combo", 22, 22, [](QPainter& p) { drawTrayButton(p, "exit", 22); }},
        {"traynode_exit_combo_down", 22, 22, [](QPainter& p) { drawTrayButton(p, "exit_down", 22); }},
        {"traynode_encloser", 160, 71, [](QPainter& p) { drawTrayEncloser(p, 160, 71); }},
        {"tray_prev_overlay", 64, 53, [](QPainter& p) { drawTrayPreviewOverlay(p, 64, 53); }},
        {"traynode_separator", 6, 50, [](QPainter& p) { drawTraySeparator(p, 6, 50, false); }},
        {"traynode_section_separator", 6, 50, [](QPainter& p) { drawTraySeparator(p, 6, 50, true); }},
        {"floating_menu_bg_plain", 48, 48, [](QPainter& p) { drawFloatingMenuBackground(p, 48, 48); }},
    };
    for (const Artwork& a : trayArt) {
        ArtworkCanvas canvas(a.width, a.height, 2);
        a.draw(canvas.painter());
        ok &= writeImage(canvas.finish(), out + QStringLiteral("/img/") + QLatin1String(a.name) + QStringLiteral(".png"),
                         "PNG", -1);
    }
    // The desktop icon in the sizes menus and file managers ask for (hicolor theme layout).
    for (int size : {16, 24, 32, 48, 64, 128, 256}) {
        ArtworkCanvas canvas(size, size, 1);
        const qreal inset = size * 2.0 / 64.0;
        drawEmblem(canvas.painter(), QRectF(inset, inset, size - 2 * inset, size - 2 * inset));
        ok &= writeImage(canvas.finish(),
                         out + QStringLiteral("/desktop/icons/hicolor/%1x%1/apps/vantrel.png").arg(size), "PNG", -1);
    }
    // Frame pictures of the built-in borders, one size: the tiles scale them themselves.
    for (const BorderFileStyle& style : kBorderFileStyles)
        ok &= writeImage(drawBorderArt(style), out + QStringLiteral("/img/borders/") + QLatin1String(style.file) +
                                                   QStringLiteral(".png"), "PNG", -1);
    ok &= writeImage(renderSampleScene(), out + QStringLiteral("/sample/sample.jpg"), "JPEG", 88);
    return ok ? 0 : 1;
}
