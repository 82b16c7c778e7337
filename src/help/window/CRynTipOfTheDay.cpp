#include "help/window/CRynTipOfTheDay.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "help/TipsAndSplash.h"
#include "settings/CRynSettings.h"

CRynTipOfTheDay::CRynTipOfTheDay(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("CRynTipOfTheDay"));
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose, false);
    auto* column = new QVBoxLayout(this);
    auto* heading = new QLabel(QStringLiteral("<b>Did you know...</b>"), this);
    column->addWidget(heading);
    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("tip"));
    text_->setWordWrap(true);
    text_->setMinimumSize(320, 72);
    text_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    text_->setFrameShape(QFrame::StyledPanel);
    text_->setMargin(8);
    column->addWidget(text_, 1);
    auto* row = new QHBoxLayout;
    showAtStartup_ = new QCheckBox(QStringLiteral("Show Tips At Startup"), this);
    row->addWidget(showAtStartup_);
    row->addStretch(1);
    next_ = new QPushButton(QStringLiteral("Next Tip"), this);
    next_->setAutoDefault(false);
    row->addWidget(next_);
    ok_ = new QPushButton(QStringLiteral("OK"), this);
    ok_->setDefault(true);
    row->addWidget(ok_);
    column->addLayout(row);

    // A left press shows the next tip at once (buttons only answer the left
    // button).
    connect(next_, &QPushButton::pressed, this, &CRynTipOfTheDay::ShowNextTip);
    connect(showAtStartup_, &QCheckBox::toggled, this,
            [](bool on) { Settings().SetShowTipOfTheDay(on); });
    connect(ok_, &QPushButton::clicked, this, &QDialog::accept);
}

void CRynTipOfTheDay::Initialise() {
    {
        const QSignalBlocker quiet(showAtStartup_);
        showAtStartup_->setChecked(true);
    }
    setWindowTitle(QStringLiteral("Tip Of The Day"));
    ShowNextTip();
}

void CRynTipOfTheDay::ShowNextTip() {
    const tips::Step step = tips::NextTip(Settings().GetTipOfTheDayIndex());
    index_ = step.shown;
    text_->setText(tips::TipText(index_));
    Settings().SetTipOfTheDayIndex(step.next);
}

QString CRynTipOfTheDay::TipShown() const {
    return text_->text();
}
