#include "common/display_scenes.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"
#include "hidl/services.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxdisplay::displayfactory::V1_0::DISPLAY_FACT_RET;
using vendor::zantor::hardware::qxdisplay::V1_0::DISPLAY_RET;

// intended: neither operation releases its scene text, both log the same line, and the service's
// result code is taken but decides nothing.

jstring native_hidl::DisplayTest(JNIEnv* env, jobject, jstring scene) {
    const auto display = Held(g_displayService, "g_displayService is null");
    if (display == nullptr) return InvalidService(env);
    const char* text = GetText(env, scene, "scene");
    if (text == nullptr) return InvalidService(env);
    [[maybe_unused]] int32_t result = -7;
    hidl_string answer;
    const PanelScene number = DisplayTestScene(text, 18);  // intended: 20 over AIDL
    KV_LOGE("DisplayTest scene = %d\n", number);
    DropStatus(display->displayTest(kPanelTest, number,
                                    [&](DISPLAY_RET ret, const hidl_string& resultText) {
                                        result = static_cast<int32_t>(ret);
                                        answer = resultText;
                                    }));
    return NewText(env, answer.c_str());
}

jstring native_hidl::DisplayGeneralTest(JNIEnv* env, jobject, jstring scene) {
    const auto display = Held(g_displayFactory, "g_displayFactory is null");
    if (display == nullptr) return InvalidService(env);
    const char* text = GetText(env, scene, "scene");
    if (text == nullptr) return InvalidService(env);
    [[maybe_unused]] int32_t result = 0;
    hidl_string answer;
    const PanelScene number = DisplayGeneralTestScene(text, 40);
    KV_LOGE("DisplayTest scene = %d\n", number);
    DropStatus(display->displayGeneralTest(
            kPanelTest, number, [&](DISPLAY_FACT_RET ret, const hidl_string& resultText) {
                result = static_cast<int32_t>(ret);
                answer = resultText;
            }));
    return NewText(env, answer.c_str());
}
