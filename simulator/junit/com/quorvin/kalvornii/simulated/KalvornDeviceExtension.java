package com.quorvin.kalvornii.simulated;

import org.junit.jupiter.api.extension.AfterEachCallback;
import org.junit.jupiter.api.extension.BeforeAllCallback;
import org.junit.jupiter.api.extension.BeforeEachCallback;
import org.junit.jupiter.api.extension.ExtensionContext;
import org.junit.jupiter.api.extension.ParameterContext;
import org.junit.jupiter.api.extension.ParameterResolver;
import org.junit.platform.commons.support.AnnotationSupport;

/** What {@link KalvornDevice} says, done. */
final class KalvornDeviceExtension
        implements BeforeAllCallback, BeforeEachCallback, AfterEachCallback, ParameterResolver {
    @Override
    public void beforeAll(ExtensionContext context) {
        start(context);
    }

    @Override
    public void beforeEach(ExtensionContext context) {
        start(context);
    }

    @Override
    public void afterEach(ExtensionContext context) {
        SimulatedDevice.get().restore();
    }

    @Override
    public boolean supportsParameter(ParameterContext parameter, ExtensionContext context) {
        return parameter.getParameter().getType() == SimulatedDevice.class;
    }

    @Override
    public Object resolveParameter(ParameterContext parameter, ExtensionContext context) {
        return SimulatedDevice.get();
    }

    private static void start(ExtensionContext context) {
        AnnotationSupport.findAnnotation(context.getElement(), KalvornDevice.class)
                .ifPresent(device -> SimulatedDevice.start(device.value()));
    }
}
