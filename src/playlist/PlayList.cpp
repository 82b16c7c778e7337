#include "playlist/PlayList.h"

#include <cmath>
#include <utility>

#include "playlist/FolderScan.h"
#include "playlist/ListFileFormat.h"
#include "playlist/ListFileIo.h"
#include "playlist/PlayListPaths.h"
#include "playlist/TagTitle.h"
#include "playlist/TextEncoding.h"

namespace {
NullPlayListView& NoView() {
    static NullPlayListView view;
    return view;
}
}  // namespace

PlayList::PlayList(PlayListView* view) : view_(view != nullptr ? view : &NoView()) {}

void PlayList::SetView(PlayListView* view) {
    view_ = view != nullptr ? view : &NoView();
}

// --- Entry access ---

std::string PlayList::Title(int i) const {
    return Valid(i) ? entries_[i].title : std::string();
}
std::string PlayList::Path(int i) const {
    return Valid(i) ? entries_[i].path : std::string();
}
float PlayList::Duration(int i) const {
    return Valid(i) ? entries_[i].duration : kUnknownDuration;
}
std::int32_t PlayList::ItemNumber(int i) const {
    return Valid(i) ? entries_[i].itemNumber : 0;
}
bool PlayList::Loaded(int i) const {
    return Valid(i) && entries_[i].loaded != 0;
}
bool PlayList::Probing(int i) const {
    return Valid(i) && entries_[i].probing != 0;
}

std::string PlayList::FileTitle(int i) const {
    return Valid(i) ? FileTitleOf(entries_[i].path) : std::string();
}

std::string PlayList::TagTitle(int i) {
    if (!Valid(i))
        return {};
    std::string title;
    if (ReadTagTitle(entries_[i].path, &title))
        entries_[i].title = std::move(title);
    return entries_[i].title;
}

std::string PlayList::DurationText(int i) const {
    return FormatDuration(Duration(i));
}

void PlayList::SetDuration(int i, float seconds) {
    if (Valid(i))
        entries_[i].duration = NormalizedDuration(seconds);
}

float PlayList::Tempo(int i) const {
    return Valid(i) ? entries_[i].tempo : 0.0f;
}

std::string PlayList::TempoText(int i) const {
    return FormatTempo(Tempo(i));
}

int PlayList::SetTempoOf(const std::string& path, float bpm) {
    int n = 0;
    for (PlayListEntry& e : entries_)
        if (!path.empty() && e.path == path) {
            e.tempo = bpm > 0.0f && std::isfinite(bpm) ? bpm : 0.0f;
            ++n;
        }
    return n;
}

// --- Edits ---

void PlayList::InsertAt(int position, PlayListEntry entry) {
    if (position < 0 || position > Count())
        position = Count();
    entries_.insert(entries_.begin() + position, std::move(entry));
    if (current_ >= position)
        ++current_;
}

void PlayList::Add(const std::string& path, const std::string& title, float duration,
                   std::int32_t itemNumber, int position) {
    PlayListEntry e;
    e.title = title;
    e.duration = NormalizedDuration(duration);
    e.path = path;
    e.itemNumber = itemNumber;
    InsertAt(position, std::move(e));
}

int PlayList::AddSorted(const std::string& path, const std::string& title, float duration,
                        std::int32_t itemNumber, int start) {
    int at = Count();
    for (int i = start < 0 ? 0 : start; i < Count(); ++i) {
        if (entries_[i].path > path) {  // std::string compares bytes as unsigned char
            at = i;
            break;
        }
    }
    Add(path, title, duration, itemNumber, at);
    return at;
}

void PlayList::DeriveCurrentFromFlags() {
    current_ = -1;
    for (int i = Count() - 1; i >= 0; --i) {
        if (entries_[i].loaded != 0) {
            current_ = i;
            break;
        }
    }
}

void PlayList::Remove(int i) {
    if (!Valid(i))
        return;
    if (i == current_)
        current_ = -1;
    entries_.erase(entries_.begin() + i);
    DeriveCurrentFromFlags();
}

void PlayList::RemoveAll() {
    entries_.clear();
    current_ = -1;
}

void PlayList::MoveUp(int i) {
    if (!Valid(i) || i == 0)
        return;
    std::swap(entries_[i], entries_[i - 1]);
    if (current_ == i)
        current_ = i - 1;
    else if (current_ == i - 1)
        current_ = i;
}

void PlayList::MoveDown(int i) {
    if (!Valid(i) || i == Count() - 1)
        return;
    std::swap(entries_[i], entries_[i + 1]);
    if (current_ == i)
        current_ = i + 1;
    else if (current_ == i + 1)
        current_ = i;
}

// --- Deck operations ---

bool PlayList::LoadIndex(int i) {
    if (!Valid(i))
        return true;
    current_ = i;
    entries_[i].loaded = 1;
    view_->ScrollIntoView(i);
    view_->IconChanged(i);
    return false;
}

void PlayList::UnloadCurrent() {
    if (!Valid(current_))
        return;
    int was = current_;
    entries_[was].loaded = 0;
    current_ = -1;
    view_->IconChanged(was);
}

void PlayList::First() {
    UnloadCurrent();
    LoadIndex(0);
}

bool PlayList::Next() {
    int next = current_ + 1;
    if (!Valid(next))
        return false;
    UnloadCurrent();
    LoadIndex(next);
    return true;
}

