#include "settings/window/CRynConfigure.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QColor>
#include <QComboBox>
#include <QLabel>
#include <cmath>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "platform/sound/SoundSystem.h"
#include "settings/CRynSettings.h"
#include "settings/window/DeviceTable.h"
#include "settings/window/LatencyText.h"

namespace {

bool IsNullDevice(const std::string& identifier) {
    return identifier == sound::kNullDeviceId || identifier == sound::kNullManualDeviceId;
}

bool TryOpen(const std::string& identifier) {
    std::unique_ptr<sound::SoundDevice> device;
    return sound::OpenDevice(identifier, false, &device) == kStatusOk && device != nullptr;
}

// The list item whose device table entry is the system's default output
// (PortAudio names it "default"), -1 when none.
int DefaultOutputItem(const QComboBox* list) {
    for (int i = 1; i < list->count(); ++i) {
        const std::string id = device_table::Identifier(list->itemData(i).toInt());
        if (id.size() >= 8 && id.compare(id.size() - 8, 8, ":default") == 0)
            return i;
    }
    return -1;
}

// Adds a stored device that is not listed (a USB card not plugged in, a JACK
// server not started): its stored text, so the choice is stored again as it
// was, greyed and explained; its data says it is missing. Returns its item.
int AddMissingItem(QComboBox* list, const QString& stored) {
    list->addItem(stored, device_table::kMissingDeviceItem);
    const int item = list->count() - 1;
    list->setItemData(item, QColor(Qt::gray), Qt::ForegroundRole);
    list->setItemData(item, QStringLiteral("Not found: Mixora opens this device when it appears."),
                      Qt::ToolTipRole);
    return item;
}

// Whether item `a` of one output's list and item `b` of the other's are the
// same device. Both lists hold the same devices in the same order; a missing
// device each list adds for itself is compared by its stored text.
bool SameDevice(const QComboBox* one, int a, const QComboBox* other, int b) {
    if (a <= 0 || b <= 0 || a >= one->count() || b >= other->count())
        return false;
    const bool missingA = one->itemData(a).toInt() == device_table::kMissingDeviceItem;
    const bool missingB = other->itemData(b).toInt() == device_table::kMissingDeviceItem;
    if (missingA || missingB)
        return missingA && missingB && one->itemText(a) == other->itemText(b);
    return a == b;
}

}  // namespace

CRynConfigure::CRynConfigure(QWidget* parent)
    : CRynWindow("CRynConfigure", kTemplateId, parent),
      enumerate(sound::EnumerateDevices),
      canOpen(TryOpen) {
    setWindowTitle(QStringLiteral("Mixora Configuration"));
    BuildControls();
    LayOut();
    RegisterControls();
    Connect();
    resize(500, 280);
}

void CRynConfigure::Connect() {
    for (int output = 0; output < 2; ++output) {
        connect(devices_[output], &QComboBox::activated, this,
                [this, output](int item) { ChooseDevice(output, item); });
    }
    for (int deck = 0; deck < 2; ++deck) {
        connect(eqType_[deck], &CNiButton::valueChanged, this, [this, deck](bool orvane) {
            if (!loading_)
                PostAppMessageRetry(mainMixer_, UWM_EQ_TYPE, static_cast<WParam>(deck),
                                    orvane ? 1 : 0);
        });
        connect(eqNumbers_[deck], &CNiButton::valueChanged, this, [this, deck](bool ints) {
            if (!loading_)
                PostAppMessageRetry(mainMixer_, UWM_EQ_NUMBER_TYPE, static_cast<WParam>(deck),
                                    ints ? 1 : 0);
        });
        connect(latency_[deck], &CNiSlide::valueChanged, this,
                [this, deck](double v) { OnLatencyMoved(deck, v); });
    }
    connect(graphNumbers_, &CNiButton::valueChanged, this, [this](bool ints) {
        if (loading_)
            return;
        SendAppMessage(mainMixer_, UWM_GRAPH_NUMBER_TYPE, ints ? 0 : 1, ints ? 1 : 0);
        Settings().SetGraphNumberType(graphNumbers_->Caption());
    });
    connect(scopeTrigger_, &CNiButton::valueChanged, this, [this](bool on) {
        Engine().scopeTriggerOn.store(on ? 1 : 0);
        if (!loading_)
            Settings().SetScopeTriggerOnState(on);
    });
    connect(titleBars_, &CNiButton::valueChanged, this, [this](bool on) {
        if (loading_)
            return;
        SendAppMessage(mainMixer_, UWM_TITLE_BARS, on ? 1 : 0);
        Settings().SetTitleBarsOnState(on);
    });
    connect(toolTips_, &CNiButton::valueChanged, this, [this](bool on) {
        Engine().toolTipsOn.store(on ? 1 : 0);
        if (!loading_)
            Settings().SetToolTipsOnSettingName(on);
    });
    connect(tipOfTheDay_, &QCheckBox::toggled, this, [this](bool on) {
        if (!loading_)
            Settings().SetShowTipOfTheDay(on);
    });
}

