// The play list and configuration windows tell their controls to the
// registry in the order and words the guide prints: titles, labels (the tool
// tips) and places measured on the shown window; a hidden control (the
// play list's progress bar) has no place and so no area or section.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFile>
#include <QFrame>
#include <QProgressBar>
#include <QTreeWidget>
#include <memory>

#include "TestSupport.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "help/GuidePages.h"
#include "playlist/DefaultPlayList.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/window/CRynConfigure.h"

namespace {

QStringList Titles(const ComponentRegistry& r) {
    QStringList out;
    for (int k = 0; k < r.Count(); ++k)
        out << r.Title(k);
    return out;
}

QStringList Labels(const ComponentRegistry& r) {
    QStringList out;
    for (int k = 0; k < r.Count(); ++k)
        out << r.Label(k);
    return out;
}

// Every control's tool tip is its label.
void ExpectToolTipsAreLabels(const ComponentRegistry& r) {
    for (int k = 0; k < r.Count(); ++k) {
        ASSERT_NE(r.Control(k), nullptr) << k;
        EXPECT_EQ(r.Control(k)->toolTip(), r.Label(k)) << qPrintable(r.Title(k));
    }
}

// Every place lies inside the client area.
void ExpectPlacesInside(const ComponentRegistry& r) {
    for (int k = 0; k < r.Count(); ++k) {
        const ComponentRegistry::Place p = r.Placed(k);
        EXPECT_GE(p.x, 0.0f) << qPrintable(r.Title(k));
        EXPECT_GE(p.y, 0.0f) << qPrintable(r.Title(k));
        EXPECT_LE(p.x + p.width, 1.0001f) << qPrintable(r.Title(k));
        EXPECT_LE(p.y + p.height, 1.0001f) << qPrintable(r.Title(k));
    }
}

}  // namespace

TEST(WindowRegistries, PlayListRowsInOrder) {
    ResetEngineStateForTest();
    QFile::remove(QString::fromStdString(DefaultListPath(0)));
    testsupport::MessageLog deck;
    auto w = std::make_unique<CRynPlayList>();
    w->Initialise(deck.Handle(), 0);
    w->resize(420, 300);
    w->show();
    const ComponentRegistry& r = w->Registry();
    EXPECT_EQ(Titles(r),
              QStringList({"Play List Control:", "Open List:", "Add a File:", "Add a Folder:",
                           "Add a List:", "Save List As:", "Save List:", "Name/Tag/Path Button:",
                           "Delete Item:", "Move Item Up:", "Move Item Down:", "Search Button:",
                           "Text To Search For:", "Play List Progress Bar:", "Select No Items:"}));
    EXPECT_EQ(Labels(r),
              QStringList({"Play List", "open list", "add a file (inserted after selection)",
                           "add a folder (inserted after selection)",
                           "add a list (inserted after selection)", "save as", "save list",
                           "name/tag/path", "delete item", "move item up", "move item down",
                           "Click to search", "text to search for", "add files status",
                           "select no items"}));
    EXPECT_EQ(r.Description(0),
              QStringLiteral("The Play List:\ntriange = Item is selected.\nblue object = Item is "
                             "loaded in deck.\ngreen object = Item is playing."));
    EXPECT_EQ(r.Description(8),
              QStringLiteral("This will remove the selected item from the play list.  Hold shift "
                             "and press this to delete all of the items."));
    ExpectToolTipsAreLabels(r);
    ExpectPlacesInside(r);
    // The tool window's small title bar.
    EXPECT_LT(r.CaptionHeight(), 18);
    EXPECT_GT(r.Placed(8).width, 0.0f);   // Delete Item: shown in File mode
    EXPECT_EQ(r.Placed(13).width, 0.0f);  // the progress bar is hidden
    const QString page = guide::WindowPageText(
        guide::Snapshot(r, QStringLiteral("play_list.htm"), QStringLiteral("Play List")),
        QSize(420, 300 + r.CaptionHeight()));
    EXPECT_TRUE(page.contains(QStringLiteral("<AREA HREF=\"#Delete_Item:\"")));
    EXPECT_TRUE(page.contains(QStringLiteral("<A NAME=Delete_Item:><P><H3>Delete Item:</H3>")));
    EXPECT_FALSE(page.contains(QStringLiteral("Play List Progress Bar:")));
    w->StopPlayList();
}

