#include "app/DiagnosticsPanel.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include "core/EngineState.h"

DiagnosticsPanel::DiagnosticsPanel(QWidget* parent) : QWidget(parent, Qt::Tool) {
    setObjectName(QStringLiteral("diagnostics"));
    setWindowTitle(QStringLiteral("Mixora Diagnostics"));
    auto* grid = new QGridLayout(this);
    static const char* const kNames[kRows] = {"main deck rate (frames/s)", "headphones drift",
                                              "headphones frequency (Hz)", "deck value"};
    for (int row = 0; row < kRows; ++row)
        grid->addWidget(new QLabel(QString::fromLatin1(kNames[row]), this), row + 1, 0);
    for (int d = 0; d < 2; ++d) {
        grid->addWidget(
            new QLabel(d == 0 ? QStringLiteral("<b>Deck A</b>") : QStringLiteral("<b>Deck B</b>"),
                       this),
            0, d + 1);
        for (int row = 0; row < kRows; ++row) {
            texts_[d][row] = new QLabel(QStringLiteral("-"), this);
            texts_[d][row]->setObjectName(QStringLiteral("deck %1 row %2").arg(d).arg(row));
            texts_[d][row]->setMinimumWidth(80);
            texts_[d][row]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            grid->addWidget(texts_[d][row], row + 1, d + 1);
        }
    }
    button_ = new QPushButton(QStringLiteral("diagnostics"), this);
    button_->setCheckable(true);
    grid->addWidget(button_, kRows + 1, 0, 1, 3);
    connect(button_, &QPushButton::toggled, this, [this](bool on) {
        if (!on) {
            for (auto& deck : texts_)
                deck[3]->setText(QStringLiteral("-"));
        }
    });
    for (int d = 0; d < 2; ++d)
        Refresh(d);
}

void DiagnosticsPanel::Refresh(int deck) {
    if (deck < 0 || deck > 1)
        return;
    const DeckSharedState& s = Engine().decks[deck];
    texts_[deck][0]->setText(QString::number(s.mainDeckRate.load()));
    texts_[deck][1]->setText(QString::number(s.headphonesDrift.load()));
    texts_[deck][2]->setText(QString::number(s.headphonesFrequency.load()));
}

void DiagnosticsPanel::DeckValue(int deck, std::intptr_t value) {
    if (deck < 0 || deck > 1 || !button_->isChecked())
        return;
    texts_[deck][3]->setText(QString::number(static_cast<qlonglong>(value)));
}

QString DiagnosticsPanel::Text(int deck, int row) const {
    if (deck < 0 || deck > 1 || row < 0 || row >= kRows)
        return {};
    return texts_[deck][row]->text();
}
