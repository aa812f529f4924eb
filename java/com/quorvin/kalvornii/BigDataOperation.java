package com.quorvin.kalvornii;

/**
 * A big-data operation record: a command, with the station and cycle at which it was given. The
 * numbers are passed through unchanged. Both texts must be set: a null one refuses the record.
 */
public class BigDataOperation {
    public int version;
    public int commandId;
    public int operation;

    /** Board serial number. */
    public String bsn;

    public String station;
    public int cycle;
}
