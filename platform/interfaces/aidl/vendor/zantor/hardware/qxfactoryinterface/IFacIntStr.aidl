package vendor.zantor.hardware.qxfactoryinterface;

/** Reply of the read-style methods: the service's code, then its text. */
parcelable IFacIntStr {
    int resultCode = 0;
    @utf8InCpp String text;
}
