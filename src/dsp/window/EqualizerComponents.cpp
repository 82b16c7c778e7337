#include "dsp/window/EqualizerComponents.h"

#include <QComboBox>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/ComponentRows.h"
#include "dsp/window/CRynEqualizer.h"

namespace {

QString L(const char* text) {
    return QString::fromUtf8(text);
}

// The keys that raise and lower bands 0, 1 and 2 of each deck.
constexpr const char* kBandKeys[2][3] = {{"'A' and 'Z'", "'S' and 'X'", "'D' and 'C'"},
                                         {"'K' and ','", "'L' and '.'", "';' and '/'"}};

}  // namespace

void RegisterEqualizerComponents(CRynEqualizer& eq) {
    const int d = eq.DeckIndex();
    const QString name = QStringLiteral("Deck %1 ").arg(QChar('A' + d));
    ComponentRows rows(eq.Registry(), &eq);
    auto row = [&](QWidget* control, const char* title, const QString& description,
                   const QString& label) {
        rows.Add(control, name + L(title), description, label);
    };

    row(eq.Graph(), "EQ Frequency Response:",
        L("The equalizer's frequency response: one curve per band in the band's colour and the "
          "total in white. The two vertical lines are the selected band's lower and upper "
          "edges: drag them to move the band's cut-off frequencies."),
        L("Frequency Response"));
    row(eq.OnButton(), "EQ On:",
        L("Turns the deck's equalizer on (\"EQ on\") or off (\"EQ off\"); off, the deck is heard "
          "unchanged. Kept for the next run."),
        L("Equalizer On"));
    row(eq.AntiClipButton(), "EQ Anti-Clip:",
        L("While on (\"AC on\"), bands that would clip are turned down for the block; the button "
          "lights red for each block where that happened, and the white marks on the level "
          "slides show the gain let through. Kept for the next run."),
        L("Anti-Clip"));
    row(eq.FilterTypeList(), "EQ Filter Type:",
        L("The design window of the band filters: Bartlett, Blackman, Hamming, Hanning or "
          "Rectangular. Every band is designed again with it; the levels stay. Kept for the next "
          "run."),
        L("Filter Type"));
    const QString counts =
        L("The number of bands: 12, 6, 3 or 2. Every band level goes back to full; 12 bands "
          "take effect three quarters of a second after the click. Kept for the next run.");
    for (int n : {12, 6, 3, 2})
        row(eq.BandCountButton(n), "EQ Number Of Bands:", counts,
            QStringLiteral("%1 Bands").arg(n));
    row(eq.ResetButton(), "EQ Reset Filter Complexity:",
        L("Gives every band its default number of filter taps again."),
        L("Reset Filter Complexity"));
    const QString taps =
        L("The number of filter taps of the selected band: more taps give steeper band edges "
          "and cost more processing. The number beside the slide shows the count in use.");
    row(eq.TapsSlide(), "EQ Filter Taps:", taps, L("Filter Taps Of The Selected Band"));
    row(eq.TapsDisplay(), "EQ Filter Taps:", taps, L("Filter Taps"));
    const QString levels =
        L("The level of one band, from silent (bottom) to full (top); only the slides of the "
          "bands in use show. A right click puts it back to full. Keys ") +
        L(kBandKeys[d][0]) + L(", ") + L(kBandKeys[d][1]) + L(" and ") + L(kBandKeys[d][2]) +
        L(" raise and lower bands 0, 1 and 2 while held (Shift: four times faster).");
    for (int b = 0; b < CRynEqualizer::kLevelSlides; ++b)
        row(eq.LevelSlide(b), "EQ Band Levels:", levels, QStringLiteral("Band %1 Level").arg(b));
    row(eq.IsolateButton(), "EQ Isolate The Selected Band:",
        L("Turns every band but the selected one down to silent, so the selected band is heard "
          "alone. Raise the other bands again by hand."),
        L("Isolate The Selected Band"));
    row(eq.SelectedBandSlide(), "EQ Selected Band:",
        L("Chooses the band the taps slide, the edge lines and the isolate button work on; its "
          "pointer takes the band's colour."),
        L("Selected Band"));
}
