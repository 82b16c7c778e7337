// A deck's play list: the ordered tracks the deck loads from, the current
// (loaded) entry, the list file it was read from or saved to, and the files
// a folder scan found and the window has not inserted yet. Used on the
// user-interface thread only.
//
// Index rules: an index outside 0..Count()-1 reads as the empty text, a
// duration of kUnknownDuration and item number 0, and edits at it do nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "playlist/PlayListEntry.h"
#include "playlist/PlayListView.h"

// Outcome of reading or writing a list file.
enum class ListFileStatus {
    Ok,
    UnknownFormat,  // the extension is not a list format (nothing read or written)
    CannotOpen,     // missing, unreadable, not a regular file
    NotAList,       // the first line is not the format's header (nothing added)
    WriteFailed,    // the previous file is left as it was
};

struct ListLoadResult {
    ListFileStatus status = ListFileStatus::CannotOpen;
    std::size_t added = 0;   // entries appended
    bool truncated = false;  // the file was larger than Mixora reads; the rest was ignored
};

class PlayList {
  public:
    static constexpr int kCdMode = 0;
    static constexpr int kFileMode = 1;

    // `view` (not owned; may be null for none) hears about title, row and icon changes.
    explicit PlayList(PlayListView* view = nullptr);
    void SetView(PlayListView* view);

    // --- Entry access ---
    int Count() const { return static_cast<int>(entries_.size()); }
    std::string Title(int i) const;
    std::string Path(int i) const;
    float Duration(int i) const;  // seconds
    std::int32_t ItemNumber(int i) const;
    std::string FileTitle(int i) const;  // file name without folder and extension
    // Reads the file's tag title (ID3v1, else TagLib) into the entry when it
    // has one, and returns the entry's title as it then stands.
    std::string TagTitle(int i);
    std::string DurationText(int i) const;  // "m:ss", "" when unknown
    void SetDuration(int i, float seconds);
    float Tempo(int i) const;            // beats per minute; 0 when not known
    std::string TempoText(int i) const;  // "128.0", "" when not known
    // Stores the measured tempo in every entry of the file `path`; returns
    // how many entries took it.
    int SetTempoOf(const std::string& path, float bpm);
    bool Loaded(int i) const;
    bool Probing(int i) const;

    // --- Edits (the current entry stays the same entry) ---
    // Inserts before `position`, or at the end when it is -1 or past the end.
    void Add(const std::string& path, const std::string& title, float duration,
             std::int32_t itemNumber, int position = -1);
    // Inserts before the first entry from index max(start, 0) on whose path
    // is byte-wise greater than `path`, else at the end. Returns the new index.
    int AddSorted(const std::string& path, const std::string& title, float duration,
                  std::int32_t itemNumber, int start = 0);
    // Removing the current entry leaves no current entry; the current index
    // then becomes the last entry still marked loaded, if any.
    void Remove(int i);
    void RemoveAll();
    void MoveUp(int i);    // entry 0 stays first
    void MoveDown(int i);  // the last entry stays last

    // --- Deck operations ---
    // Note the inverted result: false when entry i is now loaded (and current),
    // true when i is outside the list and nothing changed. Other loaded flags
    // are left alone; the operations below unload the current entry first.
    bool LoadIndex(int i);
    void First();     // unload the current entry, load entry 0
    bool Next();      // false when no entry follows the current one
    bool Previous();  // false when the current index is below 1
    void LoadFrom(int i);
    void SetPlaying(int state);  // > 0 while the deck plays
    int Playing() const { return playing_; }
    int CurrentIndex() const { return current_; }
    std::string CurrentPath() const { return Path(current_); }
    std::string CurrentFileTitle() const { return FileTitle(current_); }
    float CurrentDuration() const { return Duration(current_); }
    std::int32_t CurrentItemNumber() const;  // -1 when there is no current entry
    void SetCurrentDuration(float seconds) { SetDuration(current_, seconds); }
    // The path of the entry after the current one ("" when none): the track
    // the deck continues with at the end of the current one.
    std::string NextPath() const;
    // An entry follows the current one and its item number is the current
    // one's + 1 (the following CD track).
    bool NextIsConsecutive() const;
    // Sum of whole seconds over all entries / entries 0..n-1; an unknown
    // duration counts as -1.
    std::int64_t TotalSeconds() const;
    std::int64_t SecondsBefore(int n) const;
    void Clear();  // every entry and every row of the window
    // CD mode: the list becomes "Track 1".."Track <trackCount>", item number
    // t and duration trackLengthSeconds(t) each, and row 0 is selected.
    void ShowCdTracks(int trackCount, const std::function<double(int)>& trackLengthSeconds);

    // --- Mode and list file ---
    int Mode() const { return mode_; }
    void SetMode(int mode) { mode_ = mode; }
    const std::string& ListFileName() const { return listFileName_; }

    // Writes the list as M3U when `extension` is exactly ".m3u", as PLS when
    // it is ".pls"; anything else writes nothing. Titles are refreshed from
    // the files' tags first. The list file name becomes `fileName` on success.
    ListFileStatus Save(const std::string& fileName, const std::string& extension);
    // Appends the entries of an M3U (".m3u", ".m3u8") or PLS (".pls") file, the
    // extension compared without case. On success the list file name becomes
    // `fileName`, row 0 is selected and the icons redrawn.
    ListLoadResult Load(const std::string& fileName);

    // --- Folder scan: files waiting to be inserted with AddSorted ---
    // Appends the audio files below `folder`; returns how many.
    std::size_t ScanFolder(const std::string& folder);
    const std::deque<std::string>& PendingFiles() const { return pending_; }
    bool TakePendingFile(std::string* path);  // oldest first; false when none
    void ClearPending() { pending_.clear(); }

    // --- Duration measurement hand-off (the window drives it) ---
    // The first entry from `from` on whose duration is unknown, -1 when none.
    int FirstUnknownDuration(int from = 0) const;
    // Marks entry i as the one being measured and clears every other entry's
    // flag (i outside the list clears them all).
    void MarkProbing(int i);
    int ProbingIndex() const;  // -1 when none
    // Stores the probe's result in the probing entry and clears its flag;
    // returns its index, or -1 when no entry is marked (it was removed).
    int StoreProbedDuration(float seconds);

  private:
    bool Valid(int i) const { return i >= 0 && i < Count(); }
    void UnloadCurrent();
    void DeriveCurrentFromFlags();
    void InsertAt(int position, PlayListEntry entry);

    PlayListView* view_;
    std::vector<PlayListEntry> entries_;
    int current_ = -1;
    int playing_ = 0;
    int mode_ = kFileMode;
    std::string listFileName_;
    std::deque<std::string> pending_;
};
