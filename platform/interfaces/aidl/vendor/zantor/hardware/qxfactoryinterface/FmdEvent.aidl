package vendor.zantor.hardware.qxfactoryinterface;

/** One measured value with its thresholds and verdict. */
parcelable FmdEvent {
    int errorCode = 0;
    int itemId = 0;
    int cycle = 0;
    @utf8InCpp String result;
    @utf8InCpp String station;
    @utf8InCpp String bsn;
    @utf8InCpp String time;
    @utf8InCpp String deviceName;
    @utf8InCpp String testName;
    @utf8InCpp String value;
    @utf8InCpp String minThreshold;
    @utf8InCpp String maxThreshold;
    @utf8InCpp String firmware;
    @utf8InCpp String description;
    @utf8InCpp String reserved1;
    @utf8InCpp String reserved2;
    @utf8InCpp String reserved3;
    @utf8InCpp String reserved4;
    @utf8InCpp String reserved5;
    @utf8InCpp String reserved6;
}
