package android.os;

/** Stands in for the platform's class. */
public class RemoteException extends Exception {
    private static final long serialVersionUID = 1;
}
