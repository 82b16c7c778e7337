// The deck's source side as the user works it: loading the play list's
// current entry, previous and next, the end of a track (the countdown until
// it is heard), eject with its file dialog, the CD drive chooser and the
// deck mode.
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/source/DeckSource.h"
#include "deck/transport/DeckTransport.h"
#include "deck/turntable/TurntableController.h"
#include "playlist/PlayList.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/CRynSettings.h"
#include "sources/AudioFormats.h"
#include "sources/CRynCdAudio.h"
#include "sources/CRynFileDecoder.h"

namespace {
constexpr int kNoDriveItem = 0;
}

int CRynDeck::LoadTrack() {
    // The forward reader reads the decoder on its own thread: it must have
    // ended before the decoder closes and opens the next file. Reposition
    // below starts it again while the turntable turns.
    transport_->StopAllReaders();
    const DeckSource::LoadStatus status = source_->LoadCurrent();
    if (status != DeckSource::LoadStatus::Ok) {
        SetTrackName(QString::fromUtf8(DeckSource::LoadFailureText(status)));
        NoteHeldFile({});
        // A turning turntable keeps reading whatever the source now holds.
        if (Rotating())
            transport_->StartReading();
        return -1;
    }
    progressFollowsPlay_ = false;
    StopBlink();
    transport_->SetElapsedSeconds(0);
    progress_->SetValue(0.0);
    Reposition(0.0);
    RefreshTrackInfo();
    Disc().ResetDeliveryMarkers();
    startStop_->setEnabled(true);
    progressFollowsPlay_ = true;
    return 0;
}

bool CRynDeck::PreviousTrack() {
    if (!List().Previous())
        return false;
    LoadTrack();
    return true;
}

bool CRynDeck::NextTrack() {
    if (!List().Next())
        return false;
    LoadTrack();
    return true;
}

void CRynDeck::RefreshTrackInfo() {
    PlayList& list = List();
    const int current = list.CurrentIndex();
    QString name = QString::fromStdString(list.Title(current));
    if (name.isEmpty())
        name = QString::fromStdString(list.FileTitle(current));
    const bool fileMode = source_->Mode() == DeckSource::kFileMode;
    if (fileMode && decoder_->IsOpen())
        list.SetCurrentDuration(static_cast<float>(decoder_->DurationSeconds()));
    // The decoder closes itself at the end of the file; the track is still
    // the deck's until another one is loaded.
    NoteHeldFile(fileMode ? decoder_->FileName() : std::string());
    if (current >= 0)
        SetTrackName(name);
    RefreshTrackNumber();
}

void CRynDeck::NoteHeldFile(const std::string& path) {
    if (path == heldFile_)
        return;
    heldFile_ = path;
    if (onTrackChanged)
        onTrackChanged(path);
}

void CRynDeck::RefreshTrackNumber() {
    const PlayList& list = List();
    trackNumber_->setText(QStringLiteral("%1/%2").arg(list.CurrentIndex() + 1).arg(list.Count()));
}

// ------------------------------------------------------------ end of track

LResult CRynDeck::OnEndOfTrack() {
    if (transport_->EndOfTrackPending())
        return 0;
    // A file that ended before the length its header announced: the list
    // takes the real length, so time and progress follow what is heard.
    if (source_->Mode() == DeckSource::kFileMode && decoder_->IsOpen()) {
        const auto real = static_cast<float>(decoder_->DurationSeconds());
        if (real > 0.0f && real < List().CurrentDuration())
            List().SetCurrentDuration(real);
    }
    const bool joined = source_->OpenNextForJoin();
    // The transport counts down what is still to be heard of this track.
    transport_->BeginEndOfTrack();
    StartBlink();
    return joined ? 1 : 0;
}

