// The headphones mixer's controls: building, placing and connecting them.
#include <QHBoxLayout>
#include <QLabel>
#include <QPalette>
#include <QVBoxLayout>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/MixerColumns.h"
#include "settings/CRynSettings.h"

using namespace control_look;

namespace {

const QColor kLampOn(60, 230, 90);
const QColor kLampOff(10, 40, 14);

CNiSlide* MakeSlide(Qt::Orientation o, const QString& name, double lo, double hi, QWidget* parent) {
    auto* s = new CNiSlide(o, parent);
    s->setObjectName(name);
    s->SetPointerStyle(0, CNiSlide::kThumb);
    s->SetAxis(lo, hi);
    return s;
}

CNiButton* MakeButton(const QString& off, const QString& on, const QString& name, QWidget* parent) {
    auto* b = new CNiButton(off, on, parent);
    b->setObjectName(name);
    b->SetStyle(CNiButton::kPushButton);
    b->SetAction(CNiButton::kSwitchWhenPressed);
    b->SetColors(FaceLightColor(), FaceColor());
    return b;
}

}  // namespace

void CRynHeadphonesMixer::BuildControls() {
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, PanelColor());
    setPalette(pal);

    const QString deckName[2] = {QStringLiteral("A"), QStringLiteral("B")};
    for (int deck = 0; deck < 2; ++deck) {
        levels_[deck] =
            MakeSlide(Qt::Vertical, QStringLiteral("Phones Deck %1 Level").arg(deckName[deck]), 0.0,
                      1.0, this);
        levels_[deck]->SetTickCount(10);
        balances_[deck] =
            MakeSlide(Qt::Horizontal, QStringLiteral("Phones Deck %1 Balance").arg(deckName[deck]),
                      -1.0, 1.0, this);
        balances_[deck]->SetPointerColor(0, TextColor());
        balances_[deck]->SetFillColor(QColor());
        balances_[deck]->SetTickCount(4);
    }
    crossFader_ =
        MakeSlide(Qt::Horizontal, QStringLiteral("Headphones Cross Fader"), -1.0, 1.0, this);
    crossFader_->SetPointerColor(0, TextColor());
    crossFader_->SetFillColor(QColor());
    crossFader_->SetTickCount(8);
    volume_ = MakeSlide(Qt::Vertical, QStringLiteral("Headphones Volume"), 0.0, 1.0, this);
    volume_->SetPointerColor(0, TextColor());
    volume_->SetFillColor(QColor(90, 96, 106));
    volume_->SetTickCount(10);

    separateEars_ =
        new CNiButton(QStringLiteral("Separate Ears"), QStringLiteral("Separate Ears"), this);
    separateEars_->setObjectName(QStringLiteral("Separate Ears Button"));
    separateEars_->SetStyle(CNiButton::kLedButton);
    separateEars_->SetAction(CNiButton::kSwitchWhenPressed);
    separateEars_->SetColors(kLampOn, kLampOff);

    for (int i = 0; i < 2; ++i) {
        plots_[i] = new CNiGraph(this);
        plots_[i]->setObjectName(QStringLiteral("Headphones Plot"));
        plots_[i]->SetPlotCount(2);
        plots_[i]->SetGridLines(4, 2);
        plots_[i]->SetCursorCount(0);
        plotTypes_[i] = MakeButton(QStringLiteral("Bars"), QStringLiteral("Scope"),
                                   QStringLiteral("Headphones Plot Type"), this);
    }
    plotCount_ = MakeButton(QStringLiteral("1 Plot"), QStringLiteral("2 Plots"),
                            QStringLiteral("Headphones Number Of Plots"), this);
    status_ = Caption(QString(), this, Qt::AlignLeft | Qt::AlignVCenter);
}

