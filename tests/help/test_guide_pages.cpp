// The user guide's pages from registry snapshots alone: the image map areas
// and their title bar offset, anchors, one section for repeated titles, no
// trace of a hidden control, the fixed pages and the order of the files, and
// the PNG header reader the window pages size their pictures with.
#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QRegularExpression>
#include <QSet>

#include "core/ComponentRegistry.h"
#include "help/GuidePages.h"

using namespace guide;

namespace {

WindowPage PlayListPage() {
    WindowPage p;
    p.file = QStringLiteral("play_list.htm");
    p.name = QStringLiteral("Play List");
    p.captionHeight = 18;
    p.components = {
        {QStringLiteral("Delete Item:"), QStringLiteral("Removes the item."), 0.86f, 0.0f, 0.14f,
         0.18f},
    };
    return p;
}

QStringList AreaAnchors(const QString& html) {
    QStringList out;
    static const QRegularExpression area(QStringLiteral("<AREA HREF=\"#([^\"]+)\""));
    for (auto it = area.globalMatch(html); it.hasNext();)
        out << it.next().captured(1);
    return out;
}

QStringList NameAnchors(const QString& html) {
    QStringList out;
    static const QRegularExpression name(QStringLiteral("<A NAME=([^>]+)>"));
    for (auto it = name.globalMatch(html); it.hasNext();)
        out << it.next().captured(1);
    return out;
}

}  // namespace

TEST(GuidePages, AreaIsScaledTruncatedAndMovedBelowTheTitleBar) {
    const QString html = WindowPageText(PlayListPage(), QSize(400, 300));
    EXPECT_TRUE(html.contains(QStringLiteral(
        "<AREA HREF=\"#Delete_Item:\" SHAPE=\"rect\" COORDS=\"344, 18, 400, 72\">\n")))
        << qPrintable(html);
    EXPECT_TRUE(html.contains(QStringLiteral("<A NAME=Delete_Item:><P><H3>Delete Item:</H3>\n")));
    EXPECT_TRUE(html.contains(QStringLiteral("<P>Removes the item.\n")));
}

TEST(GuidePages, WindowPageHasTheExactFrame) {
    const QString html = WindowPageText(PlayListPage(), QSize(400, 300));
    EXPECT_TRUE(html.startsWith(QStringLiteral(
        "<HTML><TITLE>Mixora Play List</TITLE><BODY>\n<CENTER>\n<A NAME=TOP><H1>The Play "
        "List</H1></A>\n<MAP NAME=\"indexMap\">\n<AREA ")));
    EXPECT_TRUE(html.contains(QStringLiteral(
        "</MAP>\n<P><IMG SRC=\"./images/play_list.png\" BORDER=0 WIDTH=400 HEIGHT=300 "
        "USEMAP=\"#indexMap\">\n<P>Click on any component to jump to its description.\n<P><A "
        "HREF=\"index.htm\">Table Of Contents</A>\n</CENTER>\n<A NAME=Delete_Item:>")));
    QString tail;
    for (int i = 0; i < 26; ++i)
        tail += QStringLiteral("#<P>\n");
    tail += QStringLiteral("End Of File\n</BODY>\n</HTML>\n");
    EXPECT_TRUE(html.endsWith(QStringLiteral("<P><A HREF=#TOP>go to top</A>\n") + tail));
    EXPECT_EQ(html.count(QStringLiteral("#<P>\n")), 26);
}

TEST(GuidePages, ConsecutiveRepeatsMakeOneSectionAndHiddenControlsNothing) {
    WindowPage p;
    p.file = QStringLiteral("configuration_window.htm");
    p.name = QStringLiteral("Configuration Window");
    p.captionHeight = 18;
    p.components = {
        {QStringLiteral("Deck A EQ Type:"), QStringLiteral("one"), 0.1f, 0.1f, 0.2f, 0.1f},
        {QStringLiteral("Deck A EQ Type:"), QStringLiteral("two"), 0.4f, 0.1f, 0.2f, 0.1f},
        {QStringLiteral("Hidden Thing:"), QStringLiteral("gone"), 0.5f, 0.5f, 0.0f, 0.1f},
        {QStringLiteral("Flat Thing:"), QStringLiteral("flat"), 0.5f, 0.5f, 0.1f, 0.0f},
        {QStringLiteral("Tool Tips On/Off:"), QStringLiteral("tips"), 0.0f, 0.8f, 0.5f, 0.1f},
    };
    const QString html = WindowPageText(p, QSize(500, 280));
    // Both buttons keep their own areas; the section is written once.
    EXPECT_EQ(AreaAnchors(html),
              QStringList({"Deck_A_EQ_Type:", "Deck_A_EQ_Type:", "Tool_Tips_On/Off:"}));
    EXPECT_EQ(html.count(QStringLiteral("<H3>Deck A EQ Type:</H3>")), 1);
    EXPECT_TRUE(html.contains(QStringLiteral("<P>one\n")));
    EXPECT_FALSE(html.contains(QStringLiteral("<P>two\n")));
    EXPECT_FALSE(html.contains(QStringLiteral("Hidden")));
    EXPECT_FALSE(html.contains(QStringLiteral("Flat")));
    EXPECT_EQ(NameAnchors(html), QStringList({"TOP", "Deck_A_EQ_Type:", "Tool_Tips_On/Off:"}));
}

