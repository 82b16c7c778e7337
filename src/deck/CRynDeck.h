// A deck window (template 131): one turntable with its transport, its source
// and its tempo. The deck plays one track at a time from its play list, in
// File mode (its own file decoder) or CD mode (a drive of the program's CD
// reader); only a rotating turntable fills the disc buffer, only a dropped
// needle makes the deck audible.
//
// The engine side (what the main mixer's mix cycle asks of the deck, the
// disc buffer, elapsed time, the end-of-track countdown) is the deck's
// DeckTransport; the window tells it what the user did and draws what it
// reports. The window is split by concern over several files:
//   CRynDeck.cpp           controls, wiring, messages, timers
//   CRynDeckTurntable.cpp  turntable and needle, reverse, wind, reposition, the
//                          progress slide, the time display, track ended
//   CRynDeckPlatter.cpp    the platter: its panel, timers 13 and 17
//   CRynDeckLoading.cpp    loading, previous/next, end of track, eject, CD
//                          drive selection, deck mode
//   CRynDeckVocoder.cpp    the phase vocoder window and its show toggle
//
// State lives partly in button captions, as the user sees it: start/stop
// reads "start" while the turntable is stopped, drop/lift reads "drop" while
// the needle is up, the mode button shows the current mode ("CD"/"File").
// Everything runs on the user-interface thread; the reader threads reach the
// deck only by messages (the sources' end-of-track handlers send one too).
#pragma once

#include <QColor>
#include <QPointer>
#include <QStringList>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "core/CRynWindow.h"
#include "deck/disc/DeckInfoStats.h"

class CNiButton;
class CNiSlide;
class CRynCdAudio;
class CRynDeckInfo;
class CRynDiscBuffer;
class CRynEqualizer;
class CRynFileDecoder;
class CRynPhaseVocoder;
class CRynPlayList;
class DeckBlockWork;
class DeckGraphs;
class DeckEffectsPanel;
class DeckSource;
class DeckTempoPanel;
class DeckTurntablePanel;
class TurntableController;
class DeckTransport;
class PlayList;
class QComboBox;
class QLabel;

