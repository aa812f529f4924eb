#pragma once

/**
 * Number of a panel scene; the text must equal a scene name exactly. Any other text gives the
 * fallback, which each backend chooses for itself.
 */
int DisplayTestScene(const char* text, int fallback);
int DisplayGeneralTestScene(const char* text, int fallback);
