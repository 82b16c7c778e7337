// The configuration window's controls: building, placing, tool tips and
// connecting them to their events.
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPalette>
#include <QVBoxLayout>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"
#include "settings/window/CRynConfigure.h"

using namespace control_look;

namespace {

CNiButton* TwoState(const QString& off, const QString& on, const QString& name, QWidget* parent) {
    auto* b = new CNiButton(off, on, parent);
    b->setObjectName(name);
    b->SetStyle(CNiButton::kPushButton);
    b->SetAction(CNiButton::kSwitchWhenPressed);
    b->SetColors(FaceColor(), FaceColor());
    b->setFixedHeight(22);
    b->setMinimumWidth(84);
    return b;
}

CNiSlide* MakeLatencySlide(const QString& name, QWidget* parent, bool interactive) {
    auto* s = new CNiSlide(Qt::Horizontal, parent);
    s->setObjectName(name);
    s->SetAxis(1.0, CRynConfigure::kLatencyTop);
    s->SetDiscreteStep(1.0);
    s->SetPointerStyle(0, CNiSlide::kThumb);
    s->SetPointerColor(0, interactive ? TextColor() : DimTextColor());
    s->SetPointerInteractive(0, interactive);
    s->SetTickCount(4);
    s->setFixedHeight(22);
    return s;
}

QLabel* ValueLabel(const QString& name, QWidget* parent) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    QPalette pal = l->palette();
    pal.setColor(QPalette::WindowText, TextColor());
    l->setPalette(pal);
    l->setMinimumWidth(44);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return l;
}

QCheckBox* CheckBox(const QString& text, QWidget* parent) {
    auto* c = new QCheckBox(text, parent);
    c->setObjectName(text);
    QPalette pal = c->palette();
    pal.setColor(QPalette::WindowText, TextColor());
    c->setPalette(pal);
    return c;
}

}  // namespace

void CRynConfigure::BuildControls() {
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, PanelColor());
    setPalette(pal);

    const QString deckName[2] = {QStringLiteral("A"), QStringLiteral("B")};
    devices_[0] = new QComboBox(this);
    devices_[0]->setObjectName(QStringLiteral("Main Sound Device Chooser:"));
    devices_[1] = new QComboBox(this);
    devices_[1]->setObjectName(QStringLiteral("Headphones Sound Device Chooser:"));
    for (int deck = 0; deck < 2; ++deck) {
        const QString d = deckName[deck];
        eqType_[deck] = TwoState(QStringLiteral("Direct Sound"), QStringLiteral("Orvane"),
                                 QStringLiteral("Deck %1 EQ Type:").arg(d), this);
        eqNumbers_[deck] = TwoState(QStringLiteral("Floats"), QStringLiteral("Ints"),
                                    QStringLiteral("Deck %1 EQ Number Type:").arg(d), this);
        latency_[deck] = MakeLatencySlide(
            QStringLiteral("Deck %1 Equalizer Latency Setting:").arg(d), this, true);
        actual_[deck] = MakeLatencySlide(
            QStringLiteral("Actual Deck %1 Equalizer Latency Setting:").arg(d), this, false);
        latencyLabel_[deck] =
            ValueLabel(QStringLiteral("Deck %1 Equalizer Latency Value:").arg(d), this);
        actualLabel_[deck] =
            ValueLabel(deck == 0 ? QStringLiteral("Actual Deck A Equalizer Latency Value:")
                                 : QStringLiteral("Deck B Equalizer Latency Indicator:"),
                       this);
    }
    graphNumbers_ = TwoState(QStringLiteral("Floats"), QStringLiteral("Ints"),
                             QStringLiteral("Graphs And Meters Number Type:"), this);
    scopeTrigger_ = TwoState(QStringLiteral("OFF"), QStringLiteral("ON"),
                             QStringLiteral("Scope Graph Triggering On/Off Button:"), this);
    toolTips_ = TwoState(QStringLiteral("OFF"), QStringLiteral("ON"),
                         QStringLiteral("Tool Tips On/Off:"), this);
    titleBars_ = TwoState(QStringLiteral("OFF"), QStringLiteral("ON"),
                          QStringLiteral("Title Bars On/Off:"), this);
    tipOfTheDay_ = CheckBox(QStringLiteral("Tip Of The Day"), this);
    savePositions_ = CheckBox(QStringLiteral("Save Window Positions"), this);
}