void CRynHeadphonesMixer::LayOut() {
    constexpr int kSlideHeight = 120;
    auto* top = new QHBoxLayout;
    top->setSpacing(4);
    for (int deck = 0; deck < 2; ++deck) {
        top->addLayout(mixer_columns::LevelColumn(
            levels_[deck], kSlideHeight, deck == 0 ? QStringLiteral("A") : QStringLiteral("B"),
            this));
    }
    auto* plots = new QVBoxLayout;
    plots->setSpacing(3);
    auto* plotRow = new QHBoxLayout;
    for (int i = 0; i < 2; ++i) {
        plots_[i]->setMinimumSize(70, 60);
        plotRow->addWidget(plots_[i], 1);
    }
    plots->addLayout(plotRow, 1);
    auto* plotButtons = new QHBoxLayout;
    for (CNiButton* b : {plotTypes_[0], plotCount_, plotTypes_[1]}) {
        b->setFixedHeight(20);
        plotButtons->addWidget(b);
    }
    plots->addLayout(plotButtons);
    top->addLayout(plots, 1);
    top->addLayout(
        mixer_columns::LevelColumn(volume_, kSlideHeight, QStringLiteral("volume"), this));

    auto* pans = new QHBoxLayout;
    pans->setSpacing(6);
    for (int deck = 0; deck < 2; ++deck) {
        pans->addLayout(
            mixer_columns::CaptionedSlide(
                balances_[deck],
                deck == 0 ? QStringLiteral("A balance") : QStringLiteral("B balance"), this),
            1);
        if (deck == 0) {
            separateEars_->setFixedHeight(24);
            pans->addWidget(separateEars_, 0, Qt::AlignTop);
        }
    }

    auto* v = new QVBoxLayout(this);
    v->setContentsMargins(6, 6, 6, 6);
    v->setSpacing(4);
    v->addLayout(top);
    v->addWidget(Caption(QStringLiteral("cross fader"), this));
    crossFader_->setFixedHeight(28);
    v->addWidget(crossFader_);
    v->addLayout(pans);
    v->addWidget(status_);
}

void CRynHeadphonesMixer::Connect() {
    for (int deck = 0; deck < 2; ++deck) {
        connect(levels_[deck], &CNiSlide::valueChanged, this,
                [this, deck](double) { OnLevelMoved(deck); });
        connect(balances_[deck], &CNiSlide::valueChanged, this,
                [this, deck](double) { ApplyPan(deck); });
    }
    connect(crossFader_, &CNiSlide::valueChanged, this, [this](double) { ApplyMix(); });
    connect(crossFader_, &CNiSlide::mouseUp, this, [this](int button, int, QPoint) {
        if (button != CNiControl::kRightButton)
            return;
        if (crossFader_->Value() == 0.0)
            ApplyMix();
        else
            crossFader_->SetValue(0.0);
    });
    connect(volume_, &CNiSlide::valueChanged, this, [this](double) { OnVolumeMoved(); });
    connect(separateEars_, &CNiButton::valueChanged, this, &CRynHeadphonesMixer::OnSeparateEars);
    connect(plotCount_, &CNiButton::valueChanged, this, &CRynHeadphonesMixer::OnPlotCount);
    for (int i = 0; i < 2; ++i) {
        connect(plots_[i], &CNiControl::doubleClicked, this, [this, i] {
            SendAppMessage(mainMixer_, UWM_GRAPH_DOUBLE_CLICK, kTemplateId, kPlotIds[i]);
        });
        connect(plotTypes_[i], &CNiButton::valueChanged, this, [this, i](bool) {
            ShapePlot(i);
            if (!loading_)
                Settings().SetPhonesMixerGraphType(i, plotTypes_[i]->Caption());
        });
    }
}

void CRynHeadphonesMixer::OnPlotCount(bool two) {
    plots_[1]->setVisible(two);
    plotTypes_[1]->setVisible(two);
    ShapePlot(0);
    ShapePlot(1);
    if (!loading_)
        Settings().SetPhonesMixerNumGraphs(two ? 2 : 1);
}
