package com.quorvin.kalvornii.ctl;

import android.os.Process;
import com.quorvin.kalvornii.KvNativeInterface;
import java.lang.reflect.InvocationTargetException;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** The library, loaded, and what its log tells. */
final class Library {
    private static final long PATIENCE_MILLISECONDS = 3000;

    final LogReader log = LogReader.start();
    final Services services = new Services();
    private final Console console;
    private Throwable failure;

    /** Loads the library, and tells which service a load that takes long waits for. */
    Library(Console console) throws LoadException {
        this.console = console;
        Thread loader = new Thread(this::load, "load");
        loader.setDaemon(true);
        loader.start();
        String told = "";
        for (;;) {
            join(loader);
            boolean loads = loader.isAlive();  // asked first, so that no line of it is missed
            List<LogLine> lines = log.upToNow();
            services.take(lines);
            if (loads) {
                String wait = whatItWaitsFor();
                if (!wait.equals(told)) console.tell(wait);
                told = wait;
            } else if (failure != null) {
                throw new LoadException(reason(lines));
            } else {
                return;
            }
        }
    }

    private static void join(Thread thread) {
        try {
            thread.join(PATIENCE_MILLISECONDS);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }

    private void load() {
        try {
            Class.forName(KvNativeInterface.class.getName());
        } catch (ClassNotFoundException | LinkageError e) {
            failure = e;
        }
    }

    private String whatItWaitsFor() {
        if (log.trouble() != null) {
            return "the library still loads; a declared service may not have started, and the log, "
                    + "which would name it, cannot be read: " + log.trouble();
        }
        String service = services.lookedFor();
        return service == null
                ? "the library still loads, and has logged nothing yet"
                : "the load waits for " + service + ", which is declared and has not started";
    }

    private String reason(List<LogLine> lines) {
        String logged =
                lines.stream()
                        .map(line -> line.text)
                        .filter(text -> text.matches("(ERROR|Native registration|Register).*"))
                        .map(text -> "\n  log: " + text)
                        .collect(Collectors.joining());
        return "the library did not load: " + failure.getMessage() + logged
                + "\n  lib_kalvorn.so is looked for in: " + System.getProperty("java.library.path");
    }

    /** Calls a method, with the log of the call while the log is open. */
    Call call(Contract.Method method, Object[] arguments, boolean withLog) throws LoadException {
        if (withLog) log.upToNow();
        int thread = Process.myTid();
        long start = System.nanoTime();
        Object result = invoke(method, arguments);
        double milliseconds = (System.nanoTime() - start) / 1e6;
        List<LogLine> lines = null;
        if (withLog) {
            lines = log.upToNow()
                            .stream()
                            .filter(line -> line.tid == thread)
                            .collect(Collectors.toList());
            if (log.trouble() != null) lines = null;
        }
        return new Call(method, arguments, result, fields(method), milliseconds, lines);
    }

    private static Object invoke(Contract.Method method, Object[] arguments) throws LoadException {
        try {
            Class<?>[] types = method.parameters.stream()
                                       .map(parameter -> Values.typeOf(parameter.type))
                                       .toArray(Class<?>[] ::new);
            return KvNativeInterface.class.getMethod(method.name, types)
                    .invoke(new KvNativeInterface(), arguments);
        } catch (InvocationTargetException e) {
            throw new LoadException(method.name + ": " + e.getCause());
        } catch (ReflectiveOperationException e) {
            throw new LoadException("the classes do not fit their contract: " + e);
        }
    }

    private static Map<String, String> fields(Contract.Method method) {
        Map<String, String> fields = new LinkedHashMap<>();
        for (String name : method.fields) {
            try {
                Object text = KvNativeInterface.class.getField(name).get(null);
                fields.put(name, (String) text);
            } catch (ReflectiveOperationException e) {
                throw new IllegalStateException(e);
            }
        }
        return fields;
    }

    /** Looks for denials, and tells what a missing service may be due to on a device. */
    void tellOfAbsence() {
        if (isSimulated()) return;
        services.takeDenials(LogReader.dump("SELinux", "auditd", "servicemanager",
                                     "hwservicemanager", "ServiceManagerCppClient"),
                Process.myPid());
        String denied = services.all()
                                .stream()
                                .filter(Services.Service::isDenied)
                                .map(service -> service.name)
                                .collect(Collectors.joining(", "));
        if (!denied.isEmpty()) {
            console.tell("SELinux denies this process: " + denied + ". A root shell or a policy of "
                    + "its own is needed.");
        } else {
            console.tell("started from a shell this is not the application, so vendor services may "
                    + "be denied to it; the log shows no denial");
        }
    }

    /** Whether the device is the host's simulated one, on which nothing real is written. */
    static boolean isSimulated() {
        return System.getenv("KALVORN_DEVICE") != null;
    }
}
