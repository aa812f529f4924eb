#include "aidl/services.h"
#include "common/display_scenes.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxdisplay::DisplayOutInfo;
using vendor::zantor::hardware::qxdisplay::displayfactory::DisplayFactoryOutInfo;

// intended: neither operation releases its scene text, and both log the same line.

jstring native_aidl::DisplayTest(JNIEnv* env, jobject, jstring scene) {
    const auto display = Held(g_aidlDisplayService, "aidlDisplayService is null");
    if (display == nullptr) return InvalidService(env);
    const char* text = GetText(env, scene, "scene");
    if (text == nullptr) return InvalidService(env);
    DisplayOutInfo info{};
    const PanelScene number = DisplayTestScene(text, 20);  // intended: 18 over HIDL
    KV_LOGI("displayTest scene = %d\n", number);
    display->displayTest(kPanelTest, number, &info);
    return NewText(env, info.text);
}

jstring native_aidl::DisplayGeneralTest(JNIEnv* env, jobject, jstring scene) {
    const auto display = Held(g_aidlDisplayFactory, "aidlDisplayFactory is null");
    if (display == nullptr) return InvalidService(env);
    const char* text = GetText(env, scene, "scene");
    if (text == nullptr) return InvalidService(env);
    DisplayFactoryOutInfo info{};
    const PanelScene number = DisplayGeneralTestScene(text, 40);
    KV_LOGI("displayTest scene = %d\n", number);
    display->displayGeneralTest(kPanelTest, number, &info);
    return NewText(env, info.text);
}
