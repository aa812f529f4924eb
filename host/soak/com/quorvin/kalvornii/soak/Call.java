package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.KvNativeInterface;
import java.util.Objects;
import java.util.function.Supplier;

/** A call of one method, and what it may answer when its service is there, away or dying. */
abstract class Call {
    // What may be answered; each a bit.
    static final int HEALTHY = 1;
    static final int ABSENT = 2;
    static final int BROKEN = 4;
    static final int ANYTHING = HEALTHY | ABSENT | BROKEN;

    final String method;
    /** Null for a method that no service serves. */
    final String service;
    /** What the library keeps of each call on purpose. */
    Keeps keeps = Keeps.NOTHING;
    /** Whether it touches what all threads share, so that only one may call it. */
    boolean single;
    private StaticText field;

    enum Keeps {
        NOTHING,
        TEXTS,
        TEXTS_WHEN_ABSENT
    }

    /** A static field, with what a healthy call leaves in it; a broken one leaves an empty text. */
    private record StaticText(Supplier<String> value, String overAidl, String overHidl) {}

    Call(String method, String service) {
        this.method = method;
        this.service = service;
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
        single = true;
        return this;
    }

    /** Calls; the answer goes to the caller's field of its type. */
    abstract void make(Caller caller);

    /** Whether the answer is one of these. */
    abstract boolean isRight(Caller caller, int may);

    abstract boolean isAbsent(Caller caller);

    abstract String answer(Caller caller);

    abstract String healthyAnswer(Caller caller);

    abstract String brokenAnswer();

    String absentAnswer() {
        return "\"" + KvNativeInterface.INVALID_SERVICE + "\"";
    }

    /** Whether answer and static field are such. */
    final boolean isAllRight(Caller caller, boolean overHidl, int may) {
        return isRight(caller, may) && (field == null || isFieldRight(caller, overHidl, may));
    }

    final void rememberField(Caller caller) {
        if (field != null) caller.fieldBefore = field.value.get();
    }

    private boolean isFieldRight(Caller caller, boolean overHidl, int may) {
        String found = field.value.get();
        if (isAbsent(caller)) return Objects.equals(caller.fieldBefore, found);
        if (Objects.equals(overHidl ? field.overHidl : field.overAidl, found)) return true;
        return (may & BROKEN) != 0 && "".equals(found);
    }

    /** What was expected, and what came, for people. */
    final String verdict(Caller caller, boolean overHidl, int may) {
        StringBuilder text = new StringBuilder("answered ").append(answer(caller));
        if (field != null) text.append(" and left ").append(quoted(field.value.get()));
        text.append("; right is");
        String or = " ";
        if ((may & HEALTHY) != 0) {
            text.append(or).append(healthyAnswer(caller));
            if (field != null) {
                text.append(" leaving ").append(quoted(overHidl ? field.overHidl : field.overAidl));
            }
            or = " or ";
        }
        if ((may & ABSENT) != 0) {
            text.append(or).append(absentAnswer()).append(" of an absent service");
            or = " or ";
        }
        if ((may & BROKEN) != 0) text.append(or).append(brokenAnswer()).append(" of a broken call");
        return text.toString();
    }

    static String quoted(String text) {
        if (text == null) return "null";
        return '"' + (text.length() > 80 ? text.substring(0, 80) + "..." : text) + '"';
    }

    /** A method that answers a number. */
    static final class OfNumber extends Call {
        interface Deed {
            int call(KvNativeInterface library, Caller caller);
        }

        private final int healthy;
        private final int broken;
        private final Deed deed;

        OfNumber(String method, String service, int healthy, int broken, Deed deed) {
            super(method, service);
            this.healthy = healthy;
            this.broken = broken;
            this.deed = deed;
        }

        @Override
        void make(Caller caller) {
            caller.number = deed.call(caller.library, caller);
        }

        @Override
        boolean isRight(Caller caller, int may) {
            int number = caller.number;
            return ((may & HEALTHY) != 0 && number == healthy)
                    || ((may & ABSENT) != 0 && number == KvNativeInterface.SERVICE_ABSENT)
                    || ((may & BROKEN) != 0 && number == broken);
        }

        @Override
        boolean isAbsent(Caller caller) {
            return caller.number == KvNativeInterface.SERVICE_ABSENT;
        }

        @Override
        String answer(Caller caller) {
            return String.valueOf(caller.number);
        }

        @Override
        String healthyAnswer(Caller caller) {
            return String.valueOf(healthy);
        }

        @Override
        String brokenAnswer() {
            return String.valueOf(broken);
        }

        @Override
        String absentAnswer() {
            return String.valueOf(KvNativeInterface.SERVICE_ABSENT);
        }
    }

    /** A method that answers a text. */
    static class OfText extends Call {
        interface Deed {
            String call(KvNativeInterface library, Caller caller);
        }

        private final String healthy;
        private final String broken;
        private final Deed deed;

