// The play list window's frame: its controls and their places, the File and
// CD modes, the timers, the dialogs and shutdown.
#include "playlist/window/CRynPlayList.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QMessageBox>
#include <QPainter>
#include <QProgressBar>
#include <QResizeEvent>
#include <QTreeWidget>
#include <cmath>

#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "platform/cd/LibCddbClient.h"
#include "playlist/DefaultPlayList.h"
#include "playlist/window/CRynCEdit.h"
#include "playlist/window/CddbServerDialog.h"
#include "sources/AudioFormats.h"
#include "sources/CdNames.h"
#include "sources/DurationProbe.h"

namespace {

CNiButton* MakeCommand(QWidget* parent, const QString& caption, const QString& tip) {
    auto* b = new CNiButton(parent);
    b->SetCaption(caption);
    b->SetAction(CNiButton::kIndicator);
    b->setToolTip(tip);
    return b;
}

// A control's place as fractions of the client area.
struct Place {
    double x, y, w, h;
};

// The list's relative width, which also sizes its "Files" column.
constexpr double kListWidth = 1.0;

// File mode: search row, list, two rows of buttons.
constexpr Place kSearchField{0.0, 0.0, 0.56, 0.09};
constexpr Place kSearchButton{0.57, 0.0, 0.2, 0.09};
constexpr Place kSelectNone{0.78, 0.0, 0.22, 0.09};
constexpr Place kFileList{0.0, 0.10, kListWidth, 0.69};
constexpr Place kCdList{0.0, 0.10, kListWidth, 0.79};
constexpr double kFileRowA = 0.80;  // open ... save as
constexpr double kRowB = 0.90;      // name/tag/path, delete, up, down
constexpr double kButtonHeight = 0.095;

}  // namespace

#include "core/EngineState.h"
#include "playlist/DefaultPlayList.h"

CRynPlayList::CRynPlayList(QWidget* parent) : CRynWindow("CRynPlayList", kTemplateId, parent) {
    resize(420, 300);
    cddb_ = std::make_shared<cd::LibCddbClient>();
    lookup_ = std::make_unique<CdNameLookup>(cddb_);
    list_.SetView(this);
    BuildControls();
    WireControls();
    RegisterControls();
    SetModeTitle();
}

CRynPlayList::~CRynPlayList() {
    list_.SetView(nullptr);
    if (probe_)
        probe_->Stop();
}

void CRynPlayList::Initialise(WindowHandle deckWindow, int deck) {
    deckWindow_ = deckWindow;
    deck_ = deck == 1 ? 1 : 0;
    SetModeTitle();
    SharedEngineState& e = Engine();
    probe_ = std::make_unique<DurationProbe>(e.decks[deck_], e.decks);
    probe_->Start();
    SetWindowTimer(kDurationTimer, 500);
}

void CRynPlayList::SetCddbClient(std::shared_ptr<cd::CddbClient> client) {
    cddb_ = std::move(client);
    lookup_ = std::make_unique<CdNameLookup>(cddb_);
}

