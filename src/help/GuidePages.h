// The pages of the HTML user guide, as pure functions of a snapshot of the
// windows' control registries: no files, no widgets. UserGuideWriter puts
// them on disk; GuidePictures draws the pictures they show.
//
// Window page: a title, the window's picture with an image map whose areas
// jump to one section per control (consecutive repeats of a title are one
// section; a control of zero width or height has neither), then 26 filler
// lines so that the last sections can still scroll to the top.
// Anchor of a control: its title with every blank replaced by "_".
// Area of a control on a W x H picture whose title bar strip is `cap` pixels
// high: left = trunc(x W), right = trunc((x + w) W), top = trunc(y H) + cap,
// bottom = trunc((y + h) H) + cap.
#pragma once

#include <array>

#include <QByteArray>
#include <QSize>
#include <QString>
#include <functional>
#include <vector>

class ComponentRegistry;

namespace guide {

// One registered control, its place as fractions of the client area.
struct Component {
    QString title;
    QString description;
    float x = 0, y = 0, width = 0, height = 0;
};

// One window page: "deck.htm", "Deck", the title bar height of its picture
// and its controls in registration order.
struct WindowPage {
    QString file;
    QString name;
    int captionHeight = 0;
    std::vector<Component> components;
};

// A file of the guide: its name in the guide's folder and its text.
struct Page {
    QString file;
    QString text;
};

// The window pages of the guide, in the order they are written.
struct WindowName {
    const char* file;
    const char* name;
};
inline constexpr WindowName kWindowPages[] = {
    {"deck.htm", "Deck"},
    {"equalizer.htm", "Equalizer"},
    {"play_list.htm", "Play List"},
    {"main_mixer.htm", "Main Mixer"},
    {"phones_mixer.htm", "Headphones Mixer"},
    {"3d_graph.htm", "3D Graph"},
    {"configuration_window.htm", "Configuration Window"},
};

// The registry as it stands now (places measured from the live controls).
WindowPage Snapshot(const ComponentRegistry& registry, const QString& file, const QString& name);

// "images/deck.png" for "deck.htm".
QString PictureName(const QString& pageFile);
// The title with every blank replaced by "_".
QString Anchor(const QString& title);

// Width and height from a PNG's IHDR chunk (bytes 16-23, most significant
// first); an empty size when `head` is not a PNG header.
QSize PngSize(const QByteArray& head);

// The index picture's areas (pixels of the 600 x 451 picture, right and
// bottom exclusive as the image map gives them): which page, the deck of a
// deck's window, and the place its window is drawn.
struct IndexArea {
    const char* page;
    int deck;
    int l, t, r, b;
};
const std::array<IndexArea, 9>& IndexAreas();

QString IndexPage();
QString GettingStartedPage();
QString OverviewPage();
QString KeyboardMapPage();
// `picture`: the size of the window's picture; empty when it is missing (the
// page then says so and has no areas).
QString WindowPageText(const WindowPage& page, QSize picture);

// Every file of the guide in the order it is written: getting_started.htm,
// index.htm, overview.htm, keyboard_map.htm, then the window pages of
// `windows` (ordered as given). `pictureSize` answers the picture size of a
// window page file.
std::vector<Page> GuidePages(const std::vector<WindowPage>& windows,
                             const std::function<QSize(const QString& pageFile)>& pictureSize);

}  // namespace guide
