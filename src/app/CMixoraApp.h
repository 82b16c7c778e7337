// The application object: parses the command line, builds the host and runs
// the event loop until the host's shutdown ends it.
#pragma once

#include <QStringList>

class CMixoraApp {
public:
    // Returns the process exit code.
    static int Run(int argc, char** argv);

    // Audio files named on the command line: the first for deck A, the second
    // for deck B.
    static const QStringList& CommandLineFiles();
};
