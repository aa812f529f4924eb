package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.soak.Call.Keeps;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import org.HdrHistogram.Histogram;

/**
 * One thread's calls of the library, and the judgement of their answers. The arguments are made
 * from a sequence of numbers that the seed decides.
 */
final class Caller {
    private static final String[] TEXTS = {"", "a", "RT5", "emmc_rw", "size=64M;loops=12",
            "38.2 °C", "prüfen: µA ±5 %", "测试通过", "ABCDEFGHIJ".repeat(10),
            "αβγδεζηθικλμ".repeat(10), "abcdefghij".repeat(100),
            "一丁丂七丄丅丆万丈三上".repeat(30)};
    private static final String SIXTEEN = "0123456789abcdef";
    private static final int SLOTS = 8;

    final KvNativeInterface library = new KvNativeInterface();
    // The last call.
    Object[] arguments;
    Object answer;
    Object fieldBefore;
    String storing;
    int slot;
    int mode;
    /** The first call with a wrong answer, and what was wrong; null while all are right. */
    volatile Call wrong;
    String fault;
    volatile boolean mayCall;
    /** The times of the calls since it was last reset. */
    final Histogram recent = new Histogram(2);

    private final int index;
    private final Situation situation;
    private final List<Call> calls;
    private final List<Set<String>> stored = new ArrayList<>();
    private long random;
    private boolean uniform;

    Caller(int index, long seed, Situation situation, List<Call> calls) {
        this.index = index;
        this.situation = situation;
        this.calls = calls;
        random = seed * 31 + index + 0x9E3779B97F4A7C15L;
        for (Call.Kind kind : Call.Kind.values()) {
            String unwritten = kind == Call.Kind.FLAG ? "" : null;
            for (int i = 0; i < SLOTS; i++) stored.add(new HashSet<>(Arrays.asList(unwritten)));
        }
    }

    int number() {
        return (int) random;
    }

    /** Another at each position among the arguments. */
    String text(int position) {
        if (uniform) return SIXTEEN;
        return TEXTS[(int) (random >>> 8 + 16 * position & 0xffff) % TEXTS.length];
    }

    /** Of a text that this caller alone stores; never that of the signature. */
    int id() {
        return 1000 * (index + 1) + slot;
    }

    /** The texts of which one is stored under that id. */
    Set<String> stored(Call.Kind kind) {
        return stored.get(kind.ordinal() * SLOTS + slot);
    }

    /** Calls any methods that keep nothing, up to a wrong answer; returns how often. */
    long callAny(long times) throws ReflectiveOperationException {
        long made = 0;
        while (made < times && mayCall && wrong == null) {
            advance();
            Call call = calls.get((int) (random >>> 33) % calls.size());
            boolean isAway = call.service.may == Call.ABSENT;
            if (call.keeps == (isAway ? Keeps.TEXTS_WHEN_ABSENT : Keeps.TEXTS)) continue;
            if (call.isSingle() && index != 0) continue;
            call(call);
            made++;
        }
        return made;
    }

    /** Calls a method again and again with texts of sixteen characters, up to a wrong answer. */
    void callUniformly(Call call, int times) throws ReflectiveOperationException {
        uniform = true;
        for (int i = 0; i < times && wrong == null; i++) {
            advance();
            call(call);
        }
        uniform = false;
    }

    private void advance() {
        random ^= random << 13;
        random ^= random >>> 7;
        random ^= random << 17;
        slot = (int) (random >>> 56) % SLOTS;
    }

    private void call(Call call) throws ReflectiveOperationException {
        int changes = situation.changes;
        int may = call.service.may;
        call.prepare(this);
        long start = System.nanoTime();
        Object made = call.make(this);
        long time = System.nanoTime() - start;
        answer = Call.comparable(made);
        if (situation.changes != changes && call.service.name != null) may = Call.ANYTHING;
        fault = call.fault(this, may);
        if (fault != null) {
            Native.freezeLog();
            wrong = call;
            return;
        }
        call.remember(this, may);
        if (may != Call.HEALTHY && may != Call.ABSENT) return;
        call.times.get(call.service.route(may)).recordValue(time);
        recent.recordValue(time);
    }
}