class CRynDeck : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 131;

    // Window timers of the deck (the disc buffer keeps its own watchdog).
    static constexpr int kBlinkTimer = 1;        // 300 ms: end-of-track blink
    static constexpr int kRedropTimer = 2;       // 100 ms: re-drop after a reposition
    static constexpr int kDriveReopenTimer = 3;  // 100 ms once: CD eject reopens the drive
    static constexpr int kCdStartTimer = 9;      // 750 ms once: first track of a new disc
    static constexpr int kWindTimer = 10;        // 100 ms: wind ticks
    static constexpr int kProgressTimer = 11;    // 50 ms: progress slide follows play
    static constexpr int kTimeTimer = 14;        // 500 ms: time display
    static constexpr int kFileDialogTimer = 15;  // 750 ms once: the eject file dialog
    static constexpr int kSpinTimer = 13;        // 50 ms while reading: the platter spins
    static constexpr int kTurntableTimer = 17;   // 300 ms: turntable picture

    // Progress slide colours: grey, and red for the end-of-track blink.
    static inline const QColor kProgressGrey{100, 100, 100};
    static inline const QColor kProgressRed{200, 15, 25};

    explicit CRynDeck(QWidget* parent = nullptr);
    ~CRynDeck() override;

    // Start-up: the deck's windows, the main mixer's window and the deck index
    // (0 = A, 1 = B). Sets the deck's deckWindow in the engine state.
    void Initialise(CRynDeckInfo* info, CRynEqualizer* equalizer, CRynPlayList* playList,
                    WindowHandle mainMixer, int deck);
    // The program's CD reader (not owned; null: CD mode finds no drives).
    void SetCdAudio(CRynCdAudio* cd);

    int DeckIndex() const { return deck_; }
    WindowHandle MainMixer() const { return mainMixer_; }
    CRynDeckInfo* Info() const { return info_; }
    CRynEqualizer* Equalizer() const { return equalizer_; }
    CRynPlayList* PlayListWindow() const;
    PlayList& List();
    CRynFileDecoder& Decoder() { return *decoder_; }
    DeckSource& Source() { return *source_; }
    // The engine side, from Initialise on; the main mixer's mix cycle binds it.
    DeckTransport& Transport() { return *transport_; }
    CRynDiscBuffer& Disc();
    DeckTempoPanel& Tempo() { return *tempo_; }
    // The block routine FillBlock runs: split, meters, equalizer, join,
    // band analysis. The measurements plug in there.
    DeckBlockWork& BlockWork() { return *blockWork_; }
    // The deck's graph display and its measurements (deck/graphs).
    DeckGraphs& Graphs() { return *graphs_; }
    // The control id of deck `deck`'s left (0) or right (1) graph.
    static constexpr int GraphControlId(int deck, int graph) { return 1030 + 2 * deck + graph; }
    // The equalizer's arithmetic: true for 16-bit ("Ints"), false for float.
    void SetEqNumberType(bool ints);
    // The platter (CRynDeckPlatter.cpp), from Initialise on.
    TurntableController& Turntable();
    DeckTurntablePanel* TurntablePanel() const { return turntable_; }
    // The effect list and its two knobs (the main mixer applies them).
    DeckEffectsPanel& Effects() { return *effects_; }
    // The deck's phase vocoder window (a child window, made hidden with the
    // deck) and its show toggle, control 1091 (CRynDeckVocoder.cpp).
    static constexpr int kShowPhaseVocoderId = 1091;
    CRynPhaseVocoder* PhaseVocoder() const { return vocoder_; }
    CNiButton* ShowPhaseVocoderButton() const { return showVocoder_; }

    // The deck's two colours: `which` 0 is its main colour, 1 its dark shade.
    QColor Colour(int which) const;

    // Shutdown: the transport stops for good (the needle is lifted).
    void Shutdown();
    // Shutdown: the deck's file decoder is closed.
    void CloseDecoder();

    // --- Turntable (CRynDeckTurntable.cpp) ---
    void StartTurntable();
    void StopTurntable();
    void DropNeedle();
    void LiftNeedle();
    void SetReverse(bool on);
    void WindPressed(bool fastForward, bool pressed);
    void WindTick();
    // To `fraction` (0 … 1) of the current track; nothing while no track is loaded.
    void Reposition(double fraction);
    void UpdateTimeDisplay();
    void NextTimeDisplayMode();
    void SetTimeDisplayMode(const QString& caption);
    void ProgressTick();
    bool Rotating() const;
    bool NeedleDown() const;

    // --- Platter (CRynDeckPlatter.cpp) ---
    // Timer 13: while the needle is up and the turntable rotates, the platter
    // turns with the disc buffer's fill.
    void SpinTick();
    // The needle lifts while playing backwards: the deck turns forwards
    // again without touching the output (the host stops all of it).
    void EndReverseQuietly();

    // --- Loading (CRynDeckLoading.cpp) ---
    // The play list's current entry into the source: 0, or -1 on failure.
    int LoadTrack();
    bool PreviousTrack();
    bool NextTrack();
    void Eject();
    // What the eject file dialog hands back: added to the list, the first loads and plays.
    void OpenFiles(const QStringList& files);
    // The drive chooser's item `index` (0 = no drive).
    void SelectDriveItem(int index);
    // 1 = File mode, 0 = CD mode; only while the turntable is stopped.
    void SetDeckMode(int mode);
    void RefreshTrackInfo();
    void RefreshTrackNumber();
    // Refills the drive chooser from the CD reader's drives.
    void RefreshDriveList();

    // --- Tempo ---
    void ApplyTempo();

    // The file the deck holds changed: its path after a load or when the
    // next track followed on, "" when no file is held (a failed load, CD
    // mode). Fired once per change, on the window thread.
    std::function<void(const std::string& path)> onTrackChanged;
    std::string HeldFile() const { return heldFile_; }

    // A notice shown in the track name display instead of the name (in red)
    // while it is not empty: the sound device was lost. The track name
    // itself is kept and comes back when the notice is cleared.
    void SetDeviceNotice(const QString& notice);
    QString DeviceNotice() const { return deviceNotice_; }

    // --- What the user sees (tests read these) ---
    // The track's name (also while a notice covers it); the display's text.
    QString TrackNameText() const;
    QString TrackDisplayText() const;
    QString TrackNumberText() const;
    QString TimeText() const;
    QString TimeModeCaption() const;
    double ProgressValue() const;
    QColor ProgressColour() const;
    bool TrackEnded() const { return trackEnded_; }
    // What the transport reports.
    bool IsReverse() const;
    bool EndOfTrackPending() const;
    int BlocksUntilTrackEnd() const;
    double ElapsedSeconds() const;
    bool Primed() const;
    CNiButton* StartStopButton() const { return startStop_; }
    CNiButton* DropLiftButton() const { return dropLift_; }
    CNiButton* ModeButton() const { return modeButton_; }
    CNiButton* DirectionButton() const { return direction_; }
    CNiButton* RewindButton() const { return rewind_; }
    CNiButton* FastForwardButton() const { return fastForward_; }
    CNiButton* EjectButton() const { return eject_; }
    CNiButton* PreviousButton() const { return previous_; }
    CNiButton* NextButton() const { return next_; }
    // The toggles that show the deck's equalizer, play list and information windows.
    CNiButton* ShowEqualizerButton() const { return showEqualizer_; }
    CNiButton* ShowPlayListButton() const { return showPlayList_; }
    CNiButton* ShowInfoButton() const { return showInfo_; }
    CNiSlide* ProgressSlide() const { return progress_; }
    QComboBox* DriveChooser() const { return drives_; }

    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

    // Tests: the eject dialog's files instead of a real dialog (empty list:
    // the dialog was cancelled).
    void SetFileDialogForTest(std::function<QStringList()> dialog) {
        fileDialog_ = std::move(dialog);
    }
    // The filter of the eject file dialog.
    static QString FileDialogFilter();

  protected:
    // The close box hides the window and tells the main mixer.
    void closeEvent(QCloseEvent* event) override;
    void OnWindowTimer(int id) override;
    // The show-equalizer toggle follows the equalizer window however it is
    // shown or hidden (start-up layout, close box, the toggle itself).
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // The registry rows name the deck's own controls.
    friend void RegisterDeckComponents(CRynDeck& deck);

    void BuildControls();
    void BuildTurntable(class QGridLayout* grid);
    void WireTurntable();
    void WireControls();
    void SetTrackName(const QString& text);
    void SetTransportEnabled(bool on);  // all eight transport buttons
    void StopBlink();
    void StartBlink();
    void BlinkTick();
    void RedropTick();
    void OnTrackEnded();
    void OnEndHeard();
    LResult OnEndOfTrack();
    void ShowFileDialog();
    void OnDriveAssigned(int drive);
    void CdStartTick();
    void DriveReopenTick();
    int Rate() const;
    void FocusHost();
    // The buffer statistics: the information window's, or the deck's own
    // when it has none.
    DeckInfoStats& Stats();
    void InitialiseGraphs();
    // Makes the phase vocoder window and returns its show toggle, wired.
    CNiButton* BuildPhaseVocoder();

    int deck_ = 0;
    WindowHandle mainMixer_ = 0;
    CRynDeckInfo* info_ = nullptr;
    CRynEqualizer* equalizer_ = nullptr;
    // Watched: at shutdown the play list windows go before the decks, and
    // the deck then falls back to a list of its own.
    QPointer<CRynPlayList> playList_;
    CRynCdAudio* cd_ = nullptr;

    std::unique_ptr<PlayList> ownList_;  // when no play list window is given
    std::unique_ptr<CRynFileDecoder> decoder_;
    std::unique_ptr<DeckSource> source_;
    DeckInfoStats ownStats_;  // when no information window is given
    std::unique_ptr<DeckBlockWork> blockWork_;
    DeckGraphs* graphs_ = nullptr;
    std::unique_ptr<DeckTransport> transport_;

    // Window state.
    QString trackNameText_;
    QString deviceNotice_;
    std::string heldFile_;  // what onTrackChanged last told
    void NoteHeldFile(const std::string& path);
    bool progressFollowsPlay_ = true;
    bool trackEnded_ = false;
    int savedDriveItem_ = 0;
    int redropCount_ = 0;
    bool blinkRed_ = false;
    bool windForward_ = false;
    bool windBack_ = false;

    // Controls.
    CNiButton* startStop_ = nullptr;
    CNiButton* dropLift_ = nullptr;
    CNiButton* modeButton_ = nullptr;
    CNiButton* timeMode_ = nullptr;
    CNiButton* errorCorrection_ = nullptr;
    CNiButton* direction_ = nullptr;
    CNiButton* rewind_ = nullptr;
    CNiButton* fastForward_ = nullptr;
    CNiButton* previous_ = nullptr;
    CNiButton* next_ = nullptr;
    CNiButton* eject_ = nullptr;
    CNiButton* showEqualizer_ = nullptr;
    CNiButton* showPlayList_ = nullptr;
    CNiButton* showInfo_ = nullptr;
    CNiButton* showVocoder_ = nullptr;
    CRynPhaseVocoder* vocoder_ = nullptr;
    CNiButton* freshDataLed_ = nullptr;
    CNiButton* discLowLed_ = nullptr;
    CNiButton* readErrorLed_ = nullptr;
    CNiSlide* progress_ = nullptr;
    QLabel* trackName_ = nullptr;
    QLabel* trackNumber_ = nullptr;
    QLabel* timeDisplay_ = nullptr;
    QComboBox* drives_ = nullptr;
    DeckTempoPanel* tempo_ = nullptr;
    DeckTurntablePanel* turntable_ = nullptr;
    DeckEffectsPanel* effects_ = nullptr;

    std::function<QStringList()> fileDialog_;
};
