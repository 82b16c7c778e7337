// What the main mixer's mix cycle asks of a deck. The deck's DeckTransport
// implements it; tests use fakes. Everything runs on the user-interface thread.
#pragma once

#include <cstdint>

#include "core/PcmFormat.h"

class MixerDeck {
  public:
    virtual ~MixerDeck() = default;

    // The next 4704-byte block for output slot writeBlockIndex (0..119, the
    // forward write cursor in blocks), after every per-deck stage (equalizer,
    // meters). 0: dest holds a block; 1: none ready (underrun); 2: the
    // turntable is not rotating. Nothing is written on 1 or 2.
    virtual int FillBlock(int writeBlockIndex, std::uint8_t* dest) = 0;

    // Blocks written ahead of the forward play cursor, last measured.
    virtual int BlocksAhead() const = 0;

    // The device cursors after each notification, in bytes of the 120-block
    // rings. Forward: drives LEDs, reader priority, underrun and end-of-track
    // checks, the turntable and the elapsed time.
    virtual void NoteForwardCursors(int playCursor, int writeCursor) = 0;
    virtual void NoteCursors(int reversePlayCursor, int reverseWriteCursor) = 0;

    // false while playing forwards, true while playing backwards.
    virtual bool IsReverse() const = 0;

    // The turntable controller's writing flag: new blocks may be written.
    virtual bool IsTurning() const = 0;

    // One block falls due (blocks ahead <= write-ahead): the deck counts down
    // its blocks until the end of the track is heard while that is pending.
    virtual void BlockFallsDue() = 0;

    // The host has primed the deck's output after a first fill.
    virtual void OnPrimed() = 0;

    // The deck's turntable plays a loop (its hold flag).
    virtual bool HoldsLoop() const { return false; }

    // (tempo + 4 × spindle) × 44100 × 0.01 + 44100, for the headphones drift.
    virtual double NominalRate() const { return 44100.0; }

    // Turntable position 0 … 1 of the forward ring, for scratches.
    virtual double TurntablePosition() const { return 0.0; }

    // The deck's output rings were (re)built silent: nothing of the track is
    // in them yet.
    virtual void OnRingsCreated() {}
    // How many blocks of one unbroken stretch of the track the rings hold
    // (0 … 120): each block delivered adds one. When the deck's direction
    // turns, the mix cycle moves the write cursors over that stretch.
    virtual int RingHistoryBlocks() const { return kOutputRingBlocks; }
};