void CRynConfigure::RegisterControls() {
    ComponentRegistry& r = Registry();
    auto reg = [this, &r](QWidget* control, const QString& title, const QString& description,
                          const QString& label) {
        r.Register(control, this, title, description, label);
    };
    reg(devices_[0], QStringLiteral("Main Sound Device Chooser:"),
        QStringLiteral("Select sound device for the Main Mixer output."),
        QStringLiteral("main sound device chooser"));
    reg(devices_[1], QStringLiteral("Headphones Sound Device Chooser:"),
        QStringLiteral("Select sound device for the Headphones Mixer output."),
        QStringLiteral("headphones sound device chooser"));
    for (int deck = 0; deck < 2; ++deck) {
        reg(eqType_[deck],
            deck == 0 ? QStringLiteral("Deck A EQ Type:") : QStringLiteral("Deck B EQ Type:"),
            QStringLiteral("Switch between the Orvane and the Direct Sound Equalizer"),
            QStringLiteral("change EQ type"));
    }
    // Both number type buttons carry deck A's title and description.
    for (int deck = 0; deck < 2; ++deck) {
        reg(eqNumbers_[deck], QStringLiteral("Deck A EQ Number Type:"),
            QStringLiteral("Change the number type used by the Deck A Equalizer.  You can switch "
                           "between between floats(32-bit) and ints(16-bit)"),
            QStringLiteral("ints or floats for EQ"));
    }
    for (int deck = 0; deck < 2; ++deck) {
        const QString d = deck == 0 ? QStringLiteral("A") : QStringLiteral("B");
        reg(latency_[deck], QStringLiteral("Deck %1 Equalizer Latency Setting:").arg(d),
            QStringLiteral("Use this to adjust the delay of the Equalizer."),
            QStringLiteral("deck %1 EQ delay").arg(d));
        reg(latencyLabel_[deck], QStringLiteral("Deck %1 Equalizer Latency Value:").arg(d),
            QStringLiteral("Displays the equalizer delay in seconds."),
            QStringLiteral("deck %1 EQ delay seconds").arg(d));
    }
    for (int deck = 0; deck < 2; ++deck) {
        const QString d = deck == 0 ? QStringLiteral("A") : QStringLiteral("B");
        reg(actual_[deck], QStringLiteral("Actual Deck %1 Equalizer Latency Setting:").arg(d),
            QStringLiteral("Shows the actual delay of the Equalizer."),
            QStringLiteral("actual deck %1 EQ delay").arg(d));
        reg(actualLabel_[deck],
            deck == 0 ? QStringLiteral("Actual Deck A Equalizer Latency Value:")
                      : QStringLiteral("Deck B Equalizer Latency Indicator:"),
            QStringLiteral("Shows the actual delay of the Equalizer in seconds."),
            QStringLiteral("actual deck %1 EQ delay seconds").arg(d));
    }
    for (int deck = 0; deck < 2; ++deck) {
        const QString d = deck == 0 ? QStringLiteral("A") : QStringLiteral("B");
        reg(eqGroups_[deck], QStringLiteral("Deck %1 Equalizer Settings:").arg(d),
            QStringLiteral("All of these controls relate to the Deck %1 Equalizer.").arg(d),
            QStringLiteral("deck %1 EQ settings").arg(d));
    }
    reg(graphNumbers_, QStringLiteral("Graphs And Meters Number Type:"),
        QStringLiteral("Change the number type used by the graphs and meters between "
                       "floats(64-bit) and ints(32-bit)"),
        QStringLiteral("ints or floats for graphs"));
    reg(scopeTrigger_, QStringLiteral("Scope Graph Triggering On/Off Button:"),
        QStringLiteral("The scope graph will attempt to lock down the waveform when this is on."),
        QStringLiteral("scope graph triggering on/off"));
    reg(toolTips_, QStringLiteral("Tool Tips On/Off:"),
        QStringLiteral("When on, helpful messages will appear over each control."),
        QStringLiteral("tool tips on/off"));
    reg(titleBars_, QStringLiteral("Title Bars On/Off:"),
        QStringLiteral("Turn the window title bars on and off."),
        QStringLiteral("title bars on/off"));
    reg(tipOfTheDay_, QStringLiteral("Turn On Tip Of The Day:"),
        QStringLiteral("When checked, a tip of the day will appear at program start."),
        QStringLiteral("tip of the day on/off"));
    reg(savePositions_, QStringLiteral("Save Window Positions:"),
        QStringLiteral("Save the postion of the windows for the next time you load Mixora."),
        QStringLiteral("when off, window positions reset at program start"));
}

