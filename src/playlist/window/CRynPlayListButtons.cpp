// The play list window's edits: delete, move, search, the name/tag/path
// button, and the files, folders and lists the dialogs bring.
#include <QFileDialog>
#include <QFileInfo>
#include <QProgressBar>
#include <QTreeWidget>

#include "controls/CNiButton.h"
#include "playlist/PlayListPaths.h"
#include "playlist/window/CRynCEdit.h"
#include "playlist/window/CRynPlayList.h"

// ------------------------------------------------------------ delete and move

void CRynPlayList::DeleteItem(int shift) {
    if (shift != 0) {
        list_.Clear();  // the rows go with the entries
        RebuildRows();
        PostTrackNumber();
        return;
    }
    const int row = selected_;
    if (row < 0 || row >= list_.Count())
        return;
    list_.Remove(row);
    if (row < RowCount())
        delete rows_->takeTopLevelItem(row);
    selected_ = -1;
    const int count = list_.Count();
    SetSelection(row < count ? row : count - 1);
    PostTrackNumber();
}

void CRynPlayList::MoveItemUp() {
    const int row = selected_;
    if (row < 1 || row >= RowCount())
        return;
    list_.MoveUp(row);
    QTreeWidgetItem* item = rows_->takeTopLevelItem(row);
    rows_->insertTopLevelItem(row - 1, item);
    selected_ = -1;
    SetRowImage(row);
    SetSelection(row - 1);
    PostTrackNumber();
}

void CRynPlayList::MoveItemDown() {
    const int row = selected_;
    if (row < 0 || row >= RowCount() - 1 || row >= list_.Count() - 1)
        return;
    list_.MoveDown(row);
    QTreeWidgetItem* item = rows_->takeTopLevelItem(row);
    rows_->insertTopLevelItem(row + 1, item);
    selected_ = -1;
    SetRowImage(row);
    SetSelection(row + 1);
    PostTrackNumber();
}

// ------------------------------------------------------------ search

void CRynPlayList::Search() {
    const QString text = search_->text().toLower();
    if (text.isEmpty())
        return;
    // Forward from the row after the selection to the last; no wrap-around.
    for (int r = selected_ < 0 ? 0 : selected_ + 1; r < RowCount(); ++r) {
        if (RowText(r).toLower().contains(text)) {
            SetSelection(r);
            return;
        }
    }
}

// ------------------------------------------------------------ display

void CRynPlayList::NameTagPath() {
    if (mode_ == PlayList::kCdMode) {
        StartNamesLookup();
        return;
    }
    const QString caption = DisplayMode();
    QString next = QStringLiteral("Tag");
    if (caption == QLatin1String("Tag"))
        next = QStringLiteral("Path");
    else if (caption == QLatin1String("Path"))
        next = QStringLiteral("Name");
    nameTagPath_->SetCaption(next);
    const int keep = selected_;
    RebuildRows();
    selected_ = keep;
}

// ------------------------------------------------------------ files

void CRynPlayList::AddFiles(const QStringList& files) {
    const int at = selected_;
    for (const QString& f : files) {
        const std::string path = QFileInfo(f).absoluteFilePath().toStdString();
        if (at >= 0 && at < list_.Count()) {
            // Each file goes before the entry that was selected: the files
            // end up in the reverse of the dialog's order.
            list_.Add(path, std::string(), kUnknownDuration, -1, at);
            InsertRow(at);
        } else {
            list_.Add(path, std::string(), kUnknownDuration, -1, -1);
            InsertRow(list_.Count() - 1);
        }
    }
    // The mark moves to the row before the one selected before the dialog
    // (the formerly selected row, moved down by the insertions, is redrawn).
    SetSelection(at >= 1 ? at - 1 : -1);
    EnsureFilling();
    PostTrackNumber();
}

// ------------------------------------------------------------ folders

