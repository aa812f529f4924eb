package com.quorvin.kalvornii.soak;

import java.util.Arrays;
import java.util.Objects;

/**
 * The texts that one caller has stored in the device under ids of its own. A write that broke off
 * may have arrived or not: two texts may be there then, and the newer is written again until it is.
 */
final class Stored {
    enum Kind {
        RESULT,
        NV_ITEM,
        FLAG
    }

    static final int SLOTS = 8;

    private final String[] surely = new String[SLOTS];
    private final String[] perhaps = new String[SLOTS];

    /** @param unwritten what is read where nothing was written */
    Stored(String unwritten) {
        Arrays.fill(surely, unwritten);
        Arrays.fill(perhaps, unwritten);
    }

    /** What to write next: this text, or the one that may have got lost. */
    String toWrite(int slot, String text) {
        return Objects.equals(surely[slot], perhaps[slot]) ? text : perhaps[slot];
    }

    boolean isOneOf(int slot, Object text) {
        return Objects.equals(text, surely[slot]) || Objects.equals(text, perhaps[slot]);
    }

    void found(int slot, String text) {
        surely[slot] = perhaps[slot] = text;
    }

    void wrote(int slot, String text, boolean forCertain) {
        perhaps[slot] = text;
        if (forCertain) surely[slot] = text;
    }

    String expected(int slot) {
        String text = Call.quoted(surely[slot]);
        if (Objects.equals(surely[slot], perhaps[slot])) return text;
        return text + " or " + Call.quoted(perhaps[slot]);
    }
}
