package vendor.zantor.hardware.ztsimradio;

/** Reply of the SIM radio service. */
parcelable ZtSimPowerInfo {
    int resultCode = 0;
}
