#include "deck/effects/DeckEffectsPanel.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>

#include "controls/CNiKnob.h"
#include "controls/ControlLook.h"
#include "platform/sound/effects/EffectCatalog.h"

namespace {
sound::fx::EffectKind KindOf(const QString& name) {
    return sound::fx::EffectKindFromName(name.toStdString()).value_or(sound::fx::EffectKind::None);
}
}  // namespace

DeckEffectsPanel::DeckEffectsPanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("deckEffectsPanel"));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, control_look::PanelColor());
    pal.setColor(QPalette::WindowText, control_look::TextColor());
    setPalette(pal);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(4, 4, 4, 4);
    list_ = new QComboBox(this);
    for (const auto& spec : sound::fx::EffectList())
        list_->addItem(QString::fromLatin1(spec.name));
    grid->addWidget(list_, 0, 0, 1, 2);
    for (int n = 1; n <= 2; ++n) {
        const std::size_t i = Index(n);
        labels_[i] = new QLabel(this);
        labels_[i]->setAlignment(Qt::AlignHCenter);
        knobs_[i] = new CNiKnob(this);
        knobs_[i]->SetSweep(270);
        knobs_[i]->SetPointerStyle(CNiKnob::kDot);
        knobs_[i]->setMinimumSize(40, 40);
        values_[i] = new QLabel(this);
        values_[i]->setAlignment(Qt::AlignHCenter);
        const int column = n - 1;
        grid->addWidget(labels_[i], 1, column);
        grid->addWidget(knobs_[i], 2, column);
        grid->addWidget(values_[i], 3, column);
        connect(knobs_[i], &CNiKnob::valueChanged, this, [this, n](double) {
            ShowKnob(n);
            if (!settingUp_ && onKnobMoved)
                onKnobMoved(n);
        });
    }
    connect(list_, &QComboBox::currentIndexChanged, this, [this](int) { OnEffectChosen(); });
    settingUp_ = true;
    OnEffectChosen();
    settingUp_ = false;
}

void DeckEffectsPanel::OnEffectChosen() {
    const auto& spec = sound::fx::SpecOf(KindOf(EffectName()));
    const bool wasSettingUp = settingUp_;
    settingUp_ = true;
    for (int n = 1; n <= 2; ++n) {
        const auto& k = spec.knobs[Index(n)];
        CNiKnob* knob = knobs_[Index(n)];
        knob->SetAxis(k.minimum, k.maximum);
        knob->SetValue(k.start);
        knob->setEnabled(spec.kind != sound::fx::EffectKind::None);
        labels_[Index(n)]->setText(QString::fromLatin1(k.label));
        ShowKnob(n);
    }
    settingUp_ = wasSettingUp;
    if (!settingUp_ && onEffectChanged)
        onEffectChanged();
}

void DeckEffectsPanel::ShowKnob(int knob) {
    values_[Index(knob)]->setText(KnobText(knob));
}

QString DeckEffectsPanel::EffectName() const {
    return list_->currentText();
}

bool DeckEffectsPanel::SelectEffect(const QString& name) {
    const int i = list_->findText(name);
    if (i < 0)
        return false;
    if (i == list_->currentIndex())
        OnEffectChosen();  // choosing it again applies it again
    else
        list_->setCurrentIndex(i);
    return true;
}

double DeckEffectsPanel::KnobValue(int knob) const {
    return knobs_[Index(knob)]->Value();
}

void DeckEffectsPanel::SetKnobValue(int knob, double value) {
    knobs_[Index(knob)]->SetValue(value);
}

QString DeckEffectsPanel::KnobLabel(int knob) const {
    return labels_[Index(knob)]->text();
}

QString DeckEffectsPanel::KnobText(int knob) const {
    return QString::fromStdString(
        sound::fx::KnobText(KindOf(EffectName()), knob, static_cast<float>(KnobValue(knob))));
}

bool DeckEffectsPanel::KnobEnabled(int knob) const {
    return knobs_[Index(knob)]->isEnabled();
}
