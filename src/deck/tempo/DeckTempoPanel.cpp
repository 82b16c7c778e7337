#include "deck/tempo/DeckTempoPanel.h"

#include <QGridLayout>
#include <QLabel>

#include <algorithm>

#include "controls/CNiButton.h"
#include "controls/CNiControl.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"
#include "core/EngineState.h"
#include "deck/tempo/TempoLaw.h"

using namespace control_look;

DeckTempoPanel::DeckTempoPanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("deckTempoPanel"));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, PanelColor());
    pal.setColor(QPalette::WindowText, TextColor());
    setPalette(pal);
    BuildControls();
    ConnectControls();
    SetDeckColours(QColor(40, 170, 255), QColor(10, 60, 110));
    Initialise(0);
}

DeckTempoPanel::~DeckTempoPanel() = default;

void DeckTempoPanel::BuildControls() {
    display_ = new QLabel(this);
    display_->setObjectName(QStringLiteral("tempoDisplay"));
    display_->setAlignment(Qt::AlignCenter);
    display_->setMinimumWidth(64);
    display_->setFixedHeight(24);
    QFont f = display_->font();
    f.setFamily(QStringLiteral("monospace"));
    f.setStyleHint(QFont::Monospace);
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() + 1.0);
    display_->setFont(f);

    tempoSlide_ = new CNiSlide(Qt::Vertical, this);
    tempoSlide_->setObjectName(QStringLiteral("tempoSlide"));
    tempoSlide_->SetAxis(-kTempoRange, kTempoRange);
    tempoSlide_->SetTickCount(16);        // one tick a percent
    tempoSlide_->SetFillColor(QColor());  // a centre-zero slide: no bar from the minimum
    tempoSlide_->setFixedWidth(34);
    tempoSlide_->setMinimumHeight(150);

    spindleSlide_ = new CNiSlide(Qt::Horizontal, this);
    spindleSlide_->setObjectName(QStringLiteral("spindleSlide"));
    spindleSlide_->SetAxis(-kSpindleRange, kSpindleRange);
    spindleSlide_->SetTickCount(8);  // a tick a quarter unit: one percent
    spindleSlide_->SetFillColor(QColor());

    upButton_ = new CNiButton(QStringLiteral("+1%"), QStringLiteral("+1%"), this);
    upButton_->setObjectName(QStringLiteral("tempoUpButton"));
    downButton_ = new CNiButton(QStringLiteral("-1%"), QStringLiteral("-1%"), this);
    downButton_->setObjectName(QStringLiteral("tempoDownButton"));
    for (CNiButton* b : {upButton_, downButton_}) {
        // The panel acts on the presses; the buttons themselves keep no state.
        b->SetAction(CNiButton::kIndicator);
        b->setFixedWidth(56);
    }

    resetToggle_ = new CNiButton(QStringLiteral("reset"), QStringLiteral("reset"), this);
    resetToggle_->setObjectName(QStringLiteral("tempoResetToggle"));
    resetToggle_->SetStyle(CNiButton::kLedButton);
    resetToggle_->SetAction(CNiButton::kSwitchWhenPressed);
    resetToggle_->setFixedWidth(56);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(6, 6, 6, 6);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(4);
    grid->addWidget(display_, 0, 0, 1, 2);
    grid->addWidget(Caption(QStringLiteral("tempo"), this), 1, 0);
    grid->addWidget(tempoSlide_, 2, 0, 5, 1, Qt::AlignHCenter);
    grid->addWidget(upButton_, 2, 1);
    grid->addWidget(downButton_, 3, 1);
    grid->setRowStretch(4, 1);
    grid->addWidget(resetToggle_, 5, 1);
    grid->setRowStretch(6, 1);
    grid->addWidget(Caption(QStringLiteral("spindle"), this), 7, 0, 1, 2);
    grid->addWidget(spindleSlide_, 8, 0, 1, 2);
}

