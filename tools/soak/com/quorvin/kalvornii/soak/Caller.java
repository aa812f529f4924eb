package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.ISO_8859_1;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import com.quorvin.kalvornii.soak.Situation.Way;
import java.lang.reflect.Field;
import java.util.EnumMap;
import java.util.List;
import java.util.Map;

/**
 * One who calls the library and judges the answers. Each call's arguments are made from a sequence
 * of numbers that the seed decides; nothing is allocated for a call but its result.
 */
final class Caller {
    private static final String[] TEXTS = {
        "", "a", "RT5", "emmc_rw", "size=64M;loops=12", "38.2 °C", "prüfen: µA ±5 %", "测试通过",
        "ABCDEFGHIJ".repeat(10), "αβγδεζηθικλμ".repeat(10), "abcdefghij".repeat(100),
        "一丁丂七丄丅丆万丈三上".repeat(30),
    };
    private static final String SIXTEEN = "0123456789abcdef";

    // The last answer, and what the calls are made with.
    Object answer;
    String fieldBefore;
    String storing;
    int slot;
    int mode;
    final KvNativeInterface library = new KvNativeInterface();
    final byte[] bytes = "\0\7\16\u00ff".repeat(16).getBytes(ISO_8859_1);
    final BigDataOperation operation = filled(new BigDataOperation());
    final BigDataValue measured = filled(new BigDataValue());

    private final int index;
    private final Situation situation;
    private final Call[] calls;
    private final int[] services;
    private final Histogram[][] durations;
    private final Map<Stored.Kind, Stored> stored = new EnumMap<>(Stored.Kind.class);
    private long random;
    private boolean uniform;
    private String wrong;
    private String verdict;

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
        return text(8);
    }

    String second() {
        return text(24);
    }

    String third() {
        return text(40);
    }

    private String text(int bits) {
        return uniform ? SIXTEEN : TEXTS[(int) (random >>> bits & 0xffff) % TEXTS.length];
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

    /** Calls a method again and again with texts of sixteen characters, up to a wrong answer. */
    void callUniformly(int chosen, int times) {
        uniform = true;
        for (int i = 0; i < times && wrong == null; i++) {
            advance();
            call(chosen);
        }
        uniform = false;
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
        call.prepare(this);
        long start = System.nanoTime();
        call.make(this);
        long end = System.nanoTime();
        if (situation.changes() != changes && service >= 0) may = Call.ANYTHING;
        boolean overHidl = situation.backend(service) == Backend.HIDL;
        if (!call.isRight(this, overHidl, may)) {
            Native.freezeLog();
            wrong = call.method;
            verdict = call.verdict(this, overHidl, may) + "; the arguments were made of " + value()
                    + ", " + Call.quoted(first()) + ", " + Call.quoted(second()) + ", "
                    + Call.quoted(third());
            return false;
        }
        if (may == Call.HEALTHY || may == Call.ABSENT) {
            int way = situation.way(service, may).ordinal();
            if (durations[chosen][way] == null) durations[chosen][way] = new Histogram();
            durations[chosen][way].add(end - start);
        }
        return true;
    }

    /** Of a call that went this way; null when none did. */
    Histogram durations(int chosen, Way way) {
        return durations[chosen][way.ordinal()];
    }

    /** The method with a wrong answer; null while all are right. */
    String wrong() {
        return wrong;
    }

    /** What was wrong with it. */
    String verdict() {
        return verdict;
    }

    private static <T> T filled(T record) {
        try {
            for (Field field : record.getClass().getFields()) {
                if (field.getType() == String.class) field.set(record, SIXTEEN);
            }
        } catch (IllegalAccessException e) {
            throw new IllegalStateException(e);
        }
        return record;
    }
}
