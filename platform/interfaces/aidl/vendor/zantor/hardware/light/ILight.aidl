package vendor.zantor.hardware.light;

/** The light service. */
interface ILight {
    int set_led_alwayson_status(int type, int status);
    int setLightsBrightness(int type, int brightness);
}
