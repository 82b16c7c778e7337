#include "help/GuidePages.h"

#include <array>

#include <QFileInfo>

#include "core/ComponentRegistry.h"

namespace guide {

namespace {

// Lines of "#<P>" after the last section, so that it can still be scrolled to
// the top of the browser window.
constexpr int kFillerLines = 26;

QString Head(const QString& title) {
    return QStringLiteral("<HTML><TITLE>") + title + QStringLiteral("</TITLE><BODY>\n");
}

QString Tail() {
    return QStringLiteral("</BODY>\n</HTML>\n");
}

bool HasArea(const Component& c) {
    return c.width != 0.0f && c.height != 0.0f;
}

// Fractions of the picture, truncated as the areas are.
int Scaled(float fraction, int pixels) {
    return static_cast<int>(fraction * static_cast<float>(pixels));
}

}  // namespace

WindowPage Snapshot(const ComponentRegistry& registry, const QString& file, const QString& name) {
    WindowPage page;
    page.file = file;
    page.name = name;
    page.captionHeight = registry.CaptionHeight();
    for (int k = 0; k < registry.Count(); ++k) {
        const ComponentRegistry::Place p = registry.Placed(k);
        page.components.push_back(
            {registry.Title(k), registry.Description(k), p.x, p.y, p.width, p.height});
    }
    return page;
}

QString PictureName(const QString& pageFile) {
    return QStringLiteral("images/") + QFileInfo(pageFile).completeBaseName() +
           QStringLiteral(".png");
}

QString Anchor(const QString& title) {
    QString a = title;
    return a.replace(QLatin1Char(' '), QLatin1Char('_'));
}

QSize PngSize(const QByteArray& head) {
    static const char kSignature[] = "\x89PNG\r\n\x1a\n";
    if (head.size() < 24 || !head.startsWith(QByteArray(kSignature, 8)) ||
        head.mid(12, 4) != "IHDR")
        return {};
    auto be32 = [&head](int at) {
        quint32 v = 0;
        for (int i = 0; i < 4; ++i)
            v = (v << 8) | static_cast<quint8>(head[at + i]);
        return v;
    };
    const quint32 w = be32(16), h = be32(20);
    if (w == 0 || h == 0 || w > 100000 || h > 100000)
        return {};
    return QSize(static_cast<int>(w), static_cast<int>(h));
}

const std::array<IndexArea, 9>& IndexAreas() {
    // The tiled windows of the full-screen picture (600 x 451).
    static const std::array<IndexArea, 9> kAreas{{
        {"deck.htm", 0, 0, 0, 210, 179},
        {"play_list.htm", 0, 0, 179, 210, 318},
        {"equalizer.htm", 0, 0, 317, 210, 450},
        {"main_mixer.htm", 0, 211, 0, 389, 188},
        {"phones_mixer.htm", 0, 211, 184, 389, 293},
        {"3d_graph.htm", 0, 211, 294, 389, 450},
        {"deck.htm", 1, 390, 0, 599, 179},
        {"equalizer.htm", 1, 390, 179, 599, 318},
        {"play_list.htm", 1, 390, 317, 599, 450},
    }};
    return kAreas;
}

QString IndexPage() {
    const auto& kAreas = IndexAreas();
    static const std::pair<const char*, const char*> kContents[] = {
        {"overview.htm", "Overview"},
        {"getting_started.htm", "Getting Started"},
        {"keyboard_map.htm", "Keyboard Map"},
        {"deck.htm", "Deck"},
        {"main_mixer.htm", "Main Mixer"},
        {"play_list.htm", "Play List"},
        {"equalizer.htm", "Equalizer"},
        {"phones_mixer.htm", "Phones Mixer"},
        {"3d_graph.htm", "3D Graph"},
        {"configuration_window.htm", "The Configuration Window"},
    };
    const QString title = QStringLiteral("Mixora 1.2 User Guide");
    QString t = Head(title);
    t += QStringLiteral("<CENTER>\n<H1>") + title + QStringLiteral("</H1>\n");
    t += QStringLiteral("<MAP NAME=\"indexMap\">\n");
    for (const IndexArea& a : kAreas) {
        t += QStringLiteral("<AREA HREF=\"%1\" SHAPE=\"rect\" COORDS=\"%2, %3, %4, %5\">\n")
                 .arg(QString::fromLatin1(a.page))
                 .arg(a.l)
                 .arg(a.t)
                 .arg(a.r)
                 .arg(a.b);
    }
    t += QStringLiteral("</MAP>\n");
    t += QStringLiteral(
        "<P><IMG SRC=\"./images/fullscreen600x451.png\" ALT=\"screenshot index\" BORDER=0 "
        "WIDTH=600 HEIGHT=451 USEMAP=\"#indexMap\">\n");
    t += QStringLiteral(
        "<P>Click on any part of this picture to jump to the section describing that "
        "component.\n");
    t += QStringLiteral("</CENTER>\n<H3>Table Of Contents:</H3>\n");
    for (const auto& [file, text] : kContents) {
        t += QStringLiteral("<P><A HREF=\"%1\">%2</A>\n")
                 .arg(QString::fromLatin1(file), QString::fromLatin1(text));
    }
    return t + Tail();
}

QString GettingStartedPage() {
    QString t = Head(QStringLiteral("Getting Started With Mixora"));
    t += QStringLiteral(
        "<H1>Getting Started</H1>\n"
        "<P>Each deck works in one of two modes. In CD mode the deck's play list shows the "
        "tracks of the disc in the chosen CD drive. In File mode any audio file (WAV, MP3, WMA "
        "or OGG) can be added to the play list or removed from it.\n"
        "<H3>Playing a CD:</H3>\n<OL>\n"
        "<LI>Look at the mode button at the top left of the deck.\n"
        "<LI>Press it until it reads \"CD\" to switch the deck to CD mode.\n"
        "<LI>Choose a drive in the CD drive chooser.\n"
        "<LI>Press \"Needle Down\": the deck plays.\n"
        "<LI>To stop, press \"stop\" or \"needle up\".\n"
        "</OL>\n"
        "<H3>Playing a File:</H3>\n<OL>\n"
        "<LI>Press the mode button until it reads \"File\" to switch the deck to File mode.\n"
        "<LI>Press the eject button: the open dialog appears.\n"
        "<LI>Choose the file or files to play and press Open.\n"
        "<LI>Press \"Needle Down\" to play; stop the same way, with \"stop\" or \"needle "
        "up\".\n"
        "</OL>\n"
        "<P><A HREF=\"index.htm\">Table Of Contents</A>\n");
    return t + Tail();
}

QString OverviewPage() {
    QString t = Head(QStringLiteral("Mixora Overview"));
    t += QStringLiteral(
        "<H1>Overview</H1>\n"
        "<P><IMG SRC=\"./images/overview.png\" ALT=\"overview\" BORDER=0 WIDTH=400 "
        "HEIGHT=145>\n"
        "<P>Mixing music means playing two tracks at once and passing the dance floor from one "
        "to the other without a gap. Mixora gives you two decks, A and B, each worked like a "
        "turntable: drop the needle, start and stop the platter, scratch, loop and play in "
        "reverse.\n"
        "<P>While one deck plays to the room through the main mixer, cue the next track on the "
        "other deck in your headphones through the headphones mixer. Match its tempo with the "
        "tempo and spindle slides until the beats line up, then bring it in with the cross "
        "fader and shape both tracks with the equalizers.\n"
        "<P>The scopes, spectra, meters and beat lamps show what each deck is playing; the play "
        "lists hold the tracks of each deck, from files or from an audio CD.\n"
        "<P><A HREF=\"index.htm\">Table Of Contents</A>\n");
    return t + Tail();
}

QString KeyboardMapPage() {
    QString t = Head(QStringLiteral("Mixora Keyboard Map"));
    t += QStringLiteral(
        "<H1>Keyboard Map</H1>\n"
        "<P><IMG SRC=\"./images/keyboard_map1.png\" ALT=\"keyboard map, keys alone and with "
        "Shift\" BORDER=0>\n"
        "<P><IMG SRC=\"./images/keyboard_map2.png\" ALT=\"keyboard map, keys with Ctrl\" "
        "BORDER=0>\n"
        "<P><A HREF=\"index.htm\">Table Of Contents</A>\n");
    return t + Tail();
}

QString WindowPageText(const WindowPage& page, QSize picture) {
    const QString base = QFileInfo(page.file).completeBaseName();
    const int w = picture.width(), h = picture.height();
    const int cap = page.captionHeight;
    QString t = QStringLiteral("<HTML><TITLE>Mixora ") + page.name +
                QStringLiteral("</TITLE><BODY>\n<CENTER>\n<A NAME=TOP><H1>The ") + page.name +
                QStringLiteral("</H1></A>\n");
    t += QStringLiteral("<MAP NAME=\"indexMap\">\n");
    if (!picture.isEmpty()) {
        for (const Component& c : page.components) {
            if (!HasArea(c))
                continue;
            t += QStringLiteral("<AREA HREF=\"#%1\" SHAPE=\"rect\" COORDS=\"%2, %3, %4, %5\">\n")
                     .arg(Anchor(c.title))
                     .arg(Scaled(c.x, w))
                     .arg(Scaled(c.y, h) + cap)
                     .arg(Scaled(c.x + c.width, w))
                     .arg(Scaled(c.y + c.height, h) + cap);
        }
    }
    t += QStringLiteral("</MAP>\n");
    if (picture.isEmpty()) {
        t += QStringLiteral("<P>(The picture of this window is missing.)\n");
    } else {
        t += QStringLiteral(
                 "<P><IMG SRC=\"./images/%1.png\" BORDER=0 WIDTH=%2 HEIGHT=%3 "
                 "USEMAP=\"#indexMap\">\n")
                 .arg(base)
                 .arg(w)
                 .arg(h);
    }
    t += QStringLiteral("<P>Click on any component to jump to its description.\n");
    t += QStringLiteral("<P><A HREF=\"index.htm\">Table Of Contents</A>\n</CENTER>\n");
    QString last;
    bool any = false;
    for (const Component& c : page.components) {
        if (!HasArea(c) || (any && c.title == last))
            continue;
        any = true;
        last = c.title;
        QString description = c.description;
        description.replace(QLatin1Char('\n'), QStringLiteral("<BR>\n"));
        t += QStringLiteral("<A NAME=") + Anchor(c.title) + QStringLiteral("><P><H3>") + c.title +
             QStringLiteral("</H3>\n");
        t += QStringLiteral("<P>") + description + QStringLiteral("\n");
        t += QStringLiteral("<P><A HREF=#TOP>go to top</A>\n");
    }
    for (int i = 0; i < kFillerLines; ++i)
        t += QStringLiteral("#<P>\n");
    t += QStringLiteral("End Of File\n");
    return t + Tail();
}

std::vector<Page> GuidePages(const std::vector<WindowPage>& windows,
                             const std::function<QSize(const QString& pageFile)>& pictureSize) {
    std::vector<Page> pages{
        {QStringLiteral("getting_started.htm"), GettingStartedPage()},
        {QStringLiteral("index.htm"), IndexPage()},
        {QStringLiteral("overview.htm"), OverviewPage()},
        {QStringLiteral("keyboard_map.htm"), KeyboardMapPage()},
    };
    for (const WindowPage& w : windows) {
        const QSize size = pictureSize ? pictureSize(w.file) : QSize();
        pages.push_back({w.file, WindowPageText(w, size)});
    }
    return pages;
}

}  // namespace guide
