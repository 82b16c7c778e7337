#include "settings/SettingsNames.h"

#include "settings/SettingsTable.h"

namespace {

// The two words of each window: in position names and in "show" names.
struct WindowWords {
    const char* position;
    const char* shown;
};

WindowWords WordsOf(SettingsWindow window) {
    switch (window) {
        case SettingsWindow::ThreeDGraph:
            return {"threeDGraph", "threeDGraph"};
        case SettingsWindow::Configure:
            return {"configure", "Configure"};
        case SettingsWindow::Deck:
            return {"deck", "Deck"};
        case SettingsWindow::DeckInfo:
            return {"deckInfo", "DeckInfo"};
        case SettingsWindow::Equalizer:
            return {"equalizer", "Equalizer"};
        case SettingsWindow::MainMixer:
            return {"mainMixer", ""};
        case SettingsWindow::PhonesMixer:
            return {"phonesMixer", "phonesMixer"};
        case SettingsWindow::PlayList:
            return {"playList", "playList"};
    }
    return {"mainMixer", ""};
}

const char* FieldWord(WindowField field) {
    switch (field) {
        case WindowField::Left:
            return "left";
        case WindowField::Top:
            return "top";
        case WindowField::Right:
            return "right";
        case WindowField::Bottom:
            return "bottom";
        case WindowField::HasMoved:
            return "hasMoved";
        case WindowField::Ordinal:
            return "ordinal";
    }
    return "left";
}

QString Resolution(bool lowRes) {
    return lowRes ? QStringLiteral("LoRes") : QStringLiteral("HiRes");
}

QString WindowLetter(SettingsWindow window, int deck) {
    return IsPerDeckWindow(window) ? DeckLetter(deck) : QString();
}

}  // namespace

bool IsPerDeckWindow(SettingsWindow window) {
    return window == SettingsWindow::Deck || window == SettingsWindow::DeckInfo ||
           window == SettingsWindow::Equalizer || window == SettingsWindow::PlayList;
}

QString DeckLetter(int deck) {
    return deck == 1 ? QStringLiteral("B") : QStringLiteral("A");
}

QString LevelName(int mixer, int deck) {
    return StoredName(mixer == 1 ? Setting::PhonesDeckLevel : Setting::MainDeckLevel, deck);
}

QString ScopeBandName(int deck, int band) {
    return StoredName(Setting::ScopeBandOnState, deck, band);
}

QString DeckModeName(int deck) {
    return StoredName(Setting::DeckMode, deck);
}

QString EqTypeName(int deck) {
    return StoredName(Setting::DeckEQType, deck);
}

QString EqNumberTypeName(int deck) {
    return StoredName(Setting::DeckEQNumberType, deck);
}

QString PositionName(SettingsWindow window, int deck, WindowField field, bool lowRes) {
    const bool oneForBothLayouts = field == WindowField::HasMoved || field == WindowField::Ordinal;
    return QString::fromLatin1(WordsOf(window).position) + WindowLetter(window, deck) +
           QString::fromLatin1(FieldWord(field)) + Resolution(lowRes && !oneForBothLayouts);
}

QString ShowName(SettingsWindow window, int deck, bool lowRes) {
    return QStringLiteral("show") + QString::fromLatin1(WordsOf(window).shown) +
           WindowLetter(window, deck) + Resolution(lowRes);
}
