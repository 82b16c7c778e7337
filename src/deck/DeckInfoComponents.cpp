#include "deck/DeckInfoComponents.h"

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/ComponentRows.h"
#include "deck/CRynDeckInfo.h"

void RegisterDeckInfoComponents(CRynDeckInfo& info) {
    const QString name = QStringLiteral("Deck %1 ").arg(QChar('A' + info.DeckIndex()));
    ComponentRows rows(info.Registry(), &info);
    auto row = [&](QWidget* control, const char* title, const QString& description,
                   const char* label) {
        rows.Add(control, name + QString::fromUtf8(title), description, QString::fromUtf8(label));
    };
    const auto L = [](const char* text) { return QString::fromUtf8(text); };
    const QString meters = L(" It moves only while \"Turn On Deck Meters:\" is on.");

    row(info.ForwardGraph(), "Disc Buffer Display:",
        L("One bar for each of the 170 blocks of the forward disc buffer: a bar is up while "
          "its block holds sound read from the file or disc and not yet played.") +
            meters,
        "Disc Buffer Display");
    row(info.ForwardLevelMeter(), "Disc Buffer Level Meter:",
        L("How many of the forward disc buffer's 170 blocks are filled. Below 128 the buffer "
          "is low and the reader is given a higher priority; below 85 it is very low.") +
            meters,
        "Disc Buffer Level Meter");
    row(info.BackwardGraph(), "Backward Disc Buffer Display:",
        L("One bar for each of the 50 blocks of the backward disc buffer, which holds the "
          "sound before the play position for playing in reverse.") +
            meters,
        "Backward Disc Buffer Display");
    row(info.BackwardLevelMeter(), "Backward Disc Buffer Level Meter:",
        L("How many of the backward disc buffer's 50 blocks are filled.") + meters,
        "Backward Disc Buffer Level Meter");
    row(info.ForwardReadMeter(), "Forward Buffer Read Position:",
        L("The block of the 120-block forward output ring the sound device is playing now "
          "(3.2 seconds round).") +
            meters,
        "Forward Buffer Read Position");
    row(info.ForwardWriteMeter(), "Forward Buffer Write Position:",
        L("The block of the forward output ring the deck writes next.") + meters,
        "Forward Buffer Write Position");
    row(info.BlocksAheadMeter(), "Blocks Written Ahead:",
        L("How many blocks are written ahead of the play position, 0 to 120. Fewer than the "
          "equalizer latency setting less one lights the fresh-data-low LED on the deck.") +
            meters,
        "Blocks Written Ahead");
    row(info.ReversePlayMeter(), "Backward Play Position Meter:",
        L("The block of the 120-block reverse output ring the sound device plays while the "
          "deck plays backwards.") +
            meters,
        "Backward Play Position Meter:");
    row(info.ReverseWriteMeter(), "Backward Write Position Meter:",
        L("The block of the reverse output ring the deck writes next.") + meters,
        "Backward Write Position Meter:");
    row(info.MetersButton(), "Turn On Deck Meters:",
        L("While on, the graphs and meters of this window are brought up to date once a second; "
          "off sets them to 0. The deck keeps its buffer statistics either way."),
        "Turn On Deck Meters:");
    row(info.ForwardReadingLed(), "Forward Disc Reading Is On:",
        L("Lights while the deck's forward reader is reading the file or disc."),
        "Forward disc reading is on:");
    row(info.BackwardReadingLed(), "Backward Disc Reading Is On:",
        L("Lights while the deck's backward reader is reading ahead for reverse play."),
        "Backward disc reading is on:");
}
