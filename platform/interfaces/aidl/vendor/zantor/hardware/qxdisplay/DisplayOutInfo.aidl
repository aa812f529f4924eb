package vendor.zantor.hardware.qxdisplay;

/** Reply of the display service: result code (0 is success) and text. */
parcelable DisplayOutInfo {
    int resultCode = 0;
    @utf8InCpp String text;
}
