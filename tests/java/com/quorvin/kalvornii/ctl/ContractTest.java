package com.quorvin.kalvornii.ctl;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.stream.Collectors;
import org.junit.jupiter.api.Test;

class ContractTest {
    private final Contract contract = Contract.read();

    @Test
    void describesEveryMethodAndArgument() {
        for (Contract.Method method : contract.methods()) {
            List<String> described = Source.matches("(?m)^@param (\\w+) ", method.doc)
                                             .stream()
                                             .map(groups -> groups.get(0))
                                             .collect(Collectors.toList());
            List<String> names = method.parameters.stream()
                                         .map(parameter -> parameter.name)
                                         .collect(Collectors.toList());
            assertEquals(names, described, method.name);
            assertTrue(method.summary().matches("[A-Z][^@{}*]*\\."), method.summary());
        }
    }

    @Test
    void namesTheServiceThatIsAsked() throws IOException {
        Map<String, String> asked = new TreeMap<>();
        for (List<String> sample : Source.matches("(?m)^(\\w+) .*\n +(?:aidl )?asks +(\\w+)\\.",
                     Source.read("samples/methods.samples"))) {
            asked.put(sample.get(0), sample.get(1));
        }
        assertFalse(asked.isEmpty());
        Map<String, String> named = new TreeMap<>();
        for (Contract.Method method : contract.methods()) {
            if (method.service != null) named.put(method.name, method.service);
        }
        assertEquals(asked, named);
    }

    @Test
    void findsAMethodByWhatAPersonTypes() throws UsageException {
        assertEquals("nativeGetBoardName", contract.find("NATIVEGETBOARDNAME").name);
        assertEquals("nativeGetBoardName", contract.find("boardn").name);
        assertEquals(
                "sendCmdToFingerprintHalNative", contract.find("sendcmdtofingerprinthal").name);
        Contract twins = new Contract("    // x (no service)\n"
                + "    public native int nativeRunAll();\n    public native int nativeRun();\n");
        assertEquals("nativeRun", twins.find("run").name);
    }

    @Test
    void refusesWhatNamesNoneOrSeveral() {
        assertThrows(UsageException.class, () -> contract.find("native"));
        assertThrows(UsageException.class, () -> contract.find("hertzz"));
    }

    @Test
    void refusesASectionWithoutService() {
        assertThrows(IllegalStateException.class, () -> new Contract("    // Lights\n"));
    }
}
