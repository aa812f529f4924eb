package vendor.zantor.hardware.qxdisplay;

import vendor.zantor.hardware.qxdisplay.DisplayOutInfo;

/** The display service. */
interface IDisplay {
    void getDisplayFpsConfig(int scene, out DisplayOutInfo info);
    int setDisplayFps(int freqIndex);
    void displayTest(int type, int scene, out DisplayOutInfo info);
    int mft_set_end_time_of_ageing();
}
