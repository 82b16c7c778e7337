#include "deck/turntable/DeckTurntablePanel.h"

#include <QGridLayout>

#include "controls/CNiButton.h"
#include "controls/CNiKnob.h"
#include "settings/CRynSettings.h"

DeckTurntablePanel::DeckTurntablePanel(QWidget* parent) : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(3);
    for (int i = 0; i < 2; ++i) {
        knobs_[i] = new CNiKnob(this);
        knobs_[i]->SetLook(i == 0 ? CNiKnob::kFlat : CNiKnob::kPerspective);
        knobs_[i]->SetSweep(360.0);
        knobs_[i]->SetAxis(0.0, 1.0);
        knobs_[i]->setMinimumSize(120, 120);
        grid->addWidget(knobs_[i], 0, 0, 1, 2);
    }
    modeButton_ = new CNiButton(this);
    modeButton_->SetAction(CNiButton::kIndicator);
    modeButton_->SetCaption(QStringLiteral("Drop"));
    lookButton_ = new CNiButton(this);
    lookButton_->SetAction(CNiButton::kIndicator);
    lookButton_->SetCaption(QStringLiteral("3D"));
    grid->addWidget(modeButton_, 1, 0);
    grid->addWidget(lookButton_, 1, 1);
}

DeckTurntablePanel::~DeckTurntablePanel() = default;

void DeckTurntablePanel::Initialise(int deck, WindowHandle host,
                                    TurntableController::DeckSide side) {
    deck_ = deck == 1 ? 1 : 0;
    controller_ = std::make_unique<TurntableController>(deck_, host, std::move(side));
    controller_->Attach(knobs_[0], knobs_[1], modeButton_);
    for (CNiKnob* k : knobs_)
        WireKnob(k);
    connect(modeButton_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == CNiControl::kLeftButton)
            ToggleMode();
    });
    connect(lookButton_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == CNiControl::kLeftButton)
            ToggleLook();
    });
    ApplyMode(Settings().GetTurntableMode(deck_));
    ApplyLook(Settings().GetTurntable2DOr3D(deck_));
}

void DeckTurntablePanel::WireKnob(CNiKnob* knob) {
    TurntableController* c = controller_.get();
    connect(knob, &CNiControl::mouseDown, this, [c, knob](int button, int, QPoint) {
        if (button == CNiControl::kLeftButton && knob == c->ActiveKnob())
            c->LeftDown();
    });
    connect(knob, &CNiControl::mouseUp, this, [c, knob](int button, int shift, QPoint) {
        if (knob != c->ActiveKnob())
            return;
        if (button == CNiControl::kLeftButton)
            c->LeftUp((shift & CNiControl::kShiftBit) != 0);
        else if (button == CNiControl::kRightButton)
            c->RightUp();
    });
    connect(knob, &CNiKnob::pointerValueChanged, this, [c, knob](int, double) {
        if (knob == c->ActiveKnob())
            c->DragUpdate();
    });
}

void DeckTurntablePanel::ApplyMode(const QString& caption) {
    controller_->SetMode(caption == QLatin1String("Drag") ? TurntableController::kDrag
                                                          : TurntableController::kDrop);
}

void DeckTurntablePanel::ApplyLook(const QString& caption) {
    const int which = caption == QLatin1String("2D") ? 0 : 1;
    lookButton_->SetCaption(which == 0 ? QStringLiteral("2D") : QStringLiteral("3D"));
    controller_->SetKnob(which);
}

void DeckTurntablePanel::ToggleMode() {
    const bool toDrag = controller_->GetMode() == TurntableController::kDrop;
    ApplyMode(toDrag ? QStringLiteral("Drag") : QStringLiteral("Drop"));
    Settings().SetTurntableMode(deck_, modeButton_->Caption());
}

void DeckTurntablePanel::ToggleLook() {
    ApplyLook(lookButton_->Caption() == QLatin1String("2D") ? QStringLiteral("3D")
                                                            : QStringLiteral("2D"));
    Settings().SetTurntable2DOr3D(deck_, lookButton_->Caption());
}