void DeckTempoPanel::ConnectControls() {
    connect(tempoSlide_, &CNiSlide::valueChanged, this, [this](double) { ApplyTempo(); });
    connect(spindleSlide_, &CNiSlide::valueChanged, this, [this](double) { ApplyTempo(); });

    // Right-button release: the tempo slide back to 0. The spindle springs
    // back on any release.
    connect(tempoSlide_, &CNiControl::mouseUp, this, [this](int button, int, QPoint) {
        if (button == CNiControl::kRightButton)
            tempoSlide_->SetValue(0.0);
    });
    connect(spindleSlide_, &CNiControl::mouseUp, this,
            [this](int, int, QPoint) { spindleSlide_->SetValue(0.0); });

    connect(upButton_, &CNiControl::mouseDown, this,
            [this](int button, int, QPoint) { OnArbitraryPress(+1, button); });
    connect(downButton_, &CNiControl::mouseDown, this,
            [this](int button, int, QPoint) { OnArbitraryPress(-1, button); });
    connect(upButton_, &CNiControl::mouseUp, this,
            [this](int button, int, QPoint) { OnArbitraryRelease(button); });
    connect(downButton_, &CNiControl::mouseUp, this,
            [this](int button, int, QPoint) { OnArbitraryRelease(button); });

    connect(resetToggle_, &CNiButton::valueChanged, this, &DeckTempoPanel::OnResetToggled);
}

void DeckTempoPanel::Initialise(int deck) {
    deck_ = deck == 1 ? 1 : 0;
    ShowDisplayText();
}

void DeckTempoPanel::SetDeckColours(const QColor& main, const QColor& dark) {
    main_ = main;
    dark_ = dark;
    tempoSlide_->SetPointerColor(0, main);
    spindleSlide_->SetPointerColor(0, main);
    resetToggle_->SetColors(main, dark);
    display_->setStyleSheet(QStringLiteral("QLabel#tempoDisplay { background: %1; color: %2;"
                                           " border: 1px solid %3; border-radius: 3px; }")
                                .arg(WellColor().name(), main.name(), dark.name()));
}

double DeckTempoPanel::Tempo() const {
    return tempoSlide_->Value();
}

double DeckTempoPanel::Spindle() const {
    return spindleSlide_->Value();
}

double DeckTempoPanel::TotalPercent() const {
    return tempo::TotalPercent(Tempo(), Spindle(), arbitrary_);
}

double DeckTempoPanel::NominalRate() const {
    return tempo::NominalRate(Tempo(), Spindle());
}

QString DeckTempoPanel::DisplayText() const {
    return display_->text();
}

bool DeckTempoPanel::ResetTempo() const {
    return resetToggle_->Value();
}

int DeckTempoPanel::BaseRate() const {
    const int r = baseRate ? baseRate() : kCdRate;
    return r > 0 ? r : kCdRate;
}

void DeckTempoPanel::ShowDisplayText() {
    display_->setText(QString::fromStdString(tempo::DisplayText(Tempo(), Spindle(), arbitrary_)));
}

void DeckTempoPanel::ApplyTempo() {
    ShowDisplayText();
    frequency_ = tempo::OutputFrequency(BaseRate(), TotalPercent());
    Engine().decks[deck_].outputFrequency.store(frequency_);
    if (onFrequency)
        onFrequency(frequency_);
}

void DeckTempoPanel::StepTempo(double step) {
    if (!tempoSlide_->isEnabled())
        return;  // the reset toggle holds it at 0
    tempoSlide_->SetValue(
        std::clamp(Tempo() + step, tempoSlide_->Minimum(), tempoSlide_->Maximum()));
}

void DeckTempoPanel::StepSpindle(double step) {
    spindleSlide_->SetValue(
        std::clamp(Spindle() + step, spindleSlide_->Minimum(), spindleSlide_->Maximum()));
}

void DeckTempoPanel::ReleaseSpindle() {
    spindleSlide_->SetValue(0.0);
}

void DeckTempoPanel::OnArbitraryPress(int step, int button) {
    // Every press recomputes and re-sends the frequency; only the left button
    // steps.
    if (button == CNiControl::kLeftButton)
        arbitrary_ += step;
    ApplyTempo();
}

void DeckTempoPanel::OnArbitraryRelease(int button) {
    if (button == CNiControl::kRightButton)
        ArbitraryReset();
}

void DeckTempoPanel::ArbitraryUp() {
    OnArbitraryPress(+1, CNiControl::kLeftButton);
}

void DeckTempoPanel::ArbitraryDown() {
    OnArbitraryPress(-1, CNiControl::kLeftButton);
}

void DeckTempoPanel::ArbitraryReset() {
    arbitrary_ = 0;
    ApplyTempo();
}

void DeckTempoPanel::SetResetTempo(bool on) {
    resetToggle_->SetValue(on);
}

void DeckTempoPanel::OnResetToggled(bool on) {
    if (on) {
        rememberedTempo_ = Tempo();
        tempoSlide_->SetValue(0.0);
        tempoSlide_->setEnabled(false);
    } else {
        tempoSlide_->setEnabled(true);
        tempoSlide_->SetValue(rememberedTempo_);
    }
}
