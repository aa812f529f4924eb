package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Optional;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/**
 * The thirteen services and who holds each, as the library's log tells it. The lines of one
 * connector come on one thread in a row: its start, then what came of it, and only the start when
 * the service was connected already.
 */
final class Services {
    private static final String VENDOR = "vendor.zantor.hardware.";
    private static final Pattern OUTCOME = Pattern.compile(
            ".*( linkToDeath|is null|is not Declared)|Could not connect to declared .*");
    private static final Pattern DENIAL = Pattern.compile(
            "avc: +denied +\\{ find \\} for (?=.*\\bpid=(\\d+)).*\\b(?:name|interface)=(\\S+)");
    private static final Pattern OWN_DENIAL =
            Pattern.compile("Failed to get isDeclared for (\\S+): .*SELinux denied");

    /** A service over one backend. */
    static final class Link {
        /** The service manager's name for it. */
        final String instance;
        private final String start;
        private final String exit;
        private String said;
        private boolean held;
        private boolean denied;

        private Link(String start, String instance, String exit) {
            this.start = start;
            this.instance = VENDOR + instance;
            this.exit = exit;
        }

        /** Denials over HIDL name the interface without its version and instance. */
        private boolean isNamed(String denied) {
            return denied.equals(instance)
                    || denied.equals(instance.replaceAll("@[0-9.]+", "").replaceAll("/.*", ""));
        }

        private String said() {
            return denied && !held ? said + " (denied to this process)" : said;
        }
    }

    static final class Service {
        final String name;
        final Link aidl;
        /** Null for a service that HIDL does not have. */
        final Link hidl;

        private Service(String name, Link aidl, Link hidl) {
            this.name = name;
            this.aidl = aidl;
            this.hidl = hidl;
        }

        private Stream<Link> links() {
            return Stream.of(aidl, hidl).filter(Objects::nonNull);
        }

        /** The backend that serves its methods. */
        String backend() {
            if (aidl.held) return "AIDL";
            return hidl != null && hidl.held ? "HIDL" : "none";
        }

        /** The instance that is held, or else the one that AIDL would have. */
        String instance() {
            return backend().equals("HIDL") ? hidl.instance : aidl.instance;
        }

        /** Whether the platform's policy keeps this process from it, as far as the log tells. */
        boolean isDenied() {
            return links().anyMatch(link -> link.denied);
        }

        /** The library's last words on it, in one line. */
        String said() {
            return links()
                    .filter(link -> link.said != null && (link == aidl || !aidl.held))
                    .map(Link::said)
                    .collect(Collectors.joining("; "));
        }
    }

    private final List<Service> all = new ArrayList<>();
    private final Map<Integer, Link> connecting = new HashMap<>();  // by thread
    private Link last;

