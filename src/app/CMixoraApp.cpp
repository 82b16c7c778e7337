#include "app/CMixoraApp.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <cstdio>

namespace {
QStringList g_files;
}

const QStringList& CMixoraApp::CommandLineFiles() { return g_files; }

int CMixoraApp::Run(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("Mixora");
    QApplication::setOrganizationName("Orvane");
    QApplication::setApplicationVersion(MIXORA_VERSION);

    QCommandLineParser parser;
    parser.setApplicationDescription("Mixora: a two-deck DJ mixing program.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("files", "Audio files: the first loads on deck A, the second on deck B.",
                                 "[file ...]");
    parser.process(app);
    for (const QString& f : parser.positionalArguments()) {
        g_files << QFileInfo(f).absoluteFilePath();
    }
    return 0;
}
