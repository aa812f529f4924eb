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
                 const std::vector<std::string>& logBeforeNumber, const std::vector<Scene>& scenes);
};

void DisplayTest::ShowAll(Backend backend, const char* service, const char* method,
                          const char* call, const std::vector<std::string>& logBeforeNumber,
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

TEST_F(DisplayTest, EveryPanelScene) {
    const std::vector<Scene> known = {
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
    const std::vector<Scene> scenes = {
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
            {"gpu_slt", 40},
    };
    ShowAll(kAidl, "display_factory", "nativeDisplayGeneralTest", "displayGeneralTest",
            {"I DisplayGeneralTestByAidl", "I displayTest scene = "}, scenes);
    ShowAll(kHidl, "display_factory", "nativeDisplayGeneralTest", "displayGeneralTest",
            {"I DisplayGeneralTestByHidl", "E DisplayTest scene = "}, scenes);
}

// clang-format off
// The same number means another scene to each of the two services.
TEST_F(DisplayTest, EachTestGoesToItsOwnService) {
    device.Start(kHidl, "display");
    device.Start(kAidl, "display_factory");
    Load();
    device.TakeCalls();
    java::Call("nativeDisplayTest", {"lcd_general"});
    java::Call("nativeDisplayGeneralTest", {"lcd_general"});
    EXPECT_EQ((std::vector<std::string>{"hidl display.displayTest(2, 18)",
                                        "aidl display_factory.displayGeneralTest(2, 18)"}),
              device.TakeCalls());
}

TEST_F(DisplayTest, FailedFrameRateConfigurationOverAidl) {
    Run({
            {kAidl, "display", "nativeGetScreenFpsConfigByScenes", {4},
             {{"getDisplayFpsConfig", {1, "60,90"}}}, {"display.getDisplayFpsConfig(4)"},
             {"I GetScreenFpsConfigByScenesByAidl", "E Get display fps config failed, res: 1"},
             "null"},
            {kAidl, "display", "nativeGetScreenFpsConfigByScenes", {4},
             {{"getDisplayFpsConfig", {-1, "60,90"}}}, {"display.getDisplayFpsConfig(4)"},
             {"I GetScreenFpsConfigByScenesByAidl", "E Get display fps config failed, res: -1"},
             "null"},
    });
}

/** HIDL has no scenes: the rate is switched first, and what is then in force is read. */
Case HidlFrameRateConfiguration(const Answer& switched, const Answer& read, const std::string& last,
                                const std::string& result) {
    std::vector<std::string> calls{"display.setDisplayFps(4)"};
    if (switched.code == 0) calls.push_back("display.getDisplayFpsConfig()");
    return {kHidl, "display", "nativeGetScreenFpsConfigByScenes", {4},
            {{"setDisplayFps", switched}, {"getDisplayFpsConfig", read}}, calls,
            {"I GetScreenFpsConfigByScenesByHidl",
             "I setDisplayFps, freqIndex: 4, ret: " + std::to_string(switched.code), last},
            result};
}

TEST_F(DisplayTest, FailedFrameRateConfigurationOverHidl) {
    const std::string failed = "E get display fps config failed, ret: ";
    Run({
            HidlFrameRateConfiguration({3}, {}, "E setDisplayFps failed, ret: 3", "null"),
            HidlFrameRateConfiguration({-3}, {}, "E setDisplayFps failed, ret: -3", "null"),
            HidlFrameRateConfiguration({0}, {-2, "60,90"}, failed + "-2", "null"),
            HidlFrameRateConfiguration({0}, {1, "60,90"}, failed + "1", "null"),
            // The code of the switch still stands when nothing comes after it.
            HidlFrameRateConfiguration({0}, Fault::kDeadObject,
                                       "I getDisplayFpsConfig, fpsConfig: ", "\"\""),
            HidlFrameRateConfiguration({0}, Fault::kTransport,
                                       "I getDisplayFpsConfig, fpsConfig: ", "\"\""),
    });
}

TEST_F(DisplayTest, FailedFrameRate) {
    Run(OnBoth({
            {"display", "nativeSetScreenFps", {3}, {{"setDisplayFps", {-2}}},
             {"display.setDisplayFps(3)"},
             "I SetScreenFps", {"I setDisplayFps, freqIndex: 3, res: -2"},
             {"I setDisplayFps, freqIndex: 3, ret: -2"}, "-1"},
            {"display", "nativeSetScreenFps", {3}, {{"setDisplayFps", {8}}},
             {"display.setDisplayFps(3)"},
             "I SetScreenFps", {"I setDisplayFps, freqIndex: 3, res: 8"},
             {"I setDisplayFps, freqIndex: 3, ret: 8"}, "-1"},
    }));
}

// clang-format on

}  // namespace
