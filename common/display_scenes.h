#pragma once

#include <stdint.h>

namespace kalvorn {

/** The number by which a display service knows a scene. */
using PanelScene = int32_t;

/**
 * Number of a panel scene; the text must equal a scene name exactly. Any other text gives the
 * fallback, which each backend chooses for itself.
 */
PanelScene DisplayTestScene(const char* text, PanelScene fallback);
PanelScene DisplayGeneralTestScene(const char* text, PanelScene fallback);

}  // namespace kalvorn
