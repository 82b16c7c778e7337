#include "deck/DeckComponents.h"

#include <QComboBox>
#include <QLabel>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiKnob.h"
#include "controls/CNiSlide.h"
#include "core/ComponentRows.h"
#include "deck/CRynDeck.h"
#include "deck/effects/DeckEffectsPanel.h"
#include "deck/graphs/DeckGraphs.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "deck/turntable/DeckTurntablePanel.h"

namespace {

// The keys of one deck, as the keyboard map assigns them.
struct DeckKeys {
    const char* jump;  // the five jump keys, 0 … 80 % of the track
    const char* eject;
    const char* startStop;
    const char* needle;
    const char* previous;
    const char* next;
    const char* reverse;
    const char* fastForward;
    const char* rewind;
    const char* tempo;  // down coarse, down fine, up fine, up coarse
    const char* tempoCoarse;
    const char* tempoFine;
    const char* spindle;  // up, down
    const char* stepUp;
    const char* stepDown;
    const char* release;  // platter key release
};

constexpr DeckKeys kKeys[2] = {
    {"'1', '2', '3', '4' and '5'", "Ctrl+A", "Ctrl+S", "Ctrl+D", "Ctrl+C", "Ctrl+V", "Ctrl+F",
     "Ctrl+X", "Ctrl+Z", "'Q', 'W', 'E' and 'R'", "'Q' and 'R'", "'W' and 'E'", "'F' and 'V'",
     "'Shift-F'", "'Shift-V'", "'W'"},
    {"'6', '7', '8', '9' and '0'", "Ctrl+J", "Ctrl+K", "Ctrl+L", "Ctrl+.", "Ctrl+/", "Ctrl+;",
     "Ctrl+,", "Ctrl+M", "'U', 'I', 'O' and 'P'", "'U' and 'P'", "'I' and 'O'", "'J' and 'M'",
     "'Shift-J'", "'Shift-M'", "'O'"},
};

QString L(const char* text) {
    return QString::fromUtf8(text);
}

// A tool tip of a title and its description (the LEDs keep theirs).
QString TitledTip(const QString& title, const QString& text) {
    return QStringLiteral("<b>%1</b><br>%2").arg(title.toHtmlEscaped(), text.toHtmlEscaped());
}

}  // namespace

