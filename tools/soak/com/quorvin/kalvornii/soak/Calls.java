package com.quorvin.kalvornii.soak;

import static com.quorvin.kalvornii.soak.Call.VARIES;

import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.samples.Sample;
import com.quorvin.kalvornii.soak.Call.Kind;
import java.util.ArrayList;
import java.util.List;
import java.util.function.BiFunction;

/** The samples, with arguments that vary, and what they do not tell. */
final class Calls {
    private final List<Sample> samples = Sample.read();
    private final List<Call> calls = new ArrayList<>();

    private final Situation situation;

    private Calls(Situation situation) {
        this.situation = situation;
        for (Sample sample : samples) add(sample);
    }

    static List<Call> all(Situation situation) {
        Calls all = new Calls(situation);
        all.limitArguments();
        all.store();
        all.interpolate();
        return all.calls;
    }

    private Call call(String method) {
        return calls.stream().filter(call -> call.method.equals(method)).findFirst().orElseThrow();
    }

    private void limitArguments() {
        add("nativeSocTest", "0", "secure_flash", VARIES);
        add("nativeSocTest", "0", "secure_weaver", VARIES);
        add("nativeDdrTest", "busy", VARIES, VARIES, "getstate");
        add("nativeSetTestCycle", 0, VARIES, -100);
        add("sendCmdToFingerprintHalNative", 0, VARIES, null);
        Call itemName = call("nativeSetTestItemName");
        itemName.arguments = new Object[] {"storage", "emmc_rw"};
        // A service that died in the first of the two calls to it is dead in the second.
        itemName.broken = List.of(List.of(-1, -1), List.of(0, -1));
        itemName.keeps = Call.Keeps.TEXTS_WHEN_ABSENT;
    }

    /** The same method, with arguments that decide the answer. */
    private void add(String method, Object answer, Object... arguments) {
        Call call = add(samples.get(calls.indexOf(call(method))));
        call.arguments = arguments;
        call.times = call(method).times;
        if (!call.healthy.equals(answer)) call.broken = List.of(answer);
        call.healthy = answer;
    }

    private Call add(Sample sample) {
        calls.add(new Call(sample, situation.services.get(sample.service())));
        return calls.get(calls.size() - 1);
    }

    private void store() {
        call("nativeSetTestResult").writes = Kind.RESULT;
        call("nativeGetTestResult").reads = Kind.RESULT;
        call("nativeWriteNvValue").writes = Kind.NV_ITEM;
        call("nativeReadNvValue").reads = Kind.NV_ITEM;
        call("nativeSetKvInfoToOem").writes = Kind.NV_ITEM;
        call("nativeGetKvInfoFromOem").reads = Kind.NV_ITEM;
        call("nativeSetControlFlag").writes = Kind.FLAG;
        call("nativeGetControlFlag").reads = Kind.FLAG;
    }

    // The display chip remembers one mode, which others would change under the first caller.
    private void interpolate() {
        act("nativeSetInperpolateFrameMode",
                (kv, c) -> kv.nativeSetInperpolateFrameMode(c.mode = 1 + c.slot, 120));
        act("nativeGetInperpolateFrameCurMode",
                (kv, c)
                        -> kv.nativeGetInperpolateFrameCurMode()
                        - (c.mode == 0 ? 0 : c.mode * 1000 + 120));
        act("nativeGetInperpolateFrameTestResult",
                (kv, c) -> kv.nativeGetInperpolateFrameTestResult() + (c.mode == 0 ? 3 : 0));
        act("nativeInperpolateFrameRecoverFreshRate",
                (kv, c) -> kv.nativeInperpolateFrameRecoverFreshRate() + (c.mode = 0));
    }

    private void act(String method, BiFunction<KvNativeInterface, Caller, Object> action) {
        call(method).action = action;
        call(method).healthy = 0;
    }
}
