package vendor.zantor.hardware.sensors;

/** Text reply of a sensor parameter command. */
parcelable ZtSensorString {
    @utf8InCpp String text;
}
