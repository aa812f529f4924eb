package vendor.zantor.hardware.tp;

/** Reply of the capacitance test. */
parcelable ITPIntString {
    int result = 0;
    @utf8InCpp String text;
}