    Services() {
        add("factory", "InitAidlFactoryInterface",
                "qxfactoryinterface.IQxFactoryInterface/qxfactoryinterface_hal",
                "InitHidlFactoryInterface",
                "qxfactoryinterface@1.0::IQxFactoryInterface/qxfactoryinterface_hal");
        add("display", "InitAidlDisplayService", "qxdisplay.IDisplay/default",
                "InitHidlDisplayService", "qxdisplay@1.0::IDisplay/default");
        add("touch", "InitAidlTouchscreen", "tp.ITouchscreen/default", "InitHidlTouchScreen",
                "tp@1.0::ITouchscreen/default");
        add("sensors", "InitAidlSensors", "sensors.ISensors/default", "InitHidlSensors",
                "sensors@1.2::ISensors/default");
        add("power", "InitAidlPower", "power.IQXPower/default", "InitHidlPower",
                "power@1.0::IQXPower/default");
        add("light", "InitAidlLight", "light.ILight/default", "InitHidlLight",
                "light@2.0::ILight/default");
        add("camera", "InitAidlCameraFactory", "camera.factory.ICameraFactory/default",
                "InitHidlCameraFactory", "camera.factory@1.0::ICameraFactory/default");
        add("radio", "InitAidlRadioEnhance", "radioenhance.IRadioenhance/default",
                "InitHidlRadioEnhance", "radioenhance@1.0::IRadioenhance/default");
        add("display_factory", "InitAidlDisplayFactory",
                "qxdisplay.displayfactory.IDisplayFactory/default", "InitHidlDisplayFactory",
                "qxdisplay.displayfactory@1.0::IDisplayFactory/default");
        add("fingerprint", "InitAidlFingerprintService",
                "biometrics.fingerprint.IFingerprint/default", "InitHidlFingerprintService",
                "biometrics.fingerprint@2.2::IExtBiometricsFingerprint/default");
        add("chip", "InitAidlChipSrvInterface", "ztchipsrvhertz.IZtChipSrvHertz/ztchipsrv_hertz",
                "InitHidlChipSrvInterface", "ztchipsrv@1.0::IZtChipSrvInterface/ztchipsrv_hal");
        add("sim", "InitSimInterface", "ztsimradio.IZtsimradio/slot1");
        add("satellite", "InitChipSrvSat", "ztchipsrvsat.IZtChipSrvSat/ztchipsrv_sat");
    }

    /** Rows: the name, then start and instance over AIDL, and where there is one, over HIDL. */
    private void add(String... row) {
        Link hidl = row.length == 3 ? null : new Link(row[3], row[4], "ExitKvManager by hidl");
        all.add(new Service(row[0], new Link(row[1], row[2], "ExitKvManager by aidl"), hidl));
    }

    private Stream<Link> links() {
        return all.stream().flatMap(Service::links);
    }

    /** In the order of connection. */
    List<Service> all() {
        return all;
    }

    List<String> names() {
        return all.stream().map(service -> service.name).toList();
    }

    /** The service of a name that the contract has. */
    Service named(String name) {
        return all.get(names().indexOf(name));
    }

    /** The service of a name that a person gave. */
    Service find(String name) throws UsageException {
        if (names().contains(name)) return named(name);
        throw new UsageException(
                "no service \"" + name + "\"; there are: " + String.join(", ", names()));
    }

    boolean isAnyAbsent() {
        return all.stream().anyMatch(service -> service.backend().equals("none"));
    }

    void take(List<LogLine> lines) {
        lines.forEach(this::take);
    }

    /** Follows a line of the library's log. */
    void take(LogLine line) {
        links().filter(link -> link.held && line.text.equals(link.exit)).forEach(link -> {
            link.held = false;
            link.said = line.text;
        });
        Optional<Link> started = links().filter(link -> line.text.equals(link.start)).findFirst();
        if (started.isPresent()) {
            last = started.get();
            connecting.put(line.tid, last);
            return;
        }
        Link link = connecting.get(line.tid);
        if (link == null) return;
        if (OUTCOME.matcher(line.text).matches()) {
            link.held = line.text.endsWith(" linkToDeath");
            link.said = line.text;
        } else {
            connecting.remove(line.tid);
        }
    }

    /** What the last connector to start looks for; null when none has started. */
    String lookedFor() {
        return last == null ? null : last.instance;
    }

    /** Learns, from the service managers' lines and its own, what was denied to a process. */
    void takeDenials(List<LogLine> lines, int pid) {
        for (LogLine line : lines) {
            Matcher denial = DENIAL.matcher(line.text);
            Matcher ownDenial = OWN_DENIAL.matcher(line.text);
            if (line.pid == pid && ownDenial.find()) {
                deny(ownDenial.group(1));
            } else if (denial.find() && Integer.parseInt(denial.group(1)) == pid
                    && !line.text.contains("permissive=1")) {
                deny(denial.group(2));
            }
        }
    }

    private void deny(String name) {
        links().filter(link -> link.isNamed(name)).forEach(link -> link.denied = true);
    }
}
