// What a deck's disc readers ask of its source: the file decoder in File
// mode, the CD reader in CD mode. Both deliver exactly one 4704-byte block per
// read. Called only from the deck's reader threads.
#pragma once

#include <cstdint>

class DeckBlockSource {
  public:
    virtual ~DeckBlockSource() = default;

    // Reads the next block into dest (4704 bytes). 0 on success, an error
    // code when nothing could be read. In File mode endOfStream comes back
    // true on the block that ends the last file (zero padded).
    virtual int ReadBlock(std::uint8_t* dest, bool* endOfStream) = 0;

    // Moves the position back by that many blocks, not below 0 (File mode;
    // a CD source positions itself and may ignore this).
    virtual void Rewind(int blocks) = 0;

    // True for the file decoder (its endOfStream ends the forward reader).
    virtual bool IsFileMode() const = 0;

    // --- Reverse play (both modes). Called only while no reader runs, except
    // StepBack, which the backward reader calls between its reads.
    // The read position: the first frame the next ReadBlock delivers, in
    // source frames (a CD counts 588 frames a sector from the disc's start).
    virtual std::int64_t PositionFrames() const { return 0; }
    // Moves the read position to `frame`, held within the track.
    virtual void SeekFrames(std::int64_t frame) { (void)frame; }
    // Moves back up to `blocks` whole blocks, not before the track's start;
    // returns the blocks gone back (fewer at the start).
    virtual int StepBack(int blocks) {
        Rewind(blocks);
        return blocks;
    }
};
