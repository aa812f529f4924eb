package com.quorvin.kalvornii.ctl;

import java.util.stream.Collectors;

/** "completion": the scripts beside this class, with the words of the contract filled in. */
final class CompletionCommand {
    private final Console console;

    CompletionCommand(Console console) {
        this.console = console;
    }

    int completion(Options options) throws UsageException {
        options.allow(1);
        String shell = options.words.isEmpty() ? "" : options.words.get(0);
        if (!shell.matches("bash|zsh")) throw new UsageException("bash or zsh is expected");
        String script = Resource.read("/com/quorvin/kalvornii/ctl/completion." + shell);
        String devices = System.getenv().getOrDefault("KALVORN_DEVICES", "");
        console.raw(script.replace("@COMMANDS@", String.join(" ", Help.commands().keySet()))
                            .replace("@OPTIONS@", String.join(" ", Help.options()))
                            .replace("@SERVICES@", String.join(" ", new Services().names()))
                            .replace("@DEVICES@", devices)
                            .replace("@METHODS@",
                                    Contract.read()
                                            .methods()
                                            .stream()
                                            .map(method -> method.name)
                                            .collect(Collectors.joining(" "))));
        return Main.DONE;
    }
}
