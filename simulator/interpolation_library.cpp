// Stands in for the display chip vendor's library: remembers the mode that was set.

static int g_mode = 0;

/** Answers 0, or the negative mode itself, which the chip refuses. */
extern "C" int setModeTest(int mode, int rate) {
    if (mode < 0) return mode;
    g_mode = mode * 1000 + rate;
    return 0;
}

extern "C" int getCurrentMode() {
    return g_mode;
}

extern "C" int checkResult() {
    return g_mode == 0 ? -3 : 0;
}

#ifndef WITHOUT_RECOVER_FRESH_RATE
extern "C" int recoverFreshRate() {
    g_mode = 0;
    return 0;
}
#endif
