// The application object: reads the command line (--help and --version need
// no display), builds the host, runs its start-up and then the event loop
// until the host's shutdown ends it.
#pragma once

#include <QStringList>

class CMixoraApp {
  public:
    // Returns the process exit code: 0 after a normal shutdown and for --help
    // and --version, 1 when start-up failed, 2 for a bad command line.
    static int Run(int argc, char** argv);

    // Audio files named on the command line: the first for deck A, the second
    // for deck B.
    static const QStringList& CommandLineFiles();
};
