// The source side of one deck: which source it plays (File mode: the deck's
// file decoder; CD mode: a drive of the program's one CD reader), loading the
// play list's current entry into it, positioning it, and what happens at the
// end of a track (the next file opened into the same decoder for a gapless
// join; a CD simply running on into its next track).
//
// The deck window owns one DeckSource and keeps the user-facing side (captions,
// button enabling, the track name display, messages to the host); every
// decision about the source itself is taken here and handed back as a status.
//
// Threads: ReadBlock and Rewind (the DeckBlockSource side) run on the deck's
// reader threads; everything else on the deck window's thread. The deck keeps
// the two apart: it stops its forward reader before loading or seeking.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "core/PcmFormat.h"
#include "deck/disc/DeckBlockSource.h"

class CRynCdAudio;
class CRynFileDecoder;
class PlayList;

class DeckSource : public DeckBlockSource {
  public:
    static constexpr int kCdMode = 0;    // sourceType values
    static constexpr int kFileMode = 1;  // (DeckSharedState::sourceType)

    // Outcome of LoadCurrent.
    enum class LoadStatus {
        Ok,
        NoEntry,      // the list has no current entry (or its path is empty)
        FileMissing,  // "The file does not exist"
        OpenFailed,   // the decoder refused the file; the deck keeps no new source
        DataTrack,    // "This is a data track."
        NoDrive,      // CD mode without an open drive
    };

    // What the end of a track, once heard, asks of the deck.
    enum class EndHeard {
        Ended,         // nothing follows: the deck goes to its track-ended state
        RanOn,         // the next entry now plays from the same source (CD next track,
                       // or the file the decoder joined): refresh the displays
        RanOnNewRate,  // as RanOn, and the new file's rate differs from the previous
                       // one: the host must rebuild the deck's output at Rate()
        LoadNext,      // the list moved to an entry the source does not continue
                       // into (CD, non-consecutive track): the deck runs LoadTrack
    };

    // `decoder` and `list` are the deck's (not owned); `cd` is the program's CD
    // reader (not owned), null when the program has none. Installs the deck's
    // end-of-track handler on both sources: it sends UWM_END_OF_TRACK to the
    // deck window (the engine state's deckWindow for `deck`).
    DeckSource(int deck, CRynFileDecoder& decoder, PlayList& list, CRynCdAudio* cd);
    ~DeckSource() override;
    DeckSource(const DeckSource&) = delete;
    DeckSource& operator=(const DeckSource&) = delete;

    // --- Mode and drive ---
    // kCdMode or kFileMode (any other value is ignored); also written to the
    // deck's sourceType in the engine state and to the play list's mode. The
    // drive is the deck's to release (SelectDrive(-1)) when going to File.
    void SetMode(int mode);
    int Mode() const { return mode_; }
    CRynCdAudio* Cd() const { return cd_; }
    // The drive this deck holds, -1 for none (also the deck's cdDrive).
    int Drive() const { return drive_; }
    // Takes `drive` (-1: none): the same drive as now changes nothing and
    // answers false; otherwise the old drive is closed, the new one opened
    // (when not -1) and the answer is true. A drive that fails to open is
    // still held (FillListFromDisc then finds no disc). Without a CD reader
    // only -1 is taken. Emptying the list for "no drive" is the deck's.
    bool SelectDrive(int drive);
    // CD mode: reads the disc's table of contents into the play list, one
    // entry "Track n" per track (item number n) with its length in seconds.
    // False (list left empty) when there is no drive or no readable disc:
    // "There is no CD in the Drive.".
    bool FillListFromDisc();
    void SetErrorCorrection(bool on);

