#include "output/mixer/MainMixerWindowButtons.h"

#include <QGridLayout>

#include "controls/CNiButton.h"

namespace {

const QColor kLampOn(60, 230, 90);
const QColor kLampOff(10, 40, 14);
const QColor kFace(70, 76, 86);

CNiButton* Switch(const QString& name, QWidget* parent) {
    auto* b = new CNiButton(name, name, parent);
    b->setObjectName(name);
    b->SetStyle(CNiButton::kLedButton);
    b->SetAction(CNiButton::kSwitchWhenPressed);
    b->SetColors(kLampOn, kLampOff);
    return b;
}

// A command: acts when the left button goes up on it; its value never changes.
CNiButton* Command(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new CNiButton(caption, caption, parent);
    b->setObjectName(name);
    b->SetStyle(CNiButton::kPushButton);
    b->SetAction(CNiButton::kIndicator);
    b->SetColors(kFace, kFace);
    return b;
}

}  // namespace

MainMixerWindowButtons::MainMixerWindowButtons(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Main Mixer Window Buttons"));
    showDeck_[0] = Switch(QStringLiteral("Show/Hide Deck A"), this);
    showDeck_[1] = Switch(QStringLiteral("Show/Hide Deck B"), this);
    show3D_ = Switch(QStringLiteral("Show 3D Graph"), this);
    reset_ = Command(QStringLiteral("Reset To Default Window Positions"),
                     QStringLiteral("Reset Positions"), this);
    fullScreen_ = Command(QStringLiteral("Full Screen"), QStringLiteral("Full Screen"), this);
    mode_ = Command(QStringLiteral("Low/High Resolution Mode Button"), QStringLiteral("Hi"), this);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(6, 0, 6, 6);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(4);
    grid->addWidget(showDeck_[0], 0, 0);
    grid->addWidget(showDeck_[1], 0, 1);
    grid->addWidget(show3D_, 0, 2);
    grid->addWidget(reset_, 1, 0);
    grid->addWidget(fullScreen_, 1, 1);
    grid->addWidget(mode_, 1, 2);
    for (CNiButton* b : {showDeck_[0], showDeck_[1], show3D_, reset_, fullScreen_, mode_}) {
        b->setMinimumHeight(16);
        b->setMaximumHeight(24);
        b->setMinimumWidth(20);
    }

    for (int d = 0; d < 2; ++d) {
        connect(showDeck_[d], &CNiButton::valueChanged, this, [this, d](bool on) {
            if (onShowDeck)
                onShowDeck(d, on);
        });
        connect(showDeck_[d], &CNiControl::mouseUp, this, [this, d](int button, int, QPoint) {
            if (button == CNiControl::kRightButton && onDeckToDefault)
                onDeckToDefault(d);
        });
    }
    connect(show3D_, &CNiButton::valueChanged, this, [this](bool on) {
        if (onShow3DGraph)
            onShow3DGraph(on);
    });
    const auto onLeftUp = [this](CNiButton* b, std::function<void()>* action) {
        connect(b, &CNiControl::mouseUp, this, [action](int button, int, QPoint) {
            if (button == CNiControl::kLeftButton && *action)
                (*action)();
        });
    };
    onLeftUp(reset_, &onReset);
    onLeftUp(fullScreen_, &onFullScreen);
    onLeftUp(mode_, &onSwitchMode);
}

void MainMixerWindowButtons::ShowMode(bool lowResolution) {
    const QString caption = lowResolution ? QStringLiteral("Lo") : QStringLiteral("Hi");
    mode_->SetOnText(caption);
    mode_->SetOffText(caption);
    mode_->SetCaption(caption);
}
