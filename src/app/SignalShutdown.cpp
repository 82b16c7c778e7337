#include "app/SignalShutdown.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <atomic>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

int g_pipe[2] = {-1, -1};
// Lock-free, so safe in a signal handler.
std::atomic<int> g_signals{0};
static_assert(std::atomic<int>::is_always_lock_free);

// Async-signal-safe only: write and _exit.
void OnSignal(int sig) {
    if (g_signals.fetch_add(1) > 0)
        _exit(128 + sig);
    const char c = static_cast<char>(sig);
    [[maybe_unused]] const ssize_t n = write(g_pipe[1], &c, 1);
}

}  // namespace

void InstallSignalShutdown(std::function<void(int)> onSignal) {
    if (g_pipe[0] >= 0 || pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier =
        new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [notifier, onSignal = std::move(onSignal)] {
                         char c = 0;
                         if (read(g_pipe[0], &c, 1) != 1)
                             return;
                         notifier->setEnabled(false);
                         onSignal(static_cast<unsigned char>(c));
                     });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int sig : {SIGTERM, SIGINT, SIGHUP})
        sigaction(sig, &action, nullptr);
}
