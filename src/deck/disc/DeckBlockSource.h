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
};
