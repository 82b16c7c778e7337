#include "output/mixer/HeadphonesMixerComponents.h"

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/ComponentRows.h"
#include "output/mixer/CRynHeadphonesMixer.h"

namespace {

QString L(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kLevelKeys[2] = {"Ctrl+'T' (up) and Ctrl+'G' (down)",
                                       "Ctrl+'Y' (up) and Ctrl+'H' (down)"};

}  // namespace

void RegisterHeadphonesMixerComponents(CRynHeadphonesMixer& m) {
    ComponentRows rows(m.Registry(), &m);
    for (int d = 0; d < 2; ++d) {
        const QString deck = QChar('A' + d);
        rows.Add(m.LevelSlide(d), QStringLiteral("Phones Deck %1 Level:").arg(deck),
                 QStringLiteral("The level of deck %1 in the headphones, from silent (bottom) to "
                                "full (top), before the headphones cross fader; the main output "
                                "is not touched. Keys %2 move it while held (Shift as well: ten "
                                "times faster). Kept for the next run.")
                     .arg(deck, L(kLevelKeys[d])),
                 QStringLiteral("Phones Deck %1 Level").arg(deck));
    }
    const QString plots =
        L("What the headphones hear of each deck, in the deck's colour: with one plot both ears, "
          "with two the left ear (left plot) and the right ear (right plot).");
    rows.Add(m.Plot(0), L("Headphones Plot:"), plots, L("Headphones Plot"));
    rows.Add(m.Plot(1), L("Headphones Plot:"), plots, L("Headphones Plot"));
    const QString types =
        L("Switches its plot between \"Bars\" (the band levels) and \"Scope\" "
          "(one trace of the deck's band groups summed).");
    rows.Add(m.PlotTypeButton(0), L("Headphones Plot Type:"), types, L("Headphones Plot Type"));
    rows.Add(m.PlotCountButton(), L("Headphones Number Of Plots:"),
             L("One plot for both ears (\"1 Plot\") or one per ear (\"2 Plots\")."),
             L("Headphones Number Of Plots"));
    rows.Add(m.PlotTypeButton(1), L("Headphones Plot Type:"), types, L("Headphones Plot Type"));
    rows.Add(m.VolumeSlide(), L("Headphones Volume:"),
             L("The volume of the headphones sound device, from silent (bottom) to full (top); "
               "disabled while no headphones device plays. Keys Ctrl+'Page Up' and Ctrl+'Page "
               "Down' move it while held."),
             L("Headphones Volume"));
    rows.Add(m.CrossFaderSlide(), L("Headphones Cross Fader:"),
             L("Fades the headphones between the decks: at the left only deck A, at the right "
               "only deck B, with the main cross fader's curve. A right click centres it. Keys "
               "Ctrl+'N' (right) and Ctrl+'B' (left) move it while held."),
             L("Headphones Cross Fader"));
    const QString balance =
        L("Where the deck sits between the left and the right ear, so that "
          "one deck can be cued in one ear while the other plays in both.");
    rows.Add(m.BalanceSlide(0), L("Phones Deck A Balance:"), balance, L("Phones Deck A Balance"));
    rows.Add(m.SeparateEarsButton(), L("Separate Ears:"),
             L("On puts deck A in the left ear and deck B in the right ear; off centres both "
               "balances again."),
             L("Separate Ears Button"));
    rows.Add(m.BalanceSlide(1), L("Phones Deck B Balance:"), balance, L("Phones Deck B Balance"));
}