TEST(GuidePages, RepeatAfterAnotherTitleIsANewSection) {
    WindowPage p = PlayListPage();
    p.components = {{"A:", "a", 0, 0, 0.1f, 0.1f},
                    {"B:", "b", 0, 0, 0.1f, 0.1f},
                    {"A:", "again", 0, 0, 0.1f, 0.1f}};
    const QString html = WindowPageText(p, QSize(100, 100));
    EXPECT_EQ(html.count(QStringLiteral("<H3>A:</H3>")), 2);
}

TEST(GuidePages, DescriptionLineBreaksStayLineBreaks) {
    WindowPage p = PlayListPage();
    p.components = {
        {"Play List Control:", "The Play List:\ntriange = Item is selected.", 0, 0, 1.0f, 0.5f}};
    const QString html = WindowPageText(p, QSize(100, 100));
    EXPECT_TRUE(
        html.contains(QStringLiteral("<P>The Play List:<BR>\ntriange = Item is selected.\n")));
}

TEST(GuidePages, MissingPictureGivesNoAreasButKeepsTheSections) {
    const QString html = WindowPageText(PlayListPage(), QSize());
    EXPECT_TRUE(AreaAnchors(html).isEmpty());
    EXPECT_FALSE(html.contains(QStringLiteral("<IMG")));
    EXPECT_TRUE(html.contains(QStringLiteral("<H3>Delete Item:</H3>")));
}

TEST(GuidePages, SnapshotTakesTheRegistryInOrderWithItsCaption) {
    ComponentRegistry r;
    r.SetCaptionHeight(15);
    r.SetTitle(0, QStringLiteral("First:"));
    r.SetDescription(0, QStringLiteral("one"));
    r.AddComponent(nullptr, 0.1f, 0.2f, 0.3f, 0.4f);
    r.SetTitle(1, QStringLiteral("Second:"));
    r.AddComponent(nullptr, 0.5f, 0.5f, 0.0f, 0.0f);
    const WindowPage p = Snapshot(r, QStringLiteral("deck.htm"), QStringLiteral("Deck"));
    EXPECT_EQ(p.captionHeight, 15);
    ASSERT_EQ(p.components.size(), 2u);
    EXPECT_EQ(p.components[0].title, QStringLiteral("First:"));
    EXPECT_EQ(p.components[0].description, QStringLiteral("one"));
    EXPECT_FLOAT_EQ(p.components[0].height, 0.4f);
    EXPECT_EQ(p.components[1].width, 0.0f);
}

TEST(GuidePages, IndexHasItsMapAndContentsInOrder) {
    const QString html = IndexPage();
    EXPECT_TRUE(
        html.startsWith(QStringLiteral("<HTML><TITLE>Mixora 1.2 User Guide</TITLE><BODY>\n")));
    EXPECT_TRUE(html.contains(QStringLiteral("<H1>Mixora 1.2 User Guide</H1>")));
    static const QRegularExpression area(
        QStringLiteral("<AREA HREF=\"([a-z0-9_]+\\.htm)\" SHAPE=\"rect\" COORDS=\"([0-9, ]+)\">"));
    QStringList areas;
    for (auto it = area.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        areas << m.captured(1) + QStringLiteral(" ") + m.captured(2);
    }
    EXPECT_EQ(areas,
              QStringList({"deck.htm 0, 0, 210, 179", "play_list.htm 0, 179, 210, 318",
                           "equalizer.htm 0, 317, 210, 450", "main_mixer.htm 211, 0, 389, 188",
                           "phones_mixer.htm 211, 184, 389, 293", "3d_graph.htm 211, 294, 389, 450",
                           "deck.htm 390, 0, 599, 179", "equalizer.htm 390, 179, 599, 318",
                           "play_list.htm 390, 317, 599, 450"}));
    EXPECT_TRUE(html.contains(QStringLiteral("<MAP NAME=\"indexMap\">")));
    EXPECT_TRUE(html.contains(QStringLiteral("SRC=\"./images/fullscreen600x451.png\"")));
    EXPECT_TRUE(html.contains(QStringLiteral("ALT=\"screenshot index\" BORDER=0")));
    EXPECT_TRUE(html.contains(QStringLiteral(
        "<P>Click on any part of this picture to jump to the section describing that "
        "component.\n")));
    const int toc = html.indexOf(QStringLiteral("<H3>Table Of Contents:</H3>"));
    ASSERT_GT(toc, 0);
    static const QRegularExpression link(QStringLiteral("<A HREF=\"([^\"]+)\">([^<]+)</A>"));
    QStringList links;
    for (auto it = link.globalMatch(html, toc); it.hasNext();) {
        const auto m = it.next();
        links << m.captured(2) + QStringLiteral("=") + m.captured(1);
    }
    EXPECT_EQ(links, QStringList({"Overview=overview.htm", "Getting Started=getting_started.htm",
                                  "Keyboard Map=keyboard_map.htm", "Deck=deck.htm",
                                  "Main Mixer=main_mixer.htm", "Play List=play_list.htm",
                                  "Equalizer=equalizer.htm", "Phones Mixer=phones_mixer.htm",
                                  "3D Graph=3d_graph.htm",
                                  "The Configuration Window=configuration_window.htm"}));
}

