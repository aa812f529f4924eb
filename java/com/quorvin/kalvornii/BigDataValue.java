package com.quorvin.kalvornii;

/**
 * A big-data value record: one measured test value with its thresholds and verdict. The numbers are
 * passed through unchanged. Texts may be empty, but all eleven must be set: a null one refuses the
 * record.
 */
public class BigDataValue {
    /** Version of the record. */
    public int version;

    /** Where the value comes from. */
    public int dataSource;

    /** The error code. */
    public int errorCode;

    /** The test item. */
    public int itemId;

    /** In which cycle of the running test it was measured. */
    public int cycle;

    /** The device. */
    public String deviceName;

    /** Where it was measured. */
    public String station;

    /** The test. */
    public String testName;

    /** Board serial number. */
    public String bsn;

    /** The measured value. */
    public String value;

    /** The least value that passes. */
    public String minThreshold;

    /** The greatest value that passes. */
    public String maxThreshold;

    /** The verdict. */
    public String result;

    /** When it was measured. */
    public String time;

    /** Firmware of the device. */
    public String firmware;

    /** What there is to say besides. */
    public String description;
}