void CRynPlayList::AddFolder(const QString& folder) {
    list_.ScanFolder(QFileInfo(folder).absoluteFilePath().toStdString());
    insertTotal_ = static_cast<int>(list_.PendingFiles().size());
    inserted_ = 0;
    insertStart_ = selected_ >= 0 ? selected_ + 1 : 0;
    progress_->setRange(0, std::max(1, insertTotal_));
    progress_->setValue(0);
    inserting_ = true;
    ShowModeGroup();
    SetWindowTimer(kInsertTimer, 4);
    SetWindowTimer(kProgressTimer, 50);
}

bool CRynPlayList::InsertPendingTick() {
    std::string path;
    if (!list_.TakePendingFile(&path)) {
        KillWindowTimer(kInsertTimer);
        KillWindowTimer(kProgressTimer);
        inserting_ = false;
        progress_->setValue(inserted_);
        ShowModeGroup();
        const int keep = selected_;
        RebuildRows();
        selected_ = keep < list_.Count() ? keep : -1;
        PostTrackNumber();
        return false;
    }
    const int at = list_.AddSorted(path, std::string(), kUnknownDuration, -1, insertStart_);
    InsertRow(at);
    ++inserted_;
    return true;
}

void CRynPlayList::ProgressTick() {
    progress_->setValue(inserted_);
}

// ------------------------------------------------------------ lists

void CRynPlayList::ReportLoad(const ListLoadResult& result, const std::string& file) {
    const QString name = QString::fromStdString(file);
    switch (result.status) {
        case ListFileStatus::Ok:
            if (result.truncated)
                ShowMessage(
                    QStringLiteral("%1 is too long; only its first entries were read.").arg(name));
            return;
        case ListFileStatus::UnknownFormat:
            ShowMessage(QStringLiteral("%1 is not an M3U or PLS play list.").arg(name));
            return;
        case ListFileStatus::NotAList:
            ShowMessage(
                QStringLiteral("%1 does not begin like a play list; nothing was added.").arg(name));
            return;
        case ListFileStatus::CannotOpen:
        case ListFileStatus::WriteFailed:
            ShowMessage(QStringLiteral("%1 could not be opened.").arg(name));
            return;
    }
}

void CRynPlayList::OpenList() {
    if (mode_ == PlayList::kCdMode)
        return;
    if (deckWindow_)
        SendAppMessage(deckWindow_, UWM_LATENCY_MAXIMUM, deck_, 0);
    const QString file = dialogs_.openList
                             ? dialogs_.openList()
                             : QFileDialog::getOpenFileName(this, QStringLiteral("Open List"),
                                                            QString(), ListFilter());
    LatencyBack();
    if (file.isEmpty())
        return;  // cancelled: the list stays as it was
    list_.Clear();
    const std::string name = file.toStdString();
    ReportLoad(list_.Load(name), name);
    RebuildRows();
    PostTrackNumber();
}

void CRynPlayList::AddList(const QString& file) {
    const std::string name = file.toStdString();
    ReportLoad(list_.Load(name), name);
    EnsureFilling();
    PostTrackNumber();
}

void CRynPlayList::SaveList() {
    const std::string name = list_.ListFileName();
    if (name.empty()) {
        DeferDialog(kSaveAsTimer);  // no name yet: ask for one
        return;
    }
    const ListFileStatus status = list_.Save(name, ExtensionOf(name));
    if (status == ListFileStatus::UnknownFormat)
        ShowMessage(QStringLiteral("%1 is not an M3U or PLS name; nothing was saved.")
                        .arg(QString::fromStdString(name)));
    else if (status != ListFileStatus::Ok)
        ShowMessage(
            QStringLiteral("The list could not be saved to %1; the file there is unchanged.")
                .arg(QString::fromStdString(name)));
}

void CRynPlayList::SaveListAs(const QString& file) {
    std::string name = file.toStdString();
    std::string ext = LowerAscii(ExtensionOf(name));
    if (ext != ".m3u" && ext != ".pls") {
        ext = ".m3u";
        name += ext;  // no list extension chosen: M3U
    } else {
        name = name.substr(0, name.size() - ext.size()) + ext;
    }
    if (list_.Save(name, ext) != ListFileStatus::Ok)
        ShowMessage(
            QStringLiteral("The list could not be saved to %1; the file there is unchanged.")
                .arg(QString::fromStdString(name)));
}