void CRynDeck::OnEndHeard() {
    StopBlink();
    switch (source_->OnEndHeard()) {
        case DeckSource::EndHeard::Ended:
            break;
        case DeckSource::EndHeard::RanOn:
            transport_->SetElapsedSeconds(0);
            RefreshTrackInfo();
            break;
        case DeckSource::EndHeard::RanOnNewRate: {
            transport_->SetElapsedSeconds(0);
            RefreshTrackInfo();
            // The output is rebuilt at the new file's rate.
            const int rate = source_->Rate();
            PostAppMessageRetry(mainMixer_, UWM_STOP_DECK, deck_, rate);
            PostAppMessageRetry(mainMixer_, UWM_CREATE_DECK_BUFFERS, deck_, rate);
            PostAppMessageRetry(mainMixer_, UWM_START_FORWARD_THREAD, deck_, 0);
            transport_->RestartElapsedCount();
            break;
        }
        case DeckSource::EndHeard::LoadNext:
            LoadTrack();
            break;
    }
}

// ------------------------------------------------------------ eject

QString CRynDeck::FileDialogFilter() {
    // "Files (...)" over every extension the decoder takes, then all files.
    QString patterns;
    for (std::string_view ext : audioformats::kExtensions)
        patterns += (patterns.isEmpty() ? "*" : " *") + QString::fromLatin1(ext.data(), ext.size());
    return QStringLiteral("Files (%1);;All Files (*)").arg(patterns);
}

void CRynDeck::Eject() {
    if (source_->Mode() == DeckSource::kCdMode) {
        if (Rotating())
            StopTurntable();
        savedDriveItem_ = drives_->currentIndex();
        drives_->setCurrentIndex(kNoDriveItem);
        SelectDriveItem(kNoDriveItem);
        SetWindowTimer(kDriveReopenTimer, 100, true);
        return;
    }
    PostAppMessageRetry(mainMixer_, UWM_LATENCY_MAXIMUM, deck_, 0);
    SetWindowTimer(kFileDialogTimer, 750, true);
}

void CRynDeck::DriveReopenTick() {
    drives_->setCurrentIndex(savedDriveItem_);
    SelectDriveItem(savedDriveItem_);
}

void CRynDeck::ShowFileDialog() {
    QStringList files;
    if (fileDialog_) {
        files = fileDialog_();
    } else {
        files = QFileDialog::getOpenFileNames(this, QStringLiteral("Open Files"), QString(),
                                              FileDialogFilter());
    }
    PostAppMessageRetry(mainMixer_, UWM_LATENCY_MAXIMUM, deck_, 1);
    if (!files.isEmpty())
        OpenFiles(files);
    FocusHost();
}

void CRynDeck::OpenFiles(const QStringList& files) {
    PlayList& list = List();
    int first = -1;
    for (const QString& f : files) {
        const QFileInfo info(f);
        if (!info.exists())
            continue;
        const std::string path = info.absoluteFilePath().toStdString();
        list.Add(path, info.completeBaseName().toStdString(), kUnknownDuration, 0);
        if (first < 0)
            first = list.Count() - 1;
    }
    if (first < 0 || list.Count() == 0)
        return;
    list.LoadIndex(first);
    startStop_->setEnabled(true);
    if (Rotating())
        StopTurntable();
    if (LoadTrack() == 0)
        StartTurntable();
    FocusHost();
}

// ------------------------------------------------------------ drives

void CRynDeck::RefreshDriveList() {
    const int selected = source_->Drive();
    // The drive the other deck holds is not offered.
    const int taken = Engine().decks[1 - deck_].cdDrive.load();
    drives_->clear();
    drives_->addItem(QStringLiteral("No CD Drive Selected"), -1);
    if (cd_) {
        for (int i = 0; i < cd_->DriveCount(); ++i) {
            if (i != taken)
                drives_->addItem(QString::fromStdString(cd_->DriveName(i)), i);
        }
    }
    const int item = drives_->findData(selected);
    drives_->setCurrentIndex(item >= 0 ? item : kNoDriveItem);
}

