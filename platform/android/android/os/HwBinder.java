package android.os;

import java.util.NoSuchElementException;

/** Stands in for the platform's class, with the methods that are used. */
public abstract class HwBinder implements IHwBinder {
    /**
     * A HIDL service that is registered now.
     *
     * @throws NoSuchElementException when there is none
     */
    public static final IHwBinder getService(String iface, String serviceName)
            throws RemoteException, NoSuchElementException {
        long service = Native.findHidl(iface, serviceName);
        if (service == 0) throw new NoSuchElementException();
        return new HwRemoteBinder(service);
    }

    private static final class HwRemoteBinder extends Native.Held implements IHwBinder {
        HwRemoteBinder(long service) {
            super(service);
        }

        @Override
        public boolean linkToDeath(DeathRecipient recipient, long cookie) {
            return link(() -> recipient.serviceDied(cookie));
        }
    }
}
