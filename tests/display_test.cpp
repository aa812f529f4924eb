#include "harness.h"

namespace {

class DisplayTest : public OperationTest {
  protected:
    struct Scene {
        const char* text;
        int number;
    };

    /** Shows every scene by one method: its number reaches the service and the log. */
    void ShowAll(Backend backend, const char* service, const char* method, const char* call,
                 const std::vector<std::string>& logBeforeNumber,
                 const std::vector<Scene>& scenes) {
        LoadWith(backend, service);
        for (const Scene& scene : scenes) {
            SCOPED_TRACE(std::string(method) + " \"" + scene.text + '"');
            const std::string number = std::to_string(scene.number);
            device.Script(call, {-4, "answer " + number});
            EXPECT_EQ("\"answer " + number + '"', java::Call(method, {scene.text}));
            EXPECT_EQ(std::vector<std::string>{std::string(backend == kAidl ? "aidl " : "hidl ") +
                                               service + "." + call + "(2, " + number + ")"},
                      device.TakeCalls());
            std::vector<std::string> log = logBeforeNumber;
            log.back() += number + "\n";
            EXPECT_EQ(log, TakeLog());
        }
    }
};

TEST_F(DisplayTest, EveryPanelScene) {
    const std::vector<Scene> known = {{"white", 0},
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
                                      {"gpu_slt", 17}};
    const char* const unknown[] = {
            "",          "White",         "whitE",       "white ",         " white",
            "whit",      "gpu_sl",        "gpu_slt2",    "gpu_slt\n",      "checksum",
            "checksum4", "bl_open_close", "lcd_general", "avdd_get_result"};
    const auto withFallback = [&](int number) {
        std::vector<Scene> scenes = known;
        for (const char* text : unknown) scenes.push_back({text, number});
        return scenes;
    };
    ShowAll(kAidl, "display", "nativeDisplayTest", "displayTest",
            {"I DisplayTestByAidl", "I displayTest scene = "}, withFallback(20));
    ShowAll(kHidl, "display", "nativeDisplayTest", "displayTest",
            {"I DisplayTestByHidl", "E DisplayTest scene = "}, withFallback(18));
}

TEST_F(DisplayTest, EveryGeneralScene) {
    const std::vector<Scene> scenes = {{"lcd_general", 18},
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
                                       {"", 40},
                                       {"LCD_general", 40},
                                       {"avdd_get_resulT", 40},
                                       {"lcd_general ", 40},
                                       {"lcd_genera", 40},
                                       {"lcd_general2", 40},
                                       {"vertical_scene", 40},
                                       {"vertical_scene5", 40},
                                       {"lvd_restore_scene", 40},
                                       {"white", 40},
                                       {"gpu_slt", 40}};
    ShowAll(kAidl, "display_factory", "nativeDisplayGeneralTest", "displayGeneralTest",
            {"I DisplayGeneralTestByAidl", "I displayTest scene = "}, scenes);
    ShowAll(kHidl, "display_factory", "nativeDisplayGeneralTest", "displayGeneralTest",
            {"I DisplayGeneralTestByHidl", "E DisplayTest scene = "}, scenes);
}

}  // namespace
