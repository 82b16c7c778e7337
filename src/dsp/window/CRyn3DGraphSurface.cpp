// The 3D graph's surface: rows in, the matrix out, the split/join choice and
// the two views.
#include <QPainter>
#include <QPixmap>
#include <algorithm>

#include "controls/CNiButton.h"
#include "controls/CNiGraph3D.h"
#include "dsp/window/CRyn3DGraph.h"

void CRyn3DGraph::AddRow(int deck, std::span<const double> levels, int bandCount) {
    if (bandCount < 1 || static_cast<int>(levels.size()) < bandCount)
        return;
    history_.AddRow(deck, levels.first(static_cast<size_t>(bandCount)));
    // The x axis runs over the columns the next surface has.
    SetXAxis(history_.Columns(SideBySide()));
}

void CRyn3DGraph::SetXAxis(int columns) {
    // Only a change: a new range makes the control sort its quads again.
    const double top = std::max(1, columns - 1);
    if (surface_->XMinimum() != 0.0 || surface_->XMaximum() != top)
        surface_->SetXRange(0.0, top);
}

void CRyn3DGraph::PlotSurface(int deck) {
    (void)deck;  // one surface holds both decks
    if (!Plotting())
        return;
    const bool sideBySide = SideBySide();
    const int columns = history_.Columns(sideBySide);
    SetXAxis(columns);
    surface_->PlotSurface(history_.Surface(sideBySide), columns, dsp::SpectrumHistory::kRows);
    ++surfaceDraws_;
}

void CRyn3DGraph::ClearDeck(int deck) {
    history_.ClearDeck(deck);
    PlotSurface(deck);
}

void CRyn3DGraph::SetLevelRange(int deck, double maximum) {
    history_.SetMaximum(deck, maximum);
}

void CRyn3DGraph::SetLevelMinimum(int deck, double minimum) {
    history_.SetMinimum(deck, minimum);
}

bool CRyn3DGraph::SideBySide() const {
    return split_->Caption() == QStringLiteral("Join");
}

void CRyn3DGraph::SetSideBySide(bool on) {
    split_->SetValue(on);
}

void CRyn3DGraph::ResetView() {
    surface_->ResetView();
}

void CRyn3DGraph::FlattenView() {
    surface_->FlattenView();
}

void CRyn3DGraph::ApplySplitPicture() {
    // Two blocks apart ("Join": the decks side by side) or one across
    // ("Split": joined), in the deck colours' spirit: A left, B right.
    QPixmap pic(22, 12);
    pic.fill(Qt::transparent);
    QPainter p(&pic);
    p.setPen(Qt::NoPen);
    if (SideBySide()) {
        p.setBrush(QColor(90, 170, 255));
        p.drawRect(0, 2, 9, 8);
        p.setBrush(QColor(255, 150, 70));
        p.drawRect(13, 2, 9, 8);
    } else {
        p.setBrush(QColor(90, 170, 255));
        p.drawRect(0, 2, 11, 8);
        p.setBrush(QColor(255, 150, 70));
        p.drawRect(11, 2, 11, 8);
    }
    p.end();
    split_->SetPicture(pic);
}
