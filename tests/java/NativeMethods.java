import com.quorvin.kalvornii.KvNativeInterface;
import java.lang.invoke.MethodType;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.Arrays;
import java.util.stream.Collectors;

/** What the compiled KvNativeInterface declares. */
final class NativeMethods {
    /** The name and descriptor of each native method, a line each, in order. */
    static String list() {
        return Arrays.stream(KvNativeInterface.class.getDeclaredMethods())
                .filter(method -> Modifier.isNative(method.getModifiers()))
                .map(method -> method.getName() + descriptor(method) + "\n")
                .sorted()
                .collect(Collectors.joining());
    }

    private static String descriptor(Method method) {
        return MethodType.methodType(method.getReturnType(), method.getParameterTypes())
                .toMethodDescriptorString();
    }
}
