package vendor.zantor.hardware.qxdisplay.displayfactory;

/** Reply of the display factory service. */
parcelable DisplayFactoryOutInfo {
    int resultCode = 0;
    @utf8InCpp String text;
}
