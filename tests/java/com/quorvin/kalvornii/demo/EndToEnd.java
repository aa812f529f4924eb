package com.quorvin.kalvornii.demo;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;

import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.Objects;

/** Loads the built library as an application does and calls each of its methods once. */
final class EndToEnd {
    /** The argument is the device's profile; "bare" answers no call but the local ones. */
    public static void main(String[] arguments) throws ReflectiveOperationException {
        boolean bare = arguments[0].equals("bare");
        SimulatedDevice.start(arguments[0], false);
        KvNativeInterface library = new KvNativeInterface();
        int called = 0;
        for (Method method : KvNativeInterface.class.getDeclaredMethods()) {
            if (!Modifier.isNative(method.getModifiers())) continue;
            Object result = method.invoke(library, argumentsOf(method));
            if (bare) expectAbsent(method.getName(), result);
            called++;
        }
        expect("methods", 65, called);
        library.nativeWriteNvValue("written", 7);
        expect("NV item", bare ? "INVALID_SERVICE" : "written", library.nativeReadNvValue(7));
        KvNativeInterface.currentValue = null;
        library.nativeStorageJoblessTest("scene", "para");
        expect("static field", bare ? null : "idle 0.8 W", KvNativeInterface.currentValue);
        SimulatedDevice.stop();
    }

    private static Object[] argumentsOf(Method method) {
        Class<?>[] types = method.getParameterTypes();
        Object[] values = new Object[types.length];
        for (int i = 0; i < types.length; i++) {
            if (types[i] == int.class) values[i] = i + 1;
            if (types[i] == String.class) values[i] = "text " + i;
            if (types[i] == byte[].class) values[i] = new byte[] {1, 2, 3};
            if (types[i] == BigDataOperation.class) values[i] = operation();
            if (types[i] == BigDataValue.class) values[i] = value();
        }
        return values;
    }

    private static BigDataOperation operation() {
        BigDataOperation operation = new BigDataOperation();
        operation.bsn = operation.station = "";
        return operation;
    }

    private static BigDataValue value() {
        BigDataValue value = new BigDataValue();
        value.deviceName = value.station = value.testName = value.bsn = value.value = "";
        value.minThreshold = value.maxThreshold = value.result = value.time = "";
        value.firmware = value.description = "";
        return value;
    }

    private static void expectAbsent(String name, Object result) {
        if (result instanceof String) {
            expect(name, "INVALID_SERVICE", result);
        } else if (result instanceof int[]) {
            expect(name, -9999, ((int[]) result)[0]);
        } else if (!isLocal(name)) {
            expect(name, -9999, result);
        }
    }

    private static boolean isLocal(String name) {
        return name.contains("InperpolateFrame") || name.equals("nativeWriteMiscToRecovery")
                || name.equals("nativeSendCommandMcu") || name.equals("nativeUnregisterCallback");
    }

    private static void expect(String what, Object expected, Object found) {
        if (!Objects.equals(expected, found)) {
            throw new AssertionError(what + ": expected " + expected + ", found " + found);
        }
    }
}
