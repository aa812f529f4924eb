#include "common/display_scenes.h"

#include <string.h>

#include <algorithm>
#include <iterator>

namespace kalvorn {

namespace {

struct NamedScene {
    const char* text;
    PanelScene number;
};

// intended: 5 and 6 are never sent, and "bl_onpen_close" is spelt so.
// clang-format off
constexpr NamedScene kDisplayTestScenes[] = {
    {"white", 0},
    {"black", 1},
    {"red", 2},
    {"green", 3},
    {"blue", 4},
    {"pcd_errflag", 11},
    {"checksum1", 7},
    {"checksum2", 8},
    {"checksum3", 9},
    {"bl_onpen_close", 10},
    {"dot_inversion", 12},
    {"checkreg", 13},
    {"column_inversion", 14},
    {"lcd_power_on_off", 15},
    {"bl_switch", 16},
    {"gpu_slt", 17},
};

constexpr NamedScene kDisplayGeneralTestScenes[] = {
    {"lcd_general", 18},
    {"vertical_scene1", 19},
    {"vertical_scene2", 20},
    {"vertical_scene3", 21},
    {"vertical_scene4", 22},
    {"restore_display_scene", 23},
    {"lvd_set_code_scene1", 24},
    {"lvd_restore_scene1", 25},
    {"lvd_set_code_scene2", 26},
    {"lvd_restore_scene2", 27},
    {"lvd_set_code_scene3", 28},
    {"lvd_restore_scene3", 29},
    {"lvd_set_code_scene4", 30},
    {"lvd_restore_scene4", 31},
    {"avdd_get_result", 32},
};
// clang-format on

PanelScene Find(const NamedScene* first, const NamedScene* last, const char* text,
                PanelScene fallback) {
    const NamedScene* const found = std::find_if(
            first, last, [text](const NamedScene& scene) { return strcmp(scene.text, text) == 0; });
    return found == last ? fallback : found->number;
}

}  // namespace

PanelScene DisplayTestScene(const char* text, PanelScene fallback) {
    return Find(std::begin(kDisplayTestScenes), std::end(kDisplayTestScenes), text, fallback);
}

PanelScene DisplayGeneralTestScene(const char* text, PanelScene fallback) {
    return Find(std::begin(kDisplayGeneralTestScenes), std::end(kDisplayGeneralTestScenes), text,
                fallback);
}

}  // namespace kalvorn
