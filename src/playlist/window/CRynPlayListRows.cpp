// The rows of the play list window: filling them one per tick, their images,
// the selection mark, clicks, the duration measurement and the CD names.
#include <QPainter>
#include <QPainterPath>
#include <QTreeWidget>

#include "core/EngineState.h"
#include "playlist/window/CRynPlayList.h"
#include "playlist/window/RowImages.h"
#include "settings/CRynSettings.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdNames.h"
#include "sources/DurationProbe.h"

namespace {

// A probe that has not answered after this many measurement ticks (it holds
// off while a deck plays from a removable drive) is asked again.
constexpr int kProbeRetryTicks = 20;

QPixmap DrawRowImage(int image) {
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const bool selected = image == 0 || image == 4 || image == 5;
    const bool playing = image == 2 || image == 5;
    const bool loaded = image >= 2 && image <= 5;
    if (image == 6) {  // a CD track: a small disc
        p.setPen(QColor(90, 90, 100));
        p.setBrush(QColor(200, 200, 215));
        p.drawEllipse(QRectF(2, 2, 12, 12));
        p.setBrush(Qt::white);
        p.drawEllipse(QRectF(6.5, 6.5, 3, 3));
        return pm;
    }
    if (loaded) {  // the object: blue when loaded, green while it plays
        p.setPen(Qt::NoPen);
        p.setBrush(playing ? QColor(30, 190, 60) : QColor(40, 110, 230));
        p.drawRoundedRect(QRectF(selected ? 7 : 4, 4, 8, 8), 2, 2);
    }
    if (selected) {  // the triangle
        QPainterPath tri;
        tri.moveTo(1, 3);
        tri.lineTo(7, 8);
        tri.lineTo(1, 13);
        tri.closeSubpath();
        p.fillPath(tri, QColor(30, 30, 30));
    }
    return pm;
}

}  // namespace

QIcon CRynPlayList::RowIcon(int image) {
    static const std::array<QIcon, 7> icons = [] {
        std::array<QIcon, 7> out;
        for (int i = 0; i < 7; ++i)
            out[static_cast<std::size_t>(i)] = QIcon(DrawRowImage(i));
        return out;
    }();
    return icons[static_cast<std::size_t>(image >= 0 && image < 7 ? image : 1)];
}

// ------------------------------------------------------------ row texts

int CRynPlayList::RowCount() const {
    return rows_->topLevelItemCount();
}

QString CRynPlayList::RowText(int row) const {
    const QTreeWidgetItem* item = rows_->topLevelItem(row);
    return item ? item->text(0) : QString();
}

QString CRynPlayList::RowTime(int row) const {
    const QTreeWidgetItem* item = rows_->topLevelItem(row);
    return item ? item->text(1) : QString();
}

int CRynPlayList::RowItemData(int row) const {
    const QTreeWidgetItem* item = rows_->topLevelItem(row);
    return item ? item->data(0, Qt::UserRole).toInt() : 0;
}

int CRynPlayList::RowImage(int row) const {
    const QTreeWidgetItem* item = rows_->topLevelItem(row);
    return item ? item->data(1, Qt::UserRole).toInt() : -1;
}

bool CRynPlayList::CdNamesShown() const {
    return mode_ == PlayList::kCdMode && cd_ != nullptr;
}

QString CRynPlayList::RowTextFor(int row) {
    const QString caption = DisplayMode();
    if (CdNamesShown()) {
        const int drive = Engine().decks[deck_].cdDrive.load();
        if (showNames_ && drive >= 0) {
            // CD lists keep the track number as the item number.
            const std::string title = cdnames::TrackTitle(*cd_, drive, list_.ItemNumber(row));
            if (!title.empty())
                return QString::fromStdString(title);
        }
        return QString::fromStdString(list_.FileTitle(row));
    }
    if (caption == QLatin1String("Tag")) {
        // The file's own tag, read as its row is filled (one file a tick);
        // a file without one keeps the title its list gave it.
        std::string title = list_.TagTitle(row);
        if (title.empty())
            title = list_.FileTitle(row);
        return QString::fromStdString(title);
    }
    if (caption == QLatin1String("Path"))
        return QString::fromStdString(list_.Path(row));
    return QString::fromStdString(list_.FileTitle(row));
}

