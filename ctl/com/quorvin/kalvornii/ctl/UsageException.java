package com.quorvin.kalvornii.ctl;

/** What the user wrote cannot be done; the message says what was expected. Nothing was called. */
public final class UsageException extends Exception {
    private static final long serialVersionUID = 1;

    UsageException(String message) {
        super(message);
    }
}
