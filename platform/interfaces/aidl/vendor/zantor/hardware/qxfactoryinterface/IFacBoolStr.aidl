package vendor.zantor.hardware.qxfactoryinterface;

/** Reply of the Wi-Fi command; a true result means that the command failed. */
parcelable IFacBoolStr {
    boolean result = false;
    @utf8InCpp String text;
}
