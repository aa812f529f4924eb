package com.quorvin.kalvornii.ctl;

/** The library did not load, its log cannot be read, or nothing answers in time. */
final class Failure extends Exception {
    private static final long serialVersionUID = 1;

    final int status;

    Failure(int status, String message) {
        super(message);
        this.status = status;
    }
}
