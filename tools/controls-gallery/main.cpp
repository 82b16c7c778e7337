// controls-gallery: shows every kind of instrument control on one panel.
// Usage: controls-gallery [--png FILE]  (with --png: render to FILE and exit)
#include <QApplication>
#include <QWidget>

#include <cstdio>
#include <cstring>

#include "controls/ControlsGallery.h"

int main(int argc, char** argv) {
    // Rendering to a file needs no display.
    int pngAt = -1;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--png") == 0)
            pngAt = i;
    }
    if (pngAt >= 0 && pngAt + 1 >= argc) {
        std::fprintf(stderr, "usage: controls-gallery [--png FILE]\n");
        return 2;
    }
    if (pngAt >= 0 && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    QWidget* gallery = BuildControlsGallery();
    if (pngAt >= 0) {
        const QString file = QString::fromLocal8Bit(argv[pngAt + 1]);
        const bool ok = SaveWidgetPng(gallery, file);
        delete gallery;
        if (!ok) {
            std::fprintf(stderr, "controls-gallery: cannot write %s\n", qPrintable(file));
            return 1;
        }
        return 0;
    }
    gallery->show();
    const int rc = app.exec();
    delete gallery;
    return rc;
}