void CRynPlayList::BuildControls() {
    rows_ = new QTreeWidget(this);
    rows_->setColumnCount(3);
    rows_->setHeaderLabels(
        {QStringLiteral("Files"), QStringLiteral("Time"), QStringLiteral("BPM")});
    rows_->setRootIsDecorated(false);
    rows_->setUniformRowHeights(true);
    rows_->setSelectionMode(QAbstractItemView::SingleSelection);
    rows_->setIconSize(QSize(16, 16));
    rows_->header()->setStretchLastSection(false);
    rows_->header()->setSectionResizeMode(QHeaderView::Interactive);
    rows_->setColumnWidth(1, kTimeColumnWidth);
    rows_->setColumnWidth(2, kTempoColumnWidth);

    openList_ = MakeCommand(this, QStringLiteral("Open"), QStringLiteral("open list"));
    addFile_ = MakeCommand(this, QStringLiteral("Add Files"),
                           QStringLiteral("add a file (inserted after selection)"));
    addFolder_ = MakeCommand(this, QStringLiteral("Add Folder"),
                             QStringLiteral("add a folder (inserted after selection)"));
    addList_ = MakeCommand(this, QStringLiteral("Add List"),
                           QStringLiteral("add a list (inserted after selection)"));
    saveAs_ = MakeCommand(this, QStringLiteral("Save As"), QStringLiteral("save as"));
    save_ = MakeCommand(this, QStringLiteral("Save"), QStringLiteral("save list"));
    nameTagPath_ = MakeCommand(this, QStringLiteral("Name"), QStringLiteral("name/tag/path"));
    delete_ = MakeCommand(this, QStringLiteral("Delete"), QStringLiteral("delete item"));
    moveUp_ = new CNiButton(QStringLiteral("Up"), QStringLiteral("Up"), this);
    moveUp_->setToolTip(QStringLiteral("move item up"));
    moveDown_ = new CNiButton(QStringLiteral("Down"), QStringLiteral("Down"), this);
    moveDown_->setToolTip(QStringLiteral("move item down"));
    searchButton_ = MakeCommand(this, QStringLiteral("Search"), QStringLiteral("Click to search"));
    selectNone_ =
        MakeCommand(this, QStringLiteral("Select None"), QStringLiteral("select no items"));
    search_ = new CRynCEdit(Handle(), this);
    search_->setToolTip(QStringLiteral("text to search for"));
    search_->setPlaceholderText(QStringLiteral("search"));
    progress_ = new QProgressBar(this);
    progress_->setToolTip(QStringLiteral("add files status"));
    progress_->setTextVisible(false);
    progress_->hide();
    for (CNiButton* b : {openList_, addFile_, addFolder_, addList_, saveAs_, save_, nameTagPath_,
                         delete_, moveUp_, moveDown_, searchButton_, selectNone_}) {
        QFont f = b->font();
        f.setPointSize(8);
        b->setFont(f);
    }
}

void CRynPlayList::WireControls() {
    auto onLeft = [this](CNiButton* b, void (CRynPlayList::*act)()) {
        connect(b, &CNiControl::mouseDown, this, [this, act](int button, int, QPoint) {
            if (button == CNiControl::kLeftButton)
                (this->*act)();
        });
    };
    onLeft(openList_, &CRynPlayList::OpenList);
    onLeft(save_, &CRynPlayList::SaveList);
    onLeft(nameTagPath_, &CRynPlayList::NameTagPath);
    onLeft(searchButton_, &CRynPlayList::Search);
    onLeft(selectNone_, &CRynPlayList::SelectNone);
    auto deferOnLeft = [this](CNiButton* b, int timerId) {
        connect(b, &CNiControl::mouseDown, this, [this, timerId](int button, int, QPoint) {
            if (button == CNiControl::kLeftButton)
                DeferDialog(timerId);
        });
    };
    deferOnLeft(addFile_, kAddFilesTimer);
    deferOnLeft(addFolder_, kAddFolderTimer);
    deferOnLeft(addList_, kAddListTimer);
    deferOnLeft(saveAs_, kSaveAsTimer);
    // In CD mode a right click on the name button sets the CDDB server.
    connect(nameTagPath_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == CNiControl::kRightButton && mode_ == PlayList::kCdMode)
            EditCddbServer();
    });
    // Delete takes any mouse button; a held Shift, Ctrl or Alt deletes all.
    connect(delete_, &CNiControl::mouseDown, this,
            [this](int, int shift, QPoint) { DeleteItem(shift); });
    connect(moveUp_, &CNiButton::valueChanged, this, [this](bool on) {
        if (!on)
            return;
        MoveItemUp();
        moveUp_->SetValue(false);
    });
    connect(moveDown_, &CNiButton::valueChanged, this, [this](bool on) {
        if (!on)
            return;
        MoveItemDown();
        moveDown_->SetValue(false);
    });
    connect(rows_, &QTreeWidget::itemPressed, this,
            [this](QTreeWidgetItem* item, int) { ClickRow(rows_->indexOfTopLevelItem(item)); });
    connect(rows_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int) {
        DoubleClickRow(rows_->indexOfTopLevelItem(item));
    });
}

// ------------------------------------------------------------ layout

void CRynPlayList::resizeEvent(QResizeEvent* event) {
    CRynWindow::resizeEvent(event);
    PlaceControls();
}