QTreeWidgetItem* CRynPlayList::MakeRow(int row) {
    auto* item = new QTreeWidgetItem;
    item->setText(0, RowTextFor(row));
    item->setText(1, QString::fromStdString(list_.DurationText(row)));
    item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    item->setText(2, QString::fromStdString(list_.TempoText(row)));
    item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(0, Qt::UserRole, static_cast<int>(list_.ItemNumber(row)));
    item->setIcon(0, RowIcon(1));
    item->setData(1, Qt::UserRole, 1);
    return item;
}

void CRynPlayList::ShowTempo(const std::string& path, float bpm) {
    if (list_.SetTempoOf(path, bpm) == 0)
        return;
    for (int row = 0; row < RowCount(); ++row)
        if (list_.Path(row) == path)
            if (QTreeWidgetItem* item = rows_->topLevelItem(row))
                item->setText(2, QString::fromStdString(list_.TempoText(row)));
}

void CRynPlayList::InsertRow(int row) {
    if (row < 0 || row > RowCount())
        return;  // beyond the filled rows: the fill timer will get to it
    rows_->insertTopLevelItem(row, MakeRow(row));
    if (selected_ >= 0 && selected_ >= row)
        ++selected_;  // the selected entry moved down with the insertion
    SetRowImage(row);
}

// ------------------------------------------------------------ fill

void CRynPlayList::CheckNames() {
    // Names show only for the disc they were found for.
    showNames_ = false;
    if (!CdNamesShown())
        return;
    const int drive = Engine().decks[deck_].cdDrive.load();
    showNames_ = drive >= 0 && cdnames::NamesFound(*cd_, drive) &&
                 cd::CddbDiscId(cdnames::TocOf(*cd_, drive)) == namesDiscId_;
    if (showNames_)
        setWindowTitle(QString::fromStdString(cdnames::DiscArtist(*cd_, drive) + " //" +
                                              cdnames::DiscTitle(*cd_, drive)));
    else
        SetModeTitle();
}

bool CRynPlayList::FillOneRow() {
    const int r = RowCount();
    if (r == 0)
        CheckNames();
    if (r > list_.Count()) {
        RebuildRows();  // entries went away behind the window's back
        return true;
    }
    if (r == list_.Count()) {
        IconsChanged();
        return false;
    }
    rows_->addTopLevelItem(MakeRow(r));
    if (r == selected_)
        SetSelection(r);  // the selection survives a rebuild
    else
        SetRowImage(r);
    return true;
}

void CRynPlayList::RebuildRows() {
    rows_->clear();
    SetWindowTimer(kRowFillTimer, 10);
}

void CRynPlayList::EnsureFilling() {
    if (RowCount() != list_.Count() && !WindowTimerActive(kRowFillTimer) && !stopped_)
        SetWindowTimer(kRowFillTimer, 10);
}

// ------------------------------------------------------------ images and selection

void CRynPlayList::SetRowImage(int row) {
    QTreeWidgetItem* item = rows_->topLevelItem(row);
    if (!item)
        return;
    const int image = RowImageFor(row == selected_, list_.Loaded(row), list_.Playing() > 0);
    if (item->data(1, Qt::UserRole).toInt() == image)
        return;
    item->setIcon(0, RowIcon(image));
    item->setData(1, Qt::UserRole, image);
}

void CRynPlayList::SetSelection(int row) {
    const int before = selected_;
    selected_ = row >= 0 && row < list_.Count() ? row : -1;
    if (before != selected_)
        SetRowImage(before);
    SetRowImage(selected_);
    if (QTreeWidgetItem* item = rows_->topLevelItem(selected_)) {
        rows_->setCurrentItem(item);
        rows_->scrollToItem(item);
    } else {
        rows_->clearSelection();
    }
}

void CRynPlayList::ClickRow(int row) {
    if (row < 0 || row >= RowCount())
        return;
    SetSelection(row);
}

void CRynPlayList::DoubleClickRow(int row) {
    if (row < 0 || row >= RowCount())
        return;
    SetSelection(row);
    if (row == list_.CurrentIndex())
        return;
    list_.LoadFrom(row);
    if (deckWindow_)
        PostAppMessageRetry(deckWindow_, UWM_LOAD_AND_PLAY, deck_, 0);
}

