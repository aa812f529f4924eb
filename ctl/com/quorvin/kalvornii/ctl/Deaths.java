package com.quorvin.kalvornii.ctl;

import java.time.LocalTime;
import java.time.format.DateTimeFormatter;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/**
 * Which services died, told by death links of our own: the lines that the library logs of a death
 * name none.
 */
final class Deaths {
    record Death(String service, String time) {}

    private final Map<String, Object> linked = new HashMap<>();
    private final Map<String, Object> died = new HashMap<>();
    private final Map<String, String> times = new HashMap<>();
    private List<Death> untaken = new ArrayList<>();

    /** The time of day, as the log tells it. */
    static String now() {
        return LocalTime.now().format(DateTimeFormatter.ofPattern("HH:mm:ss.SSS"));
    }

    /**
     * Links what the library holds and is not linked yet. Also looks for deaths: the recipients of
     * a binder are told one after the other, and the library's waits for the service's return.
     */
    synchronized void link(Services services) {
        new HashMap<>(linked).forEach((name, binder) -> {
            if (Managers.isKnownDead(binder)) tell(name, binder);
        });
        for (Services.Service service : services.all()) {
            String name = service.name;
            if (service.backend().equals("none") || linked.containsKey(name)) continue;
            Object binder = Managers.binder(service);
            if (binder == null || binder.equals(died.get(name))) continue;
            if (Managers.link(binder, () -> tell(name, binder))) linked.put(name, binder);
        }
    }

    private synchronized void tell(String name, Object binder) {
        if (!linked.remove(name, binder)) return;  // known already
        died.put(name, binder);
        times.put(name, now());
        untaken.add(new Death(name, times.get(name)));
    }

    /** The deaths since the last time. */
    synchronized List<Death> take() {
        List<Death> taken = untaken;
        untaken = new ArrayList<>();
        return taken;
    }

    /** When a service last died; null when it did not. */
    synchronized String timeOf(Services.Service service) {
        return times.get(service.name);
    }
}