TEST(WindowRegistries, ConfigurationRowsInOrder) {
    ResetEngineStateForTest();
    testsupport::MessageLog mixer;
    CRynConfigure c;
    c.enumerate = [] {
        return std::vector<sound::SoundDeviceInfo>{{"Null Output (silent)", "null"}};
    };
    c.canOpen = [](const std::string&) { return true; };
    c.Initialise(mixer.Handle());
    c.show();
    const ComponentRegistry& r = c.Registry();
    EXPECT_EQ(Titles(r), QStringList({"Main Sound Device Chooser:",
                                      "Headphones Sound Device Chooser:",
                                      "Deck A EQ Type:",
                                      "Deck B EQ Type:",
                                      "Deck A EQ Number Type:",
                                      "Deck A EQ Number Type:",
                                      "Deck A Equalizer Latency Setting:",
                                      "Deck A Equalizer Latency Value:",
                                      "Deck B Equalizer Latency Setting:",
                                      "Deck B Equalizer Latency Value:",
                                      "Actual Deck A Equalizer Latency Setting:",
                                      "Actual Deck A Equalizer Latency Value:",
                                      "Actual Deck B Equalizer Latency Setting:",
                                      "Deck B Equalizer Latency Indicator:",
                                      "Deck A Equalizer Settings:",
                                      "Deck B Equalizer Settings:",
                                      "Graphs And Meters Number Type:",
                                      "Scope Graph Triggering On/Off Button:",
                                      "Tool Tips On/Off:",
                                      "Title Bars On/Off:",
                                      "Turn On Tip Of The Day:",
                                      "Save Window Positions:"}));
    EXPECT_EQ(Labels(r), QStringList({"main sound device chooser",
                                      "headphones sound device chooser",
                                      "change EQ type",
                                      "change EQ type",
                                      "ints or floats for EQ",
                                      "ints or floats for EQ",
                                      "deck A EQ delay",
                                      "deck A EQ delay seconds",
                                      "deck B EQ delay",
                                      "deck B EQ delay seconds",
                                      "actual deck A EQ delay",
                                      "actual deck A EQ delay seconds",
                                      "actual deck B EQ delay",
                                      "actual deck B EQ delay seconds",
                                      "deck A EQ settings",
                                      "deck B EQ settings",
                                      "ints or floats for graphs",
                                      "scope graph triggering on/off",
                                      "tool tips on/off",
                                      "title bars on/off",
                                      "tip of the day on/off",
                                      "when off, window positions reset at program start"}));
    EXPECT_EQ(r.Description(15),
              QStringLiteral("All of these controls relate to the Deck B Equalizer."));
    EXPECT_EQ(r.Description(21), QStringLiteral("Save the postion of the windows for the next "
                                                "time you load Mixora."));
    ExpectToolTipsAreLabels(r);
    ExpectPlacesInside(r);
    for (int k = 0; k < r.Count(); ++k) {
        EXPECT_GT(r.Placed(k).width, 0.0f) << qPrintable(r.Title(k));
        EXPECT_GT(r.Placed(k).height, 0.0f) << qPrintable(r.Title(k));
    }
    // Each deck's group frame holds that deck's controls.
    const QRect groupA(c.EqualizerGroup(0)->mapTo(&c, QPoint()), c.EqualizerGroup(0)->size());
    EXPECT_TRUE(
        groupA.contains(QRect(c.LatencySlide(0)->mapTo(&c, QPoint()), c.LatencySlide(0)->size())));
    const QString page =
        guide::WindowPageText(guide::Snapshot(r, QStringLiteral("configuration_window.htm"),
                                              QStringLiteral("Configuration Window")),
                              c.size() + QSize(0, r.CaptionHeight()));
    // The two number type buttons share one section.
    EXPECT_EQ(page.count(QStringLiteral("<H3>Deck A EQ Number Type:</H3>")), 1);
    EXPECT_EQ(page.count(QStringLiteral("<AREA HREF=\"#Deck_A_EQ_Number_Type:\"")), 2);
}
