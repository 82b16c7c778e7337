#include "app/CMixoraApp.h"

#include <QApplication>
#include <cstdio>

#include <unistd.h>

#include "app/CMixoraDlg.h"
#include "app/CommandLine.h"
#include "app/QuietMessages.h"
#include "app/SettingsPrompts.h"
#include "app/ShellAutoTest.h"
#include "app/SignalShutdown.h"
#include "app/UserGuide.h"
#include "core/Trace.h"

namespace {
QStringList g_files;
}

const QStringList& CMixoraApp::CommandLineFiles() {
    return g_files;
}

int CMixoraApp::Run(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const CommandLine cl = ParseCommandLine(arguments);
    switch (cl.action) {
        case CommandLine::Action::Help:
        case CommandLine::Action::Version:
            std::fputs(qPrintable(cl.text), stdout);
            return 0;
        case CommandLine::Action::Error:
            std::fputs(qPrintable(cl.text), stderr);
            return 2;
        case CommandLine::Action::Run:
            break;
    }
    g_files = cl.files;
    if (cl.verbose)
        EnableTraces();
    InstallQuietMessages();
    if (g_files.size() > 2) {
        std::fprintf(stderr, "mixora: only two decks; files after the second are ignored\n");
        g_files = g_files.mid(0, 2);
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Mixora"));
    QApplication::setOrganizationName(QStringLiteral("Orvane"));
    QApplication::setApplicationVersion(QStringLiteral(MIXORA_VERSION));
    // The host stays off-screen and hidden windows must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
    // Settings problems go to a warning box; window defaults follow the screen.
    InstallSettingsPrompts();

    CMixoraDlg::Options options;
    options.layers = AutoTestPlatformLayers();
    if (AutoTestActive()) {
        options.showError = [](const QString& text) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
        };
    }
    CMixoraDlg host(std::move(options));
    if (!host.StartUp())
        return 1;
    // SIGTERM, SIGINT and SIGHUP: the ordinary shutdown; during one, the end.
    InstallSignalShutdown([&host](int sig) {
        if (host.ShuttingDown())
            _exit(128 + sig);
        PostAppMessageRetry(host.Handle(), UWM_SHUTDOWN, 0, 0);
    });
    ArmAutoTest(host);
    if (!cl.writeGuide.isEmpty())
        ArmGuideWriting(host, cl.writeGuide);
    const int code = QApplication::exec();
    return GuideWritingFailed() ? 1 : code;
}
