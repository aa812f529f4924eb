#include "common/display_scenes.h"

#include <string.h>

namespace {

struct PanelScene {
    const char* text;
    int number;
};

// intended: 5 and 6 are never sent, and "bl_onpen_close" is spelt so.
// clang-format off
constexpr PanelScene kDisplayTestScenes[] = {
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

constexpr PanelScene kDisplayGeneralTestScenes[] = {
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

template <size_t N>
int Find(const PanelScene (&scenes)[N], const char* text, int fallback) {
    for (const PanelScene& scene : scenes) {
        if (strcmp(scene.text, text) == 0) return scene.number;
    }
    return fallback;
}

}  // namespace

int DisplayTestScene(const char* text, int fallback) {
    return Find(kDisplayTestScenes, text, fallback);
}

int DisplayGeneralTestScene(const char* text, int fallback) {
    return Find(kDisplayGeneralTestScenes, text, fallback);
}