        OfText(String method, String service, String healthy, String broken, Deed deed) {
            super(method, service);
            this.healthy = healthy;
            this.broken = broken;
            this.deed = deed;
        }

        @Override
        void make(Caller caller) {
            caller.text = deed.call(caller.library, caller);
        }

        boolean isHealthy(Caller caller) {
            return healthy.equals(caller.text);
        }

        @Override
        boolean isRight(Caller caller, int may) {
            return ((may & HEALTHY) != 0 && isHealthy(caller))
                    || ((may & ABSENT) != 0 && isAbsent(caller))
                    || ((may & BROKEN) != 0 && broken.equals(caller.text));
        }

        @Override
        boolean isAbsent(Caller caller) {
            return KvNativeInterface.INVALID_SERVICE.equals(caller.text);
        }

        @Override
        String answer(Caller caller) {
            return quoted(caller.text);
        }

        @Override
        String healthyAnswer(Caller caller) {
            return quoted(healthy);
        }

        @Override
        String brokenAnswer() {
            return quoted(broken);
        }
    }

    /** Reads one of the caller's own texts in the device. */
    static final class OfStoredText extends OfText {
        private final Stored.Kind kind;

        OfStoredText(String method, Stored.Kind kind, Deed deed) {
            super(method, "factory", null, "", deed);
            this.kind = kind;
        }

        @Override
        boolean isHealthy(Caller caller) {
            return caller.stored(kind).isOneOf(caller.slot, caller.text);
        }

        @Override
        boolean isRight(Caller caller, int may) {
            if (!super.isRight(caller, may)) return false;
            if (may == HEALTHY) caller.stored(kind).found(caller.slot, caller.text);
            return true;
        }

        @Override
        String healthyAnswer(Caller caller) {
            return caller.stored(kind).expected(caller.slot);
        }
    }

    /** Writes one of the caller's own texts in the device. */
    static final class OfStoring extends Call {
        private final Stored.Kind kind;
        private final Call call;

        OfStoring(String method, Stored.Kind kind, int broken, OfNumber.Deed deed) {
            super(method, "factory");
            this.kind = kind;
            call = new OfNumber(method, "factory", 0, broken, deed);
        }

        @Override
        void make(Caller caller) {
            caller.storing = caller.stored(kind).toWrite(caller.slot, caller.first());
            call.make(caller);
        }

        @Override
        boolean isRight(Caller caller, int may) {
            if (!call.isRight(caller, may)) return false;
            if (!isAbsent(caller)) {
                caller.stored(kind).wrote(caller.slot, caller.storing, may == HEALTHY);
            }
            return true;
        }

        @Override
        boolean isAbsent(Caller caller) {
            return call.isAbsent(caller);
        }

        @Override
        String answer(Caller caller) {
            return call.answer(caller);
        }

        @Override
        String healthyAnswer(Caller caller) {
            return call.healthyAnswer(caller);
        }

        @Override
        String brokenAnswer() {
            return call.brokenAnswer();
        }

        @Override
        String absentAnswer() {
            return call.absentAnswer();
        }
    }

    /** The method that answers two numbers, each of a call of its own. */
    static final class OfPair extends Call {
        interface Deed {
            int[] call(KvNativeInterface library, Caller caller);
        }

        private final int healthy;
        private final int broken;
        private final Deed deed;

        OfPair(String method, String service, int healthy, int broken, Deed deed) {
            super(method, service);
            this.healthy = healthy;
            this.broken = broken;
            this.deed = deed;
        }

        @Override
        void make(Caller caller) {
            caller.pair = deed.call(caller.library, caller);
        }

        private boolean isPair(Caller caller, int first, int second) {
            return caller.pair[0] == first && caller.pair[1] == second;
        }

        // A service that died in the first call is dead in the second.
        @Override
        boolean isRight(Caller caller, int may) {
            if (caller.pair == null || caller.pair.length != 2) return false;
            return ((may & HEALTHY) != 0 && isPair(caller, healthy, healthy))
                    || ((may & ABSENT) != 0 && isAbsent(caller))
                    || ((may & BROKEN) != 0
                            && (isPair(caller, healthy, broken) || isPair(caller, broken, broken)));
        }

        @Override
        boolean isAbsent(Caller caller) {
            return isPair(caller, KvNativeInterface.SERVICE_ABSENT,
                    KvNativeInterface.SERVICE_ABSENT);
        }

        @Override
        String answer(Caller caller) {
            return java.util.Arrays.toString(caller.pair);
        }

        @Override
        String healthyAnswer(Caller caller) {
            return "[" + healthy + ", " + healthy + "]";
        }

        @Override
        String brokenAnswer() {
            return "[" + healthy + " or " + broken + ", " + broken + "]";
        }

        @Override
        String absentAnswer() {
            int absent = KvNativeInterface.SERVICE_ABSENT;
            return "[" + absent + ", " + absent + "]";
        }
    }
}