TEST(GuidePages, FixedPagesCarryTheirTitlesHeadingsAndPictures) {
    const QString start = GettingStartedPage();
    EXPECT_TRUE(start.contains(QStringLiteral("<TITLE>Getting Started With Mixora</TITLE>")));
    EXPECT_TRUE(start.contains(QStringLiteral("<H1>Getting Started</H1>")));
    EXPECT_TRUE(start.contains(QStringLiteral("Playing a CD:")));
    EXPECT_TRUE(start.contains(QStringLiteral("Playing a File:")));
    EXPECT_EQ(start.count(QStringLiteral("<LI>")), 9);
    const QString overview = OverviewPage();
    EXPECT_TRUE(overview.contains(QStringLiteral("<TITLE>Mixora Overview</TITLE>")));
    EXPECT_TRUE(overview.contains(QStringLiteral("<H1>Overview</H1>")));
    EXPECT_TRUE(overview.contains(
        QStringLiteral("SRC=\"./images/overview.png\" ALT=\"overview\" BORDER=0 WIDTH=400 "
                       "HEIGHT=145")));
    const QString keys = KeyboardMapPage();
    EXPECT_TRUE(keys.contains(QStringLiteral("<TITLE>Mixora Keyboard Map</TITLE>")));
    EXPECT_TRUE(keys.contains(QStringLiteral("<H1>Keyboard Map</H1>")));
    EXPECT_TRUE(keys.contains(QStringLiteral("./images/keyboard_map1.png")));
    EXPECT_TRUE(keys.contains(QStringLiteral("./images/keyboard_map2.png")));
}

TEST(GuidePages, FilesComeInTheirOrderWithTheirPictureSizes) {
    std::vector<WindowPage> windows;
    for (const WindowName& w : kWindowPages) {
        WindowPage p;
        p.file = QString::fromLatin1(w.file);
        p.name = QString::fromLatin1(w.name);
        windows.push_back(p);
    }
    QStringList asked;
    const std::vector<Page> pages = GuidePages(windows, [&asked](const QString& file) {
        asked << file;
        return QSize(320, 200);
    });
    QStringList files;
    for (const Page& p : pages)
        files << p.file;
    EXPECT_EQ(files,
              QStringList({"getting_started.htm", "index.htm", "overview.htm", "keyboard_map.htm",
                           "deck.htm", "equalizer.htm", "play_list.htm", "main_mixer.htm",
                           "phones_mixer.htm", "3d_graph.htm", "configuration_window.htm"}));
    EXPECT_EQ(asked, files.mid(4));
    EXPECT_TRUE(pages[8].text.contains(QStringLiteral("<H1>The Headphones Mixer</H1>")));
    EXPECT_TRUE(
        pages[9].text.contains(QStringLiteral("./images/3d_graph.png\" BORDER=0 WIDTH=320 "
                                              "HEIGHT=200")));
    EXPECT_EQ(PictureName(QStringLiteral("3d_graph.htm")), QStringLiteral("images/3d_graph.png"));
}

TEST(GuidePages, PngSizeReadsTheHeaderAndRefusesOthers) {
    QImage image(123, 45, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(image.save(&buffer, "PNG"));
    EXPECT_EQ(PngSize(png.left(24)), QSize(123, 45));
    EXPECT_TRUE(PngSize(png.left(20)).isEmpty());
    EXPECT_TRUE(PngSize(QByteArray(24, 'x')).isEmpty());
    QByteArray bad = png.left(24);
    bad[12] = 'X';  // not IHDR
    EXPECT_TRUE(PngSize(bad).isEmpty());
}

TEST(GuidePages, AnchorReplacesEveryBlank) {
    EXPECT_EQ(Anchor(QStringLiteral("Delete Item:")), QStringLiteral("Delete_Item:"));
    EXPECT_EQ(Anchor(QStringLiteral("Actual Deck A Equalizer Latency Setting:")),
              QStringLiteral("Actual_Deck_A_Equalizer_Latency_Setting:"));
}
