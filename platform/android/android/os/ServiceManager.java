package android.os;

/** Stands in for the platform's class, with the methods that are used. */
public final class ServiceManager {
    private ServiceManager() {}

    /** A service that is registered now; null for none. */
    public static IBinder checkService(String name) {
        long service = Native.find(name);
        return service == 0 ? null : new BinderProxy(service);
    }

    /** Two proxies of one service are equal here, and the same object on a device. */
    private static final class BinderProxy extends Native.Held implements IBinder {
        BinderProxy(long service) {
            super(service);
        }

        @Override
        public boolean isBinderAlive() {
            return isAlive();
        }

        @Override
        public void linkToDeath(DeathRecipient recipient, int flags) throws RemoteException {
            if (!link(recipient::binderDied)) throw new RemoteException();
        }
    }
}
