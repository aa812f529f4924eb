package com.quorvin.kalvornii.ctl;

import android.os.Process;
import com.quorvin.kalvornii.KvNativeInterface;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.TimeoutException;
import java.util.stream.Collectors;

/** The library, loaded, and what its log tells. */
final class Library {
    private static final long PATIENCE_MILLISECONDS = 3000;

    final LogReader log = LogReader.start();
    final Services services = new Services();
    private final Console console;
    private final Limit limit;
    private Throwable failure;

    /**
     * Loads the library, and tells which service a load that takes long waits for; meanwhile links
     * the services to the deaths, or for null to none.
     */
    Library(Console console, Limit limit, Deaths deaths) throws Failure {
        this.console = console;
        this.limit = limit;
        Thread loader = new Thread(this::load, "load");
        loader.setDaemon(true);
        loader.start();
        long start = System.nanoTime();
        String told = "";
        for (;;) {
            long step = limit.left(start, PATIENCE_MILLISECONDS);
            if (step > 0) join(loader, step);
            boolean loads = loader.isAlive();  // asked first, so that no line of it is missed
            List<LogLine> lines = log.upToNow();
            services.take(lines);
            if (deaths != null) deaths.link(services);
            if (failure != null) throw new Failure(Main.NOT_LOADED, reason(lines));
            if (!loads) return;
            String wait = whatItWaitsFor();
            if (step == 0) {
                throw new Failure(Main.UNANSWERED, wait + "; given up after " + limit);
            }
            if (step == PATIENCE_MILLISECONDS && !wait.equals(told)) console.tell(told = wait);
        }
    }

    /** The same, for what has to be read from the log. */
    static Library withLog(Console console, Limit limit, Deaths deaths) throws Failure {
        Library library = new Library(console, limit, deaths);
        if (library.log.trouble() != null) {
            throw new Failure(Main.NOT_LOADED,
                    "the library has loaded, but only its log tells of the services, and that "
                            + "cannot be read: " + library.log.trouble());
        }
        if (library.services.isAnyAbsent()) library.tellOfAbsence();
        return library;
    }

    private static void join(Thread thread, long milliseconds) {
        try {
            thread.join(milliseconds);
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
    Call call(Contract.Method method, Object[] arguments, boolean withLog) throws Failure {
        if (withLog) log.upToNow();
        try {
            Call call = limit.run(() -> timed(method, arguments));
            return withLog ? call.withLog(logOf(call)) : call;
        } catch (TimeoutException e) {
            throw new Failure(Main.UNANSWERED, method.name + ": no answer after " + limit);
        } catch (ExecutionException e) {
            Throwable cause = e.getCause();
            throw new Failure(Main.NOT_LOADED,
                    method.name + ": "
                            + (cause instanceof InvocationTargetException ? cause.getCause()
                                                                          : cause));
        }
    }

    private static Call timed(Contract.Method method, Object[] arguments)
            throws ReflectiveOperationException {
        Method called = method.reflected();
        KvNativeInterface kv = new KvNativeInterface();
        long start = System.nanoTime();
        Object result = called.invoke(kv, arguments);
        double milliseconds = (System.nanoTime() - start) / 1e6;
        return new Call(
                method, arguments, result, fields(method), milliseconds, Process.myTid(), null);
    }

    private List<LogLine> logOf(Call call) {
        List<LogLine> lines = log.upToNow();
        lines.removeIf(line -> line.tid != call.thread());
        return log.trouble() == null ? lines : null;
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
