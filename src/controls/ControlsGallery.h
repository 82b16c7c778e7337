// The controls gallery: one dark panel showing every kind of instrument control
// with sample values, the way the working windows use them. Used by the
// controls-gallery tool and by the tests that render it.
#pragma once

#include <QString>

class QWidget;

// Builds the gallery panel (owned by parent, or top-level without one).
QWidget* BuildControlsGallery(QWidget* parent = nullptr);

// Lays out and renders a gallery (any widget) off screen and writes it as a PNG.
// Returns false when the file cannot be written.
bool SaveWidgetPng(QWidget* widget, const QString& file);
