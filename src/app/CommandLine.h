// The command line, read before any window system is touched, so --help and
// --version work without a display.
#pragma once

#include <QString>
#include <QStringList>

struct CommandLine {
    enum class Action { Run, Help, Version, Error };
    Action action = Action::Run;
    // Audio files as absolute paths: the first for deck A, the second for deck B
    // (further ones are ignored with a note).
    QStringList files;
    // --verbose: the developer traces are shown (core/Trace.h).
    bool verbose = false;
    // --write-guide DIR: write the HTML user guide into DIR (absolute path)
    // once the windows are up, then shut down. Empty: run as usual.
    QString writeGuide;
    // What to print for Help, Version and Error.
    QString text;
};

CommandLine ParseCommandLine(const QStringList& arguments);
