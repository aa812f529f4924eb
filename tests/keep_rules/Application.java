import com.quorvin.kalvornii.KvNativeInterface;

/** An application that names one method, and neither big data nor a static field. */
public final class Application {
    private Application() {}

    public static void main(String[] arguments) {
        System.out.println(new KvNativeInterface().nativeGetBoardName());
    }
}
