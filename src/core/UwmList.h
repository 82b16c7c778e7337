// The one list of application messages: each entry is X(name, number).
// AppMessages.h turns it into the Uwm enum and AppMessages.cpp into UwmName,
// so the two can never disagree. Numbers run 0x8001 ... 0x8041 without gaps;
// wParam carries a deck index (0 = A, 1 = B) unless the entry says otherwise.
#pragma once

// clang-format off
#define MIXORA_UWM_LIST(X) \
    X(UWM_CONFIG_REFRESH, 0x8001) \
    X(UWM_RESERVED_8002, 0x8002) \
    X(UWM_EQ_NUMBER_TYPE, 0x8003) \
    X(UWM_EQ_TYPE, 0x8004) \
    X(UWM_GRAPH_NUMBER_TYPE, 0x8005) \
    X(UWM_SET_DIRECTION, 0x8006) \
    X(UWM_WINDOW_CLOSED, 0x8007) \
    X(UWM_START_SCRATCH, 0x8008) \
    X(UWM_CREATE_DECK_BUFFERS, 0x8009) \
    X(UWM_DIAGNOSTICS, 0x800A) \
    X(UWM_APPLY_PAN, 0x800B) \
    X(UWM_ASSIGN_CD_DRIVE, 0x800C) \
    X(UWM_APPLY_EFFECT, 0x800D) \
    X(UWM_APPLY_EFFECT_PARAMETER, 0x800E) \
    X(UWM_3D_GRAPH_VALUE, 0x800F) \
    X(UWM_FIRST_FILL, 0x8010)  /* forward reader -> deck, posted once per run */ \
    X(UWM_RELEASE_DECK, 0x8011) \
    X(UWM_BACKWARD_FLAGS, 0x8012)  /* backward reader -> deck, per block */ \
    X(UWM_FORWARD_FLAGS, 0x8013)  /* forward reader -> deck, per block */ \
    X(UWM_GRAPHS_PRIORITY, 0x8014) \
    X(UWM_DECK_VALUE, 0x8015) \
    X(UWM_READER_ENDED, 0x8016)  /* forward reader -> deck, at its end */ \
    X(UWM_RESERVED_8017, 0x8017) \
    X(UWM_END_OF_TRACK, 0x8018)  /* decoder or CD reader -> deck */ \
    X(UWM_LATENCY_MAXIMUM, 0x8019) \
    X(UWM_LATENCY_QUARTER_REQUEST, 0x801A)  /* equalizer window -> deck */ \
    X(UWM_EQ_BAND_GAIN, 0x801B) \
    X(UWM_DEVICE_EQ_BANDS, 0x801C) \
    X(UWM_DEVICE_EQ_ON, 0x801D) \
    X(UWM_SHUTDOWN, 0x801E) \
    X(UWM_SEARCH_ENTER, 0x801F)  /* play-list search field's Enter key */ \
    X(UWM_KEY_POLLED, 0x8020) \
    X(UWM_KEY_DOWN, 0x8021) \
    X(UWM_KEY_UP, 0x8022) \
    X(UWM_GRAPH_DOUBLE_CLICK, 0x8023) \
    X(UWM_MINIMISE_ALL, 0x8024) \
    X(UWM_SET_SOUND_DEVICE, 0x8025) \
    X(UWM_FORWARD_PLAY, 0x8026) \
    X(UWM_REVERSE_PLAY, 0x8027) \
    X(UWM_START_FORWARD_THREAD, 0x8028) \
    X(UWM_START_REVERSE_THREAD, 0x8029) \
    X(UWM_FORWARD_NOTIFY, 0x802A) \
    X(UWM_REVERSE_NOTIFY, 0x802B) \
    X(UWM_SCRATCH_DONE, 0x802C) \
    X(UWM_LOAD_AND_PLAY, 0x802D)  /* play list -> deck */ \
    X(UWM_PRIME_DECK, 0x802E) \
    X(UWM_RESTORE_ALL, 0x802F) \
    X(UWM_REFRESH_CD_DRIVES, 0x8030) \
    X(UWM_LISTENER_POSITION, 0x8031) \
    X(UWM_SET_REVERSE_POSITION, 0x8032) \
    X(UWM_HELP_BUTTONS, 0x8033) \
    X(UWM_SET_FORWARD_POSITION, 0x8034) \
    X(UWM_METERS_THREAD, 0x8035) \
    X(UWM_SET_REVERSE_FREQUENCY, 0x8036) \
    X(UWM_SET_FORWARD_FREQUENCY, 0x8037) \
    X(UWM_TITLE_BARS, 0x8038) \
    X(UWM_PLAY_SCRATCH, 0x8039) \
    X(UWM_STOP_DECK, 0x803A) \
    X(UWM_STOP_REVERSE, 0x803B) \
    X(UWM_TICK, 0x803C) \
    X(UWM_DECK_INFO_UPDATE, 0x803D) \
    X(UWM_GRAPHS_UPDATE, 0x803E) \
    X(UWM_TRACK_NUMBER, 0x803F)  /* play list -> deck: refresh the track number */ \
    X(UWM_TRACK_INFO, 0x8040)  /* play list -> deck: refresh the track information */ \
    X(UWM_LATENCY_QUARTER, 0x8041)
// clang-format on
