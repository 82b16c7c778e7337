// SIGTERM, SIGINT and SIGHUP end the program the ordinary way: the handler
// only writes the signal's number into a pipe (the one thing it may safely
// do), and a socket notifier on the other end runs `onSignal` on the
// user-interface thread, where the host runs its shutdown (lists and
// settings saved, exit code 0). A second signal, while that shutdown runs,
// ends the process at once with 128 + the signal's number.
#pragma once

#include <functional>

// Installs the handlers; `onSignal` gets the signal's number. Once per process.
void InstallSignalShutdown(std::function<void(int)> onSignal);