void CRynConfigure::Initialise(WindowHandle mainMixer) {
    mainMixer_ = mainMixer;
    FillDevices();
    SelectStoredDevices();
    ApplyDevice(0);
    ApplyDevice(1);
    LoadSettings();
    SetWindowTimer(kActualLatencyTimer, kActualLatencyMs);
}

void CRynConfigure::FillDevices(const std::array<std::string, 2>& opened) {
    // The devices in use are open already and are kept without a trial.
    std::array<std::string, 2> inUse = opened;
    for (int output = 0; output < 2; ++output) {
        const QComboBox* list = devices_[output];
        if (inUse[output].empty() && list->count() > 0)
            inUse[output] = device_table::Identifier(list->currentData().toInt());
    }
    const std::vector<sound::SoundDeviceInfo> all =
        enumerate ? enumerate() : std::vector<sound::SoundDeviceInfo>{};
    device_table::Publish(all);

    // Real devices in the order listed, the silent Null device last.
    std::vector<int> items;
    for (int pass = 0; pass < 2; ++pass) {
        for (int index = 1; index < device_table::Count(); ++index) {
            const std::string id = device_table::Identifier(index);
            if (IsNullDevice(id) != (pass == 1))
                continue;
            if (device_table::Text(index) == QLatin1String("Primary Sound Driver"))
                continue;
            if (id != inUse[0] && id != inUse[1] && canOpen && !canOpen(id))
                continue;
            items.push_back(index);
        }
    }
    for (QComboBox* list : devices_) {
        const QSignalBlocker block(list);
        list->clear();
        list->addItem(QString::fromLatin1(device_table::kDisabledText), 0);
        for (int index : items)
            list->addItem(device_table::Text(index), index);
    }
}

void CRynConfigure::SelectStoredDevices() {
    CRynSettings& s = Settings();
    const QString stored[2] = {s.GetSoundDeviceMain(), s.GetSoundDevicePhones()};
    for (int output = 0; output < 2; ++output) {
        QComboBox* list = devices_[output];
        int item = stored[output].isEmpty() ? -1 : list->findText(stored[output]);
        if (output == 0) {
            // A forced main device (MIXORA_SOUND_DEVICE) wins over the stored one.
            const QByteArray forced = qgetenv("MIXORA_SOUND_DEVICE");
            if (!forced.isEmpty()) {
                const int index = device_table::IndexOf(forced.toStdString());
                const int found = index > 0 ? list->findData(index) : -1;
                item = found > 0 ? found : (list->count() > 1 ? 1 : 0);
            }
            if (item < 0 && forced.isEmpty() && !stored[output].isEmpty()) {
                // The stored main device is not there (a card not plugged in,
                // a sound server not started): it stays the choice, shown in
                // the list, and the main mixer plays silently and looks for it.
                item = AddMissingItem(list, stored[output]);
            } else if (item < 0) {
                const int system = DefaultOutputItem(list);
                item = system > 0 ? system : (list->count() > 1 ? 1 : 0);
            }
        } else if (item < 0 && !stored[output].isEmpty()) {
            // The stored headphones device is not there (a card not plugged
            // in): it stays the choice, shown in the list, and is looked for.
            item = AddMissingItem(list, stored[output]);
        } else if (item < 0) {
            // The second device, but never the silent Null device.
            const bool real = list->count() > 2 &&
                              !IsNullDevice(device_table::Identifier(list->itemData(2).toInt()));
            item = real ? 2 : 0;
            if (item != 0 && item == devices_[0]->currentIndex())
                item = devices_[0]->currentIndex() == 1 ? 0 : 1;
        }
        const QSignalBlocker block(list);
        list->setCurrentIndex(item);
    }
    // One device never serves both outputs.
    if (SameDevice(devices_[1], devices_[1]->currentIndex(), devices_[0],
                   devices_[0]->currentIndex())) {
        const QSignalBlocker block(devices_[1]);
        devices_[1]->setCurrentIndex(0);
    }
}

