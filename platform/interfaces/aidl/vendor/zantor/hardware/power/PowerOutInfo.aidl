package vendor.zantor.hardware.power;

/** Reply of the power service: a value of its own, then the state text. */
parcelable PowerOutInfo {
    int value = 0;
    @utf8InCpp String state;
}
