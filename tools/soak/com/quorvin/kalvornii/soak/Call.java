package com.quorvin.kalvornii.soak;

import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.samples.Sample;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import com.quorvin.kalvornii.soak.Situation.Route;
import com.quorvin.kalvornii.soak.Situation.Service;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.EnumMap;
import java.util.List;
import java.util.Map;
import java.util.function.BiFunction;
import org.HdrHistogram.ConcurrentHistogram;
import org.HdrHistogram.Histogram;

/** A call of one method, and what it may answer when its service is there, away or dying. */
final class Call {
    // What may be answered; each a bit.
    static final int HEALTHY = 1;
    static final int ABSENT = 2;
    static final int BROKEN = 4;
    static final int ANYTHING = HEALTHY | ABSENT | BROKEN;

    /** What the library keeps of each call on purpose. */
    enum Keeps { NOTHING, TEXTS, TEXTS_WHEN_ABSENT }

    /** Stands for an argument, a number or a text, that varies from call to call. */
    static final Object VARIES = new Object();

    /** Texts that the device stores. */
    enum Kind { RESULT, NV_ITEM, FLAG }

    private static final Gson JSON =
            new GsonBuilder().serializeNulls().disableHtmlEscaping().create();

    final String method;
    final Service service;
    Map<Route, Histogram> times = new EnumMap<>(Route.class);
    Keeps keeps;
    Object healthy;
    List<?> broken;
    Object[] arguments;
    /** Makes the call, where that takes code of its own; null as a rule, like the next two. */
    BiFunction<KvNativeInterface, Caller, Object> action;
    Kind reads;
    Kind writes;
    private final Sample sample;
    private final Object absent;

    Call(Sample sample, Service service) {
        this.sample = sample;
        this.service = service;
        method = sample.method.getName();
        for (Route route : Route.values()) times.put(route, new ConcurrentHistogram(2));
        keeps = sample.keeps() ? Keeps.TEXTS : Keeps.NOTHING;
        healthy = comparable(sample.result);
        broken = service.name == null ? List.of() : List.of(comparable(sample.broken("aidl")));
        arguments = sample.arguments.clone();
        for (int i = 0; i < arguments.length; i++) {
            if (arguments[i] instanceof String || arguments[i] instanceof Integer)
                arguments[i] = VARIES;
        }
        int number = KvNativeInterface.SERVICE_ABSENT;
        Object numbers = healthy instanceof List ? List.of(number, number) : number;
        absent = healthy instanceof String ? KvNativeInterface.INVALID_SERVICE : numbers;
        if (service.backend == Backend.HIDL && !sample.isServedOver("hidl")) healthy = absent;
    }

    static Object comparable(Object answer) {
        return answer instanceof int[] several ? Arrays.stream(several).boxed().toList() : answer;
    }

    /** Whether it touches what all threads share, so that only one may call it. */
    boolean isSingle() {
        return sample.field() != null || action != null;
    }

    /** The static field that is filled, now; null for none. */
    private Object field() throws ReflectiveOperationException {
        if (sample.field() == null) return null;
        return KvNativeInterface.class.getField(sample.field()).get(null);
    }

    /** What has to be known before. */
    void prepare(Caller caller) throws ReflectiveOperationException {
        caller.fieldBefore = field();
        caller.arguments = arguments.clone();
        for (int i = 0; i < arguments.length; i++) {
            if (arguments[i] != VARIES) continue;
            boolean isNumber = sample.arguments[i] instanceof Integer;
            if (!isNumber) caller.storing = caller.text(i);
            int number = reads != null || writes != null ? caller.id() : caller.number();
            caller.arguments[i] = isNumber ? (Object) number : caller.storing;
        }
    }

    Object make(Caller caller) throws ReflectiveOperationException {
        if (action != null) return action.apply(caller.library, caller);
        return sample.method.invoke(caller.library, caller.arguments);
    }

    /** What is wrong with the answer or the static field; null when all is right. */
    String fault(Caller caller, int may) throws ReflectiveOperationException {
        List<Object> right = new ArrayList<>();
        if ((may & HEALTHY) != 0 && reads == null) right.add(healthy);
        if ((may & HEALTHY) != 0 && reads != null) right.addAll(caller.stored(reads));
        if ((may & ABSENT) != 0) right.add(absent);
        if ((may & BROKEN) != 0) right.addAll(broken);
        String fault = fault("answered", caller.answer, right);
        if (fault != null || sample.field() == null) return fault;
        right.clear();
        if (absent.equals(caller.answer)) {
            right.add(caller.fieldBefore);
        } else {
            right.add(sample.fieldText(service.backend == Backend.HIDL ? "hidl" : "aidl"));
            if ((may & BROKEN) != 0) right.add("");
        }
        return fault("left " + sample.field() + " as", field(), right);
    }

    private static String fault(String verb, Object found, List<Object> right) {
        if (right.contains(found)) return null;
        return verb + " " + quoted(found) + "; right is "
                + String.join(" or ", right.stream().map(Call::quoted).toList());
    }

    /** What is stored after a right answer; a write that broke off may have arrived or not. */
    void remember(Caller caller, int may) {
        Kind kind = reads != null ? reads : writes;
        boolean isCertain = may == HEALTHY;
        if (kind == null || absent.equals(caller.answer) || (reads != null && !isCertain)) return;
        if (isCertain) caller.stored(kind).clear();
        caller.stored(kind).add(reads != null ? (String) caller.answer : caller.storing);
    }

    /** As JSON has it, but not too long. */
    static String quoted(Object value) {
        String text = JSON.toJson(value);
        return text.length() > 200 ? text.substring(0, 200) + "..." : text;
    }
}