void CRynPlayList::PlaceControls() {
    const double w = width();
    const double h = height();
    auto put = [w, h](QWidget* c, const Place& p) {
        const int x = static_cast<int>(p.x * w) + 2;
        const int y = static_cast<int>(p.y * h) + 2;
        c->setGeometry(x, y, std::max(0, static_cast<int>(p.w * w) - 4),
                       std::max(0, static_cast<int>(p.h * h) - 4));
    };
    const bool file = mode_ != PlayList::kCdMode;
    if (inserting_) {
        put(progress_, Place{0.0, 0.0, 0.77, 0.09});
    } else {
        put(search_, kSearchField);
        put(searchButton_, kSearchButton);
    }
    put(selectNone_, kSelectNone);
    put(rows_, file ? kFileList : kCdList);
    if (file) {
        const std::array<CNiButton*, 6> rowA{openList_, addFile_, addFolder_,
                                             addList_,  save_,    saveAs_};
        for (std::size_t i = 0; i < rowA.size(); ++i)
            put(rowA[i], Place{i / 6.0, kFileRowA, 1.0 / 6.0, kButtonHeight});
    }
    const std::array<CNiButton*, 4> rowB{nameTagPath_, delete_, moveUp_, moveDown_};
    for (std::size_t i = 0; i < rowB.size(); ++i)
        put(rowB[i], Place{i / 4.0, kRowB, 0.25, kButtonHeight});
    // The "Files" column takes the list's width less room for the time and tempo.
    const int files =
        static_cast<int>(std::trunc(w * kListWidth)) - kFilesColumnMargin - kTempoColumnWidth;
    rows_->setColumnWidth(0, std::max(0, files));
}

void CRynPlayList::ShowModeGroup() {
    const bool file = mode_ != PlayList::kCdMode;
    for (CNiButton* b : {openList_, addFile_, addFolder_, addList_, save_, saveAs_})
        b->setVisible(file);
    progress_->setVisible(inserting_);
    search_->setVisible(!inserting_);
    searchButton_->setVisible(!inserting_);
    PlaceControls();
}

// ------------------------------------------------------------ modes

void CRynPlayList::SetModeTitle() {
    const QChar letter(QLatin1Char('A' + deck_));
    setWindowTitle(mode_ == PlayList::kCdMode
                       ? QStringLiteral("Deck %1 Play List (CD Mode)").arg(letter)
                       : QStringLiteral("Deck %1 Play List (File Mode)").arg(letter));
}

QString CRynPlayList::DisplayMode() const {
    return nameTagPath_->Caption();
}

void CRynPlayList::SetListMode(int mode) {
    if (stopped_)
        return;
    if (mode == PlayList::kFileMode) {
        const bool wasFile = mode_ == PlayList::kFileMode;
        mode_ = PlayList::kFileMode;
        list_.SetMode(PlayList::kFileMode);
        SetModeTitle();
        nameTagPath_->SetCaption(QStringLiteral("Name"));
        nameTagPath_->SetPicture(QPixmap());
        nameTagPath_->setToolTip(QStringLiteral("name/tag/path"));
        ShowModeGroup();
        // Already in File mode the list on screen is the user's: keep it.
        if (!wasFile) {
            LoadDefaultList(list_, deck_);
            RebuildRows();
        }
        return;
    }
    if (mode != PlayList::kCdMode)
        return;
    // The list the user made in File mode is kept before the disc replaces it.
    if (mode_ == PlayList::kFileMode) {
        const ListFileStatus saved = SaveDefaultList(list_, deck_);
        if (saved != ListFileStatus::Ok)
            ShowMessage(QStringLiteral("The play list could not be saved to %1.")
                            .arg(QString::fromStdString(DefaultListPath(deck_))));
    }
    mode_ = PlayList::kCdMode;
    SetModeTitle();
    nameTagPath_->SetCaption(QString());
    // The caption is empty in CD mode; the face says what the button does.
    QPixmap face(64, 14);
    face.fill(Qt::transparent);
    {
        QPainter p(&face);
        QFont f = p.font();
        f.setPointSize(8);
        p.setFont(f);
        p.setPen(QColor(225, 225, 225));
        p.drawText(face.rect(), Qt::AlignCenter, QStringLiteral("CD Names"));
    }
    nameTagPath_->SetPicture(face);
    nameTagPath_->setToolTip(
        QStringLiteral("look the disc's names up (right click: the CDDB server)"));
    ShowModeGroup();
    RebuildRows();
}

// ------------------------------------------------------------ timers and messages

