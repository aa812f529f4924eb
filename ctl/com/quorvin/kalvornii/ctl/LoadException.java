package com.quorvin.kalvornii.ctl;

/** Nothing can be learned: the library did not load, or a log that is needed cannot be read. */
final class LoadException extends Exception {
    private static final long serialVersionUID = 1;

    LoadException(String message) {
        super(message);
    }
}
