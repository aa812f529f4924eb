package com.quorvin.kalvornii;

/**
 * A big-data operation record: a command, with the station and cycle at which it was given. The
 * numbers are passed through unchanged. Both texts must be set: a null one refuses the record.
 */
public class BigDataOperation {
    /** Version of the record. */
    public int version;

    /** The command. */
    public int commandId;

    /** The operation. */
    public int operation;

    /** Board serial number. */
    public String bsn;

    /** Where the command was given. */
    public String station;

    /** In which cycle of the running test it was given. */
    public int cycle;
}
