// The guide's pictures, drawn from the live windows: each window as it looks
// on screen with a painted title bar strip above its client area (so that the
// image map areas, measured on the client area and moved down by the strip's
// height, line up with the controls), the tiled windows of the index, the
// overview diagram and the keyboard maps. User-interface thread only.
#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <functional>
#include <vector>

class QWidget;

namespace guide {

// The window's client area as rendered now under a title bar strip of
// `captionHeight` pixels carrying the window's title.
QImage WindowPicture(QWidget* window, int captionHeight);

// The index picture, 600 x 451: each window (with its title bar strip of
// `captionHeight`) drawn into its area of the index's image map, so that a
// click lands on the window it shows. `windows[i]` goes to IndexAreas()[i];
// a null window leaves its area dark.
QImage IndexPicture(const std::vector<QWidget*>& windows, int captionHeight);

// The overview diagram, 400 x 145: two decks into the main mixer and the
// headphones mixer.
QImage OverviewPicture();

// A keyboard of the keys the program reads, each key with the text
// `describe(key code)` gives (empty: the key is drawn plain). Key codes are
// those of KeyMaps (letters 65-90, digits 48-57, Page Up 33 ...).
QImage KeyboardPicture(const QString& title, const std::function<QString(int key)>& describe);

}  // namespace guide
