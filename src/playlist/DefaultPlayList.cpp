#include "playlist/DefaultPlayList.h"

#include <QDir>

#include "core/Paths.h"

std::string DefaultListPath(int deck) {
    return DataDir().toStdString() + (deck == 0 ? "/DeckAPlayList.m3u" : "/DeckBPlayList.m3u");
}

ListLoadResult LoadDefaultList(PlayList& list, int deck) {
    list.Clear();
    return list.Load(DefaultListPath(deck));
}

ListFileStatus SaveDefaultList(PlayList& list, int deck) {
    // The data folder does not exist before the first save.
    QDir().mkpath(DataDir());
    return list.Save(DefaultListPath(deck), ".m3u");
}
