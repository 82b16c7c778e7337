// The host dialog: builds every working window in a fixed order, starts the
// service threads, then sits off-screen and routes keyboard and housekeeping
// messages. Closing the main mixer (UWM_SHUTDOWN) or Esc on the host runs the
// shutdown: the host comes on screen as a small progress window with five
// lamps, tears the program down in a fixed order and ends the event loop with
// exit code 0.
//
// Start-up and shutdown write one line per step to the shell log (ShellLog.h).
#pragma once

#include <QDialog>
#include <QLabel>
#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "app/KeyForwarder.h"
#include "app/KeySource.h"
#include "core/AppMessages.h"
#include "core/WorkerThread.h"
#include "platform/PlatformLayers.h"

class CRynCdAudio;
class CRynMainMixer;
class CRynHeadphonesMixer;
class CRyn3DGraph;
class CRynDeck;
class CRynDeckInfo;
class CRynEqualizer;
class CRynPlayList;
class CRynWindow;
class KeyboardControl;
class CRynConfigure;
class ProgressLamp;
class DiagnosticsPanel;
class HostMenu;

class CMixoraDlg : public QDialog, public MessageReceiver {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 102;
    static constexpr int kDefaultPauseMs = 200;

    struct Options {
        // Null: PortAudio and FFmpeg.
        std::unique_ptr<PlatformLayers> layers;
        // Null: the program's keyboard (CRynKeyboard).
        std::unique_ptr<KeySource> keys;
        // The pause after each shutdown pump, milliseconds; negative:
        // $MIXORA_SHUTDOWN_PAUSE_MS, else 200.
        int pauseMs = -1;
        // Called once at the end of the shutdown with the exit code (0).
        // Default: QCoreApplication::exit.
        std::function<void(int)> onEnd;
        // Shows a start-up failure. Default: a message box (and stderr).
        std::function<void(const QString&)> showError;
    };

    CMixoraDlg();
    explicit CMixoraDlg(Options options);
    ~CMixoraDlg() override;

    WindowHandle Handle() const { return handle_; }

    // The start-up sequence. False when a platform layer failed: the message
    // has been shown and no window was built; the program should end.
    bool StartUp();

    // The shutdown sequence (runs once; later calls do nothing).
    void Shutdown();
    bool ShuttingDown() const { return shuttingDown_; }

    // The keyboard maps run for UWM_KEY_POLLED, UWM_KEY_DOWN and UWM_KEY_UP
    // (KeyboardControl, from start-up on); a handler set here replaces them.
    using KeyHandler = std::function<void(Uwm msg, WParam wParam, LParam lParam)>;
    void SetKeyHandler(KeyHandler handler) { keyHandler_ = std::move(handler); }

    CRynMainMixer* MainMixer() const { return mainMixer_.get(); }
    CRynHeadphonesMixer* HeadphonesMixer() const { return headphones_.get(); }
    CRynConfigure* Configure() const { return configure_.get(); }
    CRyn3DGraph* Graph3D() const { return graph3d_.get(); }
    CRynDeck* Deck(int deck) const { return decks_[deck].get(); }
    KeySource& Keys() { return *keys_; }
    // The key maps (null before start-up).
    KeyboardControl* KeyMaps() const { return keyControl_.get(); }
    // The value a deck last reported with UWM_DECK_VALUE.
    LParam DeckValue(int deck) const { return deckValues_[deck]; }
    bool GraphsThreadRunning() const;
    // The diagnostic texts and the menu with the about box (null before
    // start-up).
    DiagnosticsPanel* Diagnostics() const { return diagnostics_; }
    HostMenu* Menu() const { return hostMenu_; }

    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

  protected:
    // Esc and the close box run the shutdown.
    void reject() override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void BuildProgressWindow();
    void Created(CRynWindow* window);
    void StartServiceThreads();
    void PlaceAndShowWindows(bool lowResolution);
    void StartGraphsThread();
    void StopGraphsThreadIfMetersOff();
    void StopGraphsThread();
    void JoinStoppedThreads();
    void ShutdownStep(int lamp, const QString& text);
    void PumpAndPause();
    void Pause();
    void MinimiseAll(bool minimise);
    std::vector<QWidget*> WorkingWindows() const;

    std::unique_ptr<PlatformLayers> layers_;
    std::unique_ptr<KeySource> keys_;
    int pauseMs_;
    std::function<void(int)> onEnd_;
    std::function<void(const QString&)> showError_;
    KeyHandler keyHandler_;
    WindowHandle handle_ = 0;
    bool started_ = false;
    bool layersUp_ = false;
    bool shuttingDown_ = false;

    KeyForwarder keyForwarder_;
    std::unique_ptr<KeyboardControl> keyControl_;
    std::unique_ptr<CRynCdAudio> cdAudio_;
    std::unique_ptr<CRynMainMixer> mainMixer_;
    std::unique_ptr<CRynHeadphonesMixer> headphones_;
    std::unique_ptr<CRynConfigure> configure_;
    std::unique_ptr<CRyn3DGraph> graph3d_;
    std::array<std::unique_ptr<CRynDeck>, 2> decks_;
    std::array<std::unique_ptr<CRynDeckInfo>, 2> infos_;
    std::array<std::unique_ptr<CRynEqualizer>, 2> equalizers_;
    std::array<std::unique_ptr<CRynPlayList>, 2> playLists_;

    WorkerThread tickThread_;
    WorkerThread keyboardThread_;
    std::unique_ptr<WorkerThread> graphsThread_;
    std::vector<std::unique_ptr<WorkerThread>> retiredGraphsThreads_;

    std::array<LParam, 2> deckValues_{};

    QWidget* progress_ = nullptr;
    std::array<ProgressLamp*, 5> lamps_{};
    QLabel* status_ = nullptr;
    DiagnosticsPanel* diagnostics_ = nullptr;  // owned as a child
    HostMenu* hostMenu_ = nullptr;             // owned by the main mixer
};