void CRynConfigure::ChooseDevice(int output, int item) {
    output = output == 1 ? 1 : 0;
    QComboBox* list = devices_[output];
    QComboBox* other = devices_[1 - output];
    if (item < 0 || item >= list->count())
        return;
    {
        const QSignalBlocker block(list);
        list->setCurrentIndex(item);
    }
    if (SameDevice(list, item, other, other->currentIndex())) {
        // The other output lets go of the device first.
        {
            const QSignalBlocker block(other);
            other->setCurrentIndex(0);
        }
        ApplyDevice(1 - output);
    }
    ApplyDevice(output);
}

void CRynConfigure::DeviceFound(int output, const std::string& identifier) {
    output = output == 1 ? 1 : 0;
    if (devices_[output]->currentData().toInt() != device_table::kMissingDeviceItem)
        return;
    std::array<std::string, 2> opened;
    opened[output] = identifier;
    FillDevices(opened);
    SelectStoredDevices();
}

void CRynConfigure::ApplyDevice(int output) {
    const QComboBox* list = devices_[output];
    const int index = list->currentData().toInt();
    const auto store = [&] {
        if (output == 0)
            Settings().SetSoundDeviceMain(list->currentText());
        else
            Settings().SetSoundDevicePhones(list->currentText());
    };
    // A missing device is looked for by its stored name: stored first (the
    // user may come back to it after choosing another).
    if (index == device_table::kMissingDeviceItem)
        store();
    SendAppMessage(mainMixer_, UWM_SET_SOUND_DEVICE, static_cast<WParam>(output), index);
    if (index != device_table::kMissingDeviceItem)
        store();
}

void CRynConfigure::LoadSettings() {
    CRynSettings& s = Settings();
    loading_ = true;
    graphNumbers_->SetValue(s.GetGraphNumberType() == graphNumbers_->OnText());
    scopeTrigger_->SetValue(s.GetScopeTriggerOnState());
    titleBars_->SetValue(s.GetTitleBarsOnState());
    toolTips_->SetValue(s.GetToolTipsOnSettingName());
    // The engine flags follow the buttons even when they did not move.
    Engine().scopeTriggerOn.store(scopeTrigger_->Value() ? 1 : 0);
    Engine().toolTipsOn.store(toolTips_->Value() ? 1 : 0);
    for (int deck = 0; deck < 2; ++deck) {
        const double v = s.GetEqLatencyInNotifies(deck);
        if (latency_[deck]->Value() == v)
            OnLatencyMoved(deck, v);
        else
            latency_[deck]->SetValue(v);
        eqNumbers_[deck]->SetValue(s.GetDeckEQNumberType(deck) == 1);
        eqType_[deck]->SetValue(s.GetDeckEQType(deck) == 1);
    }
    tipOfTheDay_->setChecked(s.GetShowTipOfTheDay());
    // Saving window positions has no stored setting: it starts on each run.
    savePositions_->setChecked(true);
    // Last, the graphs' number type as the graphs use it.
    graphNumbers_->SetValue(s.GetUseIntegersForGraphs());
    loading_ = false;
    // Title bars stored off are taken off now.
    if (!titleBars_->Value())
        SendAppMessage(mainMixer_, UWM_TITLE_BARS, 0);
    RefreshActualLatency();
}

void CRynConfigure::OnLatencyMoved(int deck, double v) {
    latencyLabel_[deck]->setText(LatencySecondsText(v));
    Engine().decks[deck].latencyBlocks.store(static_cast<std::int32_t>(std::trunc(v)));
    if (!loading_)
        Settings().SetEqLatencyInNotifies(deck, static_cast<int>(std::trunc(v)));
}

void CRynConfigure::RefreshActualLatency() {
    for (int deck = 0; deck < 2; ++deck) {
        const int blocks = Engine().decks[deck].writeAheadBlocks.load();
        actual_[deck]->SetValue(blocks);
        actualLabel_[deck]->setText(LatencySecondsText(actual_[deck]->Value()));
    }
}

void CRynConfigure::OnWindowTimer(int id) {
    if (id == kActualLatencyTimer && isVisible())
        RefreshActualLatency();
}

LResult CRynConfigure::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    if (msg == UWM_CONFIG_REFRESH) {
        FillDevices();
        SelectStoredDevices();
        ApplyDevice(0);
        ApplyDevice(1);
        return 0;
    }
    return CRynWindow::OnAppMessage(msg, wParam, lParam);
}

void CRynConfigure::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, 0);
}
