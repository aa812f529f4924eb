package com.quorvin.kalvornii.ctl;

import android.os.HwBinder;
import android.os.IBinder;
import android.os.IHwBinder;
import android.os.RemoteException;
import android.os.ServiceManager;
import java.util.NoSuchElementException;

/** The two service managers, which are asked beside the library and never through it. */
final class Managers {
    private Managers() {}

    /** The backend that has a service now; null for none. */
    static String backend(Services.Service service) {
        if (ServiceManager.checkService(service.aidl.instance) != null) return "AIDL";
        return service.hidl != null && hidl(service.hidl.instance) != null ? "HIDL" : null;
    }

    private static IHwBinder hidl(String instance) {
        String[] names = instance.split("/");
        try {
            return HwBinder.getService(names[0], names[1]);
        } catch (NoSuchElementException | RemoteException e) {
            return null;
        }
    }

    /** The binder of a service that the library holds; null when the managers have it no more. */
    static Object binder(Services.Service service) {
        return service.backend().equals("HIDL")
                ? hidl(service.hidl.instance)
                : ServiceManager.checkService(service.aidl.instance);
    }

    /** Has the death of a binder told, on a thread of the binder; false when it is dead already. */
    static boolean link(Object binder, Runnable onDeath) {
        if (binder instanceof IHwBinder) {
            return ((IHwBinder) binder).linkToDeath(cookie -> onDeath.run(), 0);
        }
        try {
            ((IBinder) binder).linkToDeath(onDeath::run, 0);
            return true;
        } catch (RemoteException e) {
            return false;
        }
    }

    /** Whether a death is known that its recipients may not have been told of yet. */
    static boolean isKnownDead(Object binder) {
        return binder instanceof IBinder && !((IBinder) binder).isBinderAlive();
    }
}
