package com.quorvin.kalvornii;

/**
 * A big-data value record: one measured test value with its thresholds and verdict. The numbers are
 * passed through unchanged. Texts may be empty, but all eleven must be set: a null one refuses the
 * record.
 */
public class BigDataValue {
    public int version;
    public int dataSource;
    public int errorCode;
    public int itemId;
    public int cycle;

    public String deviceName;
    public String station;
    public String testName;

    /** Board serial number. */
    public String bsn;

    public String value;
    public String minThreshold;
    public String maxThreshold;

    /** The verdict. */
    public String result;

    public String time;
    public String firmware;
    public String description;
}
