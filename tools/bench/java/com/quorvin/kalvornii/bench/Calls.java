package com.quorvin.kalvornii.bench;

import static java.lang.invoke.MethodType.methodType;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;
import java.lang.invoke.LambdaMetafactory;
import java.lang.invoke.MethodHandle;
import java.lang.invoke.MethodHandles;
import java.lang.reflect.Field;
import java.lang.reflect.Method;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/**
 * The measured calls, driven from here: the way into Java is gone once for many calls, and each
 * call comes, as an application's does, from compiled Java. The arguments are those of arguments.h.
 */
final class Calls {
    private Calls() {}

    interface Call {
        void call();
    }

    private static final MethodHandles.Lookup LOOKUP = MethodHandles.lookup();
    private static final String TEXT = "rear-camera-calibration";
    private static final byte[] BYTES = {
            0x4b, 0x56, 0x01, 0x02, -97, 0, -1, 0x10, 0x4b, 0x56, 0x01, 0x02, -97, 0, -1, 0x10};
    private static final Map<Class<?>, Object> ARGUMENTS =
            Map.of(int.class, 1, String.class, TEXT, byte[].class, BYTES, BigDataOperation.class,
                    filled(new BigDataOperation()), BigDataValue.class, filled(new BigDataValue()));
    private static final KvNativeInterface LIBRARY = new KvNativeInterface();
    private static final Floor FLOOR = new Floor();

    /** Null for a method that is not there. */
    static Call ofLibrary(String method) throws Throwable {
        return of(LIBRARY, method);
    }

    /** Null for a method without a floor of its own. */
    static Call ofFloor(String method) throws Throwable {
        return of(FLOOR, method);
    }

    static void repeat(Call call, int times) {
        for (int i = 0; i < times; i++) {
            call.call();
        }
    }

    private static Call of(Object receiver, String name) throws Throwable {
        for (Method method : receiver.getClass().getDeclaredMethods()) {
            if (method.getName().equals(name)) return lambda(receiver, method);
        }
        return null;
    }

    /** What the compiler makes of a lambda that calls the method with these arguments. */
    private static Call lambda(Object receiver, Method method) throws Throwable {
        List<Object> captured = new ArrayList<>(List.of(receiver));
        for (Class<?> type : method.getParameterTypes()) captured.add(ARGUMENTS.get(type));
        MethodHandle direct = LOOKUP.unreflect(method);
        return (Call) LambdaMetafactory
                .metafactory(LOOKUP, "call", direct.type().changeReturnType(Call.class),
                        methodType(void.class), direct, methodType(void.class))
                .getTarget()
                .invokeWithArguments(captured);
    }

    private static <T> T filled(T record) {
        try {
            for (Field field : record.getClass().getFields()) {
                if (field.getType() == String.class) field.set(record, TEXT);
            }
        } catch (IllegalAccessException e) {
            throw new IllegalStateException(e);
        }
        return record;
    }
}
