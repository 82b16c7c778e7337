#include "output/mixer/MainMixerComponents.h"

#include <QLabel>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/ComponentRows.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MainMixerPanel.h"
#include "output/mixer/MixerMeters.h"

namespace {

QString L(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kLevelKeys[2] = {"'T' (up) and 'G' (down)", "'Y' (up) and 'H' (down)"};

void RegisterPanel(ComponentRows& rows, MainMixerPanel& p) {
    for (int d = 0; d < 2; ++d) {
        const QString deck = QChar('A' + d);
        rows.Add(p.DeckLevelSlide(d), QStringLiteral("Main Mixer Deck %1 Level:").arg(deck),
                 QStringLiteral("The level of deck %1 in the main output, from silent (bottom) to "
                                "full (top), before the cross fader. Keys %2 move it while held "
                                "(Shift: ten times faster). Kept for the next run.")
                     .arg(deck, L(kLevelKeys[d])),
                 QStringLiteral("Main Mixer Deck %1 Level Slide").arg(deck));
    }
    rows.Add(p.CrossFaderPlot(), L("Cross Fader Plot:"),
             L("The gains of deck A and deck B across the cross fader's travel for the chosen "
               "curve; the vertical line is the cross fader's position."),
             L("Cross Fader Plot"));
    const QString pictures =
        L("The three curve families of the cross fader, from left to right: ramp (selector in "
          "the middle), logarithmic (selector at the left) and wedge (selector at the right).");
    rows.Add(p.CurvePictureGraph(MainMixerPanel::kRampPicture), L("Cross Fader Curve Selections:"),
             pictures, L("Cross Fader Curve Selection Ramp"));
    rows.Add(p.CurvePictureGraph(MainMixerPanel::kLogPicture), L("Cross Fader Curve Selections:"),
             pictures, L("Cross Fader Curve Selection Logarithmic"));
    rows.Add(p.CurvePictureGraph(MainMixerPanel::kWedgePicture), L("Cross Fader Curve Selections:"),
             pictures, L("Cross Fader Curve Selection Wedge"));
    rows.Add(p.CurveSelectorSlide(), L("Main Cross Fader Curve Selector:"),
             L("Shapes the cross fader's curve, from logarithmic (left: both decks stay loud "
               "through the middle) through a straight ramp (middle) to a wedge (right: a fast cut "
               "at the ends). The headphones cross fader follows it. Kept for the next run."),
             L("Main Cross Fader Curve Selector"));
    rows.Add(p.VolumeSlide(), L("Main Volume:"),
             L("The volume of the main sound device, from silent (bottom) to full (top). Keys "
               "'Page Up' and 'Page Down' move it while held (Shift: ten times faster)."),
             L("Main Volume"));
    rows.Add(p.CrossFaderSlide(), L("Main Cross Fader:"),
             L("Fades between the decks: at the left only deck A is heard, at the right only deck "
               "B, in the middle both, as the curve selector shapes it. The arrows at the ends "
               "move it halfway across; a right click centres it. Keys 'N' (right) and 'B' "
               "(left) move it while held (Shift: ten times faster)."),
             L("Main Cross Fader"));
    rows.Add(p.BalanceSlide(), L("Main Mixer Balance:"),
             L("The balance of the main output between the left and right speakers; a right click "
               "centres it. Auto-pan moves it while on."),
             L("Main Mixer Balance Slide"));
    rows.Add(p.AutoPanButton(), L("Main Mixer Auto Pan:"),
             L("While on, the balance swings slowly from left to right and back; off puts the "
               "balance back where it was."),
             L("Main Mixer Auto Pan On Button"));
    rows.Add(p.AutoPanSpeedSlide(), L("Main Mixer Auto-Pan Speed:"),
             L("How fast auto-pan swings the balance, up to two swings a second; it starts at "
               "half a swing a second."),
             L("Main Mixer Auto-Pan Speed"));
    rows.Add(p.ShowPhonesButton(), L("Show Phones Mixer:"),
             L("Shows or hides the headphones mixer, where the cueing mix for the second sound "
               "device is set."),
             L("Show Phones Mixer"));
    rows.Add(p.ShowOptionsButton(), L("Show Options Window:"),
             L("Shows or hides the configuration window: sound devices, equalizer types, "
               "latencies, tool tips and the other options."),
             L("Show Options Window"));
}

void RegisterMeters(ComponentRows& rows, MixerMeters& m) {
    for (int d = 0; d < 2; ++d) {
        const QString deck = QChar('A' + d);
        const auto title = [&](const char* what) {
            return QStringLiteral("Deck %1 %2").arg(deck, L(what));
        };
        rows.Add(m.EnableButton(d), title("Meters:"),
                 QStringLiteral("Switches the graphs and meters of deck %1 on or off: on this "
                                "mixer, on the deck and on the headphones mixer. Off saves "
                                "processing. Kept for the next run.")
                     .arg(deck),
                 QStringLiteral("Enable Deck %1 Meters Button").arg(deck));
        const QString decibels =
            QStringLiteral(
                "The loudness of deck %1 as it is heard: the RMS value of the block "
                "in decibels above one 16-bit step, and a bar of nine lamps (four "
                "green, four yellow, one red). A right click on either switches the "
                "decibel meters and RMS values on or off.")
                .arg(deck);
        rows.Add(m.RmsLabel(d), title("Decibel Meter:"), decibels,
                 QStringLiteral("Deck %1 RMS Value").arg(deck));
        for (int i = 0; i < MixerMeters::kDecibelLamps; ++i)
            rows.Add(m.DecibelLamp(d, i), title("Decibel Meter:"), decibels,
                     QStringLiteral("Deck %1 Decibel Meter").arg(deck));
        const QString beat =
            QStringLiteral(
                "The beat of deck %1: the lamp glows in the deck's colour and the bar "
                "of twelve lamps rises with each beat found in the beat range of the "
                "deck's graph. A right click on the bar switches the beat meters on or "
                "off.")
                .arg(deck);
        rows.Add(m.BeatLed(d), title("Beat Meter:"), beat,
                 QStringLiteral("Deck %1 Beat LED").arg(deck));
        for (int i = 0; i < MixerMeters::kBeatLamps; ++i)
            rows.Add(m.BeatLamp(d, i), title("Beat Meter:"), beat,
                     QStringLiteral("Deck %1 Beat Meter").arg(deck));
        rows.Add(m.BandGraph(d), title("Graph:"),
                 QStringLiteral("What deck %1 sounds like now: its band levels as bars, or its "
                                "band groups summed as a scope trace. A right click switches "
                                "between the two; a double click shows this graph alone and "
                                "switches the others off.")
                     .arg(deck),
                 QStringLiteral("Deck %1 graph").arg(deck));
    }
    const QString cpu =
        L("The processor load of the whole computer, in percent, read every "
          "second.");
    rows.Add(m.CpuLabel(), L("CPU Usage:"), cpu, L("CPU Usage"));
    rows.Add(m.CpuSlide(), L("CPU Usage:"), cpu, L("CPU Usage"));
    rows.Add(m.OverloadLamp(), L("System Overload Monitor LED:"),
             L("Blinks green while the program keeps up with the sound; turns red, showing how "
               "many ticks are waiting, when it falls behind. While it falls behind the graphs "
               "and meters are not drawn, so that the sound keeps playing."),
             L("System Overload Monitor LED"));
}

}  // namespace

void RegisterMainMixerComponents(CRynMainMixer& mixer) {
    ComponentRows rows(mixer.Registry(), &mixer);
    RegisterPanel(rows, mixer.Panel());
    RegisterMeters(rows, mixer.Meters());
}
