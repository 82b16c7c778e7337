// The configuration window, "Mixora Configuration" (template 130): the sound
// device of each output, each deck's equalizer type, arithmetic and latency,
// the graphs' number type, scope triggering, tool tips, title bars, the tip
// of the day and the saving of window positions.
//
// Every change takes effect at once and is stored: the window sets a flag of
// the engine state, or sends or posts an application message to the main
// mixer, which does the work:
//   device chosen        -> UWM_SET_SOUND_DEVICE (output 0 main / 1 phones,
//                           device table index; 0 = disabled, -1 = the
//                           stored device, not listed), sent
//   equalizer type       -> UWM_EQ_TYPE (deck, 1 "Orvane" / 0 "Direct
//                           Sound"), posted
//   equalizer numbers    -> UWM_EQ_NUMBER_TYPE (deck, 1 "Ints" / 0 "Floats"),
//                           posted
//   graphs number type   -> UWM_GRAPH_NUMBER_TYPE ((1, 0) "Floats", (0, 1)
//                           "Ints"), sent; "graphNumberType" stored
//   title bars           -> UWM_TITLE_BARS (1 on, 0 off), sent;
//                           "titleBarsOnState" stored
//   scope triggering     -> the engine's scopeTriggerOn; "scopeTriggerOnState"
//   tool tips            -> the engine's toolTipsOn; "toolTipsOnSettingName"
//   latency slide (v)    -> the deck's latencyBlocks = trunc(v), label
//                           "0.2 s", "EqLatencyInNotifiesDeckX" stored
// The actual-latency slides show each deck's effective write-ahead as the
// mix cycle runs it.
//
// Device lists: "No Sound Device Selected (Disabled)", then the devices the
// sound layer lists that can be opened (the silent Null device last); one
// device never serves both outputs. The stored choices ("soundDeviceMain",
// "soundDevicePhones", the list texts) are selected again at start-up; a
// stored device that is gone (a USB card not plugged in, a JACK server not
// started) stays the choice of its output, listed last in grey and sent as
// device_table::kMissingDeviceItem, so the main mixer plays silently and the
// output's mixer looks for it (MIXORA_SOUND_DEVICE, when set, still forces
// the main device); with none stored the main output takes the system's
// default and the headphones the second real device, else none.
//
// User-interface thread only.
#pragma once

#include <QString>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "core/CRynWindow.h"
#include "platform/sound/SoundTypes.h"

class CNiButton;
class CNiSlide;
class QCheckBox;
class QComboBox;
class QFrame;
class QLabel;

class CRynConfigure : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 130;
    // The latency slides run from 1 to the top of the latency range, 40
    // notifications (the mix cycle's maximum write-ahead).
    static constexpr int kLatencyTop = 40;
    static constexpr int kActualLatencyTimer = 1;  // refreshes the actual slides
    static constexpr int kActualLatencyMs = 250;

    explicit CRynConfigure(QWidget* parent = nullptr);

    // Where the devices come from; by default the sound layer's enumeration
    // and a trial opening of each device. Set before Initialise.
    std::function<std::vector<sound::SoundDeviceInfo>()> enumerate;
    std::function<bool(const std::string& identifier)> canOpen;

    // Start-up: fills and selects both device lists and applies them (the
    // main mixer opens the devices), then sets every control from the
    // settings and the engine flags from them.
    void Initialise(WindowHandle mainMixer);

    // Chooses item `item` of output `output`'s list (0 main, 1 headphones) as
    // the user would.
    void ChooseDevice(int output, int item);

    // Output `output`'s mixer has opened `identifier`, found by its watch.
    // When the list shows that output's choice as missing, both lists are
    // read again and the stored choices selected, now as listed devices;
    // nothing is applied (the open device is not opened again).
    void DeviceFound(int output, const std::string& identifier);

    QComboBox* DeviceList(int output) const { return devices_[output == 1 ? 1 : 0]; }
    CNiButton* EqTypeButton(int deck) const { return eqType_[deck == 1 ? 1 : 0]; }
    CNiButton* EqNumberTypeButton(int deck) const { return eqNumbers_[deck == 1 ? 1 : 0]; }
    CNiSlide* LatencySlide(int deck) const { return latency_[deck == 1 ? 1 : 0]; }
    CNiSlide* ActualLatencySlide(int deck) const { return actual_[deck == 1 ? 1 : 0]; }
    QLabel* LatencyLabel(int deck) const { return latencyLabel_[deck == 1 ? 1 : 0]; }
    QLabel* ActualLatencyLabel(int deck) const { return actualLabel_[deck == 1 ? 1 : 0]; }
    CNiButton* GraphNumberTypeButton() const { return graphNumbers_; }
    CNiButton* ScopeTriggerButton() const { return scopeTrigger_; }
    CNiButton* ToolTipsButton() const { return toolTips_; }
    CNiButton* TitleBarsButton() const { return titleBars_; }
    QCheckBox* TipOfTheDayBox() const { return tipOfTheDay_; }
    QCheckBox* SaveWindowPositionsBox() const { return savePositions_; }
    QFrame* EqualizerGroup(int deck) const { return eqGroups_[deck == 1 ? 1 : 0]; }

    // Tests: the actual-latency refresh now.
    void RefreshActualLatency();

    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void OnWindowTimer(int id) override;

  private:
    void BuildControls();
    void LayOut();
    void Connect();
    // `opened`: devices an output has open that the list does not show yet.
    void FillDevices(const std::array<std::string, 2>& opened = {});
    void SelectStoredDevices();
    void ApplyDevice(int output);
    void LoadSettings();
    void OnLatencyMoved(int deck, double v);
    void RegisterControls();

    WindowHandle mainMixer_ = 0;
    bool loading_ = false;  // controls set from the settings do not act

    std::array<QComboBox*, 2> devices_{};
    std::array<CNiButton*, 2> eqType_{};
    std::array<CNiButton*, 2> eqNumbers_{};
    std::array<CNiSlide*, 2> latency_{};
    std::array<CNiSlide*, 2> actual_{};
    std::array<QLabel*, 2> latencyLabel_{};
    std::array<QLabel*, 2> actualLabel_{};
    CNiButton* graphNumbers_ = nullptr;
    CNiButton* scopeTrigger_ = nullptr;
    CNiButton* toolTips_ = nullptr;
    CNiButton* titleBars_ = nullptr;
    QCheckBox* tipOfTheDay_ = nullptr;
    QCheckBox* savePositions_ = nullptr;
    std::array<QFrame*, 2> eqGroups_{};  // each deck's equalizer controls
};