void CRynPlayList::OnWindowTimer(int id) {
    if (stopped_)
        return;
    switch (id) {
        case kAddFilesTimer:
            ShowAddFilesDialog();
            break;
        case kAddFolderTimer:
            ShowAddFolderDialog();
            break;
        case kAddListTimer:
            ShowAddListDialog();
            break;
        case kSaveAsTimer:
            ShowSaveAsDialog();
            break;
        case kRowFillTimer:
            if (!FillOneRow())
                KillWindowTimer(kRowFillTimer);
            break;
        case kDurationTimer:
            DurationTick();
            break;
        case kInsertTimer:
            InsertPendingTick();
            break;
        case kNamesTimer:
            NamesTick();
            break;
        case kProgressTimer:
            ProgressTick();
            break;
        default:
            break;
    }
}

LResult CRynPlayList::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    if (msg == UWM_SEARCH_ENTER) {
        Search();
        return 0;
    }
    return CRynWindow::OnAppMessage(msg, wParam, lParam);
}

void CRynPlayList::PostTrackNumber() {
    if (deckWindow_)
        PostAppMessageRetry(deckWindow_, UWM_TRACK_NUMBER, deck_, 0);
}

// ------------------------------------------------------------ dialogs

QString CRynPlayList::ListFilter() {
    return QStringLiteral("Files (*.m3u *.pls);;All Files (*)");
}

QString CRynPlayList::AudioFilter() {
    QString patterns;
    for (std::string_view ext : audioformats::kExtensions)
        patterns += (patterns.isEmpty() ? "*" : " *") + QString::fromLatin1(ext.data(), ext.size());
    return QStringLiteral("Files (%1);;All Files (*)").arg(patterns);
}

void CRynPlayList::DeferDialog(int timerId) {
    // The deck's equalizer goes to its longest latency while a dialog may
    // hold up the window thread; the dialog opens once that has taken hold.
    if (deckWindow_)
        PostAppMessageRetry(deckWindow_, UWM_LATENCY_MAXIMUM, deck_, 0);
    SetWindowTimer(timerId, kDialogDelayMs, true);
}

void CRynPlayList::LatencyBack() {
    if (deckWindow_)
        PostAppMessageRetry(deckWindow_, UWM_LATENCY_MAXIMUM, deck_, 1);
}

void CRynPlayList::ShowAddFilesDialog() {
    QStringList files = dialogs_.addFiles
                            ? dialogs_.addFiles()
                            : QFileDialog::getOpenFileNames(this, QStringLiteral("Add Files"),
                                                            QString(), AudioFilter());
    LatencyBack();
    if (!files.isEmpty())
        AddFiles(files);
}

void CRynPlayList::ShowAddFolderDialog() {
    QString folder = dialogs_.addFolder ? dialogs_.addFolder()
                                        : QFileDialog::getExistingDirectory(
                                              this, QStringLiteral("Select a folder of tracks."));
    LatencyBack();
    if (!folder.isEmpty())
        AddFolder(folder);
}

void CRynPlayList::ShowAddListDialog() {
    QString file = dialogs_.openList
                       ? dialogs_.openList()
                       : QFileDialog::getOpenFileName(this, QStringLiteral("Add List"), QString(),
                                                      ListFilter());
    LatencyBack();
    if (!file.isEmpty())
        AddList(file);
}

void CRynPlayList::ShowSaveAsDialog() {
    QString file = dialogs_.saveAs
                       ? dialogs_.saveAs()
                       : QFileDialog::getSaveFileName(this, QStringLiteral("Save List As"),
                                                      QString(), ListFilter());
    LatencyBack();
    if (!file.isEmpty())
        SaveListAs(file);
}

void CRynPlayList::EditCddbServer() {
    if (deckWindow_)
        SendAppMessage(deckWindow_, UWM_LATENCY_MAXIMUM, deck_, 0);
    CddbServerDialog dialog(this);
    dialog.exec();
    LatencyBack();
}

void CRynPlayList::ShowMessage(const QString& text) {
    if (dialogs_.message) {
        dialogs_.message(text);
        return;
    }
    QMessageBox::warning(this, windowTitle(), text);
}

// ------------------------------------------------------------ shutdown

void CRynPlayList::StopPlayList() {
    if (stopped_)
        return;
    if (mode_ == PlayList::kFileMode)
        SaveDefaultList(list_, deck_);
    stopped_ = true;
    for (int id : {kAddFilesTimer, kAddFolderTimer, kAddListTimer, kSaveAsTimer, kRowFillTimer,
                   kDurationTimer, kInsertTimer, kNamesTimer, kProgressTimer})
        KillWindowTimer(id);
    if (probe_)
        probe_->Stop();
    lookup_.reset();
}

void CRynPlayList::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}