void CRynDeck::SelectDriveItem(int index) {
    const int drive = index > 0 ? drives_->itemData(index).toInt() : -1;
    if (source_->Mode() == DeckSource::kCdMode && drive == -1) {
        SetTrackName(QString::fromLatin1(DeckSource::kNoDrive));
        List().Clear();
        RefreshTrackNumber();
    }
    if (SendAppMessage(mainMixer_, UWM_ASSIGN_CD_DRIVE, deck_, drive) == 0 && drive != -1) {
        // The other deck holds that drive: nothing changes here.
        const int item = drives_->findData(source_->Drive());
        drives_->setCurrentIndex(item >= 0 ? item : kNoDriveItem);
        return;
    }
    OnDriveAssigned(drive);
}

void CRynDeck::OnDriveAssigned(int drive) {
    if (drive == source_->Drive() && drive != -1)
        return;
    if (drive != -1) {
        source_->SelectDrive(drive);
        SetTrackName(QString::fromLatin1(DeckSource::kNoTrack));
        SetTransportEnabled(false);
        eject_->setEnabled(true);
        startStop_->setEnabled(true);
        if (!source_->FillListFromDisc()) {
            SetTrackName(QString::fromLatin1(DeckSource::kNoDisc));
            RefreshTrackNumber();
            return;
        }
        RefreshTrackNumber();
        PostAppMessageRetry(mainMixer_, UWM_LATENCY_MAXIMUM, deck_, 0);
        SetWindowTimer(kCdStartTimer, 750, true);
        return;
    }
    source_->SelectDrive(-1);
    SetTransportEnabled(false);
    if (source_->Mode() == DeckSource::kFileMode)
        eject_->setEnabled(true);
    Turntable().Reset();  // both platters to 0.0
    ApplyTempo();
    UpdateTimeDisplay();
}

void CRynDeck::CdStartTick() {
    PlayList& list = List();
    if (list.Count() > 0) {
        list.First();
        if (LoadTrack() == 0)
            StartTurntable();
    }
    PostAppMessageRetry(mainMixer_, UWM_LATENCY_MAXIMUM, deck_, 1);
}

// ------------------------------------------------------------ mode

void CRynDeck::SetDeckMode(int mode) {
    if (!modeButton_->isEnabled())
        return;
    if (mode == DeckSource::kFileMode) {
        source_->SetMode(DeckSource::kFileMode);
        drives_->setCurrentIndex(kNoDriveItem);
        SelectDriveItem(kNoDriveItem);
        modeButton_->SetCaption(QStringLiteral("File"));
        drives_->clear();
        drives_->setEnabled(false);
        errorCorrection_->SetOffText(QString());
        errorCorrection_->SetOnText(QString());
        errorCorrection_->SetValue(false);
        errorCorrection_->setEnabled(false);
        SetTrackName(QString::fromLatin1(DeckSource::kNoFile));
        SetTransportEnabled(false);
        eject_->setEnabled(true);
        if (playList_)
            playList_->SetListMode(1);  // the deck's default list comes back
    } else {
        // The File mode list is saved as the default list before the disc replaces it.
        if (playList_)
            playList_->SetListMode(0);
        source_->SetMode(DeckSource::kCdMode);
        modeButton_->SetCaption(QStringLiteral("CD"));
        SendAppMessage(mainMixer_, UWM_ASSIGN_CD_DRIVE, deck_, -1);
        RefreshDriveList();
        drives_->setCurrentIndex(kNoDriveItem);
        SelectDriveItem(kNoDriveItem);
        drives_->setEnabled(true);
        errorCorrection_->SetOffText(QStringLiteral("CD E.C. Is Off"));
        errorCorrection_->SetOnText(QStringLiteral("CD E.C. Is On"));
        errorCorrection_->setEnabled(true);
        SetTransportEnabled(false);
    }
    Settings().SetDeckMode(deck_, mode == DeckSource::kFileMode ? 1 : 0);
}