bool PlayList::Previous() {
    if (current_ < 1)
        return false;
    int previous = current_ - 1;
    UnloadCurrent();
    LoadIndex(previous);
    return true;
}

void PlayList::LoadFrom(int i) {
    UnloadCurrent();
    LoadIndex(i);
}

void PlayList::SetPlaying(int state) {
    playing_ = state;
    if (Valid(current_))
        view_->IconChanged(current_);
}

std::int32_t PlayList::CurrentItemNumber() const {
    return Valid(current_) ? entries_[current_].itemNumber : -1;
}

std::string PlayList::NextPath() const {
    return Path(current_ + 1);
}

bool PlayList::NextIsConsecutive() const {
    if (!Valid(current_) || !Valid(current_ + 1))
        return false;
    return static_cast<std::int64_t>(entries_[current_ + 1].itemNumber) ==
           static_cast<std::int64_t>(entries_[current_].itemNumber) + 1;
}

std::int64_t PlayList::TotalSeconds() const {
    return SecondsBefore(Count());
}

std::int64_t PlayList::SecondsBefore(int n) const {
    if (n > Count())
        n = Count();
    std::int64_t sum = 0;
    for (int i = 0; i < n; ++i)
        sum += WholeSeconds(entries_[i].duration);
    return sum;
}

void PlayList::Clear() {
    RemoveAll();
    view_->RowsCleared();
}

void PlayList::ShowCdTracks(int trackCount, const std::function<double(int)>& trackLengthSeconds) {
    Clear();
    for (int t = 1; t <= trackCount; ++t) {
        float seconds =
            trackLengthSeconds ? static_cast<float>(trackLengthSeconds(t)) : kUnknownDuration;
        Add("Track " + std::to_string(t), std::string(), seconds, t);
    }
    view_->SelectRow(0);
}

// --- List files ---

ListFileStatus PlayList::Save(const std::string& fileName, const std::string& extension) {
    bool m3u = extension == ".m3u";
    if (!m3u && extension != ".pls")
        return ListFileStatus::UnknownFormat;
    std::vector<ListFileEntry> out;
    out.reserve(entries_.size());
    for (int i = 0; i < Count(); ++i) {
        std::string title = TagTitle(i);
        out.push_back({entries_[i].path, std::move(title), entries_[i].duration});
    }
    if (!WriteFileAtomically(fileName, m3u ? WriteM3u(out) : WritePls(out)))
        return ListFileStatus::WriteFailed;
    listFileName_ = fileName;
    view_->TitleChanged(listFileName_);
    return ListFileStatus::Ok;
}

ListLoadResult PlayList::Load(const std::string& fileName) {
    ListLoadResult result;
    std::string ext = LowerAscii(ExtensionOf(fileName));
    bool m3u = ext == ".m3u" || ext == ".m3u8";
    if (!m3u && ext != ".pls") {
        result.status = ListFileStatus::UnknownFormat;
        return result;
    }
    std::string bytes;
    if (ReadFileCapped(fileName, kMaxListFileBytes, &bytes, &result.truncated) != ReadStatus::Ok) {
        result.status = ListFileStatus::CannotOpen;
        return result;
    }
    std::string text = TextAsUtf8(bytes);
    std::string().swap(bytes);
    std::string folder = ListFolderOf(fileName);
    ListFileParse parse = m3u ? ParseM3u(text, folder) : ParsePls(text, folder);
    if (!parse.headerOk) {
        result.status = ListFileStatus::NotAList;
        return result;
    }
    result.truncated = result.truncated || parse.truncated;
    entries_.reserve(entries_.size() + parse.entries.size());
    for (ListFileEntry& e : parse.entries) {
        PlayListEntry entry;
        entry.title = std::move(e.title);
        entry.duration = NormalizedDuration(e.duration);
        entry.path = std::move(e.path);
        entries_.push_back(std::move(entry));
    }
    result.added = parse.entries.size();
    result.status = ListFileStatus::Ok;
    listFileName_ = fileName;
    view_->TitleChanged(listFileName_);
    view_->SelectRow(0);
    view_->IconsChanged();
    return result;
}

// --- Folder scan ---

std::size_t PlayList::ScanFolder(const std::string& folder) {
    std::size_t room = pending_.size() < kMaxScannedFiles ? kMaxScannedFiles - pending_.size() : 0;
    return ScanAudioFolder(folder, &pending_, room).added;
}

bool PlayList::TakePendingFile(std::string* path) {
    if (pending_.empty())
        return false;
    *path = std::move(pending_.front());
    pending_.pop_front();
    return true;
}

// --- Duration measurement hand-off ---

int PlayList::FirstUnknownDuration(int from) const {
    for (int i = from < 0 ? 0 : from; i < Count(); ++i)
        if (entries_[i].duration < 0.0f)
            return i;
    return -1;
}

void PlayList::MarkProbing(int i) {
    for (int k = 0; k < Count(); ++k)
        entries_[k].probing = k == i ? 1 : 0;
}

int PlayList::ProbingIndex() const {
    for (int i = 0; i < Count(); ++i)
        if (entries_[i].probing != 0)
            return i;
    return -1;
}

int PlayList::StoreProbedDuration(float seconds) {
    int i = ProbingIndex();
    if (i < 0)
        return -1;
    entries_[i].duration = NormalizedDuration(seconds);
    entries_[i].probing = 0;
    return i;
}
