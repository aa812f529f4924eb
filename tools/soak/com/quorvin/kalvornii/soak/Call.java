package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.KvNativeInterface;
import java.util.ArrayList;
import java.util.List;
import java.util.Objects;
import java.util.function.Supplier;

/** A call of one method, and what it may answer when its service is there, away or dying. */
final class Call {
    // What may be answered; each a bit.
    static final int HEALTHY = 1;
    static final int ABSENT = 2;
    static final int BROKEN = 4;
    static final int ANYTHING = HEALTHY | ABSENT | BROKEN;

    enum Keeps {
        NOTHING,
        TEXTS,
        TEXTS_WHEN_ABSENT
    }

    /** Calls, with arguments of the caller, and returns a number or a text. */
    interface Deed {
        Object call(KvNativeInterface library, Caller caller);
    }

    /** A static field, with what a healthy call leaves in it; a broken one leaves an empty text. */
    private record StaticText(Supplier<String> value, String overAidl, String overHidl) {}

    final String method;
    /** Null for a method that no service serves. */
    final String service;
    /** What the library keeps of each call on purpose. */
    Keeps keeps = Keeps.NOTHING;
    /** Whether it touches what all threads share, so that only one may call it. */
    boolean single;
    private final Object healthy;
    private final Object broken;
    private final Object absent;
    private final Deed deed;
    private StaticText field;
    private Stored.Kind reads;
    private Stored.Kind writes;

    Call(String method, String service, Object healthy, Object broken, Deed deed) {
        this.method = method;
        this.service = service;
        this.healthy = healthy;
        this.broken = broken;
        this.deed = deed;
        absent = broken instanceof Integer ? (Object) KvNativeInterface.SERVICE_ABSENT
                : KvNativeInterface.INVALID_SERVICE;
    }

    Call keeping(Keeps what) {
        keeps = what;
        return this;
    }

    Call onOneThread() {
        single = true;
        return this;
    }

    Call filling(Supplier<String> value, String overAidl, String overHidl) {
        field = new StaticText(value, overAidl, overHidl);
        return onOneThread();
    }

    /** A healthy answer is what this caller has stored. */
    Call reading(Stored.Kind kind) {
        reads = kind;
        return this;
    }

    /** Sends what the caller is to store, in {@code storing}. */
    Call writing(Stored.Kind kind) {
        writes = kind;
        return this;
    }

    /** What has to be known before. */
    void prepare(Caller caller) {
        if (field != null) caller.fieldBefore = field.value.get();
        if (writes != null) {
            caller.storing = caller.stored(writes).toWrite(caller.slot, caller.first());
        }
    }

    void make(Caller caller) {
        caller.answer = deed.call(caller.library, caller);
    }

    /** Whether answer and static field are such; then the caller knows what is stored. */
    boolean isRight(Caller caller, boolean overHidl, int may) {
        Object answer = caller.answer;
        boolean isAbsent = absent.equals(answer);
        boolean right = ((may & HEALTHY) != 0 && isHealthy(caller))
                || ((may & ABSENT) != 0 && isAbsent)
                || ((may & BROKEN) != 0 && broken.equals(answer));
        if (!right) return false;
        if (field != null && !isFieldRight(caller, isAbsent, overHidl, may)) return false;
        if (reads != null && may == HEALTHY) {
            caller.stored(reads).found(caller.slot, (String) answer);
        }
        if (writes != null && !isAbsent) {
            caller.stored(writes).wrote(caller.slot, caller.storing, may == HEALTHY);
        }
        return true;
    }

    private boolean isHealthy(Caller caller) {
        if (reads == null) return healthy.equals(caller.answer);
        return caller.stored(reads).isOneOf(caller.slot, caller.answer);
    }

    private boolean isFieldRight(Caller caller, boolean isAbsent, boolean overHidl, int may) {
        String found = field.value.get();
        if (isAbsent) return Objects.equals(caller.fieldBefore, found);
        if (Objects.equals(overHidl ? field.overHidl : field.overAidl, found)) return true;
        return (may & BROKEN) != 0 && "".equals(found);
    }

    /** What was expected, and what came, for people. */
    String verdict(Caller caller, boolean overHidl, int may) {
        String found = "answered " + quoted(caller.answer);
        String expected =
                reads == null ? quoted(healthy) : caller.stored(reads).expected(caller.slot);
        if (field != null) {
            found += " and left " + quoted(field.value.get());
            expected += " leaving " + quoted(overHidl ? field.overHidl : field.overAidl);
        }
        List<String> right = new ArrayList<>();
        if ((may & HEALTHY) != 0) right.add(expected);
        if ((may & ABSENT) != 0) right.add(quoted(absent) + " of an absent service");
        if ((may & BROKEN) != 0) right.add(quoted(broken) + " of a broken call");
        return found + "; right is " + String.join(" or ", right);
    }

    /** A number as it is, a text in quotes and not too long. */
    static String quoted(Object value) {
        if (!(value instanceof String text)) return String.valueOf(value);
        return '"' + (text.length() > 80 ? text.substring(0, 80) + "..." : text) + '"';
    }
}
