package vendor.zantor.hardware.qxfactoryinterface;

/** Reply of the I2C check. */
parcelable IFacIntStrStr {
    int resultCode = 0;
    @utf8InCpp String checkResult;
    @utf8InCpp String detail;
}
