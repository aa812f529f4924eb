package com.quorvin.kalvornii.simulated;

import java.lang.annotation.Documented;
import java.lang.annotation.ElementType;
import java.lang.annotation.Inherited;
import java.lang.annotation.Retention;
import java.lang.annotation.RetentionPolicy;
import java.lang.annotation.Target;
import org.junit.jupiter.api.extension.ExtendWith;
import org.junit.jupiter.api.parallel.ResourceLock;

/**
 * Runs a JUnit test, or all tests of a class, on a simulated device. The device starts before the
 * first test object is made, is restored after each test, and is handed to parameters of type
 * {@link SimulatedDevice}.
 *
 * <p>A virtual machine has one device, and cannot have another once KvNativeInterface is loaded.
 * Tests on the same device may share a virtual machine; JUnit runs them one after the other, in
 * parallel runs too. Tests on other devices need a virtual machine of their own: a fork for each
 * test class.
 */
@Documented
@Inherited
@Retention(RetentionPolicy.RUNTIME)
@Target({ElementType.TYPE, ElementType.METHOD})
@ExtendWith(KalvornDeviceExtension.class)
@ResourceLock("com.quorvin.kalvornii.simulated.SimulatedDevice")
public @interface KalvornDevice {
    /**
     * The device, as {@link SimulatedDevice#start(String)} takes it.
     *
     * @return its name
     */
    String value() default "mixed";
}
