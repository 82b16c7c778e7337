#include "playlist/DefaultPlayList.h"

#include "core/Paths.h"

std::string DefaultListPath(int deck) {
    return DataDir().toStdString() + (deck == 0 ? "/DeckAPlayList.m3u" : "/DeckBPlayList.m3u");
}

ListLoadResult LoadDefaultList(PlayList& list, int deck) {
    list.Clear();
    return list.Load(DefaultListPath(deck));
}

ListFileStatus SaveDefaultList(PlayList& list, int deck) {
    return list.Save(DefaultListPath(deck), ".m3u");
}
