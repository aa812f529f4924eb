package vendor.zantor.hardware.qxfactoryinterface;

/** One big-data operation: a command with the station and cycle it was given at. */
parcelable FmdCmdData {
    int version = 0;
    int commandId = 0;
    int operation = 0;
    int cycle = 0;
    @utf8InCpp String station;
    @utf8InCpp String bsn;
    @utf8InCpp String reserved1;
    @utf8InCpp String reserved2;
    @utf8InCpp String reserved3;
    @utf8InCpp String reserved4;
    @utf8InCpp String reserved5;
}
