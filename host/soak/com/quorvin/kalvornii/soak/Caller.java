package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.util.EnumMap;
import java.util.List;
import java.util.Map;

/**
 * One who calls the library and judges the answers. Each call's arguments are made from a sequence
 * of numbers that the seed decides; nothing is allocated for a call but its result.
 */
final class Caller {
    /** How a call was served, for its duration. */
    enum Way {
        AIDL,
        HIDL,
        ABSENT,
        NO_SERVICE
    }

    private static final String[] TEXTS = {
        "", "a", "RT5", "emmc_rw", "size=64M;loops=12", "38.2 °C", "prüfen: µA ±5 %", "测试通过",
        Calls.longText(100, 'A'), Calls.longText(120, 'α'), Calls.longText(1000, 'a'),
        Calls.longText(330, '一'),
    };
    private static final String SIXTEEN = "0123456789abcdef";

    // The last answer, and what the calls are made with.
    int number;
    String text;
    int[] pair;
    String fieldBefore;
    String storing;
    int slot;
    int mode;
    final KvNativeInterface library = new KvNativeInterface();
    final byte[] bytes = Calls.bytes(64);
    final BigDataOperation operation = Calls.operation(SIXTEEN);
    final BigDataValue measured = Calls.value(SIXTEEN);

    private final int index;
    private final Situation situation;
    private final Call[] calls;
    private final int[] services;
    private final Histogram[][] durations;
    private final Map<Stored.Kind, Stored> stored = new EnumMap<>(Stored.Kind.class);
    private long random;
    private boolean uniform;
    private String wrong;

    Caller(int index, long seed, Situation situation, List<Call> calls) {
        this.index = index;
        this.situation = situation;
        this.calls = calls.toArray(new Call[0]);
        random = seed * 31 + index + 0x9E3779B97F4A7C15L;
        services = calls.stream().mapToInt(situation::indexOf).toArray();
        durations = new Histogram[this.calls.length][Way.values().length];
        stored.put(Stored.Kind.RESULT, new Stored(null));
        stored.put(Stored.Kind.NV_ITEM, new Stored(null));
        stored.put(Stored.Kind.FLAG, new Stored(""));
    }

    // What the calls ask for as arguments.

    String first() {
        return uniform ? SIXTEEN : TEXTS[(int) (random >>> 8 & 0xffff) % TEXTS.length];
    }

    String second() {
        return uniform ? SIXTEEN : TEXTS[(int) (random >>> 24 & 0xffff) % TEXTS.length];
    }

    String third() {
        return uniform ? SIXTEEN : TEXTS[(int) (random >>> 40 & 0xffff) % TEXTS.length];
    }

    String shortText() {
        return uniform ? SIXTEEN : TEXTS[(int) (random >>> 8 & 7)];
    }

    int value() {
        return (int) random;
    }

    /** Of a text that this caller alone stores; never that of the signature. */
    int id() {
        return 1000 * (index + 1) + slot;
    }

    Stored stored(Stored.Kind kind) {
        return stored.get(kind);
    }

    /** One call of any method that keeps nothing; false when its answer was wrong. */
    boolean callAny() {
        for (;;) {
            advance();
            int chosen = (int) (random >>> 33) % calls.length;
            Call call = calls[chosen];
            if (call.keeps == Call.Keeps.TEXTS || (call.single && index != 0)) continue;
            boolean isAway = situation.may(services[chosen]) == Call.ABSENT;
            if (call.keeps == Call.Keeps.TEXTS_WHEN_ABSENT && isAway) continue;
            return call(chosen);
        }
    }

    /** Calls a method again and again with texts of sixteen characters; false as above. */
    boolean callUniformly(int chosen, int times) {
        uniform = true;
        boolean right = true;
        for (int i = 0; i < times && right; i++) {
            advance();
            right = call(chosen);
        }
        uniform = false;
        return right;
    }

    private void advance() {
        random ^= random << 13;
        random ^= random >>> 7;
        random ^= random << 17;
        slot = (int) (random >>> 56) % Stored.SLOTS;
    }

    private boolean call(int chosen) {
        Call call = calls[chosen];
        int service = services[chosen];
        int changes = situation.changes();
        int may = situation.may(service);
        call.rememberField(this);
        long start = System.nanoTime();
        call.make(this);
        long end = System.nanoTime();
        if (situation.changes() != changes && service >= 0) may = Call.ANYTHING;
        Backend backend = situation.backend(service);
        boolean overHidl = backend == Backend.HIDL;
        if (!call.isAllRight(this, overHidl, may)) {
            Native.freezeLog();
            wrong = call.method + "\t" + call.verdict(this, overHidl, may) + "; the arguments were "
                    + "made of " + value() + ", " + Call.quoted(first()) + ", "
                    + Call.quoted(second()) + ", " + Call.quoted(third());
            return false;
        }
        if (may == Call.HEALTHY || may == Call.ABSENT) {
            Way way = service < 0 ? Way.NO_SERVICE
                    : may == Call.ABSENT ? Way.ABSENT : overHidl ? Way.HIDL : Way.AIDL;
            histogram(chosen, way).add(end - start);
        }
        return true;
    }

    private Histogram histogram(int chosen, Way way) {
        Histogram[] ways = durations[chosen];
        if (ways[way.ordinal()] == null) ways[way.ordinal()] = new Histogram();
        return ways[way.ordinal()];
    }

    /** Of a call that went this way; null when none did. */
    Histogram durations(int chosen, Way way) {
        return durations[chosen][way.ordinal()];
    }

    /** The method with a wrong answer, a tab, and what was wrong; null while all are right. */
    String wrong() {
        return wrong;
    }
}