void CRynConfigure::LayOut() {
    auto* v = new QVBoxLayout(this);
    v->setContentsMargins(8, 6, 8, 6);
    v->setSpacing(4);

    auto* devices = new QGridLayout;
    devices->setHorizontalSpacing(6);
    devices->setVerticalSpacing(2);
    devices->addWidget(Caption(QStringLiteral("Main device"), this, Qt::AlignLeft), 0, 0);
    devices->addWidget(devices_[0], 0, 1);
    devices->addWidget(Caption(QStringLiteral("Headphones device"), this, Qt::AlignLeft), 1, 0);
    devices->addWidget(devices_[1], 1, 1);
    devices->setColumnStretch(1, 1);
    v->addLayout(devices);

    auto* decks = new QHBoxLayout;
    decks->setSpacing(8);
    for (int deck = 0; deck < 2; ++deck) {
        eqGroups_[deck] = new QFrame(this);
        eqGroups_[deck]->setObjectName(
            QStringLiteral("Deck %1 Equalizer Settings:").arg(deck == 0 ? 'A' : 'B'));
        auto* frame = new QGridLayout(eqGroups_[deck]);
        frame->setContentsMargins(0, 0, 0, 0);
        frame->setHorizontalSpacing(4);
        frame->setVerticalSpacing(2);
        const QString d = deck == 0 ? QStringLiteral("A") : QStringLiteral("B");
        frame->addWidget(Caption(QStringLiteral("Deck %1 equalizer").arg(d), this), 0, 0, 1, 3);
        frame->addWidget(eqType_[deck], 1, 0);
        frame->addWidget(eqNumbers_[deck], 1, 1, 1, 2);
        frame->addWidget(Caption(QStringLiteral("latency"), this, Qt::AlignLeft), 2, 0);
        frame->addWidget(latency_[deck], 2, 1);
        frame->addWidget(latencyLabel_[deck], 2, 2);
        frame->addWidget(Caption(QStringLiteral("actual"), this, Qt::AlignLeft), 3, 0);
        frame->addWidget(actual_[deck], 3, 1);
        frame->addWidget(actualLabel_[deck], 3, 2);
        frame->setColumnStretch(1, 1);
        decks->addWidget(eqGroups_[deck], 1);
    }
    v->addLayout(decks);

    auto* toggles = new QGridLayout;
    toggles->setHorizontalSpacing(6);
    toggles->setVerticalSpacing(2);
    const std::array<std::pair<QString, CNiButton*>, 4> rows{{
        {QStringLiteral("graphs"), graphNumbers_},
        {QStringLiteral("scope trigger"), scopeTrigger_},
        {QStringLiteral("tool tips"), toolTips_},
        {QStringLiteral("title bars"), titleBars_},
    }};
    for (int i = 0; i < 4; ++i) {
        toggles->addWidget(Caption(rows[i].first, this), 0, i);
        toggles->addWidget(rows[i].second, 1, i);
    }
    v->addLayout(toggles);

    auto* checks = new QHBoxLayout;
    checks->addWidget(tipOfTheDay_);
    checks->addWidget(savePositions_);
    checks->addStretch(1);
    v->addLayout(checks);
    v->addStretch(1);
}
