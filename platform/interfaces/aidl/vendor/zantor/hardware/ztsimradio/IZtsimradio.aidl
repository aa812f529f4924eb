package vendor.zantor.hardware.ztsimradio;

import vendor.zantor.hardware.ztsimradio.ZtSimPowerInfo;

/** The SIM radio service. */
interface IZtsimradio {
    void setSimPowerState(int state, out ZtSimPowerInfo info);
}