void RegisterDeckComponents(CRynDeck& deck) {
    const int d = deck.DeckIndex();
    const DeckKeys& k = kKeys[d];
    const QString name = QStringLiteral("Deck %1 ").arg(QChar('A' + d));
    ComponentRows rows(deck.Registry(), &deck);
    auto row = [&](QWidget* control, const char* title, const QString& description,
                   const QString& label) {
        rows.Add(control, name + L(title), description, label);
    };

    // Track, time and progress.
    row(deck.trackName_, "Track Name:",
        L("Shows the name of the loaded track, or why nothing can play (no file, no disc, a lost "
          "sound device)."),
        L("Current Track Name Display"));
    row(deck.trackNumber_, "Track Number:",
        L("Shows the current track's place in the play list and the number of entries, as "
          "current/total."),
        L("Current Track Number Display"));
    row(deck.timeMode_, "Track Timer Mode:",
        L("Chooses what the time display shows: elapsed or remaining time in the track, or "
          "elapsed or remaining time in the whole play list. Each left click moves to the next "
          "mode; the choice is kept for the next run."),
        L("track timer mode"));
    row(deck.timeDisplay_, "Track Timer Mode:",
        L("Chooses what the time display shows: elapsed or remaining time in the track, or "
          "elapsed or remaining time in the whole play list. Each left click moves to the next "
          "mode; the choice is kept for the next run."),
        L("track time"));
    row(deck.progress_, "Track Progress Slide:",
        L("Shows how far the track has played, from its start at the left to its end at the "
          "right. Drag it and let go to move the play position there; a dropped needle drops "
          "again at the new place. It blinks red once the end of the track has been read and is "
          "about to be heard. Keys ") +
            L(k.jump) + L(" jump to 0, 20, 40, 60 and 80 % of the track."),
        L("Track Progress Slide"));

    // Transport.
    row(deck.startStop_, "Start/Stop Turntable:",
        L("Starts the turntable (\"start\") or stops it (\"stop\"). A rotating turntable reads "
          "the track ahead; stopping it lifts a dropped needle first. Key ") +
            L(k.startStop) + L("."),
        L("start/stop turntable"));
    row(deck.dropLift_, "Drop/Lift Needle:",
        L("Drops the needle on the record (\"drop\") so the deck is heard, or lifts it "
          "(\"lift\"). Works only while the turntable rotates. Key ") +
            L(k.needle) + L("."),
        L("needle down/up"));
    row(deck.direction_, "Reverse:",
        L("While on, the track plays backwards from the current position; off plays forwards "
          "again. Works while the needle is down. Hold key ") +
            L(k.reverse) + L(" to play backwards while it is held."),
        L("play in reverse"));
    row(deck.rewind_, "Rewind:",
        L("Hold to wind back through the track, ten seconds of track per second held; the deck "
          "plays on from where it is let go. Hold key ") +
            L(k.rewind) + L("."),
        L("rewind"));
    row(deck.fastForward_, "Fast Forward:",
        L("Hold to wind forward through the track, ten seconds of track per second held; the "
          "deck plays on from where it is let go. Hold key ") +
            L(k.fastForward) + L("."),
        L("fast forward"));
    row(deck.previous_, "Previous Track:",
        L("Loads the previous entry of the play list; a dropped needle keeps playing. Key ") +
            L(k.previous) + L("."),
        L("previous track"));
    row(deck.next_, "Next Track:",
        L("Loads the next entry of the play list; a dropped needle keeps playing. Key ") +
            L(k.next) + L("."),
        L("next track"));
    row(deck.eject_, "Eject:",
        L("File mode: opens the file dialog to add files to the play list; the first one chosen "
          "loads and plays. CD mode: stops the turntable and reads the disc in the drive again, "
          "after a disc change. Key ") +
            L(k.eject) + L("."),
        L("eject"));
    row(deck.modeButton_, "Deck Mode:",
        L("Shows the deck's source, \"File\" (audio files from the play list) or \"CD\" (the "
          "tracks of the audio CD in the chosen drive). A click switches to the other mode; only "
          "while the turntable is stopped."),
        L("File or CD mode"));
    row(deck.errorCorrection_,
        "CD Error Correction:", L("Turn On Error Correction (Seek Correction) for CD Rom drive."),
        TitledTip(L("CD Error Correction:"),
                  L("Turn On Error Correction (Seek Correction) for CD Rom drive.")));
    row(deck.drives_, "CD Drive Selection:",
        L("In CD mode, chooses the CD drive this deck plays from. A drive the other deck uses is "
          "not offered; \"No CD Drive Selected\" releases the drive."),
        L("CD Drive Selection"));

    // The disc buffer's lamps keep their own tool tips.
    const QString fresh =
        L("Lights up when the disc buffer is low and its priority has been "
          "increased.");
    row(deck.freshDataLed_, "Fresh Data Is Low Warning LED:", fresh,
        TitledTip(L("Fresh Data Is Low Warning LED:"), fresh));
    const QString low =
        L("This LED will light up when the disc buffer is low and has been "
          "prioritized.");
    row(deck.discLowLed_,
        "Disc Buffer Is Low Warning LED:", low + L(" It turns red when the buffer is very low."),
        TitledTip(L("Disc buffer is low warning LED"), low));
    const QString error = L("This LED will light up when a disc read error has occured.");
    row(deck.readErrorLed_, "Disc Read Error LED:", error,
        TitledTip(L("Disc Read Error LED:"), error));

    // Tempo.
    DeckTempoPanel& t = *deck.tempo_;
    row(t.Display(), "Tempo Change:",
        L("Shows the deck's total tempo change in percent: the tempo slide, the spindle and the "
          "1 % steps added together."),
        L("total tempo change"));
    row(t.TempoSlide(), "Tempo Slide:",
        L("Sets the deck's tempo from -8 % (bottom) to +8 % (top); it stays where it is put. "
          "Keys ") +
            L(k.tempoCoarse) + L(" move it by 0.05 %, ") + L(k.tempoFine) +
            L(" by 0.005 % while held. A right click sets it back to 0."),
        L("tempo slide: keys ") + L(k.tempo));
    row(t.UpButton(), "Tempo Up 1 %:",
        L("Each left click adds 1 % to the tempo, on top of the slides. A right click takes the "
          "steps back to 0. Key ") +
            L(k.stepUp) + L("."),
        L("tempo +1 %: key ") + L(k.stepUp));
    row(t.DownButton(), "Tempo Down 1 %:",
        L("Each left click takes 1 % from the tempo, on top of the slides. A right click takes "
          "the steps back to 0. Key ") +
            L(k.stepDown) + L("."),
        L("tempo -1 %: key ") + L(k.stepDown));
    row(t.ResetToggle(), "Reset Tempo:",
        L("While on, the tempo slide is held at 0 and cannot be moved; off puts it back where it "
          "was."),
        L("reset tempo"));
    row(t.SpindleSlide(), "Spindle:",
        L("A temporary push on the record, up to 4 % faster (right) or slower (left), to bring "
          "the beats of the two decks together; it springs back to 0 when let go. Keys ") +
            L(k.spindle) + L(" push it while held."),
        L("spindle: keys ") + L(k.spindle));

    // The platter: one of the two knobs shows.
    DeckTurntablePanel& p = *deck.turntable_;
    const QString platter =
        L("The platter; its pointer is the play position in the output. Drop mode: a click plays "
          "from the clicked point, a Shift-click loops from there round to the play position "
          "until a right click. Drag mode: turn the platter to scratch forwards or backwards; it "
          "pauses while the hand is still. Releasing key ") +
        L(k.release) + L(" makes the platter take its current position again.");
    row(p.Knob(0), "Turntable:", platter, L("turntable"));
    row(p.Knob(1), "Turntable:", platter, L("turntable"));
    row(p.ModeButton(), "Turntable Mode:",
        L("Shows the platter's mode, \"Drop\" or \"Drag\"; a click switches to the other mode. "
          "The choice is kept for the next run."),
        L("Turntable Mode"));
    row(p.LookButton(), "Turntable 2D Or 3D:",
        L("Shows the platter flat (\"2D\") or in perspective (\"3D\"); a click switches. The "
          "choice is kept for the next run."),
        L("Turntable 2D Or 3D"));

    // Effects.
    DeckEffectsPanel& e = *deck.effects_;
    row(e.List(), "Effect:",
        L("Chooses the deck's sound effect: No Effect, Chorus, Compressor, Distortion, Echo, "
          "Flanger, Gargle or Reverb. The two knobs below take the effect's settings."),
        L("deck effect"));
    const QString knobs =
        L("Sets one setting of the chosen effect (its name is above the knob, its value below). "
          "Both knobs are disabled for No Effect.");
    row(e.Knob(1), "Effect Settings:", knobs, L("effect setting 1"));
    row(e.Knob(2), "Effect Settings:", knobs, L("effect setting 2"));

    // The window toggles.
    const QString place = L(" A right click while it is on puts the window back beside the deck.");
    row(deck.showEqualizer_,
        "Show The Equalizer:", L("Shows or hides this deck's equalizer window.") + place,
        L("show the equalizer"));
    row(deck.showPlayList_,
        "Show The Play List:", L("Shows or hides this deck's play list window.") + place,
        L("show the play list"));
    row(deck.showInfo_, "Show Deck Info:",
        L("Shows or hides this deck's information window (disc buffers and output positions).") +
            place,
        L("show deck info"));
    row(deck.showVocoder_, "Show The Phase Vocoder:",
        L("Shows or hides the deck's phase vocoder window: a picture of how a phase vocoder cuts "
          "the deck's sound into overlapping frames of 1024 samples, shaped by Hann windows "
          "placed every 256 samples. The window only illustrates; it never changes the sound."),
        L("show phase vocoder"));

    // Graphs.
    DeckGraphs& g = *deck.graphs_;
    const QString graph =
        L("Shows what is being heard: the band levels as bars (the two horizontal lines are the "
          "beat range: drag them), up to three band-group traces as a scope, or the beat value "
          "as a chart. With two graphs, the left one shows the left channel and the right one "
          "the right channel. A double click shows this graph alone and switches the other graphs "
          "off.");
    row(g.Graph(0), "Deck Graph:", graph, L("deck graph"));
    row(g.Graph(1), "Deck Graph:", graph, L("deck graph"));
    row(g.RangeSlide(), "Graph Range:",
        L("The lower and upper ends of the bars, in thousandths of a decibel: drag the two "
          "pointers. A right click shows or hides the range of the current band values."),
        L("graph range"));
    row(g.TypeButton(), "Graph Type:",
        L("Switches the graphs between \"Bars\", \"Scope\" and \"Chart\"; the choice is kept "
          "for the next run."),
        L("graph type"));
    row(g.SplitButton(),
        "Graph Channels:", L("One graph for both channels (\"1\") or one per channel (\"2\")."),
        L("one or two graphs"));
    row(g.BeatModeButton(), "Beat Finding:",
        L("\"Auto\" narrows the beat range to the band's envelope while the deck plays; \"Man\" "
          "keeps the lines where they are put."),
        L("beat finding auto or manual"));
    const QString bands = L("Chooses how many bands the bars show: 2, 3, 6, 12 or 24.");
    for (int i = 0; i < 5; ++i)
        row(g.BandsButton(i), "Bands In Plot:", bands, L("bands in plot"));
    const QString traces =
        L("Shows or hides scope trace 1, 2 or 3 (the low, middle and high "
          "band groups).");
    for (int i = 0; i < 3; ++i)
        row(g.ScopeBandButton(i), "Scope Traces:", traces, L("scope trace"));
    row(g.SumScopeButton(),
        "Sum Scope:", L("While on, the scope shows one trace, the band groups summed."),
        L("sum the scope"));
    row(g.ScopeGainSlide(),
        "Scope Gain:", L("The gain of the scope traces, 0 to 4 times; kept for the next run."),
        L("scope gain"));
    row(g.ScopeTimeSlide(), "Scope Time:", L("The time spanned by the scope traces, 1 to 10."),
        L("scope time range"));
}