    // --- Loading and position ---
    // The list's current entry into the source. File mode: the path must name
    // an existing file (FileMissing), which is opened in the decoder after
    // remembering its rate as PreviousRate(); the decoder's duration becomes
    // the entry's length. CD mode: the entry's item number must be an audio
    // track (DataTrack), which becomes the drive's current track.
    // The position is the track's start; the deck's Reposition follows.
    LoadStatus LoadCurrent();
    // The deck's Reposition: fraction clamped to 0 … 1 (NaN: 0). File mode:
    // when the list's current path is not the decoder's file and `endPending`
    // is false, the list's file is opened first; so is the list's own file
    // when the decoder closed itself at its end. Then both modes seek.
    void SeekFraction(double fraction, bool endPending);
    // Seconds into the current track, from the source's own position
    // (decoder or drive); 0 without a source.
    double SourceSeconds() const;
    // Length of the list's current entry, seconds (0 when unknown).
    double TrackSeconds() const;
    // Stream rate of the blocks: 44100 in CD mode, the decoder's rate in File
    // mode.
    int Rate() const;
    int PreviousRate() const { return previousRate_; }

    // --- End of track ---
    // The source reached the end of the current track (UWM_END_OF_TRACK, from
    // the reader thread while the deck window serves its messages). File mode:
    // opens the list's next file in the decoder (remembering the previous
    // rate) and answers whether it opened, so the decoder joins it into the
    // same block; the next entry's length becomes the decoder's duration.
    // CD mode: answers false (the drive runs on by itself). Answering 0 to a
    // second end of track while one is pending is the deck's.
    bool OpenNextForJoin();
    // The end of the track has been heard: moves the list and tells the deck
    // what to do (see EndHeard). CD: a next entry that is the disc's next
    // audio track runs on (the drive's track follows its address); any other
    // next entry is LoadNext. File: the list moves on; when the decoder did
    // not join that entry (its file was missing or refused) the answer is
    // LoadNext, so the deck's LoadTrack shows why. Ended when nothing follows.
    EndHeard OnEndHeard();

    // --- DeckBlockSource (reader threads) ---
    // File mode: the decoder's block (endOfStream at the end of the last
    // joined file). CD mode: the drive's block; endOfStream stays false, the
    // drive's end of track only informs (by message). 0, or 0x8000FFFF when
    // there is no source to read.
    int ReadBlock(std::uint8_t* dest, bool* endOfStream) override;
    // File mode only; a CD positions itself.
    void Rewind(int blocks) override;
    bool IsFileMode() const override { return mode_ == kFileMode; }
    // Reverse play: File mode in the decoder's stream frames (a decoder that
    // closed itself at its end opens the list's file again to seek); CD mode
    // in sectors of 588 frames, held between the current track's start and
    // the lead-out.
    std::int64_t PositionFrames() const override;
    void SeekFrames(std::int64_t frame) override;
    int StepBack(int blocks) override;

    // Closes the decoder and releases the drive (shutdown). The destructor
    // touches neither: they may be gone by then.
    void Close();

    // The fixed texts of the track name display. LoadFailureText: what the
    // display shows after a failed load ("" for Ok, kNoTrack for NoEntry).
    static const char* LoadFailureText(LoadStatus status);
    static constexpr const char* kNoTrack = "No Track Is Loaded";
    static constexpr const char* kNoFile = "No File Is Loaded";
    static constexpr const char* kNoDrive = "No CD Drive Is Selected";
    static constexpr const char* kNoDisc = "There is no CD in the Drive.";
    static constexpr const char* kFileMissing = "The file does not exist";
    static constexpr const char* kDataTrack = "This is a data track.";
    static constexpr const char* kCannotPlay = "The file cannot be played";

  private:
    // Opens `path` in the decoder, remembering its rate before as the
    // previous rate; records the path on success (empty on failure).
    bool OpenInDecoder(const std::string& path);

    int deck_;
    CRynFileDecoder& decoder_;
    PlayList& list_;
    CRynCdAudio* cd_;
    // Set on the window thread, read by the reader threads.
    std::atomic<int> mode_{kFileMode};
    std::atomic<int> drive_{-1};
    int previousRate_ = 44100;
    std::string sourcePath_;  // the file the decoder last opened successfully
};