void CRynPlayList::SelectNone() {
    const int was = selected_;
    selected_ = -1;
    SetRowImage(was);
    rows_->clearSelection();
}

// ------------------------------------------------------------ PlayListView

void CRynPlayList::TitleChanged(const std::string& listFileName) {
    setWindowTitle(QString::fromStdString(listFileName));
}

void CRynPlayList::RowsCleared() {
    rows_->clear();
    selected_ = -1;
}

void CRynPlayList::SelectRow(int row) {
    EnsureFilling();
    if (row < RowCount()) {
        SetSelection(row);
    } else {
        selected_ = row >= 0 && row < list_.Count() ? row : -1;  // its image comes with its row
    }
}

void CRynPlayList::ScrollIntoView(int row) {
    EnsureFilling();
    if (QTreeWidgetItem* item = rows_->topLevelItem(row))
        rows_->scrollToItem(item);
}

void CRynPlayList::IconChanged(int row) {
    EnsureFilling();
    SetRowImage(row);
}

void CRynPlayList::IconsChanged() {
    for (int r = 0; r < RowCount(); ++r)
        SetRowImage(r);
}

// ------------------------------------------------------------ durations

bool CRynPlayList::OutputShort() const {
    for (const DeckSharedState& d : Engine().decks) {
        if (d.isPlaying.load() != 0 && d.blocksAheadCopy.load() < d.writeAheadBlocks.load())
            return true;
    }
    return false;
}

void CRynPlayList::DurationTick() {
    if (stopped_ || !probe_)
        return;
    // Rows the deck added or removed behind the window's back are caught up.
    EnsureFilling();
    // A deck short of blocks needs every cycle the machine has.
    if (OutputShort())
        return;
    if (probe_->IsDone()) {
        const bool measured = probe_->Measured();
        const int row =
            measured ? list_.StoreProbedDuration(probe_->Result()) : list_.ProbingIndex();
        if (!measured)
            list_.MarkProbing(-1);
        if (QTreeWidgetItem* item = rows_->topLevelItem(row))
            item->setText(1, measured ? QString::fromStdString(list_.DurationText(row))
                                      : QString::fromLatin1(kNoDuration));
        probe_->ClearDone();
        awaitingProbe_ = false;
    }
    if (awaitingProbe_ && ++probeWaitTicks_ < kProbeRetryTicks)
        return;
    for (int r = 0; r < RowCount(); ++r) {
        if (!RowTime(r).isEmpty())
            continue;
        if (list_.Mode() == PlayList::kCdMode || mode_ == PlayList::kCdMode)
            return;  // CD tracks have their lengths from the disc
        list_.MarkProbing(r);
        probe_->Request(list_.Path(r));
        awaitingProbe_ = true;
        probeWaitTicks_ = 0;
        return;
    }
    awaitingProbe_ = false;
}

// ------------------------------------------------------------ CD names

bool CRynPlayList::LookupRunning() const {
    return lookup_ && lookup_->Running();
}

void CRynPlayList::StartNamesLookup() {
    if (!cd_ || !lookup_)
        return;
    const int drive = Engine().decks[deck_].cdDrive.load();
    if (drive < 0)
        return;
    cd::CddbServer server;
    CRynSettings& s = Settings();
    server.host = s.GetCddbServer().toStdString();
    server.port = s.GetCddbServerPort();
    server.userAddress = s.GetCddbUserAddress().toStdString();
    server.timeoutSeconds = s.GetCddbTimeoutSeconds();
    if (lookup_->Start(*cd_, drive, server))
        SetWindowTimer(kNamesTimer, 100);
}

bool CRynPlayList::NamesTick() {
    if (!cd_ || !lookup_ || !lookup_->Collect(*cd_)) {
        if (!LookupRunning())
            KillWindowTimer(kNamesTimer);
        return false;
    }
    KillWindowTimer(kNamesTimer);
    const int drive = Engine().decks[deck_].cdDrive.load();
    if (drive >= 0 && cdnames::NamesFound(*cd_, drive))
        namesDiscId_ = cd::CddbDiscId(cdnames::TocOf(*cd_, drive));
    const int keep = selected_;
    RebuildRows();
    selected_ = keep;
    return true;
}
