#include "app/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

CommandLine ParseCommandLine(const QStringList& arguments) {
    QCoreApplication::setApplicationName(QStringLiteral("mixora"));
    QCoreApplication::setApplicationVersion(QStringLiteral(MIXORA_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Mixora: a two-deck DJ mixing program. Audio files named here are "
                       "loaded on deck A, then deck B."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption verbose(
        QStringLiteral("verbose"), QStringLiteral("Show the developer traces on standard error."));
    parser.addOption(verbose);
    const QCommandLineOption writeGuide(
        QStringLiteral("write-guide"),
        QStringLiteral("Write the HTML user guide into <folder>, then quit."),
        QStringLiteral("folder"));
    parser.addOption(writeGuide);
    parser.addPositionalArgument(QStringLiteral("files"),
                                 QStringLiteral("Audio files (WAV, MP3, WMA, OGG): the first "
                                                "for deck A, the second for deck B."),
                                 QStringLiteral("[file ...]"));

    // Without an application object Qt cannot name the program itself.
    const QString program =
        arguments.isEmpty() ? QStringLiteral("mixora") : QFileInfo(arguments.first()).fileName();
    auto helpText = [&] {
        return parser.helpText().replace(QStringLiteral("<executable_name>"), program);
    };

    CommandLine cl;
    if (!parser.parse(arguments)) {
        cl.action = CommandLine::Action::Error;
        cl.text = parser.errorText() + QStringLiteral("\n\n") + helpText();
        return cl;
    }
    if (parser.isSet(help)) {
        cl.action = CommandLine::Action::Help;
        cl.text = helpText();
        return cl;
    }
    if (parser.isSet(version)) {
        cl.action = CommandLine::Action::Version;
        cl.text = QStringLiteral("mixora %1\n").arg(QStringLiteral(MIXORA_VERSION));
        return cl;
    }
    cl.verbose = parser.isSet(verbose);
    if (parser.isSet(writeGuide))
        cl.writeGuide = QFileInfo(parser.value(writeGuide)).absoluteFilePath();
    for (const QString& f : parser.positionalArguments()) {
        cl.files << QFileInfo(f).absoluteFilePath();
    }
    return cl;
}
