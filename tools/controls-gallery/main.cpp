// controls-gallery: shows every kind of instrument control on one panel.
// Usage: controls-gallery [--png FILE]  (with --png: render to FILE and exit)
#include <QApplication>
#include <QStringList>
#include <QWidget>

#include <cstdio>

#include "controls/ControlsGallery.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const qsizetype at = args.indexOf(QStringLiteral("--png"));
    QWidget* gallery = BuildControlsGallery();
    if (at >= 0) {
        if (at + 1 >= args.size()) {
            std::fprintf(stderr, "usage: controls-gallery [--png FILE]\n");
            return 2;
        }
        const bool ok = SaveWidgetPng(gallery, args[at + 1]);
        delete gallery;
        if (!ok) {
            std::fprintf(stderr, "controls-gallery: cannot write %s\n", qPrintable(args[at + 1]));
            return 1;
        }
        return 0;
    }
    gallery->show();
    const int rc = app.exec();
    delete gallery;
    return rc;
}
