#include "dsp/window/CRynPhaseVocoder.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>
#include <vector>

#include "controls/CNiGraph.h"
#include "dsp/AnalysisFraming.h"

namespace {

namespace fr = dsp::framing;

// The dialog is 388 by 339 dialog units: 582 by 551 pixels at the classic
// 1.5 by 1.625 pixels a unit of an 8-point dialog font.
constexpr int kWidthPixels = 582;
constexpr int kHeightPixels = 551;

// What each graph shows, by its place from id 1068 on: the x axis's end,
// the y range, and the title, description and label of the help registry.
struct GraphRole {
    int xMaximum;
    double yMinimum, yMaximum;
    const char* title;
    const char* description;
    const char* label;
};

const std::array<GraphRole, CRynPhaseVocoder::kGraphCount> kRoles = {{
    {fr::kBins, 0.0, 1.0, "Magnitude Spectrum Graph:",
     "The magnitudes of the 513 frequency bins of one 1024-sample analysis frame, from 0 Hz "
     "on the left to half the sample rate on the right. The window only illustrates the "
     "framing and does not analyse the deck's sound, so this graph stays empty.",
     "magnitude spectrum"},
    {fr::kBins, -3.2, 3.2, "Phase Spectrum Graph:",
     "The phases of the same 513 frequency bins, in radians. A phase vocoder changes tempo "
     "and pitch by working on these phases; this graph stays empty.",
     "phase spectrum"},
    {fr::kPictureLength, 0.0, 1.2, "Analysis Window Overlap Graph:",
     "Fifteen Hann windows of 1024 samples placed every 256 samples over 2048 points, each "
     "in its own colour. Each window overlaps the next by three quarters; wherever four "
     "overlap they add up to exactly 2, which is why sound cut into such frames can be put "
     "back together unchanged. The first window lies wholly before the picture and the last "
     "three wholly after it.",
     "window overlap"},
    {fr::kBlockLength, -32768.0, 32768.0, "Input Block Graph:",
     "One channel of one block of the deck's audio, 1176 samples (26.7 ms). Stays empty: "
     "the deck's sound does not pass through this window.",
     "input block"},
    {fr::kFrameLength, -32768.0, 32768.0, "Analysis Frame Graph:",
     "One analysis frame of 1024 samples shaped by the Hann window. Stays empty.",
     "analysis frame"},
    {fr::kBlockLength, -32768.0, 32768.0, "Output Block Graph:",
     "One channel of one block after resynthesis, 1176 samples. Stays empty.", "output block"},
    {fr::kFrameLength, -32768.0, 32768.0, "Synthesis Frame Graph:",
     "One resynthesised frame of 1024 samples before it is overlapped and added. Stays empty.",
     "synthesis frame"},
}};

}  // namespace

CRynPhaseVocoder::CRynPhaseVocoder(QWidget* parent)
    : CRynWindow("CRynPhaseVocoder", kTemplateId, parent) {
    setWindowTitle(QStringLiteral("Dialog"));
    resize(kWidthPixels, kHeightPixels);
    BuildControls();
    RegisterControls();
}

void CRynPhaseVocoder::BuildControls() {
    for (int i = 0; i < kGraphCount; ++i) {
        auto* g = new CNiGraph(this);
        g->setObjectName(QStringLiteral("graph%1").arg(kFirstGraphId + i));
        g->SetAxisLabelsVisible(true);
        graphs_[std::size_t(i)] = g;
    }
    ok_ = new QPushButton(QStringLiteral("OK"), this);
    ok_->setDefault(true);
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    // Ending the dialog either way hides it; the deck's toggle follows.
    connect(ok_, &QPushButton::clicked, this, &QWidget::hide);
    connect(cancel_, &QPushButton::clicked, this, &QWidget::hide);

    // Spectra on top beside the buttons, the overlap picture across the
    // middle, blocks on the left and frames on the right below.
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(8, 8, 8, 8);
    grid->setSpacing(6);
    grid->addWidget(Graph(kMagnitudeGraphId), 0, 0);
    grid->addWidget(Graph(kPhaseGraphId), 0, 1);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(ok_);
    buttons->addWidget(cancel_);
    buttons->addStretch(1);
    grid->addLayout(buttons, 0, 2);
    grid->addWidget(Graph(kOverlapGraphId), 1, 0, 1, 3);
    grid->addWidget(Graph(kInputBlockGraphId), 2, 0);
    grid->addWidget(Graph(kAnalysisFrameGraphId), 2, 1, 1, 2);
    grid->addWidget(Graph(kOutputBlockGraphId), 3, 0);
    grid->addWidget(Graph(kSynthesisFrameGraphId), 3, 1, 1, 2);
    grid->setRowStretch(1, 2);
    for (int row : {0, 2, 3})
        grid->setRowStretch(row, 1);
}

void CRynPhaseVocoder::RegisterControls() {
    ComponentRegistry& r = Registry();
    r.Register(ok_, this, QStringLiteral("OK Button:"),
               QStringLiteral("Closes the phase vocoder window. The deck's \"Show The Phase "
                              "Vocoder:\" toggle shows it again."),
               QStringLiteral("close"));
    r.Register(cancel_, this, QStringLiteral("Cancel Button:"),
               QStringLiteral("Closes the phase vocoder window, like OK: the window changes "
                              "nothing, so there is nothing to cancel."),
               QStringLiteral("close"));
    for (int i = 0; i < kGraphCount; ++i) {
        const GraphRole& role = kRoles[std::size_t(i)];
        r.Register(graphs_[std::size_t(i)], this, QString::fromLatin1(role.title),
                   QString::fromLatin1(role.description), QString::fromLatin1(role.label));
    }
}

CNiGraph* CRynPhaseVocoder::Graph(int id) const {
    const int i = id - kFirstGraphId;
    return i >= 0 && i < kGraphCount ? graphs_[std::size_t(i)] : nullptr;
}

void CRynPhaseVocoder::Initialise() {
    for (int i = 0; i < kGraphCount; ++i) {
        const GraphRole& role = kRoles[std::size_t(i)];
        CNiGraph* g = graphs_[std::size_t(i)];
        g->SetXRange(0.0, role.xMaximum);
        g->SetYRange(role.yMinimum, role.yMaximum);
    }
    DrawOverlapPicture();
}

void CRynPhaseVocoder::DrawOverlapPicture() {
    CNiGraph* g = Graph(kOverlapGraphId);
    g->SetXIncrement(0.0, 1.0);
    g->SetGridLines(8, 4);  // a line every 256 points: one hop
    const std::vector<double> window = fr::PeriodicHann(fr::kFrameLength);
    std::vector<double> picture(fr::kPictureLength);
    for (int k = 1; k <= fr::kOverlapPlots; ++k) {
        fr::PlaceWindow(window, fr::OverlapStart(k), picture);
        g->PlotY(k - 1, picture);
        // Hues a 24th of the circle apart, so neighbours differ plainly.
        g->SetPlotColor(k - 1, QColor::fromHsv((k - 1) * 24, 200, 255));
    }
    ++pictureDraws_;
}

void CRynPhaseVocoder::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            ok_->click();
            return;
        case Qt::Key_Escape:
            cancel_->click();
            return;
        default:
            CRynWindow::keyPressEvent(event);
    }
}
