package vendor.zantor.hardware.power;

import vendor.zantor.hardware.power.PowerOutInfo;

/** The power service; every call names the calling application's package. */
interface IQXPower {
    int getPowerState(@utf8InCpp String packageName, @utf8InCpp String scene,
            out PowerOutInfo info);
    int setPowerState(@utf8InCpp String packageName, @utf8InCpp String scene,
            @utf8InCpp String para);
}
